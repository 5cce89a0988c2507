#include "model/ConfigurationFileTest.h"
#include "model/ScriptRules.h"
#include "support/RandomModel.h"

#include <QDir>

using EditFunction = void (*)(RelayInfo&, ScriptInfo&);

/// A change to a reset model and to one of its scripts.
struct Edit
{
    EditFunction apply = nullptr;
};
Q_DECLARE_METATYPE(Edit)

namespace
{

/// What one unchanged script adds to a file.
QByteArray defaultScript(int index)
{
    QByteArray text;
    for (const char* line : {"Name=Script",
                             "Number=#",
                             "StateChannelNumber=0",
                             "StateChannelValue=255",
                             "NumberChannels=0; ",
                             "StateTerminal=0",
                             "Mode=0",
                             "Delay=0",
                             "Duration=0",
                             "ActivateFilterType=0",
                             "ActivateFilterAddress=0",
                             "ActivateFilterDate=0",
                             "ActivateFilterTime=0",
                             "Filter.DaysOfWeek=NONE",
                             "Filter.MinuteOfBegin=0",
                             "Filter.HourOfBegin=0",
                             "Filter.DayOfBegin=1",
                             "Filter.MonthOfBegin=1",
                             "Filter.MinuteOfEnd=0",
                             "Filter.HourOfEnd=0",
                             "Filter.DayOfEnd=1",
                             "Filter.MonthOfEnd=1",
                             "Filter.Class=15",
                             "Filter.Version=0",
                             "Filter.Type=0",
                             "Filter.Characteristic=0",
                             "Filter.Address=NONE"}) {
        text += "Script[" + QByteArray::number(index) + "]." +
                QByteArray(line).replace('#', QByteArray::number(index)) + "\r\n";
    }
    return text;
}

QByteArray defaultScripts()
{
    QByteArray text = "\r\n[Scripts]\r\nNumberOfScripts=32\r\n";
    for (int i = 0; i < 32; ++i) {
        text += defaultScript(i);
    }
    return text;
}

QByteArray defaultHeadUnit()
{
    QByteArray text = "ExecutiveTerminal[0].Name=HUBN-NX-Q\r\n"
                      "ExecutiveTerminal[0].Address=0\r\n"
                      "ExecutiveTerminal[0].Expand=1\r\n"
                      "ExecutiveTerminal[0].NumberOfOutputs=8\r\n";
    for (int i = 0; i < 8; ++i) {
        const QByteArray number = QByteArray::number(i);
        for (const QByteArray& line :
             {QByteArray("Name=Internal relay"), "Number=" + number, QByteArray("ReturnStartState=0"),
              QByteArray("StartState=0"), QByteArray("ActivatedScripts=NONE")}) {
            text += "ExecutiveTerminal[0].Output[" + number + "]." + line + "\r\n";
        }
    }
    return text;
}

} // namespace

/// What is written, to the byte.
class tst_ConfigurationFileWriting : public ConfigurationFileTest
{
    Q_OBJECT

private slots:
    void init()
    {
        begin();
    }

    void resetModelIsWrittenToTheByte();
    void terminalIsWrittenAsInItsExample();
    void writtenLines_data();
    void writtenLines();
    void lineFeedOfTheCommentBecomesCarriageReturnAndLineFeed();
    void lineEndInANameBecomesABlank();
    void nulIsNotWritten();
    void textIsUtf8WithoutMark();
    void savingReplacesTheOldFile();
    void savingWhereNothingCanBeWrittenYieldsOne();
};

void tst_ConfigurationFileWriting::resetModelIsWrittenToTheByte()
{
    QCOMPARE(save(*model),
             "[Comment]\r\n\r\n\r\n[Configuration]\r\nNumberOfDevices=1\r\n" + defaultHeadUnit() + defaultScripts());
}

void tst_ConfigurationFileWriting::terminalIsWrittenAsInItsExample()
{
    model->setComment(s("Hall, floor 2"));
    const GroupRelayPtr group = model->addGroup(s("Haldeon-NX"), 5);
    group->expand = false;
    model->addOutput(group, s("Output"));
    model->addOutput(group, s("Output"));
    RelayInformation& output = *group->outputs.at(1);
    output.returnStartState = true;
    output.startState = model->outputStates().value(1);
    output.activatedScripts = {model->findScript(0), model->findScript(3)};
    QCOMPARE(save(*model), "[Comment]\r\nHall, floor 2\r\n\r\n[Configuration]\r\nNumberOfDevices=2\r\n" +
                               defaultHeadUnit() +
                               "ExecutiveTerminal[1].Name=Haldeon-NX\r\n"
                               "ExecutiveTerminal[1].Address=5\r\n"
                               "ExecutiveTerminal[1].Expand=0\r\n"
                               "ExecutiveTerminal[1].NumberOfOutputs=2\r\n"
                               "ExecutiveTerminal[1].Output[0].Name=Output\r\n"
                               "ExecutiveTerminal[1].Output[0].Number=0\r\n"
                               "ExecutiveTerminal[1].Output[0].ReturnStartState=0\r\n"
                               "ExecutiveTerminal[1].Output[0].StartState=0\r\n"
                               "ExecutiveTerminal[1].Output[0].ActivatedScripts=NONE\r\n"
                               "ExecutiveTerminal[1].Output[1].Name=Output\r\n"
                               "ExecutiveTerminal[1].Output[1].Number=1\r\n"
                               "ExecutiveTerminal[1].Output[1].ReturnStartState=1\r\n"
                               "ExecutiveTerminal[1].Output[1].StartState=1\r\n"
                               "ExecutiveTerminal[1].Output[1].ActivatedScripts=0; 3; \r\n" +
                               defaultScripts());
}

void tst_ConfigurationFileWriting::writtenLines_data()
{
    QTest::addColumn<Edit>("edit");
    QTest::addColumn<QByteArray>("expected"); // the changed lines of script 2 and of the head unit, joined by "|"

    const auto row = [](const char* name, const char* expected, EditFunction edit) {
        QTest::newRow(name) << Edit{edit} << QByteArray(expected);
    };
    row("name", "Script[2].Name=A=B", [](RelayInfo&, ScriptInfo& script) { script.name = s("A=B"); });
    row("number", "Script[2].Number=77", [](RelayInfo&, ScriptInfo& script) { script.number = 77; });
    row("plain state", "Script[2].StateChannelNumber=2|Script[2].StateChannelValue=1",
        [](RelayInfo& info, ScriptInfo& script) { script.stateChannel = info.stateChannels().value(2); });
    row("linked state", "Script[2].StateChannelNumber=18|Script[2].StateChannelValue=129",
        [](RelayInfo& info, ScriptInfo& script) { script.stateChannel = info.stateChannels().value(18); });
    row("data corrupted, the second", "Script[2].StateChannelNumber=14|Script[2].StateChannelValue=9",
        [](RelayInfo& info, ScriptInfo& script) { script.stateChannel = info.stateChannels().value(14); });
    row("private state", "Script[2].StateChannelNumber=OTHER|Script[2].StateChannelValue=85",
        [](RelayInfo&, ScriptInfo& script) { script.stateChannel = scriptRules::makeOtherState(0x55); });
    row("no state", "Script[2].StateChannelNumber=OTHER",
        [](RelayInfo&, ScriptInfo& script) { script.stateChannel.reset(); });
    row("channels", "Script[2].NumberChannels=0; 2; 3; ", [](RelayInfo&, ScriptInfo& script) {
        script.numberChannels = {true, false, true, true};
    });
    row("no channels", "Script[2].NumberChannels=NONE",
        [](RelayInfo&, ScriptInfo& script) { script.numberChannels.clear(); });
    row("terminal states", "Script[2].StateTerminal=66", [](RelayInfo& info, ScriptInfo& script) {
        script.stateTerminal = {info.terminalStates().value(0), info.terminalStates().value(5)};
    });
    row("mode", "Script[2].Mode=7", [](RelayInfo& info, ScriptInfo& script) { script.mode = info.modes().value(4); });
    row("delay", "Script[2].Delay=7",
        [](RelayInfo& info, ScriptInfo& script) { script.delay = info.delays().value(7); });
    row("duration", "Script[2].Duration=31",
        [](RelayInfo& info, ScriptInfo& script) { script.duration = info.durations().value(31); });
    row("rows that are missing", "", [](RelayInfo&, ScriptInfo& script) {
        script.mode.reset();
        script.delay.reset();
        script.duration.reset();
        script.terminalFilter.reset();
    });
    row("filter by type", "Script[2].ActivateFilterType=1",
        [](RelayInfo&, ScriptInfo& script) { script.activateFilter[0] = true; });
    row("filter by address", "Script[2].ActivateFilterAddress=1",
        [](RelayInfo&, ScriptInfo& script) { script.activateFilter[1] = true; });
    row("filter by time", "Script[2].ActivateFilterTime=1",
        [](RelayInfo&, ScriptInfo& script) { script.activateFilter[2] = true; });
    row("filter by date", "Script[2].ActivateFilterDate=1",
        [](RelayInfo&, ScriptInfo& script) { script.activateFilter[3] = true; });
    row("days", "Script[2].Filter.DaysOfWeek=0; 6; ", [](RelayInfo&, ScriptInfo& script) {
        script.daysOfWeek[0] = true;
        script.daysOfWeek[6] = true;
    });
    row("times",
        "Script[2].Filter.MinuteOfBegin=1|Script[2].Filter.HourOfBegin=2|Script[2].Filter.MinuteOfEnd=3|"
        "Script[2].Filter.HourOfEnd=4",
        [](RelayInfo&, ScriptInfo& script) {
            script.timeFilter = {1, 2, 3, 4};
        });
    row("dates",
        "Script[2].Filter.DayOfBegin=31|Script[2].Filter.MonthOfBegin=12|Script[2].Filter.DayOfEnd=3|"
        "Script[2].Filter.MonthOfEnd=4",
        [](RelayInfo&, ScriptInfo& script) {
            script.dateFilter = {31, 12, 3, 4};
        });
    row("type filter",
        "Script[2].Filter.Class=2|Script[2].Filter.Version=1|Script[2].Filter.Type=65|"
        "Script[2].Filter.Characteristic=32",
        [](RelayInfo& info, ScriptInfo& script) {
            RandomModel::addTerminalTypes(info);
            script.terminalFilter = info.terminalTypes().value(3);
        });
    row("addresses", "Script[2].Filter.Address=0; 31; ", [](RelayInfo&, ScriptInfo& script) {
        script.addressFilter[0] = true;
        script.addressFilter[31] = true;
    });
    row("name of the head unit", "ExecutiveTerminal[0].Name=Büro",
        [](RelayInfo& info, ScriptInfo&) { info.groups().constFirst()->name = s("Büro"); });
    row("signed address", "ExecutiveTerminal[0].Address=-128",
        [](RelayInfo& info, ScriptInfo&) { info.groups().constFirst()->address = 0xFF80; });
    row("closed node", "ExecutiveTerminal[0].Expand=0",
        [](RelayInfo& info, ScriptInfo&) { info.groups().constFirst()->expand = false; });
    row("output without a number", "ExecutiveTerminal[0].Output[2].Number=-1",
        [](RelayInfo& info, ScriptInfo&) { info.findOutput(0, 2)->number = 255; });
    row("output without a start state", "ExecutiveTerminal[0].Output[2].ReturnStartState=1",
        [](RelayInfo& info, ScriptInfo&) {
            info.findOutput(0, 2)->startState.reset();
            info.findOutput(0, 2)->returnStartState = true;
        });
    row("output on", "ExecutiveTerminal[0].Output[7].StartState=1",
        [](RelayInfo& info, ScriptInfo&) { info.findOutput(0, 7)->startState = info.outputStates().value(1); });
}

void tst_ConfigurationFileWriting::writtenLines()
{
    QFETCH(Edit, edit);
    edit.apply(*model, *model->findScript(2));
    QTEST(changes().join('|'), "expected");
}

void tst_ConfigurationFileWriting::lineFeedOfTheCommentBecomesCarriageReturnAndLineFeed()
{
    model->setComment(s("one\n\ntwo\n"));
    QVERIFY(save(*model).startsWith("[Comment]\r\none\r\n\r\ntwo\r\n\r\n\r\n[Configuration]\r\n"));
}

void tst_ConfigurationFileWriting::lineEndInANameBecomesABlank()
{
    model->findScript(2)->name = s("A\r\n[Comment]\r\nB");
    model->groups().constFirst()->name = s("C\r\nD");
    model->findOutput(0, 0)->name = s("E\nF");
    QCOMPARE(changes().join('|'), QByteArray("ExecutiveTerminal[0].Name=C D|ExecutiveTerminal[0].Output[0].Name=E\nF|"
                                             "Script[2].Name=A [Comment] B"));
}

void tst_ConfigurationFileWriting::nulIsNotWritten()
{
    model->findScript(2)->name = QString(s("A")) + QChar(0) + s("B");
    QCOMPARE(changes().join('|'), QByteArray("Script[2].Name=AB"));
}

void tst_ConfigurationFileWriting::textIsUtf8WithoutMark()
{
    model->findScript(2)->name = s("Пожар 日本 🔥");
    const QByteArray text = save(*model);
    QVERIFY(text.startsWith("[Comment]"));
    QVERIFY(text.contains("Script[2].Name=Пожар 日本 🔥\r\n"));
}

void tst_ConfigurationFileWriting::savingReplacesTheOldFile()
{
    const QString path = directory->filePath(s("a.cfg"));
    model->setComment(QString(100000, QLatin1Char('x')));
    QCOMPARE(model->saveToFile(path), 0);
    model->setComment({});
    QCOMPARE(model->saveToFile(path), 0);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), save(*model));
    QCOMPARE(QDir(directory->path()).entryList(QDir::Files), (QStringList{s("a.cfg"), s("saved.cfg")}));
}

void tst_ConfigurationFileWriting::savingWhereNothingCanBeWrittenYieldsOne()
{
    QCOMPARE(model->saveToFile(directory->filePath(s("missing/a.cfg"))), 1);
    QCOMPARE(model->saveToFile(directory->path()), 1);
    QCOMPARE(model->saveToFile({}), 1);
}

QTEST_GUILESS_MAIN(tst_ConfigurationFileWriting)
#include "tst_ConfigurationFileWriting.moc"
