#include "link/TransmitterBench.h"
#include "support/ForeignThread.h"

#include <QThread>
#include <QtTest>

namespace
{

/// Counts what a worker on another thread gives back, on the thread of the test.
class Tally : public QObject
{
    Q_OBJECT

public:
    void watch(Transmitter* transmitter)
    {
        worker = transmitter;
        connect(worker, &Transmitter::sig_SendAnswer, this, &Tally::take);
    }

    /// Runs the event loop until that many different requests have come back.
    void waitFor(int count)
    {
        expected = count;
        QTimer::singleShot(3 * ends, &loop, &QEventLoop::quit);
        loop.exec();
    }

    QMap<QByteArray, int> times; ///< by request
    int failed = 0;
    int timedOut = 0;
    int valid = 0;
    bool consistent = true; ///< right sender, right thread, and each valid answer that of its request

private:
    void take(Transmitter* sender, const message& answer)
    {
        ++times[answer.request()];
        failed += answer.portFailed() ? 1 : 0;
        timedOut += answer.timedOut() ? 1 : 0;
        valid += answer.isValid() ? 1 : 0;
        consistent = consistent && sender == worker && QThread::currentThread() == thread() &&
                     (!answer.isValid() || answer.payload() == answer.request());
        if (times.size() == expected) {
            loop.quit();
        }
    }

    Transmitter* worker = nullptr;
    QEventLoop loop;
    int expected = 0;
};

} // namespace

/// A worker on a thread of its own.
class tst_TransmitterThreads : public QObject
{
    Q_OBJECT

private slots:
    void longQueueDrainsOnASmallStack();
    void givesEveryRequestBackOnceFromItsOwnThread();
    void noSlotRunsOnAForeignThread();
    void allThatCrossesIsAValue();
};

void tst_TransmitterThreads::longQueueDrainsOnASmallStack()
{
    constexpr int count = 4000;
    PseudoTerminal line;
    QThread thread;
    thread.setStackSize(512 * 1024);
    auto* const worker = new Transmitter;
    worker->moveToThread(&thread);
    connect(&thread, &QThread::finished, worker, &QObject::deleteLater);
    Tally tally;
    tally.watch(worker);
    thread.start();
    // In one go, so that the queue is complete when the port closes.
    QMetaObject::invokeMethod(worker, [&] {
        worker->sl_initialization(worker, line.portName());
        worker->sl_AddRequestInQueue(worker, request("in flight"));
        for (int i = 0; i < count; ++i) {
            worker->sl_AddRequestInQueue(worker, request(QByteArray::number(i).constData()));
        }
        worker->sl_ClosePort(worker);
    });
    tally.waitFor(count + 1);
    QCOMPARE(tally.failed, count);
    QCOMPARE(tally.timedOut, 1);
    thread.quit();
    QVERIFY(thread.wait());
}

void tst_TransmitterThreads::givesEveryRequestBackOnceFromItsOwnThread()
{
    constexpr int count = 300;
    PseudoTerminal line;
    QThread thread;
    auto* const worker = new Transmitter;
    worker->moveToThread(&thread);
    connect(&thread, &QThread::finished, worker, &QObject::deleteLater);
    Tally tally;
    tally.watch(worker);
    QRandomGenerator random(2020);
    connect(&line, &PseudoTerminal::readyRead, this, [&] {
        const QByteArray received = line.read();
        // Most are answered in two pieces, some not at all.
        if (random.bounded(20) != 0) {
            const QByteArray answer = frames::answer(0, received);
            const int cut = random.bounded(answer.size());
            line.write(answer.left(cut));
            line.write(answer.mid(cut));
        }
    });
    thread.start();
    QMetaObject::invokeMethod(worker, [&] { worker->sl_initialization(worker, line.portName()); });
    for (int i = 0; i < count; ++i) {
        const message mess = request(QByteArray::number(1000 + i).constData(), quint8(random.bounded(2) * 50 + 50));
        QMetaObject::invokeMethod(worker, [worker, mess] { worker->sl_AddRequestInQueue(worker, mess); });
    }
    tally.waitFor(count);
    QCOMPARE(tally.times.size(), count);
    thread.quit();
    QVERIFY(thread.wait());
    QCoreApplication::processEvents();
    QCOMPARE(tally.times.values(), QVector<int>(count, 1).toList());
    QVERIFY(tally.valid > count / 2);
    QCOMPARE(tally.valid + tally.timedOut, count);
    QVERIFY(tally.consistent);
}

void tst_TransmitterThreads::noSlotRunsOnAForeignThread()
{
    qRegisterMetaType<QSerialPort::SerialPortError>();
    PseudoTerminal line;
    Transmitter worker;
    worker.sl_initialization(&worker, line.portName());
    QCOMPARE(slotsForAnyThread(&worker), QStringList());
}

void tst_TransmitterThreads::allThatCrossesIsAValue()
{
    QCOMPARE(methodsThatShare(Transmitter::staticMetaObject), QStringList());
}

QTEST_GUILESS_MAIN(tst_TransmitterThreads)
#include "tst_TransmitterThreads.moc"
