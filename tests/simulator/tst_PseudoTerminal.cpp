#include "simulator/PseudoTerminal.h"

#include <QSerialPort>
#include <QSignalSpy>
#include <QtTest>

#include <memory>

class tst_PseudoTerminal : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void nameIsThatOfASerialPort();
    void nameDoesNotComeAgain();
    void bytesPassUnchanged_data();
    void bytesPassUnchanged();
    void readingNothingGivesNothing();
    void seesTheBaudRate_data();
    void seesTheBaudRate();
    void unusualRateIsZero();
    void writingWithoutAReaderNeverBlocks();
    void nothingIsEchoedWhileThePortIsClosed();
    void canBeClosedAndOpenedAgain();
    void pulledCableIsAResourceError();
    void pulledPortCanNotBeOpened();
    void comesBackUnderTheSameName();
    void comesBackWithTheOldOpeningStillThere();
    void bytesInFlightAreLost();
    void pullingTwiceIsPullingOnce();
    void destructionEndsThePort();

private:
    /// A raw 8N1 port at 57600 on the near end.
    bool open();

    std::unique_ptr<PseudoTerminal> pair;
    std::unique_ptr<QSerialPort> port;
};

namespace
{
QByteArray everyByte()
{
    QByteArray bytes;
    for (int value = 0; value < 256; ++value) {
        bytes.append(char(value));
    }
    return bytes;
}
} // namespace

void tst_PseudoTerminal::init()
{
    pair = std::make_unique<PseudoTerminal>();
    QVERIFY2(pair->isValid(), qPrintable(pair->errorString()));
    port = std::make_unique<QSerialPort>();
    QVERIFY2(open(), qPrintable(port->errorString()));
}

void tst_PseudoTerminal::cleanup()
{
    port.reset();
    pair.reset();
}

bool tst_PseudoTerminal::open()
{
    port->setPortName(pair->portName());
    return port->open(QIODevice::ReadWrite) && port->setBaudRate(57600);
}

void tst_PseudoTerminal::nameIsThatOfASerialPort()
{
    QVERIFY2(pair->portName().startsWith(QLatin1String("pts/")), qPrintable(pair->portName()));
    QCOMPARE(port->portName(), pair->portName());
}

void tst_PseudoTerminal::nameDoesNotComeAgain()
{
    QSet<QString> names;
    for (int i = 0; i < 20; ++i) {
        const PseudoTerminal another;
        QVERIFY(another.isValid());
        names.insert(another.portName());
    }
    QCOMPARE(names.size(), 20);
}

void tst_PseudoTerminal::bytesPassUnchanged_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("one byte") << QByteArray(1, '\xC1');
    QTest::newRow("control characters") << QByteArray("\x03\x04\r\n\x11\x13\x1A\x7F\0\xFF", 10);
    QTest::newRow("every byte") << everyByte();
    QTest::newRow("some thousand bytes") << everyByte().repeated(12);
}

void tst_PseudoTerminal::bytesPassUnchanged()
{
    QFETCH(QByteArray, bytes);
    QByteArray arrived;
    QSignalSpy notified(pair.get(), &PseudoTerminal::readyRead);
    port->write(bytes);
    QTRY_VERIFY_WITH_TIMEOUT(!notified.isEmpty(), 20000);
    QTRY_COMPARE_WITH_TIMEOUT((arrived += pair->read()), bytes, 20000);

    QCOMPARE(pair->write(bytes), bytes.size());
    QByteArray back;
    QTRY_COMPARE_WITH_TIMEOUT((back += port->readAll()), bytes, 20000);
    QVERIFY(pair->read().isEmpty()); // no echo
}

void tst_PseudoTerminal::readingNothingGivesNothing()
{
    QVERIFY(pair->read().isEmpty());
}

void tst_PseudoTerminal::seesTheBaudRate_data()
{
    QTest::addColumn<int>("rate");
    QTest::newRow("opening rate") << 1200;
    QTest::newRow("slow") << 9600;
    QTest::newRow("fast") << 57600;
    QTest::newRow("faster") << 115200;
}

void tst_PseudoTerminal::seesTheBaudRate()
{
    QFETCH(int, rate);
    QVERIFY(port->setBaudRate(rate));
    QCOMPARE(pair->baudRate(), rate);
}

void tst_PseudoTerminal::unusualRateIsZero()
{
    QVERIFY(port->setBaudRate(110));
    QCOMPARE(pair->baudRate(), 0);
}

void tst_PseudoTerminal::writingWithoutAReaderNeverBlocks()
{
    port->close();
    const QByteArray block(1000, 'x');
    int taken = block.size();
    int total = 0;
    for (int count = 0; count < 1000 && taken == block.size(); ++count) {
        taken = pair->write(block);
        total += taken;
    }
    QVERIFY(taken < block.size());
    QVERIFY(total > 0);
}

void tst_PseudoTerminal::nothingIsEchoedWhileThePortIsClosed()
{
    PseudoTerminal fresh; // whose settings no port has touched
    QVERIFY(fresh.isValid());
    QCOMPARE(fresh.write("noise\n"), 6);
    port->close();
    port->setPortName(fresh.portName());
    QVERIFY2(port->open(QIODevice::ReadWrite), qPrintable(port->errorString()));
    port->write("x");
    QByteArray arrived;
    QTRY_VERIFY_WITH_TIMEOUT((arrived += fresh.read()).endsWith('x'), 20000);
    QCOMPARE(arrived, QByteArray("x"));
    port->close();
}

void tst_PseudoTerminal::canBeClosedAndOpenedAgain()
{
    for (int count = 0; count < 3; ++count) {
        port->close();
        QVERIFY2(open(), qPrintable(port->errorString()));
        port->write("hello");
        QByteArray arrived;
        QTRY_COMPARE_WITH_TIMEOUT((arrived += pair->read()), QByteArray("hello"), 20000);
    }
}

void tst_PseudoTerminal::pulledCableIsAResourceError()
{
    qRegisterMetaType<QSerialPort::SerialPortError>();
    QSignalSpy errors(port.get(), &QSerialPort::errorOccurred);
    pair->unplug();
    QVERIFY(!pair->isPluggedIn());
    QTRY_COMPARE_WITH_TIMEOUT(port->error(), QSerialPort::ResourceError, 20000);
    QCOMPARE(errors.size(), 1);
    QCOMPARE(pair->write("lost"), 0);
}

void tst_PseudoTerminal::pulledPortCanNotBeOpened()
{
    port->close();
    pair->unplug();
    QVERIFY(!open());
    QCOMPARE(port->error(), QSerialPort::ResourceError);
    QVERIFY(!open());
}

void tst_PseudoTerminal::comesBackUnderTheSameName()
{
    const QString name = pair->portName();
    for (int count = 0; count < 5; ++count) {
        pair->unplug();
        QTRY_COMPARE_WITH_TIMEOUT(port->error(), QSerialPort::ResourceError, 20000);
        port->close();
        QVERIFY(pair->plugIn());
        QVERIFY(pair->isPluggedIn());
        QCOMPARE(pair->portName(), name);
        QVERIFY2(open(), qPrintable(port->errorString()));
        port->write("there");
        QByteArray arrived;
        QTRY_COMPARE_WITH_TIMEOUT((arrived += pair->read()), QByteArray("there"), 20000);
        pair->write("and back");
        QByteArray back;
        QTRY_COMPARE_WITH_TIMEOUT((back += port->readAll()), QByteArray("and back"), 20000);
    }
}

void tst_PseudoTerminal::comesBackWithTheOldOpeningStillThere()
{
    pair->unplug();
    QTRY_COMPARE_WITH_TIMEOUT(port->error(), QSerialPort::ResourceError, 20000);
    QVERIFY(pair->plugIn()); // before the port is closed
    port->close();
    QVERIFY2(open(), qPrintable(port->errorString()));
    port->write("x");
    QByteArray arrived;
    QTRY_COMPARE_WITH_TIMEOUT((arrived += pair->read()), QByteArray("x"), 20000);
}

void tst_PseudoTerminal::bytesInFlightAreLost()
{
    port->write("unheard");
    QVERIFY(port->waitForBytesWritten(20000));
    port->close();
    pair->write("unseen");
    pair->unplug();
    QVERIFY(pair->read().isEmpty());
    QVERIFY(pair->plugIn());
    QVERIFY(open());
    QVERIFY(pair->read().isEmpty());
    pair->write("seen");
    QByteArray back;
    QTRY_COMPARE_WITH_TIMEOUT((back += port->readAll()).size(), 4, 20000);
    QCOMPARE(back, QByteArray("seen"));
}

void tst_PseudoTerminal::pullingTwiceIsPullingOnce()
{
    port->close();
    pair->unplug();
    pair->unplug();
    QVERIFY(pair->plugIn());
    QVERIFY(pair->plugIn());
    QVERIFY(open());
}

void tst_PseudoTerminal::destructionEndsThePort()
{
    pair.reset();
    QTRY_VERIFY_WITH_TIMEOUT(port->error() != QSerialPort::NoError, 20000);
}

QTEST_GUILESS_MAIN(tst_PseudoTerminal)
#include "tst_PseudoTerminal.moc"
