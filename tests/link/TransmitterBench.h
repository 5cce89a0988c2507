#pragma once

#include "link/Transmitter.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "simulator/PseudoTerminal.h"
#include "support/AnswerFrames.h"

#include <QElapsedTimer>
#include <QSerialPort>
#include <QtTest>

#include <functional>

constexpr int ends = 20000; ///< ms; generous, for busy machines

/// A request that is told from others by its bytes alone.
inline message request(const char* bytes, quint8 priority = 100)
{
    message mess = protocol_HUBN_NX_Q::requestReadLogInfo(1);
    mess.setRequest(bytes);
    mess.setPriority(priority);
    return mess;
}

inline message watchRequest()
{
    message mess = protocol_HUBN_NX_Q::requestCheckCoordinator(1);
    mess.setRequestType(protocol_HUBN_NX_Q::Check_Coordinator);
    return mess;
}

inline message bootRequest()
{
    message mess;
    mess.setRequest(frames::hex("FA0302C2F9"));
    mess.setBootType(2);
    return mess;
}

/// A worker on the thread of the test, with the far end of its line and a record of all it reports.
class Bench : public QObject
{
public:
    Bench()
    {
        connect(&worker, &Transmitter::sig_SendStatePort, this, [this](Transmitter* sender, StatePort state) {
            QCOMPARE(sender, &worker);
            states.append(state);
        });
        connect(&worker, &Transmitter::sig_SendBaudrate, this, [this](Transmitter* sender, int baudrate) {
            QCOMPARE(sender, &worker);
            baudrates.append(baudrate);
        });
        connect(&worker, &Transmitter::sig_SendAnswer, this, [this](Transmitter* sender, const message& answer) {
            QCOMPARE(sender, &worker);
            answers.append(answer);
            answerMoments.append(clock.elapsed());
        });
        connect(&worker, &Transmitter::sig_SendRequestInForm, this,
                [this](const QDateTime& time, const QByteArray& bytes, bool periodic) {
                    QVERIFY(qAbs(time.secsTo(QDateTime::currentDateTime())) <= 5);
                    shownRequests.append(bytes);
                    requestFlags.append(periodic);
                    requestMoments.append(clock.elapsed());
                });
        connect(&worker, &Transmitter::sig_SendAnswerInForm, this,
                [this](const QDateTime& time, const QByteArray& bytes, bool periodic) {
                    QVERIFY(qAbs(time.secsTo(QDateTime::currentDateTime())) <= 5);
                    shownAnswers.append(bytes);
                    answerFlags.append(periodic);
                });
        connect(&line, &PseudoTerminal::readyRead, this, [this] {
            const QByteArray bytes = line.read();
            received.append(bytes);
            if (onReceived) {
                onReceived(bytes);
            }
        });
        clock.start();
    }

    /// Opens the port and forgets how that went.
    void open()
    {
        worker.sl_initialization(&worker, line.portName());
        QCOMPARE(states, (QList<int>{StateConnecting, StateSearching}));
        states.clear();
    }

    void send(const message& mess)
    {
        worker.sl_AddRequestInQueue(&worker, mess);
    }

    QSerialPort* port() const
    {
        return worker.findChild<QSerialPort*>();
    }

    QByteArrayList answeredRequests() const
    {
        QByteArrayList result;
        for (const message& answer : answers) {
            result.append(answer.request());
        }
        return result;
    }

    PseudoTerminal line;
    Transmitter worker;
    std::function<void(const QByteArray&)> onReceived;
    QByteArray received;
    QList<int> states;
    QList<int> baudrates;
    QList<message> answers;
    QByteArrayList shownRequests;
    QByteArrayList shownAnswers;
    QList<bool> requestFlags;
    QList<bool> answerFlags;
    QElapsedTimer clock;
    QList<qint64> requestMoments;
    QList<qint64> answerMoments;
};
