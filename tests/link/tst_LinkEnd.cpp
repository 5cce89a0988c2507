#include "LinkRecorder.h"
#include "simulator/UnitSimulator.h"
#include "support/Eventually.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QSemaphore>
#include <QSerialPort>
#include <QThread>
#include <QtTest>

#include <array>
#include <memory>

namespace
{

/// A unit that can be told from others by what it keeps.
UnitState unitWith(quint8 mark)
{
    UnitState state;
    state.serialNumber = mark;
    for (int number = 0; number < UnitState::scriptCount; ++number) {
        state.scripts.at(size_t(number)) = QByteArray(UnitState::scriptLength, char(mark));
    }
    return state;
}

/// Whether the first port has found its unit and the search for terminals is over. On a busy machine a unit may miss
/// its address in the search, which isn't repeated by itself.
bool isReady(const LinkRecorder& recorder)
{
    if (!recorder.info().connected) {
        recorder.port()->open();
    }
    return recorder.has(QStringLiteral("terminals"));
}

bool canBeOpened(const QString& portName)
{
    QSerialPort port(portName);
    return port.open(QIODevice::ReadWrite);
}

/// A moment at which many workers are stuck, as the system may keep them; each goes on when it is let go.
class StuckWorkers
{
public:
    void hold(const Port& port)
    {
        QMetaObject::invokeMethod(port.worker(), [gate = gate] {
            gate->isStuck.release();
            gate->letGo.acquire();
        });
        gate->isStuck.acquire();
        ++count;
    }

    void letGo()
    {
        gate->letGo.release(count);
        count = 0;
    }

private:
    struct Gate
    {
        QSemaphore isStuck;
        QSemaphore letGo;
    };

    std::shared_ptr<Gate> gate = std::make_shared<Gate>(); ///< also the workers', which go on without the test
    int count = 0;
};

} // namespace

/// Links that are one of several, and how each comes to its end.
class tst_LinkEnd : public QObject
{
    Q_OBJECT

private slots:
    void twoLinksReadTwoUnitsSideBySide();
    void theEndOfOneLinkLeavesTheOtherAlone();
    void theEndClosesThePortsAndEndsTheThreads();
    void theEndDoesNotWaitForStuckPorts();
    void linksCanEndAtAnyMoment();
};

void tst_LinkEnd::twoLinksReadTwoUnitsSideBySide()
{
    const UnitSimulator first(unitWith(2));
    const UnitSimulator second(unitWith(5));
    LinkRecorder one({first.portName()});
    LinkRecorder other({second.portName()});
    EVENTUALLY(isReady(one) && isReady(other));
    one.link.readConfiguration();
    other.link.readConfiguration();
    EVENTUALLY(one.has(QStringLiteral("scripts")) && other.has(QStringLiteral("scripts")));
    QCOMPARE(one.outputs.size(), 70);
    QCOMPARE(other.outputs.size(), 70);
    QCOMPARE(one.scripts.size(), 32);
    QCOMPARE(other.scripts.size(), 32);
    for (int number = 0; number < 32; ++number) {
        QCOMPARE(one.scripts.at(number), char(number) + QByteArray(UnitState::scriptLength, '\2'));
        QCOMPARE(other.scripts.at(number), char(number) + QByteArray(UnitState::scriptLength, '\5'));
    }
    QCOMPARE(one.identityOf(), QStringLiteral("57600 1 2 6.02"));
    QCOMPARE(other.identityOf(), QStringLiteral("57600 1 5 6.02"));
}

void tst_LinkEnd::theEndOfOneLinkLeavesTheOtherAlone()
{
    const UnitSimulator first(unitWith(2));
    const UnitSimulator second(unitWith(5));
    auto one = std::make_unique<LinkRecorder>(QStringList(first.portName()));
    LinkRecorder other({second.portName()});
    EVENTUALLY(isReady(*one) && isReady(other));
    one->link.readConfiguration();
    other.link.readConfiguration();
    EVENTUALLY(one->has(QStringLiteral("send 7")));
    one.reset();
    QVERIFY(canBeOpened(first.portName()));
    EVENTUALLY(other.has(QStringLiteral("scripts 32")));
}

void tst_LinkEnd::theEndClosesThePortsAndEndsTheThreads()
{
    const UnitSimulator idle(unitWith(1));
    UnitSimulator asked(unitWith(2));
    asked.setFaults({UnitFault(UnitFault::LoseAnswer)});
    QVector<QPointer<QThread>> threads;
    {
        const LinkRecorder recorder({idle.portName(), asked.portName(), portA});
        EVENTUALLY(isReady(recorder));
        for (const Port* const port : recorder.link.ports()) {
            threads.append(port->worker()->thread());
        }
    }
    QCOMPARE(threads, QVector<QPointer<QThread>>(3));
    QVERIFY(canBeOpened(idle.portName()));
    QVERIFY(canBeOpened(asked.portName()));
}

void tst_LinkEnd::theEndDoesNotWaitForStuckPorts()
{
    constexpr int stuckPorts = 10;
    const UnitSimulator unit;
    StuckWorkers stuck;
    QElapsedTimer clock;
    QVector<QPointer<QThread>> threads;
    {
        QStringList names{unit.portName()};
        for (int number = 0; number < stuckPorts; ++number) {
            names.append(portA + QString::number(number));
        }
        const LinkRecorder recorder(names);
        EVENTUALLY(isReady(recorder));
        for (int index = 1; index <= stuckPorts; ++index) {
            stuck.hold(*recorder.port(index));
            threads.append(recorder.port(index)->worker()->thread());
        }
        clock.start();
    }
    const qint64 time = clock.elapsed();
    // For all of them together, and with room for a busy machine.
    QVERIFY(time >= Port::closingTime);
    QVERIFY2(time < stuckPorts * Port::closingTime, qPrintable(QString::number(time)));
    // The other port was closed all the same.
    QVERIFY(canBeOpened(unit.portName()));
    // And they go when they can.
    QVERIFY(!threads.contains(nullptr));
    stuck.letGo();
    EVENTUALLY(threads == QVector<QPointer<QThread>>(stuckPorts));
}

void tst_LinkEnd::linksCanEndAtAnyMoment()
{
    const UnitSimulator unit;
    // From the first question to the last of the search for terminals, several times over.
    constexpr int questions = 12;
    for (int moment = 0; moment < 5 * questions; ++moment) {
        const LinkRecorder recorder({unit.portName(), portA});
        EVENTUALLY(recorder.sent.size() >= moment % questions || !recorder.info().connected);
    }
    const LinkRecorder recorder({unit.portName()});
    EVENTUALLY(isReady(recorder));
}

QTEST_GUILESS_MAIN(tst_LinkEnd)
#include "tst_LinkEnd.moc"
