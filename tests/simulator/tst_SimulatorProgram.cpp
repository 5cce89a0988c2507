#include "simulator/StateFile.h"

#include <QProcess>
#include <QSerialPort>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

/// The program as a process, its output, its exit code, its files.
class tst_SimulatorProgram : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void helpNamesItsOptions();
    void printsThePortAndAnswers();
    void unplugsAndComesBackUnderTheSameName();
    void savesOnRequestAndAtTheEnd();
    void signalsSaveAndQuit();
    void readsItsStateAgain();
    void optionsChangeTheUnit();
    void traceShowsTheTraffic();
    void refusesWhatMakesNoSense_data();
    void refusesWhatMakesNoSense();
    void brokenStateFileIsLeftAlone();
    void endOfInputDoesNotEndIt();

private:
    void start(const QStringList& arguments);
    QString nextLine();
    void send(const char* command);
    void quit();

    QTemporaryDir directory;
    QString stateFile;
    QProcess program;
    QString port;
};

namespace
{
constexpr int patience = 20000;
const char* const whoAreYou = "C1060100 01615C47";
} // namespace

void tst_SimulatorProgram::init()
{
    QVERIFY(directory.isValid());
    stateFile = directory.filePath(QStringLiteral("unit.txt"));
    QFile::remove(stateFile);
}

void tst_SimulatorProgram::cleanup()
{
    if (program.state() != QProcess::NotRunning) {
        program.kill();
        program.waitForFinished(patience);
    }
}

void tst_SimulatorProgram::start(const QStringList& arguments)
{
    program.start(QStringLiteral(SIMULATOR_PROGRAM), arguments);
    QVERIFY2(program.waitForStarted(patience), qPrintable(program.errorString()));
    port = nextLine();
    QVERIFY2(port.startsWith(QLatin1String("pts/")), qPrintable(port));
}

QString tst_SimulatorProgram::nextLine()
{
    while (!program.canReadLine() && program.waitForReadyRead(patience)) {
    }
    return QString::fromUtf8(program.readLine()).trimmed();
}

void tst_SimulatorProgram::send(const char* command)
{
    program.write(command);
    program.write("\n");
}

void tst_SimulatorProgram::quit()
{
    send("quit");
    QVERIFY(program.waitForFinished(patience));
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 0);
}

void tst_SimulatorProgram::helpNamesItsOptions()
{
    program.start(QStringLiteral(SIMULATOR_PROGRAM), {QStringLiteral("--help")});
    QVERIFY(program.waitForFinished(patience));
    QCOMPARE(program.exitCode(), 0);
    const QByteArray text = program.readAllStandardOutput();
    for (const char* const word :
         {"--state", "--fault", "--pace", "--grow-log", "lose-answer", "lose-power", "unplug"}) {
        QVERIFY2(text.contains(word), word);
    }
}

void tst_SimulatorProgram::printsThePortAndAnswers()
{
    start({QStringLiteral("--blank")});
    QSerialPort line(port);
    QVERIFY2(line.open(QIODevice::ReadWrite), qPrintable(line.errorString()));
    QVERIFY(line.setBaudRate(57600));
    line.write(QByteArray::fromHex(whoAreYou));
    QByteArray answer;
    QTRY_COMPARE_WITH_TIMEOUT((answer += line.readAll()), QByteArray::fromHex("C20601000500671202060DAE"), patience);
    quit();
}

void tst_SimulatorProgram::unplugsAndComesBackUnderTheSameName()
{
    start({QStringLiteral("--blank")});
    QSerialPort line(port);
    QVERIFY(line.open(QIODevice::ReadWrite));
    send("unplug");
    QCOMPARE(nextLine(), QStringLiteral("unplugged"));
    QTRY_COMPARE_WITH_TIMEOUT(line.error(), QSerialPort::ResourceError, patience);
    line.close();
    send("plug");
    QCOMPARE(nextLine(), port);
    QVERIFY2(line.open(QIODevice::ReadWrite), qPrintable(line.errorString()));
    quit();
}

void tst_SimulatorProgram::savesOnRequestAndAtTheEnd()
{
    start({QStringLiteral("--state"), stateFile, QStringLiteral("--events"), QStringLiteral("10")});
    QVERIFY(!QFile::exists(stateFile));
    send("save");
    QCOMPARE(nextLine(), QStringLiteral("saved"));
    QCOMPARE(StateFile::load(stateFile, nullptr).value().log.size(), 10);
    send("event");
    QCOMPARE(nextLine(), QStringLiteral("11 events"));
    quit();
    QCOMPARE(StateFile::load(stateFile, nullptr).value().log.size(), 11);
}

void tst_SimulatorProgram::signalsSaveAndQuit()
{
    start({QStringLiteral("--state"), stateFile, QStringLiteral("--blank")});
    kill(pid_t(program.processId()), SIGUSR1);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(stateFile), patience);
    QCOMPARE(program.state(), QProcess::Running);
    for (const int number : {SIGTERM, SIGINT}) {
        QVERIFY(QFile::remove(stateFile));
        kill(pid_t(program.processId()), number);
        QVERIFY(program.waitForFinished(patience));
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program.exitCode(), 0);
        QVERIFY(QFile::exists(stateFile));
        start({QStringLiteral("--state"), stateFile});
    }
}

void tst_SimulatorProgram::readsItsStateAgain()
{
    UnitState state;
    state.serialNumber = 4321;
    QVERIFY(StateFile::save(state, stateFile, nullptr));
    start({QStringLiteral("--state"), stateFile});
    send("event");
    QCOMPARE(nextLine(), QStringLiteral("1 events"));
    quit();
    QCOMPARE(int(StateFile::load(stateFile, nullptr).value().serialNumber), 4321);
}

void tst_SimulatorProgram::optionsChangeTheUnit()
{
    start({QStringLiteral("--state"), stateFile, QStringLiteral("--blank"), QStringLiteral("--address"),
           QStringLiteral("8"), QStringLiteral("--baud"), QStringLiteral("9600"), QStringLiteral("--baud"),
           QStringLiteral("1200"), QStringLiteral("--no-clock"), QStringLiteral("5"),
           QStringLiteral("--skip-lost-log-blocks"), QStringLiteral("--grow-log"), QStringLiteral("1")});
    quit();
    const UnitState state = StateFile::load(stateFile, nullptr).value();
    QCOMPARE(int(state.address), 8);
    QCOMPARE(state.baudRates, (QVector<int>{9600, 1200}));
    QCOMPARE(int(state.timeRefusal), 5);
    QVERIFY(!state.repeatsLostLogBlock);
}

void tst_SimulatorProgram::traceShowsTheTraffic()
{
    start({QStringLiteral("--blank"), QStringLiteral("--trace"), QStringLiteral("--fault"),
           QStringLiteral("refuse:request=9,value=2")});
    QSerialPort line(port);
    QVERIFY(line.open(QIODevice::ReadWrite));
    QVERIFY(line.setBaudRate(57600));
    line.write(QByteArray::fromHex(whoAreYou));
    QVERIFY(line.waitForBytesWritten(patience));
    QCOMPARE(nextLine(), QStringLiteral("57600 9: c1 06 01 00 01 61 5c 47 -> c2 06 01 00 01 02 bc 1a"));
    quit();
}

void tst_SimulatorProgram::refusesWhatMakesNoSense_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("reason");
    const auto row = [](const char* arguments, const char* reason) {
        QTest::newRow(arguments) << QString::fromLatin1(arguments).split(QLatin1Char(' ')) << QByteArray(reason);
    };
    row("--fault nonsense", "there is no fault \"nonsense\"");
    row("--address 300", "an address is a number from 1 to 254");
    row("--baud fast", "a baud rate is a number such as 9600");
    row("--no-clock 0", "a refusal is a code from 1 to 255");
    row("--events 32768", "--events takes a number up to 32767");
    row("--grow-log 0", "--think, --seed and --grow-log take whole numbers");
    row("what", "don't know what to do with \"what\"");
    row("--colour", "colour");
}

void tst_SimulatorProgram::refusesWhatMakesNoSense()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, reason);
    program.start(QStringLiteral(SIMULATOR_PROGRAM), arguments);
    QVERIFY(program.waitForFinished(patience));
    QCOMPARE(program.exitCode(), 1);
    QVERIFY(program.readAllStandardOutput().isEmpty());
    const QByteArray text = program.readAllStandardError();
    QVERIFY2(text.contains(reason), text.constData());
}

void tst_SimulatorProgram::brokenStateFileIsLeftAlone()
{
    QFile file(stateFile);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("address = 999\n");
    file.close();
    program.start(QStringLiteral(SIMULATOR_PROGRAM), {QStringLiteral("--state"), stateFile});
    QVERIFY(program.waitForFinished(patience));
    QCOMPARE(program.exitCode(), 1);
    QVERIFY(program.readAllStandardError().contains("line 1 makes no sense: address = 999"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("address = 999\n"));
}

void tst_SimulatorProgram::endOfInputDoesNotEndIt()
{
    start({QStringLiteral("--state"), stateFile, QStringLiteral("--blank")});
    program.closeWriteChannel();
    kill(pid_t(program.processId()), SIGUSR1);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(stateFile), patience);
    QCOMPARE(program.state(), QProcess::Running);
    program.terminate();
    QVERIFY(program.waitForFinished(patience));
    QCOMPARE(program.exitCode(), 0);
}

QTEST_GUILESS_MAIN(tst_SimulatorProgram)
#include "tst_SimulatorProgram.moc"
