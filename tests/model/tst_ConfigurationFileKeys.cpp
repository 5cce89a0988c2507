#include "model/ConfigurationFileTest.h"
#include "support/RandomModel.h"

#include <tuple>

/// What the reader makes of every key and every bad line.
class tst_ConfigurationFileKeys : public ConfigurationFileTest
{
    Q_OBJECT

private slots:
    void init()
    {
        begin();
    }

    void keys_data();
    void keys();
    void startStateBeyondTheTableLeavesNone();
    void unknownStateBecomesAPrivateRow();
    void stateValueThatDisagreesBecomesAPrivateRow();
    void typeFilterNumbersGoIntoTheScriptsOwnRecord();
    void activatedScriptsGoByResetNumbers();
    void triggerFlagFollowsTheFile_data();
    void triggerFlagFollowsTheFile();
    void groupsKeepTheOrderOfTheFile();
    void connectedIsTheHeadUnitAlone();
    void indexesEndAt99();
    void blankGroupsAreBounded();
    void outputsAreBounded();
    void scriptsOfAnOutputAreBounded();
};

void tst_ConfigurationFileKeys::keys_data()
{
    QTest::addColumn<QByteArray>("text"); // lines joined by "|"
    QTest::addColumn<int>("errors");
    QTest::addColumn<QByteArray>("expected"); // what the model is saved with otherwise, joined by "|"

    const auto row = [](const char* text, int errors, const char* expected = "") {
        QTest::newRow(text) << QByteArray(text) << errors << QByteArray(expected);
    };
    // A group and an output for the keys that need them; both come with lines of their own.
    const QByteArray blankGroup = "NumberOfDevices=2|ExecutiveTerminal[1].Name=|ExecutiveTerminal[1].Address=-1|"
                                  "ExecutiveTerminal[1].Expand=0|ExecutiveTerminal[1].NumberOfOutputs=0";
    const auto grown = [&blankGroup](const char* text, int errors, const char* from = "", const char* to = "") {
        QTest::newRow(text) << "NumberOfDevices=2|" + QByteArray(text) << errors
                            << QByteArray(blankGroup).replace(from, to);
    };

    // Lines that are no keys.
    row("nonsense", 1);
    row("[Configuration]", 0);
    row("[Scripts]", 0);
    row(" [Scripts]", 1);
    row("[Scripts] ", 1);
    row("=", 0);
    row("===", 0);
    row("NumberOfScripts", 1);
    row("NumberOfScripts=", 1);
    row("=NumberOfScripts=32=1", 0);
    row("=32", 1);
    row(" =32", 1);
    row("Unknown=1", 1);
    row("Script[0].Unknown=1", 1);
    row("script[0].mode=1", 1);

    // Numbers and indexes.
    row("Script[0].Mode=1", 0, "Script[0].Mode=1");
    row("  Script[0].Mode  =  1  ", 0, "Script[0].Mode=1");
    row("Script[0].Mode=1=2", 0, "Script[0].Mode=1");
    row("Script[0].Mode=+1", 0, "Script[0].Mode=1");
    row("Script[31].Mode=1", 0, "Script[31].Mode=1");
    row("Script[32].Mode=1", 1);
    row("Script[40].Mode=1", 1);
    row("Script[99].Mode=1", 1);
    row("Script[311].Mode=1", 0, "Script[31].Mode=1");
    row("Script[x].Mode=1", 0);
    row("Script[].Mode=1", 0);
    row("Script[-1].Mode=1", 0);
    row("Script[-5].Mode=1", 0);
    row("Script[1x].Mode=1", 0);
    row("Script[7.Mode=1", 0);
    row("Script[07].Mode=1", 0, "Script[7].Mode=1");
    row(".Mode=1", 0);
    row("Mode=1", 1);
    row("Script[1].Script[2].Mode=1", 0, "Script[1].Mode=1");
    row("Script[0].Mode=0x1", 1);
    row("Script[0].Mode=99999999999", 1);

    row("NumberOfDevices=x", 1);
    row("NumberOfDevices=-1", 1);
    row("NumberOfDevices=0", 0);
    row("NumberOfDevices=1", 0);
    row("NumberOfDevices=-7", 0);
    row("NumberOfDevices=-32768", 0);
    row("NumberOfDevices=-2147483648", 0);
    row("NumberOfDevices=0|ExecutiveTerminal[1].Name=A", 1);
    row("NumberOfDevices=1|ExecutiveTerminal[1].Name=A", 1);
    QTest::newRow("NumberOfDevices=2") << QByteArray("NumberOfDevices=2") << 0 << blankGroup;
    QTest::newRow("NumberOfDevices adds to what is there")
        << QByteArray("NumberOfDevices=2|NumberOfDevices=2") << 0
        << QByteArray(blankGroup).replace("Devices=2", "Devices=3") +
               "|ExecutiveTerminal[2].Name=|ExecutiveTerminal[2].Address=-1|ExecutiveTerminal[2].Expand=0|"
               "ExecutiveTerminal[2].NumberOfOutputs=0";

    row("ExecutiveTerminal[0].Name=A", 0, "ExecutiveTerminal[0].Name=A");
    row("ExecutiveTerminal[0].Name= ", 0, "ExecutiveTerminal[0].Name=");
    row("ExecutiveTerminal[0].Name=", 1);
    row("ExecutiveTerminal[1].Name=A", 1);
    row("ExecutiveTerminal[x].Name=A", 0);
    row("ExecutiveTerminal[0].Output[7].Name=A", 0, "ExecutiveTerminal[0].Output[7].Name=A");
    row("ExecutiveTerminal[0].Output[8].Name=A", 1);
    row("ExecutiveTerminal[1].Output[0].Name=A", 1);
    row("ExecutiveTerminal[0].Output[x].Name=A", 0, "ExecutiveTerminal[0].Name=A");
    row(".Output[1].Name=A", 0);
    row("Script[3].Name=A", 0, "Script[3].Name=A");
    row("Script[32].Name=A", 1);
    row("ExecutiveTerminal[0].Script[3].Name=A", 0, "ExecutiveTerminal[0].Name=A|Script[3].Name=A");
    row("ExecutiveTerminal[9].Script[3].Name=A", 1);
    row("ExecutiveTerminal[0].Script[32].Name=A", 1, "ExecutiveTerminal[0].Name=A");

    grown("ExecutiveTerminal[1].Address=5", 0, "Address=-1", "Address=5");
    grown("ExecutiveTerminal[1].Address=-128", 0, "Address=-1", "Address=-128");
    grown("ExecutiveTerminal[1].Address=-32768", 0, "Address=-1", "Address=-32768");
    grown("ExecutiveTerminal[1].Address=65408", 0, "Address=-1", "Address=-128");
    grown("ExecutiveTerminal[1].Address=-1", 1);
    grown("ExecutiveTerminal[1].Address=x", 1);
    grown("ExecutiveTerminal[2].Address=5", 1);
    row("ExecutiveTerminal[0].Output[99].Address=5", 0, "ExecutiveTerminal[0].Address=5");
    row("Script[3].Filter.Address=0; 31; ", 0, "Script[3].Filter.Address=0; 31; ");
    row("Script[3].Filter.Address=0;31;0", 0, "Script[3].Filter.Address=0; 31; ");
    row("Script[3].Filter.Address=1|Script[3].Filter.Address=NONE", 0);
    row("Script[3].Filter.Address=32; -1; 5; ", 2, "Script[3].Filter.Address=5; ");
    row("Script[3].Filter.Address=one; 5", 1, "Script[3].Filter.Address=5; ");
    row("Script[3].Filter.Address=NONE; one; 5", 0, "Script[3].Filter.Address=5; ");
    row("Script[3].Filter.Address=5; NONE", 1, "Script[3].Filter.Address=5; ");
    row("Script[3].Filter.Address= ; ;5", 1, "Script[3].Filter.Address=5; ");
    row("Script[3].Filter.Address=;;5;;", 0, "Script[3].Filter.Address=5; ");
    row("Script[32].Filter.Address=5", 1);

    grown("ExecutiveTerminal[1].Expand=1", 0, "Expand=0", "Expand=1");
    grown("ExecutiveTerminal[2].Expand=1", 1);
    row("ExecutiveTerminal[0].Expand=0", 0, "ExecutiveTerminal[0].Expand=0");
    row("ExecutiveTerminal[0].Expand=2", 0, "ExecutiveTerminal[0].Expand=0");
    row("ExecutiveTerminal[0].Expand=x", 0, "ExecutiveTerminal[0].Expand=0");
    row("ExecutiveTerminal[0].Expand=-7", 0, "ExecutiveTerminal[0].Expand=0");
    row("ExecutiveTerminal[x].Expand=1", 1);
    row(".Expand=1", 1);

    row("ExecutiveTerminal[0].NumberOfOutputs=3", 0);
    row("ExecutiveTerminal[0].NumberOfOutputs=x", 1);
    row("ExecutiveTerminal[0].NumberOfOutputs=-2", 0);
    row("ExecutiveTerminal[0].NumberOfOutputs=-32768", 0);
    row("ExecutiveTerminal[1].NumberOfOutputs=1", 1);
    row("ExecutiveTerminal[x].NumberOfOutputs=1", 1);
    row(".NumberOfOutputs=1", 1);
    row("ExecutiveTerminal[0].NumberOfOutputs=9", 0,
        "ExecutiveTerminal[0].NumberOfOutputs=9|ExecutiveTerminal[0].Output[8].Name=|"
        "ExecutiveTerminal[0].Output[8].Number=-1|ExecutiveTerminal[0].Output[8].ReturnStartState=0|"
        "ExecutiveTerminal[0].Output[8].StartState=0|ExecutiveTerminal[0].Output[8].ActivatedScripts=NONE");

    row("ExecutiveTerminal[0].Output[0].Number=5", 0, "ExecutiveTerminal[0].Output[0].Number=5");
    row("ExecutiveTerminal[0].Output[0].Number=-2", 0, "ExecutiveTerminal[0].Output[0].Number=-2");
    row("ExecutiveTerminal[0].Output[0].Number=261", 0, "ExecutiveTerminal[0].Output[0].Number=5");
    row("ExecutiveTerminal[0].Output[0].Number=-1", 1);
    row("ExecutiveTerminal[0].Output[8].Number=5", 1);
    row("ExecutiveTerminal[1].Output[0].Number=5", 1);
    row("ExecutiveTerminal[0].Number=5", 0);
    row("ExecutiveTerminal[0].Number=x", 1);
    row("Script[3].Number=5", 0, "Script[3].Number=5");
    row("Script[3].Number=300", 0, "Script[3].Number=44");
    row("Script[3].Number=-7", 0, "Script[3].Number=249");
    row("Script[3].Number=-32768", 0, "Script[3].Number=0");
    row("Script[3].Number=x", 1);
    row("Script[32].Number=5", 1);
    row("Script[3].Numbers=5", 1);
    row("Script[3].Number.=5", 1);

    row("ExecutiveTerminal[0].Output[1].ReturnStartState=1", 0, "ExecutiveTerminal[0].Output[1].ReturnStartState=1");
    row("ExecutiveTerminal[0].Output[1].ReturnStartState=2", 0);
    row("ExecutiveTerminal[0].Output[1].ReturnStartState=x", 1);
    row("ExecutiveTerminal[0].Output[1].ReturnStartState=-2", 0);
    row("ExecutiveTerminal[0].Output[8].ReturnStartState=1", 1);
    row("ExecutiveTerminal[1].Output[0].ReturnStartState=1", 1);
    row("ExecutiveTerminal[0].ReturnStartState=1", 0);
    row(".ReturnStartState=x", 1);

    row("ExecutiveTerminal[0].Output[1].StartState=1", 0, "ExecutiveTerminal[0].Output[1].StartState=1");
    row("ExecutiveTerminal[0].Output[1].StartState=x", 1);
    row("ExecutiveTerminal[0].Output[1].StartState=-2", 0);
    row("ExecutiveTerminal[0].Output[1].StartState=-32768", 0);
    row("ExecutiveTerminal[0].Output[8].StartState=1", 1);
    row("ExecutiveTerminal[0].StartState=1", 0);
    row(".StartState=x", 1);

    row("ExecutiveTerminal[0].Output[1].ActivatedScripts=3; 0; 3; ", 0,
        "ExecutiveTerminal[0].Output[1].ActivatedScripts=3; 0; 3; ");
    row("ExecutiveTerminal[0].Output[1].ActivatedScripts=3|ExecutiveTerminal[0].Output[1].ActivatedScripts=NONE", 0);
    row("ExecutiveTerminal[0].Output[1].ActivatedScripts=3; 32; x; 4", 2,
        "ExecutiveTerminal[0].Output[1].ActivatedScripts=3; 4; ");
    row("ExecutiveTerminal[0].Output[1].ActivatedScripts=259", 0,
        "ExecutiveTerminal[0].Output[1].ActivatedScripts=3; ");
    row("ExecutiveTerminal[0].Output[1].ActivatedScripts=-2; -7; -32768", 2,
        "ExecutiveTerminal[0].Output[1].ActivatedScripts=0; "); // the low eight bits of the last one are 0
    row("ExecutiveTerminal[0].Output[8].ActivatedScripts=3", 1);
    row("ExecutiveTerminal[0].ActivatedScripts=3", 0);

    row("NumberOfScripts=7", 0);
    row("NumberOfScripts=-2", 0);
    row("NumberOfScripts=x", 1);

    row("Script[3].StateChannelNumber=2", 0, "Script[3].StateChannelNumber=2|Script[3].StateChannelValue=1");
    row("Script[3].StateChannelNumber=18", 0, "Script[3].StateChannelNumber=18|Script[3].StateChannelValue=129");
    row("Script[3].StateChannelNumber=24", 0, "Script[3].StateChannelNumber=24|Script[3].StateChannelValue=136");
    row("Script[3].StateChannelNumber=25", 0, "Script[3].StateChannelNumber=OTHER");
    row("Script[3].StateChannelNumber=OTHER", 0, "Script[3].StateChannelNumber=OTHER");
    row("Script[3].StateChannelNumber=-7", 0, "Script[3].StateChannelNumber=OTHER");
    row("Script[32].StateChannelNumber=2", 1);
    row("Script[x].StateChannelNumber=2", 0);

    row("Script[3].StateChannelValue=255", 0);
    row("Script[3].StateChannelValue=1", 0, "Script[3].StateChannelNumber=OTHER|Script[3].StateChannelValue=1");
    row("Script[3].StateChannelNumber=18|Script[3].StateChannelValue=129", 0,
        "Script[3].StateChannelNumber=18|Script[3].StateChannelValue=129");
    row("Script[3].StateChannelNumber=18|Script[3].StateChannelValue=255", 0,
        "Script[3].StateChannelNumber=18|Script[3].StateChannelValue=129"); // its own code agrees as well
    row("Script[3].StateChannelNumber=18|Script[3].StateChannelValue=5", 0,
        "Script[3].StateChannelNumber=OTHER|Script[3].StateChannelValue=5"); // neither of its codes
    row("Script[3].StateChannelNumber=18|Script[3].StateChannelValue=130", 0,
        "Script[3].StateChannelNumber=OTHER|Script[3].StateChannelValue=130"); // the code of its neighbour
    row("Script[3].StateChannelNumber=2|Script[3].StateChannelValue=1", 0,
        "Script[3].StateChannelNumber=2|Script[3].StateChannelValue=1");
    row("Script[3].StateChannelNumber=2|Script[3].StateChannelValue=3", 0,
        "Script[3].StateChannelNumber=OTHER|Script[3].StateChannelValue=3");
    row("Script[3].StateChannelValue=256", 1);
    row("Script[3].StateChannelValue=-2", 1);
    row("Script[3].StateChannelValue=-32768", 1);
    row("Script[3].StateChannelValue=x", 1);
    row("Script[32].StateChannelValue=1", 1);
    row("Script[x].StateChannelValue=1", 0);
    row("Script[x].StateChannelValue=x", 1);

    row("Script[3].NumberChannels=1; 3; ", 0, "Script[3].NumberChannels=1; 3; ");
    row("Script[3].NumberChannels=1|Script[3].NumberChannels=NONE", 0);
    row("Script[3].NumberChannels=4; -1; 2", 2, "Script[3].NumberChannels=2; ");
    row("Script[3].NumberChannels=x", 1);
    row("Script[32].NumberChannels=1", 1);

    row("Script[3].StateTerminal=66", 0, "Script[3].StateTerminal=66");
    row("Script[3].StateTerminal=255", 0, "Script[3].StateTerminal=126");
    row("Script[3].StateTerminal=129", 0);
    row("Script[3].StateTerminal=66|Script[3].StateTerminal=256", 1);
    row("Script[3].StateTerminal=66|Script[3].StateTerminal=x", 1);
    row("Script[3].StateTerminal=-1", 1);
    row("Script[3].StateTerminal=-2", 0, "Script[3].StateTerminal=126"); // the rows with a bit in common, as ever
    row("Script[3].StateTerminal=-7", 0, "Script[3].StateTerminal=120");
    row("Script[3].StateTerminal=-32768", 0);
    row("Script[32].StateTerminal=66", 1);
    row("Script[x].StateTerminal=x", 0);

    for (const auto& [key, known, unknown] : {std::tuple{"Mode", 7, 5}, {"Delay", 7, 8}, {"Duration", 31, 32}}) {
        const QByteArray prefix = "Script[3]." + QByteArray(key) + '=';
        const auto rowOf = [&prefix](const QByteArray& value, int errors, const QByteArray& expected) {
            QTest::newRow((prefix + value).constData()) << prefix + value << errors << expected;
        };
        rowOf(QByteArray::number(known), 0, prefix + QByteArray::number(known));
        rowOf(QByteArray::number(unknown), 0, {});
        rowOf("-3", 0, {});
        rowOf("-32768", 0, {});
        rowOf("x", 1, {});
        QTest::addRow("Script[32].%s", key) << "Script[32]." + QByteArray(key) + "=1" << 1 << QByteArray();
        QTest::addRow("Script[x].%s", key) << "Script[x]." + QByteArray(key) + "=1" << 0 << QByteArray();
        QTest::addRow("Script[x].%s, no number", key) << "Script[x]." + QByteArray(key) + "=x" << 1 << QByteArray();
    }
    for (const char* key : {"Type", "Address", "Date", "Time"}) {
        const QByteArray on = "Script[3].ActivateFilter" + QByteArray(key) + "=1";
        const QByteArray name = "Script[3].ActivateFilter" + QByteArray(key);
        QTest::newRow(on.constData()) << on << 0 << on;
        QTest::addRow("%s, another number", name.constData()) << on + '|' + name + "=2" << 0 << QByteArray();
        QTest::addRow("%s, no number", name.constData()) << on + '|' + name + "=x" << 0 << QByteArray();
        QTest::addRow("%s, out of range", name.constData())
            << QByteArray(on).replace("[3]", "[32]") << 1 << QByteArray();
    }
    row("Script[3].Filter.DaysOfWeek=0; 6; ", 0, "Script[3].Filter.DaysOfWeek=0; 6; ");
    row("Script[3].Filter.DaysOfWeek=7; -1; 2", 2, "Script[3].Filter.DaysOfWeek=2; ");
    row("Script[3].Filter.DaysOfWeek=2|Script[3].Filter.DaysOfWeek=NONE", 0);
    row("Script[32].Filter.DaysOfWeek=2", 1);

    // Days end at 30 and months at 11, which is meant so.
    for (const auto& [key, limit, reset] : {std::tuple{"MinuteOfBegin", 60, 0},
                                            {"HourOfBegin", 24, 0},
                                            {"MinuteOfEnd", 60, 0},
                                            {"HourOfEnd", 24, 0},
                                            {"DayOfBegin", 30, 1},
                                            {"MonthOfBegin", 11, 1},
                                            {"DayOfEnd", 30, 1},
                                            {"MonthOfEnd", 11, 1},
                                            {"Class", 15, 15},
                                            {"Version", 15, 0},
                                            {"Type", 255, 0},
                                            {"Characteristic", 255, 0}}) {
        const QByteArray prefix = "Script[3].Filter." + QByteArray(key) + '=';
        const auto rowOf = [&prefix](int value, int errors, const QByteArray& expected) {
            QTest::addRow("%s%d", prefix.constData(), value)
                << prefix + QByteArray::number(value) << errors << expected;
        };
        const int least = reset == 0 ? 1 : 0;
        rowOf(least, 0, prefix + QByteArray::number(least));
        rowOf(limit, 0, limit == reset ? QByteArray() : prefix + QByteArray::number(limit));
        rowOf(limit + 1, 1, {});
        rowOf(-1, 1, {});
        for (const int negative : {-2, -7, -32768}) {
            // Times and dates have room for it; the numbers of a type are bytes.
            const bool held = limit != 15 && limit != 255;
            rowOf(negative, held ? 0 : 1, held ? prefix + QByteArray::number(negative) : QByteArray());
        }
        QTest::addRow("%sx", prefix.constData()) << prefix + 'x' << 1 << QByteArray();
        QTest::addRow("%s, out of range", key) << QByteArray(prefix).replace("[3]", "[32]") + '1' << 1 << QByteArray();
        QTest::addRow("%s, no script", key) << QByteArray(prefix).replace("[3]", "[x]") + "999" << 0 << QByteArray();
        QTest::addRow("%s, no script and no number", key)
            << QByteArray(prefix).replace("[3]", "[x]") + 'x' << 1 << QByteArray();
    }

    // Of two fragments in a key the one that stands first in the table decides.
    row("Script[3].Mode.Name=1", 0, "Script[3].Name=1");
    row("Script[3].Class.Mode=1", 0, "Script[3].Mode=1");
    row("Script[3].Type.Class=1", 0, "Script[3].Filter.Class=1");
    row("Script[3].Mode.Number=5", 0, "Script[3].Number=5");
    row("Script[3].Number.Mode=1", 0, "Script[3].Mode=1"); // ".Number" must be the end
}

void tst_ConfigurationFileKeys::keys()
{
    QFETCH(QByteArray, text);
    QCOMPARE(load(text.replace("|", "\r\n") + "\r\n"), 0);
    QTEST(model->errorCount(), "errors");
    QTEST(changes().join('|'), "expected");
}

void tst_ConfigurationFileKeys::startStateBeyondTheTableLeavesNone()
{
    QCOMPARE(load("ExecutiveTerminal[0].Output[1].StartState=5\r\n"), 0);
    QCOMPARE(model->errorCount(), 0);
    QVERIFY(!model->findOutput(0, 1)->startState);
    QVERIFY(changes().isEmpty()); // it is written with the state 0
    QCOMPARE(model->makeOutputRecords().at(1), QByteArray::fromHex("00 01 00"));
}

void tst_ConfigurationFileKeys::unknownStateBecomesAPrivateRow()
{
    QCOMPARE(load("Script[3].StateChannelNumber=OTHER\r\nScript[3].StateChannelValue=85\r\n"), 0);
    const ParamItemPtr state = model->findScript(3)->stateChannel;
    QCOMPARE(state->name, s("<Other>"));
    QCOMPARE(int(state->code), 85);
    QVERIFY(!state->linked);
}

void tst_ConfigurationFileKeys::stateValueThatDisagreesBecomesAPrivateRow()
{
    QCOMPARE(load("Script[3].StateChannelNumber=2\r\nScript[3].StateChannelValue=3\r\n"), 0);
    QCOMPARE(model->errorCount(), 0);
    QCOMPARE(model->findScript(3)->stateChannel->name, s("<Other>"));
    QCOMPARE(int(model->stateChannels().value(2)->code), 1); // the row of the table is as it was
}

void tst_ConfigurationFileKeys::typeFilterNumbersGoIntoTheScriptsOwnRecord()
{
    RandomModel::addTerminalTypes(*model);
    model->findScript(3)->terminalFilter = model->terminalTypes().value(3);
    QCOMPARE(load("Script[3].Filter.Class=2\r\nScript[3].Filter.Version=1\r\n"
                  "Script[3].Filter.Type=65\r\nScript[3].Filter.Characteristic=32\r\n"),
             0);
    const TerminalTypePtr filter = model->findScript(3)->terminalFilter;
    QCOMPARE(filter->label, s("<other type>"));
    QVERIFY(!model->terminalTypes().contains(filter));
    QVERIFY(sameModel(*filter, *model->terminalTypes().value(3)));
}

void tst_ConfigurationFileKeys::activatedScriptsGoByResetNumbers()
{
    QCOMPARE(load("ExecutiveTerminal[0].Output[0].ActivatedScripts=5\r\nScript[7].Number=5\r\nScript[5].Number=9\r\n"),
             0);
    QCOMPARE(model->findOutput(0, 0)->activatedScripts, QList<ScriptInfoPtr>{model->scripts().at(5)});
}

void tst_ConfigurationFileKeys::triggerFlagFollowsTheFile_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("notActive");

    QTest::newRow("nothing") << QByteArray("Script[3].Mode=1\r\n") << true;
    QTest::newRow("a state") << QByteArray("Script[3].StateChannelNumber=1\r\n") << false;
    QTest::newRow("a linked state") << QByteArray("Script[3].StateChannelNumber=17\r\n") << false;
    QTest::newRow("a private state") << QByteArray("Script[3].StateChannelValue=77\r\n") << false;
    QTest::newRow("a private state 255") << QByteArray("Script[3].StateChannelNumber=OTHER\r\n") << true;
    QTest::newRow("a terminal state") << QByteArray("Script[3].StateTerminal=64\r\n") << false;
    QTest::newRow("terminal states without a row") << QByteArray("Script[3].StateTerminal=129\r\n") << true;
}

void tst_ConfigurationFileKeys::triggerFlagFollowsTheFile()
{
    QFETCH(QByteArray, text);
    model->findScript(3)->notActive = false;
    QCOMPARE(load(text), 0);
    QTEST(model->findScript(3)->notActive, "notActive");
}

void tst_ConfigurationFileKeys::groupsKeepTheOrderOfTheFile()
{
    QCOMPARE(load("NumberOfDevices=3\r\nExecutiveTerminal[1].Address=9\r\nExecutiveTerminal[2].Address=4\r\n"), 0);
    QCOMPARE(int(model->groups().at(1)->address), 9);
    QCOMPARE(int(model->groups().at(2)->address), 4);
}

void tst_ConfigurationFileKeys::connectedIsTheHeadUnitAlone()
{
    model->readTerminalRecords({QByteArray::fromHex("0521412000000000")});
    QCOMPARE(load("NumberOfDevices=2\r\nExecutiveTerminal[1].Address=5\r\n"), 0);
    QVERIFY(model->groups().at(0)->connected);
    QVERIFY(!model->groups().at(1)->connected);
    QCOMPARE(model->connectedTerminals().size(), 1); // the unit's list isn't in the file and stays
}

void tst_ConfigurationFileKeys::indexesEndAt99()
{
    QCOMPARE(load("NumberOfDevices=120\r\nExecutiveTerminal[99].Name=A\r\nExecutiveTerminal[105].Name=B\r\n"), 0);
    QCOMPARE(model->errorCount(), 0);
    QCOMPARE(model->groups().size(), 120);
    QCOMPARE(model->groups().at(99)->name, s("A"));
    QCOMPARE(model->groups().at(10)->name, s("B")); // only two characters count
    QVERIFY(model->groups().at(105)->name.isEmpty());
}

void tst_ConfigurationFileKeys::blankGroupsAreBounded()
{
    QCOMPARE(load("NumberOfDevices=2147483647\r\n"), 0);
    QCOMPARE(model->errorCount(), 1);
    QCOMPARE(model->groups().size(), 1);
    QByteArray text;
    for (int i = 0; i < 1000; ++i) {
        text += "NumberOfDevices=1000\r\n";
    }
    QCOMPARE(load(text), 0);
    QVERIFY(model->groups().size() <= 4096);
    QVERIFY(model->errorCount() > 0);
}

void tst_ConfigurationFileKeys::outputsAreBounded()
{
    QCOMPARE(load("ExecutiveTerminal[0].NumberOfOutputs=2147483647\r\n"), 0);
    QCOMPARE(model->errorCount(), 1);
    QCOMPARE(model->groups().constFirst()->outputs.size(), 8);
    QCOMPARE(load("ExecutiveTerminal[0].NumberOfOutputs=256\r\n"), 0);
    QCOMPARE(model->errorCount(), 0);
    QCOMPARE(model->groups().constFirst()->outputs.size(), 256);
}

void tst_ConfigurationFileKeys::scriptsOfAnOutputAreBounded()
{
    QByteArray list;
    for (int i = 0; i < 1000; ++i) {
        list += "1; ";
    }
    QCOMPARE(load("ExecutiveTerminal[0].Output[0].ActivatedScripts=" + list + "\r\n"), 0);
    QCOMPARE(model->findOutput(0, 0)->activatedScripts.size(), 256);
    QCOMPARE(model->errorCount(), 1000 - 256);
}

QTEST_GUILESS_MAIN(tst_ConfigurationFileKeys)
#include "tst_ConfigurationFileKeys.moc"
