#include "model/RelayInfo.h"
#include "model/ScriptRules.h"
#include "support/ModelInvariants.h"
#include "support/RandomModel.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <tuple>

using EditFunction = void (*)(RelayInfo&, ScriptInfo&);

/// A change to a reset model and to one of its scripts.
struct Edit
{
    EditFunction apply = nullptr;
};
Q_DECLARE_METATYPE(Edit)

namespace
{

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

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

QList<QByteArray> linesOf(const QByteArray& text)
{
    QList<QByteArray> lines;
    for (int from = 0; from < text.size();) {
        int end = text.indexOf("\r\n", from);
        end = end < 0 ? text.size() : end;
        lines.append(text.mid(from, end - from));
        from = end + 2;
    }
    return lines;
}

} // namespace

/// The configuration file: what is written, to the byte, and what the reader makes of every key and every bad line.
class tst_ConfigurationFile : public QObject
{
    Q_OBJECT

private slots:
    void init();

    // Writer.
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

    // Results of loading.
    void missingFileYieldsThreeAndLeavesTheModel();
    void directoryYieldsTwoAndLeavesTheModel();
    void emptyFileIsAResetModel();
    void loadingAgainCountsErrorsAnew();

    // Keys.
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

    // Comment and sections.
    void comments_data();
    void comments();
    void keysAreTakenWhereverTheyStand();
    void byteOrderMarkIsSkipped();
    void byteOrderMarkOfAnotherEncodingCounts();
    void textBehindANulIsLost();
    void fileOfLineFeedsIsOneLine();
    void nextLoadForgetsTheFormerFile();

    // Round trips.
    void randomModelsComeBack();
    void loadingTwiceIsLoadingOnce();
    void nameWithEqualSignIsCut();
    void nameIsTrimmed();
    void emptyNameCountsAnError();
    void address65535CannotBeRead();
    void moreThanHundredGroupsOverwriteEachOther();

private:
    /// Loads a text; returns the result.
    int load(const QByteArray& text);
    QByteArray save(const RelayInfo& from);

    /// The lines that the model is saved with and that a reset model is not.
    QList<QByteArray> changes();

    std::unique_ptr<QTemporaryDir> directory;
    std::unique_ptr<RelayInfo> model;
};

void tst_ConfigurationFile::init()
{
    directory = std::make_unique<QTemporaryDir>();
    QVERIFY(directory->isValid());
    model = std::make_unique<RelayInfo>();
}

int tst_ConfigurationFile::load(const QByteArray& text)
{
    QFile file(directory->filePath(s("loaded.cfg")));
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) {
        return -1;
    }
    file.close();
    return model->loadFromFile(file.fileName());
}

QByteArray tst_ConfigurationFile::save(const RelayInfo& from)
{
    QFile file(directory->filePath(s("saved.cfg")));
    const bool saved = from.saveToFile(file.fileName()) == 0 && file.open(QIODevice::ReadOnly);
    return saved ? file.readAll() : QByteArray();
}

QList<QByteArray> tst_ConfigurationFile::changes()
{
    const QList<QByteArray> usual = linesOf(save(RelayInfo()));
    QList<QByteArray> lines;
    const QList<QByteArray> saved = linesOf(save(*model));
    for (const QByteArray& line : saved) {
        if (!usual.contains(line)) {
            lines.append(line);
        }
    }
    return lines;
}

void tst_ConfigurationFile::resetModelIsWrittenToTheByte()
{
    QCOMPARE(save(*model),
             "[Comment]\r\n\r\n\r\n[Configuration]\r\nNumberOfDevices=1\r\n" + defaultHeadUnit() + defaultScripts());
}

void tst_ConfigurationFile::terminalIsWrittenAsInItsExample()
{
    model->setComment(s("Hall, floor 2"));
    const GroupRelayPtr group = model->addGroup(s("Haldeon-NX"), 5);
    group->expand = false;
    model->addOutput(group, s("Output"));
    model->addOutput(group, s("Output"));
    RelayInformation& output = *group->outputs.at(1);
    output.returnStartState = true;
    output.startState = model->outputStateAt(1);
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

void tst_ConfigurationFile::writtenLines_data()
{
    QTest::addColumn<Edit>("edit");
    QTest::addColumn<QByteArray>("expected"); // the changed lines of script 2 and of the head unit, joined by "|"

    const auto row = [](const char* name, const char* expected, EditFunction edit) {
        QTest::newRow(name) << Edit{edit} << QByteArray(expected);
    };
    row("name", "Script[2].Name=A=B", [](RelayInfo&, ScriptInfo& script) { script.name = s("A=B"); });
    row("number", "Script[2].Number=77", [](RelayInfo&, ScriptInfo& script) { script.number = 77; });
    row("plain state", "Script[2].StateChannelNumber=2|Script[2].StateChannelValue=1",
        [](RelayInfo& info, ScriptInfo& script) { script.stateChannel = info.stateChannelAt(2); });
    row("linked state", "Script[2].StateChannelNumber=18|Script[2].StateChannelValue=129",
        [](RelayInfo& info, ScriptInfo& script) { script.stateChannel = info.stateChannelAt(18); });
    row("data corrupted, the second", "Script[2].StateChannelNumber=14|Script[2].StateChannelValue=9",
        [](RelayInfo& info, ScriptInfo& script) { script.stateChannel = info.stateChannelAt(14); });
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
        script.stateTerminal = {info.terminalStateAt(0), info.terminalStateAt(5)};
    });
    row("mode", "Script[2].Mode=7", [](RelayInfo& info, ScriptInfo& script) { script.mode = info.modeAt(4); });
    row("delay", "Script[2].Delay=7", [](RelayInfo& info, ScriptInfo& script) { script.delay = info.delayAt(7); });
    row("duration", "Script[2].Duration=31",
        [](RelayInfo& info, ScriptInfo& script) { script.duration = info.durationAt(31); });
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
            script.terminalFilter = info.terminalTypeAt(3);
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
        [](RelayInfo& info, ScriptInfo&) { info.findOutput(0, 7)->startState = info.outputStateAt(1); });
}

void tst_ConfigurationFile::writtenLines()
{
    QFETCH(Edit, edit);
    edit.apply(*model, *model->findScript(2));
    QTEST(changes().join('|'), "expected");
}

void tst_ConfigurationFile::lineFeedOfTheCommentBecomesCarriageReturnAndLineFeed()
{
    model->setComment(s("one\n\ntwo\n"));
    QVERIFY(save(*model).startsWith("[Comment]\r\none\r\n\r\ntwo\r\n\r\n\r\n[Configuration]\r\n"));
}

void tst_ConfigurationFile::lineEndInANameBecomesABlank()
{
    model->findScript(2)->name = s("A\r\n[Comment]\r\nB");
    model->groups().constFirst()->name = s("C\r\nD");
    model->findOutput(0, 0)->name = s("E\nF");
    QCOMPARE(changes().join('|'), QByteArray("ExecutiveTerminal[0].Name=C D|ExecutiveTerminal[0].Output[0].Name=E\nF|"
                                             "Script[2].Name=A [Comment] B"));
}

void tst_ConfigurationFile::nulIsNotWritten()
{
    model->findScript(2)->name = QString(s("A")) + QChar(0) + s("B");
    QCOMPARE(changes().join('|'), QByteArray("Script[2].Name=AB"));
}

void tst_ConfigurationFile::textIsUtf8WithoutMark()
{
    model->findScript(2)->name = s("Пожар 日本 🔥");
    const QByteArray text = save(*model);
    QVERIFY(text.startsWith("[Comment]"));
    QVERIFY(text.contains("Script[2].Name=Пожар 日本 🔥\r\n"));
}

void tst_ConfigurationFile::savingReplacesTheOldFile()
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

void tst_ConfigurationFile::savingWhereNothingCanBeWrittenYieldsOne()
{
    QCOMPARE(model->saveToFile(directory->filePath(s("missing/a.cfg"))), 1);
    QCOMPARE(model->saveToFile(directory->path()), 1);
    QCOMPARE(model->saveToFile({}), 1);
}

void tst_ConfigurationFile::missingFileYieldsThreeAndLeavesTheModel()
{
    model->setComment(s("mine"));
    model->findScript(0)->name = s("Fire");
    const QByteArray before = save(*model);
    QCOMPARE(model->loadFromFile(directory->filePath(s("missing.cfg"))), 3);
    QCOMPARE(model->errorCount(), 0);
    QCOMPARE(save(*model), before);
}

void tst_ConfigurationFile::directoryYieldsTwoAndLeavesTheModel()
{
    model->addGroup(s("Siren"), 5);
    const QByteArray before = save(*model);
    QCOMPARE(model->loadFromFile(directory->path()), 2);
    QCOMPARE(save(*model), before);
}

void tst_ConfigurationFile::emptyFileIsAResetModel()
{
    model->setComment(s("mine"));
    model->addGroup(s("Siren"), 5);
    model->findScript(0)->name = s("Fire");
    QCOMPARE(load({}), 0);
    QCOMPARE(model->errorCount(), 0);
    QCOMPARE(save(*model), save(RelayInfo()));
    QVERIFY(model->groups().constFirst()->connected);
}

void tst_ConfigurationFile::loadingAgainCountsErrorsAnew()
{
    QCOMPARE(load("x=1\r\ny=1\r\n"), 0);
    QCOMPARE(model->errorCount(), 2);
    QCOMPARE(load("x=1\r\n"), 0);
    QCOMPARE(model->errorCount(), 1);
    QCOMPARE(model->loadFromFile(directory->filePath(s("missing.cfg"))), 3);
    QCOMPARE(model->errorCount(), 0);
}

void tst_ConfigurationFile::keys_data()
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

void tst_ConfigurationFile::keys()
{
    QFETCH(QByteArray, text);
    QCOMPARE(load(text.replace("|", "\r\n") + "\r\n"), 0);
    QTEST(model->errorCount(), "errors");
    QTEST(changes().join('|'), "expected");
}

void tst_ConfigurationFile::startStateBeyondTheTableLeavesNone()
{
    QCOMPARE(load("ExecutiveTerminal[0].Output[1].StartState=5\r\n"), 0);
    QCOMPARE(model->errorCount(), 0);
    QVERIFY(!model->findOutput(0, 1)->startState);
    QVERIFY(changes().isEmpty()); // it is written with the state 0
    QCOMPARE(model->makeOutputRecords().at(1), QByteArray::fromHex("00 01 00"));
}

void tst_ConfigurationFile::unknownStateBecomesAPrivateRow()
{
    QCOMPARE(load("Script[3].StateChannelNumber=OTHER\r\nScript[3].StateChannelValue=85\r\n"), 0);
    const ParamItemPtr state = model->findScript(3)->stateChannel;
    QCOMPARE(state->name, s("<Other>"));
    QCOMPARE(int(state->code), 85);
    QVERIFY(!state->linked);
}

void tst_ConfigurationFile::stateValueThatDisagreesBecomesAPrivateRow()
{
    QCOMPARE(load("Script[3].StateChannelNumber=2\r\nScript[3].StateChannelValue=3\r\n"), 0);
    QCOMPARE(model->errorCount(), 0);
    QCOMPARE(model->findScript(3)->stateChannel->name, s("<Other>"));
    QCOMPARE(int(model->stateChannelAt(2)->code), 1); // the row of the table is as it was
}

void tst_ConfigurationFile::typeFilterNumbersGoIntoTheScriptsOwnRecord()
{
    RandomModel::addTerminalTypes(*model);
    model->findScript(3)->terminalFilter = model->terminalTypeAt(3);
    QCOMPARE(load("Script[3].Filter.Class=2\r\nScript[3].Filter.Version=1\r\n"
                  "Script[3].Filter.Type=65\r\nScript[3].Filter.Characteristic=32\r\n"),
             0);
    const TerminalTypePtr filter = model->findScript(3)->terminalFilter;
    QCOMPARE(filter->label, s("<other type>"));
    QVERIFY(!model->terminalTypes().contains(filter));
    QVERIFY(sameModel(*filter, *model->terminalTypeAt(3)));
}

void tst_ConfigurationFile::activatedScriptsGoByResetNumbers()
{
    QCOMPARE(load("ExecutiveTerminal[0].Output[0].ActivatedScripts=5\r\nScript[7].Number=5\r\nScript[5].Number=9\r\n"),
             0);
    QCOMPARE(model->findOutput(0, 0)->activatedScripts, QList<ScriptInfoPtr>{model->scripts().at(5)});
}

void tst_ConfigurationFile::triggerFlagFollowsTheFile_data()
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

void tst_ConfigurationFile::triggerFlagFollowsTheFile()
{
    QFETCH(QByteArray, text);
    model->findScript(3)->notActive = false;
    QCOMPARE(load(text), 0);
    QTEST(model->findScript(3)->notActive, "notActive");
}

void tst_ConfigurationFile::groupsKeepTheOrderOfTheFile()
{
    QCOMPARE(load("NumberOfDevices=3\r\nExecutiveTerminal[1].Address=9\r\nExecutiveTerminal[2].Address=4\r\n"), 0);
    QCOMPARE(int(model->groups().at(1)->address), 9);
    QCOMPARE(int(model->groups().at(2)->address), 4);
}

void tst_ConfigurationFile::connectedIsTheHeadUnitAlone()
{
    model->readTerminalRecords({QByteArray::fromHex("0521412000000000")});
    QCOMPARE(load("NumberOfDevices=2\r\nExecutiveTerminal[1].Address=5\r\n"), 0);
    QVERIFY(model->groups().at(0)->connected);
    QVERIFY(!model->groups().at(1)->connected);
    QCOMPARE(model->connectedTerminals().size(), 1); // the unit's list isn't in the file and stays
}

void tst_ConfigurationFile::indexesEndAt99()
{
    QCOMPARE(load("NumberOfDevices=120\r\nExecutiveTerminal[99].Name=A\r\nExecutiveTerminal[105].Name=B\r\n"), 0);
    QCOMPARE(model->errorCount(), 0);
    QCOMPARE(model->groups().size(), 120);
    QCOMPARE(model->groups().at(99)->name, s("A"));
    QCOMPARE(model->groups().at(10)->name, s("B")); // only two characters count
    QVERIFY(model->groups().at(105)->name.isEmpty());
}

void tst_ConfigurationFile::blankGroupsAreBounded()
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

void tst_ConfigurationFile::outputsAreBounded()
{
    QCOMPARE(load("ExecutiveTerminal[0].NumberOfOutputs=2147483647\r\n"), 0);
    QCOMPARE(model->errorCount(), 1);
    QCOMPARE(model->groups().constFirst()->outputs.size(), 8);
    QCOMPARE(load("ExecutiveTerminal[0].NumberOfOutputs=256\r\n"), 0);
    QCOMPARE(model->errorCount(), 0);
    QCOMPARE(model->groups().constFirst()->outputs.size(), 256);
}

void tst_ConfigurationFile::scriptsOfAnOutputAreBounded()
{
    QByteArray list;
    for (int i = 0; i < 1000; ++i) {
        list += "1; ";
    }
    QCOMPARE(load("ExecutiveTerminal[0].Output[0].ActivatedScripts=" + list + "\r\n"), 0);
    QCOMPARE(model->findOutput(0, 0)->activatedScripts.size(), 256);
    QCOMPARE(model->errorCount(), 1000 - 256);
}

void tst_ConfigurationFile::comments_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("errors");
    QTest::addColumn<QString>("comment");
    QTest::addColumn<int>("mode"); // of script 0: shows whether its line was taken

    const QByteArray mode = "Script[0].Mode=1\r\n";
    QTest::newRow("one line") << "[Comment]\r\nHall\r\n[Scripts]\r\n" + mode << 0 << s("Hall\n") << 1;
    QTest::newRow("several lines, blank ones lost")
        << "[Comment]\r\n\r\nHall\r\n\r\nfloor 2\r\n\r\n[Scripts]\r\n" + mode << 0 << s("Hall\nfloor 2\n") << 1;
    QTest::newRow("equal signs") << "[Comment]\r\na=b=c\r\n===\r\n[Scripts]\r\n" + mode << 0 << s("a=b=c\n===\n") << 1;
    QTest::newRow("without end") << "[Comment]\r\n" + mode << 0 << s("Script[0].Mode=1\n") << 0;
    QTest::newRow("ended by a line that contains a section")
        << "[Comment]\r\nsee [Scripts] below\r\n" + mode << 1 << QString() << 1;
    QTest::newRow("ended by a key that contains a section")
        << QByteArray("[Comment]\r\nScript[0].Mode=1 [Configuration]\r\nScript[0].Mode=1\r\n") << 1 << QString() << 1;
    QTest::newRow("again") << "[Comment]\r\na\r\n[Scripts]\r\n[Comment]\r\nb\r\n[Scripts]\r\n" + mode << 0
                           << s("a\nb\n") << 1;
    QTest::newRow("begun by a line that contains its section")
        << "Script[0].Name=[Comment]\r\n" + mode << 0 << s("Script[0].Mode=1\n") << 0;
    QTest::newRow("lone line feeds stay") << "[Comment]\r\na\nb\rc\r\n[Scripts]\r\n" + mode << 0 << s("a\nb\rc\n") << 1;
    QTest::newRow("blanks stay") << "[Comment]\r\n  a  \r\n[Scripts]\r\n" + mode << 0 << s("  a  \n") << 1;
}

void tst_ConfigurationFile::comments()
{
    QFETCH(QByteArray, text);
    model->setComment(s("former"));
    QCOMPARE(load(text), 0);
    QTEST(model->errorCount(), "errors");
    QTEST(model->comment(), "comment");
    QTEST(int(model->findScript(0)->mode->code), "mode");
}

void tst_ConfigurationFile::keysAreTakenWhereverTheyStand()
{
    QCOMPARE(load("Script[0].Mode=1\r\n[Configuration]\r\nScript[1].Mode=2\r\n[Scripts]\r\n"
                  "ExecutiveTerminal[0].Name=A\r\n"),
             0);
    QCOMPARE(model->errorCount(), 0);
    QCOMPARE(changes().join('|'), QByteArray("ExecutiveTerminal[0].Name=A|Script[0].Mode=1|Script[1].Mode=2"));
}

void tst_ConfigurationFile::byteOrderMarkIsSkipped()
{
    QCOMPARE(load("\xEF\xBB\xBFScript[0].Mode=1\r\n"), 0);
    QCOMPARE(model->errorCount(), 0);
    QCOMPARE(changes().join('|'), QByteArray("Script[0].Mode=1"));
    QCOMPARE(load("\xEF\xBB\xBF[Scripts]\r\n"), 0); // the mark would make it an unknown word
    QCOMPARE(model->errorCount(), 0);
}

void tst_ConfigurationFile::byteOrderMarkOfAnotherEncodingCounts()
{
    // What some editors call Unicode: each character with its NUL, which doesn't end the text.
    QByteArray text("\xFF\xFE");
    const QByteArray characters("[Scripts]\r\nScript[0].Mode=1\r\n");
    for (const char byte : characters) {
        text.append(byte).append('\0');
    }
    QCOMPARE(load(text), 0);
    QCOMPARE(model->errorCount(), 0);
    QCOMPARE(changes().join('|'), QByteArray("Script[0].Mode=1"));
}

void tst_ConfigurationFile::textBehindANulIsLost()
{
    QCOMPARE(load(QByteArray("Script[0].Mode=1\r\nScript[1].Mo") + '\0' + "de=1\r\nScript[2].Mode=1\r\n"), 0);
    QCOMPARE(model->errorCount(), 1); // the line that was cut
    QCOMPARE(changes().join('|'), QByteArray("Script[0].Mode=1"));
}

void tst_ConfigurationFile::fileOfLineFeedsIsOneLine()
{
    QCOMPARE(load("[Comment]\nHall\n[Configuration]\nNumberOfDevices=7\n[Scripts]\nScript[0].Mode=1\n"), 0);
    QCOMPARE(model->errorCount(), 0);
    QCOMPARE(save(*model), save(RelayInfo()));

    // Without a comment it is one key, whose value isn't a number.
    QCOMPARE(load("Script[0].Mode=1\nScript[1].Mode=1\n"), 0);
    QCOMPARE(model->errorCount(), 1);
}

void tst_ConfigurationFile::nextLoadForgetsTheFormerFile()
{
    QCOMPARE(load("[Comment]\r\nHall\r\n[Scripts]\r\nNumberOfDevices=3\r\nScript[0].Mode=1\r\n"), 0);
    QCOMPARE(load("Script[1].Mode=1\r\n"), 0);
    QCOMPARE(changes().join('|'), QByteArray("Script[1].Mode=1"));
    QVERIFY(model->comment().isEmpty());
}

void tst_ConfigurationFile::randomModelsComeBack()
{
    for (quint32 seed = 0; seed < 1000; ++seed) {
        RelayInfo first;
        RandomModel::addTerminalTypes(first);
        RandomModel(seed).fill(first);
        const QByteArray text = save(first);

        // What the reader takes otherwise than it was written, by name.
        QByteArray expected = text;
        int errors = 0;
        // The comment's lines each get a line end, so that of the last line adds up to an empty line.
        expected.replace("\r\n\r\n[Configuration]", "\r\n\r\n\r\n[Configuration]");
        // The state "Not active" has no channel; the reader takes channel 1 for none.
        expected.replace(".NumberChannels=NONE", ".NumberChannels=0; ");
        // Days end at 30 and months at 11.
        for (const char* key : {".DayOfBegin=31", ".DayOfEnd=31", ".MonthOfBegin=12", ".MonthOfEnd=12"}) {
            errors += expected.count(key);
            expected.replace(key, QByteArray(key).replace(QByteArray(key).size() - 2, 2, "1"));
        }

        QCOMPARE(load(text), 0);
        QCOMPARE(model->errorCount(), errors);
        QCOMPARE(brokenInvariant(*model), QString());
        QVERIFY2(save(*model) == expected, qPrintable(s("seed %1").arg(seed)));
    }
}

void tst_ConfigurationFile::loadingTwiceIsLoadingOnce()
{
    for (quint32 seed = 0; seed < 50; ++seed) {
        RelayInfo first;
        RandomModel(seed).fill(first);
        QCOMPARE(load(save(first)), 0);
        const QByteArray once = save(*model);
        QCOMPARE(load(once), 0);
        QCOMPARE(model->errorCount(), 0);
        QCOMPARE(save(*model), once);
    }
}

void tst_ConfigurationFile::nameWithEqualSignIsCut()
{
    RelayInfo first;
    first.findScript(3)->name = s("a=b");
    QCOMPARE(load(save(first)), 0);
    QCOMPARE(model->errorCount(), 0);
    QCOMPARE(model->findScript(3)->name, s("a"));
}

void tst_ConfigurationFile::nameIsTrimmed()
{
    RelayInfo first;
    first.findScript(3)->name = s(" a b ");
    QCOMPARE(load(save(first)), 0);
    QCOMPARE(model->findScript(3)->name, s("a b"));
}

void tst_ConfigurationFile::emptyNameCountsAnError()
{
    RelayInfo first;
    first.findScript(3)->name.clear();
    QCOMPARE(load(save(first)), 0);
    QCOMPARE(model->errorCount(), 1);
    QCOMPARE(model->findScript(3)->name, s("Script"));
}

void tst_ConfigurationFile::address65535CannotBeRead()
{
    RelayInfo first;
    first.addGroup(s("Siren"), 65535);
    QCOMPARE(load(save(first)), 0);
    QCOMPARE(model->errorCount(), 1);
    QCOMPARE(int(model->groups().at(1)->address), 65535); // what a blank group has anyway
}

void tst_ConfigurationFile::moreThanHundredGroupsOverwriteEachOther()
{
    RelayInfo first;
    for (int address = 1; address <= 110; ++address) {
        first.addGroup(s("Terminal %1").arg(address), quint16(address));
    }
    QCOMPARE(load(save(first)), 0);
    QCOMPARE(model->groups().size(), 111);
    QCOMPARE(model->groups().at(10)->name, s("Terminal 109"));
    QCOMPARE(model->groups().at(11)->name, s("Terminal 110"));
    QVERIFY(model->groups().at(109)->name.isEmpty());
    QCOMPARE(brokenInvariant(*model), QString());
}

QTEST_GUILESS_MAIN(tst_ConfigurationFile)
#include "tst_ConfigurationFile.moc"
