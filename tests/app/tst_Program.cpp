#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

/// The program hubn-manager without any serial port: how it starts in an empty directory, and how it ends.
class tst_Program : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void startsWithNothingThereAndEndsWithZero_data();
    void startsWithNothingThereAndEndsWithZero();

private:
    /// The titles of the windows that the window manager has.
    static QStringList titles();
    /// Asks the window manager once to close the window of a title, as its frame's button does; whether it is gone.
    static bool closed(const QString& title);
};

namespace
{
constexpr int patience = 60000; // the sanitizers' program on a busy machine starts in some ten seconds
} // namespace

void tst_Program::initTestCase()
{
    const QDir ports(QStringLiteral("/sys/class/tty"));
    QVERIFY2(ports.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).isEmpty(),
             "the serial ports of this machine are in sight; see tools/without-ports");
}

QStringList tst_Program::titles()
{
    QProcess tool;
    tool.start(QStringLiteral("wmctrl"), {QStringLiteral("-l"), QStringLiteral("-u")});
    tool.waitForFinished();
    QStringList titles;
    const QStringList lines = QString::fromUtf8(tool.readAllStandardOutput()).split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        titles.append(line.section(QLatin1Char(' '), 3, -1, QString::SectionSkipEmpty)); // number, desktop, machine
    }
    return titles;
}

bool tst_Program::closed(const QString& title)
{
    QProcess::execute(QStringLiteral("wmctrl"), {QStringLiteral("-F"), QStringLiteral("-c"), title});
    return !titles().contains(title);
}

void tst_Program::startsWithNothingThereAndEndsWithZero_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("without arguments") << QStringList();
    QTest::newRow("with arguments that mean nothing")
        << QStringList{QStringLiteral("--help"), QStringLiteral("no-such-file.cfg"), QStringLiteral("-x")};
}

void tst_Program::startsWithNothingThereAndEndsWithZero()
{
    QFETCH(QStringList, arguments);
    const QTemporaryDir directory;
    QProcess program;
    program.setWorkingDirectory(directory.path());
    program.start(QStringLiteral(PROGRAM), arguments);
    QVERIFY(program.waitForStarted());

    // The coordinator form stands over the window; both close as any window does.
    const QString form = QStringLiteral("Coordinator selection");
    const QString window = QStringLiteral("Configuration Manager HUBN-NX-Q (v.2.1) βeta");
    QTRY_VERIFY_WITH_TIMEOUT(titles().contains(form) && titles().contains(window), patience);
    QTRY_VERIFY_WITH_TIMEOUT(closed(form), patience);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(directory.filePath(QStringLiteral("Log.db"))), patience);
    QCOMPARE(program.state(), QProcess::Running);
    QTRY_VERIFY_WITH_TIMEOUT(closed(window), patience);
    QVERIFY(program.state() == QProcess::NotRunning || program.waitForFinished(patience));
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 0);
    // The log was scratch; the catalogue is the user's from now on.
    QVERIFY(!QFile::exists(directory.filePath(QStringLiteral("Log.db"))));
    QVERIFY(QFile::exists(directory.filePath(QStringLiteral("Devices_EN.csv"))));
}

QTEST_GUILESS_MAIN(tst_Program)
#include "tst_Program.moc"
