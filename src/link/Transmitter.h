#pragma once

#include "link/LateAnswers.h"
#include "link/PortErrors.h"
#include "link/PortTrouble.h"
#include "link/RequestQueue.h"
#include "link/StatePort.h"
#include "link/message.h"

#include <QByteArray>
#include <QDateTime>
#include <QObject>
#include <QSerialPort>

#include <functional>
#include <optional>
#include <utility>

class QTimer;

/// The worker behind one serial port: puts one request at a time on the wire, gathers the bytes that come back, and
/// gives every request back exactly once: answered, timed out or failed. It never resends and doesn't know what a
/// request means.
///
/// Created without a parent by its Port, then moved to a thread of its own, where all its slots run, and reached
/// by the queued signals of that Port only. They name the worker that they mean as their first argument, and it ignores
/// what is meant for another. The serial port and the timers come into being with sl_initialization().
class Transmitter : public QObject
{
    Q_OBJECT

public:
    /// Parses the answer to a bootloader's request; runs on the worker's thread.
    using BootParser = std::function<message(const message&)>;

    explicit Transmitter(QObject* parent = nullptr);
    ~Transmitter() override;
    Q_DISABLE_COPY_MOVE(Transmitter)

    /// To be called before the worker moves to its thread. Without a parser no answer to a boot request is valid.
    void setBootParser(BootParser parser)
    {
        parseBootAnswer = std::move(parser);
    }

    /// To be called after setBootParser() and before the worker moves to its thread. From then on no request goes out
    /// while a late answer to another one may still come (see LateAnswers); without this, requests follow each other
    /// whatever is on its way.
    void keepLateAnswersApart();

public slots:
    /// Once, as the first slot of all: creates the port and the timers and opens the port.
    void sl_initialization(Transmitter* receiver, const QString& namePort);

    /// Opens the port anew at 1200 baud; an empty name means the present one. The queue and the request in flight stay.
    void sl_CheckPort(Transmitter* receiver, const QString& namePort);

    /// Closes the port. A request in flight ends by its answer timer; what is queued fails.
    void sl_ClosePort(Transmitter* receiver);

    /// Queues a request. One without bytes or without a type, or equal to a queued one, is dropped without a report.
    void sl_AddRequestInQueue(Transmitter* receiver, const message& mess);

    /// Finds out why the port of that name can't be used: on this thread, which has nothing to do with such a port,
    /// while the user's own one has. `isGone`: the device has been lost.
    void findTrouble(int number, const QString& portName, bool isGone);

    void sl_SendNextRequest();
    void sl_onPacketWritten(int n);
    void sl_onDataReceived();
    void sl_onTimeout();
    void sl_onPortError(QSerialPort::SerialPortError error);

signals:
    // All of them are emitted on the worker's thread; sender is this object, to be compared and never dereferenced
    // there.

    /// The state of the port was set, also to the value that it had.
    void sig_SendStatePort(Transmitter* sender, StatePort state);

    /// A request made the port change its baud rate to this one.
    void sig_SendBaudrate(Transmitter* sender, int baudrate);

    /// The end of a request, once for each that was queued.
    void sig_SendAnswer(Transmitter* sender, const message& answer);

    /// What findTrouble() has found, with the number that it was given.
    void troubleFound(int number, const PortTrouble& trouble);

    /// A request was written; periodic marks those of the once-a-second watch.
    void sig_SendRequestInForm(const QDateTime& time, const QByteArray& request, bool periodic);

    /// The bytes that a request got, at its end; none if it was never sent or met silence.
    void sig_SendAnswerInForm(const QDateTime& time, const QByteArray& answer, bool periodic);

private:
    enum FinishMode
    {
        FinishAnswered = 0,
        FinishPortError = 1,
        FinishTimeout = 2
    };

    void setState(StatePort newState);
    void takePortError(QSerialPort::SerialPortError error);
    void releaseLostPort();
    bool applyOpeningSettings();
    bool takeNext();
    bool isHeldBack(const message& mess);
    bool awaitsBytes();
    void goOnAfterDrop();
    bool passGate();
    void sendCurrent();
    bool takeBytes(const char* text);
    void dropBytes(const char* text);
    QByteArray readPort();
    void finishOrWait();
    void finishRequest(FinishMode mode);
    void endCurrent(FinishMode mode);
    QDebug logLine(const char* text) const;

    QSerialPort* port = nullptr;
    StatePort state = StateConnecting;
    std::optional<PortErrors> errors; ///< of the port
    RequestQueue queue;
    message current; ///< the request in flight; empty means none
    QTimer* timerAnswer = nullptr;
    QTimer* timerNextRequest = nullptr;
    quint16 answerTimeout = 120;       ///< ms
    quint16 nextRequestInterval = 500; ///< ms
    BootParser parseBootAnswer;
    std::optional<LateAnswers> lateAnswers;
    LateAnswers::Moment currentSent; ///< when the request in flight was written
    QTimer* timerQuiet = nullptr;    ///< ends a wait for late answers
};
