#include "simulator/DemoInstallation.h"
#include "simulator/StateFile.h"

#include <QTemporaryDir>
#include <QtTest>

class tst_StateFile : public QObject
{
    Q_OBJECT
private slots:
    void nothingWrittenIsAUnitFromTheFactory();
    void readsWhatItWrites_data();
    void readsWhatItWrites();
    void readsLinesWrittenByHand();
    void wrappedLogStaysWrapped();
    void linesThatMakeNoSense_data();
    void linesThatMakeNoSense();
    void fileComesBack();
    void fileThatCanNotBeReadOrWritten();
};

void tst_StateFile::nothingWrittenIsAUnitFromTheFactory()
{
    QCOMPARE(StateFile::read({}, nullptr).value(), UnitState());
    QCOMPARE(StateFile::read("# only a remark\r\n\r\n", nullptr).value(), UnitState());
}

void tst_StateFile::readsWhatItWrites_data()
{
    QTest::addColumn<int>("which");
    QTest::newRow("from the factory") << 0;
    QTest::newRow("installation") << 1;
    QTest::newRow("everything else than usual") << 2;
}

void tst_StateFile::readsWhatItWrites()
{
    QFETCH(int, which);
    UnitState state;
    if (which == 1) {
        state = demoInstallation(1, 500, QDateTime(QDate(2024, 3, 4), QTime(12, 0), Qt::UTC));
    } else if (which == 2) {
        state.address = 200;
        state.serialNumber = 65535;
        state.versionMajor = 255;
        state.versionMinor = 7;
        state.baudRates = {9600, 57600, 1200};
        state.timeRefusal = 5;
        state.clockOffset = -3600;
        state.repeatsLostLogBlock = false;
        state.inBootloader = true;
        state.firmware = QByteArray(1000, '\xA5') + "end";
        state.firmwareComplete = true;
        state.outputs[31][7] = QByteArray();
        state.log = LogRing(3);
        state.log.append(QByteArrayList{"short", "records", "are", "kept", QByteArray()});
        state.terminals.append({3, 9, QByteArray()});
    }
    QString error;
    const auto back = StateFile::read(StateFile::write(state), &error);
    QVERIFY2(back.has_value(), qPrintable(error));
    QVERIFY(*back == state);
    QCOMPARE(StateFile::write(*back), StateFile::write(state));
}

void tst_StateFile::readsLinesWrittenByHand()
{
    const auto state = StateFile::read("address=8\n"
                                       "  serial =  300 \r\n"
                                       "version = 1.05\n"
                                       "baud-rates = 9600 57600\n"
                                       "terminal = 2 5 0521412000000000\n"
                                       "output = 5 1 030307\n"
                                       "script = 3 012a0100153E300801014517010 1\n"
                                       "script = 3 012A0100153E3008010145170101F0000011000000\n",
                                       nullptr);
    QVERIFY(!state.has_value()); // the first script has a blank in it
    const auto whole = StateFile::read("address=8\n"
                                       "  serial =  300 \r\n"
                                       "version = 1.05\n"
                                       "baud-rates = 9600 57600\n"
                                       "terminal = 2 5 0521412000000000\n"
                                       "output = 5 1 030307\n"
                                       "script = 3 012A0100153E3008010145170101F0000011000000\n",
                                       nullptr);
    QVERIFY(whole.has_value());
    QCOMPARE(int(whole->address), 8);
    QCOMPARE(int(whole->serialNumber), 300);
    QCOMPARE(int(whole->versionMajor), 1);
    QCOMPARE(int(whole->versionMinor), 5);
    QCOMPARE(whole->baudRates, (QVector<int>{9600, 57600}));
    QCOMPARE(whole->terminals, QVector<UnitTerminal>{UnitTerminal::make(5, 2, 1, 0x41, 0x20, 8)});
    QCOMPARE(whole->outputs.at(5).at(1), QByteArray("\x03\x03\x07"));
    QCOMPARE(int(whole->scripts.at(3).at(1)), 0x2A);
}

void tst_StateFile::wrappedLogStaysWrapped()
{
    UnitState state;
    state.log = LogRing(4);
    for (int number = 0; number < 11; ++number) {
        state.log.append(QByteArray(16, char('a' + number)));
    }
    const LogRing back = StateFile::read(StateFile::write(state), nullptr).value().log;
    QVERIFY(back.wrapped());
    QCOMPARE(int(back.counter()), 3);
    QCOMPARE(back.records(), state.log.records());
}

void tst_StateFile::linesThatMakeNoSense_data()
{
    QTest::addColumn<QByteArray>("line");
    for (const char* const line : {"nonsense",
                                   "colour = red",
                                   "address = 0",
                                   "address = 255",
                                   "address = one",
                                   "address =",
                                   "address = 1 2",
                                   "serial = 65536",
                                   "version = 6",
                                   "version = 6.256",
                                   "version = 6.2.1",
                                   "baud-rates = fast",
                                   "time-refusal = -1",
                                   "repeats-lost-log-block = maybe",
                                   "log-capacity = 0",
                                   "log-capacity = 32768",
                                   "terminal = 5 1 05",
                                   "terminal = 1 0 05",
                                   "terminal = 1 129 05",
                                   "terminal = 1 5",
                                   "terminal = 1 5 0x05",
                                   "output = 32 0 00",
                                   "output = 0 8 00",
                                   "output = 0 0 0",
                                   "script = 32 00",
                                   "script = 3 00",
                                   "event = xyz",
                                   "firmware = 0g"}) {
        QTest::newRow(line) << QByteArray(line);
    }
}

void tst_StateFile::linesThatMakeNoSense()
{
    QFETCH(QByteArray, line);
    QString error;
    QVERIFY(!StateFile::read("# first\nserial = 1\n" + line + "\nserial = 2\n", &error).has_value());
    QVERIFY2(error.contains(QLatin1String("line 3")), qPrintable(error));
    QVERIFY2(error.contains(QString::fromLatin1(line)), qPrintable(error));
}

void tst_StateFile::fileComesBack()
{
    const QTemporaryDir directory;
    const QString name = directory.filePath(QStringLiteral("unit.txt"));
    UnitState state;
    state.serialNumber = 9;
    QString error;
    QVERIFY2(StateFile::save(state, name, &error), qPrintable(error));
    state.serialNumber = 10;
    QVERIFY2(StateFile::save(state, name, &error), qPrintable(error));
    QCOMPARE(StateFile::load(name, &error).value(), state);
}

void tst_StateFile::fileThatCanNotBeReadOrWritten()
{
    const QTemporaryDir directory;
    QString error;
    QVERIFY(!StateFile::load(directory.filePath(QStringLiteral("missing")), &error).has_value());
    QVERIFY(error.contains(QLatin1String("missing")));
    QVERIFY(!StateFile::save(UnitState(), directory.filePath(QStringLiteral("no/such/place")), &error));
    QVERIFY(error.contains(QLatin1String("no/such/place")));
}

QTEST_GUILESS_MAIN(tst_StateFile)
#include "tst_StateFile.moc"
