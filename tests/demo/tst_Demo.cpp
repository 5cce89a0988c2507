#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

/// The program hubn-manager-demo: what it prints, what it saves, how it ends.
class tst_Demo : public QObject
{
    Q_OBJECT
private slots:
    void helpNamesItsOptions();
    void picturesShowEverything();
    void unitWithAFaultEndsWithAnotherCode();
    void refusesWhatMakesNoSense_data();
    void refusesWhatMakesNoSense();
};

namespace
{
constexpr int patience = 240000;

struct Outcome
{
    int exitCode = -1;
    QString output;
    QString errors;
};

Outcome run(const QStringList& arguments)
{
    QProcess program;
    program.start(QStringLiteral(DEMO_PROGRAM), arguments);
    if (!program.waitForFinished(patience) || program.exitStatus() != QProcess::NormalExit) {
        return {-1, {}, program.errorString()};
    }
    return {program.exitCode(), QString::fromUtf8(program.readAllStandardOutput()),
            QString::fromUtf8(program.readAllStandardError())};
}
} // namespace

void tst_Demo::helpNamesItsOptions()
{
    const Outcome outcome = run({QStringLiteral("--help")});
    QCOMPARE(outcome.exitCode, 0);
    QVERIFY(outcome.output.contains(QLatin1String("--screenshots <directory>")));
    QVERIFY(outcome.output.contains(QLatin1String("--fault <rule>")));
}

void tst_Demo::picturesShowEverything()
{
    const QTemporaryDir directory;
    const QDir pictures(directory.filePath(QStringLiteral("new/pictures")));
    const Outcome outcome = run({QStringLiteral("--screenshots"), pictures.path()});
    QVERIFY2(outcome.exitCode == 0, qPrintable(outcome.errors));

    const QStringList lines = outcome.output.split(QLatin1Char('\n'));
    QCOMPARE(lines.first(), QStringLiteral("Reading configuration of outputs and scripts of work of executive "
                                           "terminals started..."));
    QVERIFY(lines.contains(QLatin1String("Reading log of events started...")));
    QVERIFY(lines.contains(QLatin1String("Reading configuration of outputs SUCCESSFUL COMPLETE")));
    QVERIFY(lines.contains(QLatin1String("Reading scripts of work of executive terminals SUCCESSFUL COMPLETE")));

    QStringList names;
    const QStringList files = pictures.entryList(QDir::Files);
    for (const QString& file : files) {
        QVERIFY2(!QImage(pictures.filePath(file)).isNull(), qPrintable(file));
        names.append(file.mid(file.indexOf(QLatin1Char('-')) + 1));
    }
    for (const char* const name :
         {"busy.png", "coordinators.png", "tabSettingRelay.png", "tabLogEvents.png", "tabLogger.png", "dockTree.png",
          "dockScript.png", "terminals.png", "adding-terminal.png", "summary.png", "log-find-bar.png", "log-found.png",
          "log-event.png", "firmware.png", "firmware-aborted.png"}) {
        QVERIFY2(names.contains(QLatin1String(name)), name);
    }
}

void tst_Demo::unitWithAFaultEndsWithAnotherCode()
{
    const QTemporaryDir directory;
    const Outcome outcome = run({QStringLiteral("--screenshots"), directory.path(), QStringLiteral("--fault"),
                                 QStringLiteral("refuse:request=8,from=1,times=4")});
    QCOMPARE(outcome.exitCode, 1);
    QVERIFY2(outcome.output.contains(QLatin1String("Reading scripts of work of executive terminals WAS COMPLETED WITH "
                                                   "ERROR (Number of error = 1)")),
             qPrintable(outcome.output));
}

void tst_Demo::refusesWhatMakesNoSense_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("reason");
    QTest::newRow("no such fault") << QStringList{QStringLiteral("--fault"), QStringLiteral("nonsense")}
                                   << QStringLiteral("there is no fault \"nonsense\"");
    QTest::newRow("a place that can't be used")
        << QStringList{QStringLiteral("--screenshots"), QStringLiteral("/dev/null/pictures")}
        << QStringLiteral("can't use /dev/null/pictures");
}

void tst_Demo::refusesWhatMakesNoSense()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, reason);
    const Outcome outcome = run(arguments);
    QCOMPARE(outcome.exitCode, 1);
    QVERIFY2(outcome.errors.contains(reason), qPrintable(outcome.errors));
    QVERIFY(outcome.output.isEmpty());
}

QTEST_GUILESS_MAIN(tst_Demo)
#include "tst_Demo.moc"
