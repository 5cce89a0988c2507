#include "ToolRun.h"
#include "model/RelayInfo.h"

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

class tst_diffCommand : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void equalFilesAreEqual();
    void differentFilesAreToldLineByLine();
    void jsonTellsTheParts();
    void aMissingFileOnEitherSideIsBadInput();
    void linesThatAreWrongDontCountAsEqual();

private:
    QString path(const char* name) const
    {
        return directory.filePath(s(name));
    }

    QTemporaryDir directory;
};

void tst_diffCommand::initTestCase()
{
    RelayInfo model;
    model.findScript(3)->name = s("Horn");
    model.findScript(3)->duration = model.durations().value(19);
    QCOMPARE(model.saveToFile(path("a.cfg")), int(RelayInfo::FileOk));
    model.groups().constFirst()->expand = false;
    QCOMPARE(model.saveToFile(path("same.cfg")), int(RelayInfo::FileOk));
    model.findScript(3)->duration = model.durations().value(24);
    model.setComment(s("Hall"));
    QCOMPARE(model.saveToFile(path("b.cfg")), int(RelayInfo::FileOk));
}

void tst_diffCommand::equalFilesAreEqual()
{
    const ToolRun run({s("diff"), path("a.cfg"), path("same.cfg")});
    QCOMPARE(run.exitCode, ExitCode::Done);
    QCOMPARE(run.results, QString());
    QCOMPARE(run.errors, s("%1 and %2 are equal\n").arg(path("a.cfg"), path("same.cfg")));

    const ToolRun json({s("diff"), path("a.cfg"), path("same.cfg"), s("--json")});
    QCOMPARE(json.exitCode, ExitCode::Done);
    QVERIFY(json.json().object().value(s("equal")).toBool(false));
    QVERIFY(json.errors.isEmpty());
}

void tst_diffCommand::differentFilesAreToldLineByLine()
{
    const ToolRun run({s("diff"), path("a.cfg"), path("b.cfg")});
    QCOMPARE(run.exitCode, ExitCode::WithErrors);
    QCOMPARE(run.results, s("comment '' -> 'Hall / '\nscript 4 'Horn': duration 5 minutes -> 10 minutes\n"));
    QCOMPARE(run.errors, QString());
}

void tst_diffCommand::jsonTellsTheParts()
{
    const ToolRun run({s("diff"), path("b.cfg"), path("a.cfg"), s("--json")});
    QCOMPARE(run.exitCode, ExitCode::WithErrors);
    const QJsonObject result = run.json().object();
    QVERIFY(!result.value(s("equal")).toBool(true));
    const QJsonArray differences = result.value(s("differences")).toArray();
    QCOMPARE(differences.size(), 2);
    QCOMPARE(differences.at(1).toObject(), (QJsonObject{{s("where"), s("script 4 'Horn'")},
                                                        {s("what"), s("duration")},
                                                        {s("before"), s("10 minutes")},
                                                        {s("after"), s("5 minutes")}}));
}

void tst_diffCommand::aMissingFileOnEitherSideIsBadInput()
{
    for (const QStringList& sides :
         {QStringList{path("a.cfg"), path("none.cfg")}, QStringList{path("none.cfg"), path("a.cfg")}}) {
        const ToolRun run(QStringList{s("diff")} + sides);
        QCOMPARE(run.exitCode, ExitCode::BadInput);
        QVERIFY2(run.errors.contains(path("none.cfg")), qUtf8Printable(run.errors));
        QVERIFY(run.results.isEmpty());
    }
}

void tst_diffCommand::linesThatAreWrongDontCountAsEqual()
{
    QFile file(path("wrong.cfg"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("wrong\r\n");
    file.close();
    const ToolRun run({s("diff"), path("wrong.cfg"), path("wrong.cfg")});
    QCOMPARE(run.exitCode, ExitCode::WithErrors);
    QVERIFY2(run.errors.contains(s("1 fault")), qUtf8Printable(run.errors));
}

QTEST_GUILESS_MAIN(tst_diffCommand)
#include "tst_diffCommand.moc"
