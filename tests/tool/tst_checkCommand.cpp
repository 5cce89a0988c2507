#include "ToolRun.h"
#include "model/RelayInfo.h"
#include "support/RandomModel.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

} // namespace

class tst_checkCommand : public QObject
{
    Q_OBJECT

private slots:
    void aFileWithoutErrorsIsDone();
    void aMissingFileAndADirectoryAreBadInput();
    void eachKindOfErrorIsToldWithItsReason_data();
    void eachKindOfErrorIsToldWithItsReason();
    void linesAreNumberedAsAnEditorNumbersThem();
    void severalErrorsOfALineAreOneRow();
    void theCountIsThatOfTheWindow();
    void aFileWithLinesEndedByLfOnlyIsToldToBeOne();
    void aCommentWithALfOnlyIsFine();
    void aNulIsToldToEndTheFile();
    void theLineShownIsShortAndHarmless();
    void aValueWithCharactersThatEndLinesStaysOnOneLine();
    void jsonHasTheWholeLine();
    void bytesThatAreNoConfigurationAreTold();

private:
    QString written(const QByteArray& text) const
    {
        QFile file(directory.filePath(s("given.cfg")));
        return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() ? file.fileName() : QString();
    }

    ToolRun check(const QByteArray& text, const QStringList& options = {}) const
    {
        return ToolRun(QStringList{s("check"), written(text)} + options);
    }

    QTemporaryDir directory;
};

void tst_checkCommand::aFileWithoutErrorsIsDone()
{
    RelayInfo model;
    const QString path = directory.filePath(s("whole.cfg"));
    QCOMPARE(model.saveToFile(path), int(RelayInfo::FileOk));
    const ToolRun run({s("check"), path});
    QCOMPARE(run.exitCode, ExitCode::Done);
    QCOMPARE(run.results, QString());
    QCOMPARE(run.errors, s("no line counts as an error\n"));
    QCOMPARE(ToolRun({s("check"), path, s("--quiet")}).errors, QString());

    const ToolRun json({s("check"), path, s("--json")});
    QCOMPARE(json.json().object().value(s("count")).toInt(-1), 0);
    QVERIFY(json.json().object().value(s("errors")).toArray().isEmpty());
}

void tst_checkCommand::aMissingFileAndADirectoryAreBadInput()
{
    for (const QString& path : {directory.filePath(s("missing.cfg")), directory.path()}) {
        const ToolRun run({s("check"), path});
        QCOMPARE(run.exitCode, ExitCode::BadInput);
        QVERIFY(run.results.isEmpty());
        QVERIFY2(run.errors.contains(path), qUtf8Printable(run.errors));
    }
}

void tst_checkCommand::eachKindOfErrorIsToldWithItsReason_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char* line, const char* reason) {
        QTest::newRow(line) << QByteArray(line) << QString::fromUtf8(reason);
    };
    row("Mode", "there is no \"=\" in it");
    row("[Scripts] ", "the name of a section has to stand alone on its line");
    row("=5", "nothing stands in front of the \"=\"");
    row("Script[0].Name=", "nothing stands behind the \"=\"");
    row("Colour=5", "this key is not known");
    row("Script[0].Mode=", "nothing stands behind the \"=\"");
    row("Script[0].Mode= ", "no number is given");
    row("Script[0].Mode=on", "\"on\" is not a whole number");
    row("Script[0].Mode=1.5", "\"1.5\" is not a whole number");
    row("Script[0].Mode=-1", "-1 can't be; it counts as no number");
    row("Script[0].Mode=9999999999", "9999999999 is too large");
    row("Script[0].Filter.MinuteOfBegin=61", "61 is out of range, 60 at most");
    row("Script[0].Filter.HourOfEnd=25", "25 is out of range, 24 at most");
    row("Script[0].Filter.DayOfBegin=31", "31 is out of range, 30 at most");
    row("Script[0].Filter.MonthOfEnd=12", "12 is out of range, 11 at most");
    row("Script[0].Filter.Class=16", "16 is out of range, from 0 to 15");
    row("Script[0].Filter.Type=-2", "-2 is out of range, from 0 to 255");
    row("Script[0].StateChannelValue=256", "256 is out of range, from 0 to 255");
    row("Script[0].StateTerminal=256", "256 is out of range, 255 at most");
    row("Script[0].StateTerminal=x", "\"x\" is not a whole number");
    row("Script[40].Mode=1", "there is no Script[40], only [0] to [31] so far");
    row("ExecutiveTerminal[1].Name=A", "there is no ExecutiveTerminal[1], only [0] so far");
    row("ExecutiveTerminal[0].Output[8].Name=A", "there is no Output[8], only [0] to [7] so far");
    row("ExecutiveTerminal[0].NumberOfOutputs=257", "257 is out of range, 256 at most");
    row("ExecutiveTerminal[0].NumberOfOutputs=x", "\"x\" is not a whole number");
    row("ExecutiveTerminal[0].Address=x", "\"x\" is not a whole number");
    row("Terminal.Expand=1", "this key names no ExecutiveTerminal[...]");
    row("NumberOfDevices=5000", "5000 are too many: 4096 at most");
    row("Script[0].NumberChannels=0; 4", "4 is out of range, from 0 to 3");
    row("Script[0].Filter.DaysOfWeek=1; x", "\"x\" is not a whole number");
    row("Script[0].Filter.Address=1; 32; 33; 40", "32 is out of range, from 0 to 31, and so on: 3 parts in all");
    row("ExecutiveTerminal[0].Output[0].ActivatedScripts=1; 40", "no script has the number 40");
}

void tst_checkCommand::eachKindOfErrorIsToldWithItsReason()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, reason);
    const ToolRun run = check("[Configuration]\r\n" + line + "\r\n");
    QCOMPARE(run.exitCode, ExitCode::WithErrors);
    QCOMPARE(run.results, s("2: %1: %2\n").arg(QString::fromUtf8(line), reason));
    QVERIFY2(run.errors.endsWith(s(" on 1 line\n")), qUtf8Printable(run.errors));
}

void tst_checkCommand::linesAreNumberedAsAnEditorNumbersThem()
{
    const ToolRun run = check("\r\n\r\n[Comment]\r\na\r\n\r\nx\ny\r\n\r\n[Scripts]\r\nfirst\r\n\r\n\r\nsecond");
    QCOMPARE(run.results, s("10: first: there is no \"=\" in it\n13: second: there is no \"=\" in it\n"));
    QCOMPARE(run.errors, s("2 errors on 2 lines\n"));
}

void tst_checkCommand::severalErrorsOfALineAreOneRow()
{
    const ToolRun run = check("Script[0].NumberChannels=7; x; 8; y\r\n", {s("--json")});
    const QJsonObject result = run.json().object();
    QCOMPARE(result.value(s("count")).toInt(), 4);
    const QJsonArray errors = result.value(s("errors")).toArray();
    QCOMPARE(errors.size(), 1);
    QCOMPARE(errors.at(0).toObject().value(s("count")).toInt(), 4);
    QCOMPARE(errors.at(0).toObject().value(s("reason")).toString(),
             s("7 is out of range, from 0 to 3, and so on: 2 parts in all; \"x\" is not a whole number, and so on: "
               "2 parts in all"));
}

void tst_checkCommand::theCountIsThatOfTheWindow()
{
    for (quint32 seed = 0; seed < 80; ++seed) {
        RandomModel random(seed);
        RelayInfo model;
        random.fill(model);
        const QString path = directory.filePath(s("random.cfg"));
        QCOMPARE(model.saveToFile(path), int(RelayInfo::FileOk));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QByteArray text = file.readAll();
        for (int i = 0; i < 100; ++i) {
            text[random.below(text.size())] = random.bytes(1).at(0);
        }
        file.close();

        const QJsonObject result = check(text, {s("--json")}).json().object();
        RelayInfo ofWindow;
        QCOMPARE(ofWindow.loadFromFile(written(text)), int(RelayInfo::FileOk));
        QCOMPARE(result.value(s("count")).toInt(-1), ofWindow.errorCount());
        int sum = 0;
        int lastLine = 0;
        const QJsonArray errors = result.value(s("errors")).toArray();
        for (const QJsonValue& error : errors) {
            sum += error.toObject().value(s("count")).toInt();
            QVERIFY(!error.toObject().value(s("reason")).toString().isEmpty());
            const int line = error.toObject().value(s("line")).toInt();
            QVERIFY(line >= lastLine);
            lastLine = line;
            const QString ofEditor = QString::fromUtf8(text.split('\n').value(line - 1));
            const QString told = error.toObject().value(s("text")).toString();
            QVERIFY2(ofEditor.startsWith(told), qUtf8Printable(ofEditor + s(" / ") + told));
        }
        QCOMPARE(sum, ofWindow.errorCount());
    }
}

void tst_checkCommand::aFileWithLinesEndedByLfOnlyIsToldToBeOne()
{
    // The window finds nothing wrong with the first of them: the whole file is one line of the comment.
    for (const QByteArray& text :
         {QByteArray("[Comment]\n\n[Configuration]\nNumberOfDevices=2\n"), QByteArray("[Configuration]\na=1\n")}) {
        const ToolRun run = check(text);
        QCOMPARE(run.exitCode, ExitCode::WithErrors);
        QVERIFY2(run.results.startsWith(s("1: [Com")) || run.results.startsWith(s("1: [Con")),
                 qUtf8Printable(run.results));
        QVERIFY(run.results.contains(s("ends without CR")));
        QCOMPARE(run.results.count(QLatin1Char('\n')), 1);
        QVERIFY(run.errors == s("1 error on 1 line\n") || run.errors.endsWith(s("isn't read as it stands\n")));
    }
}

void tst_checkCommand::aCommentWithALfOnlyIsFine()
{
    const ToolRun run = check("[Comment]\r\na\nb\r\n[Configuration]\r\nNumberOfDevices=1\r\n");
    QCOMPARE(run.exitCode, ExitCode::Done);
    QCOMPARE(run.results, QString());
}

void tst_checkCommand::aNulIsToldToEndTheFile()
{
    const ToolRun run = check(QByteArray("[Scripts]\r\nNumberOf\0Scripts=32\r\nwrong\r\n", 39));
    QCOMPARE(run.exitCode, ExitCode::WithErrors);
    QCOMPARE(run.results,
             s("2: NumberOf: there is no \"=\" in it\n2: NumberOf: a NUL follows; nothing behind it is read\n"));
}

void tst_checkCommand::theLineShownIsShortAndHarmless()
{
    const ToolRun run = check("\033[31mred\t" + QByteArray(100, 'x') + "\r\n");
    QCOMPARE(run.results, s("1: ?[31mred ") + QString(51, QLatin1Char('x')) + s("...: there is no \"=\" in it\n"));
}

void tst_checkCommand::aValueWithCharactersThatEndLinesStaysOnOneLine()
{
    const ToolRun run = check(QByteArrayLiteral("Script[0].Filter.MinuteOfBegin=1\x0b\xe2\x80\xa8x\r\n"));
    QCOMPARE(run.results, s("1: Script[0].Filter.MinuteOfBegin=1??x: \"1??x\" is not a whole number\n"));
}

void tst_checkCommand::jsonHasTheWholeLine()
{
    const QByteArray line(100, 'x');
    const ToolRun run = check(line + "\r\n", {s("--json")});
    QCOMPARE(run.exitCode, ExitCode::WithErrors);
    const QJsonObject error = run.json().object().value(s("errors")).toArray().at(0).toObject();
    QCOMPARE(error.value(s("line")).toInt(), 1);
    QCOMPARE(error.value(s("text")).toString(), QString::fromLatin1(line));
    QCOMPARE(error.value(s("reason")).toString(), s("there is no \"=\" in it"));
}

void tst_checkCommand::bytesThatAreNoConfigurationAreTold()
{
    for (quint32 seed = 0; seed < 100; ++seed) {
        RandomModel random(seed);
        const ToolRun run = check("\x89PNG\r\n" + random.bytes(2000));
        QCOMPARE(run.exitCode, ExitCode::WithErrors);
        QVERIFY(run.results.startsWith(s("1: ")));
    }
    QCOMPARE(check({}).exitCode, ExitCode::Done);
}

QTEST_GUILESS_MAIN(tst_checkCommand)
#include "tst_checkCommand.moc"
