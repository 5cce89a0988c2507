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
    /// What xdotool prints; empty if it fails.
    static QByteArray xdotool(const QStringList& arguments);
    /// Waits for a window whose title begins so to show and be active; its whole title.
    static QString activate(const QString& title);
    /// Closes the active window by the keys of the window manager.
    static void closeActiveWindow();
};

namespace
{
constexpr int Patience = 30000;
} // namespace

void tst_Program::initTestCase()
{
    const QDir ports(QStringLiteral("/sys/class/tty"));
    QVERIFY2(ports.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).isEmpty(),
             "the serial ports of this machine are in sight; see tools/without-ports");
}

QByteArray tst_Program::xdotool(const QStringList& arguments)
{
    QProcess tool;
    tool.start(QStringLiteral("xdotool"), arguments);
    return tool.waitForFinished(Patience) && tool.exitCode() == 0 ? tool.readAllStandardOutput() : QByteArray();
}

QString tst_Program::activate(const QString& title)
{
    return QString::fromUtf8(
               xdotool({QStringLiteral("search"), QStringLiteral("--sync"), QStringLiteral("--onlyvisible"),
                        QStringLiteral("--name"), QLatin1Char('^') + title, QStringLiteral("windowactivate"),
                        QStringLiteral("--sync"), QStringLiteral("getwindowname")}))
        .trimmed();
}

void tst_Program::closeActiveWindow()
{
    xdotool({QStringLiteral("key"), QStringLiteral("alt+F4")});
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
    QCOMPARE(activate(QStringLiteral("Coordinator selection")), QStringLiteral("Coordinator selection"));
    closeActiveWindow();
    const QString title = QStringLiteral("Configuration Manager HUBN-NX-Q (v.2.1) βeta");
    QCOMPARE(activate(QStringLiteral("Configuration Manager")), title);
    QTRY_VERIFY(QFile::exists(directory.filePath(QStringLiteral("Log.db"))));
    QCOMPARE(program.state(), QProcess::Running);
    closeActiveWindow();
    QVERIFY(program.waitForFinished(Patience));
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 0);
    // The log was scratch; the catalogue is the user's from now on.
    QVERIFY(!QFile::exists(directory.filePath(QStringLiteral("Log.db"))));
    QVERIFY(QFile::exists(directory.filePath(QStringLiteral("Devices_EN.csv"))));
}

QTEST_GUILESS_MAIN(tst_Program)
#include "tst_Program.moc"
