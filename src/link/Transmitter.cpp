#include "link/Transmitter.h"

#include "link/protocol_HUBN_NX_Q.h"

#include <QDebug>
#include <QLoggingCategory>
#include <QThread>
#include <QTimer>

#include <chrono>
#include <utility>

Transmitter::Transmitter(QObject* parent) : QObject(parent)
{
    // All travel in the queued signals of every worker.
    qRegisterMetaType<message>("message");
    qRegisterMetaType<PortTrouble>("PortTrouble");
    qRegisterMetaType<StatePort>("StatePort");
}

Transmitter::~Transmitter()
{
    if (port != nullptr && port->isOpen()) {
        port->close();
    }
}

void Transmitter::keepLateAnswersApart()
{
    lateAnswers.emplace([parseBoot = parseBootAnswer](const message& answer) {
        const message ofDevice = protocol_HUBN_NX_Q::parseAnswer(answer);
        return ofDevice.isValid() || !parseBoot ? ofDevice : parseBoot(answer);
    });
}

void Transmitter::sl_initialization(Transmitter* receiver, const QString& namePort)
{
    if (receiver != this) {
        return;
    }
    Q_ASSERT(QThread::currentThread() == thread());
    port = new QSerialPort(this);
    errors.emplace(*port);
    timerAnswer = new QTimer(this);
    timerAnswer->setInterval(answerTimeout);
    timerAnswer->setTimerType(Qt::PreciseTimer);
    timerNextRequest = new QTimer(this);
    timerNextRequest->setInterval(nextRequestInterval);
    timerQuiet = new QTimer(this);
    timerQuiet->setSingleShot(true);
    timerQuiet->setTimerType(Qt::PreciseTimer);
    connect(timerQuiet, &QTimer::timeout, this, &Transmitter::sl_SendNextRequest);
    connect(timerAnswer, &QTimer::timeout, this, &Transmitter::sl_onTimeout);
    connect(timerNextRequest, &QTimer::timeout, this, &Transmitter::sl_SendNextRequest);
    connect(port, &QSerialPort::bytesWritten, this, [this](qint64 n) { sl_onPacketWritten(int(n)); });
    connect(port, &QSerialPort::readyRead, this, &Transmitter::sl_onDataReceived);
    // Direct: opening the port counts on it that an error has set the state before open() returns.
    connect(port, &QSerialPort::errorOccurred, this, &Transmitter::takePortError, Qt::DirectConnection);
    sl_CheckPort(this, namePort);
}

void Transmitter::sl_CheckPort(Transmitter* receiver, const QString& namePort)
{
    if (receiver != this) {
        return;
    }
    Q_ASSERT(QThread::currentThread() == thread());
    setState(StateConnecting);
    if (port->isOpen()) {
        port->close();
    }
    if (!namePort.isEmpty()) {
        port->setPortName(namePort);
    }
    if (!applyOpeningSettings()) {
        setState(StateCreateError);
        logLine("): ERROR CREATE!");
        return;
    }
    if (port->open(QIODevice::ReadWrite)) {
        setState(StateSearching);
        logLine("): CREATE AND OPEN!");
    } else if (state == StateConnecting) {
        setState(StateOpenError); // something that is no serial port
    } else {
        emit sig_SendStatePort(this, state);
    }
}

void Transmitter::sl_ClosePort(Transmitter* receiver)
{
    if (receiver != this) {
        return;
    }
    Q_ASSERT(QThread::currentThread() == thread());
    if (port != nullptr && port->isOpen()) {
        port->close();
    }
    setState(StatePortDisabled);
}

void Transmitter::sl_AddRequestInQueue(Transmitter* receiver, const message& mess)
{
    if (receiver != this) {
        return;
    }
    Q_ASSERT(QThread::currentThread() == thread());
    if (mess.isEmpty() || (mess.requestType() == 0 && mess.bootType() == 0)) {
        return;
    }
    queue.add(mess);
    sl_SendNextRequest();
}

void Transmitter::findTrouble(int number, const QString& portName, bool isGone)
{
    Q_ASSERT(QThread::currentThread() == thread());
    emit troubleFound(number, PortTrouble::of(portName, isGone));
}

void Transmitter::sl_SendNextRequest()
{
    Q_ASSERT(QThread::currentThread() == thread());
    // A loop, since on an unusable port each request fails in turn and the queue may be long.
    forever
    {
        if (queue.isEmpty()) {
            timerNextRequest->stop();
        } else {
            timerNextRequest->start();
        }
        if (!current.isEmpty() || !takeNext()) {
            return;
        }
        if (passGate()) {
            sendCurrent();
            return;
        }
        endCurrent(FinishPortError);
    }
}

void Transmitter::sl_onPacketWritten(int /*n*/)
{
    Q_ASSERT(QThread::currentThread() == thread());
    timerAnswer->start();
}

void Transmitter::sl_onDataReceived()
{
    Q_ASSERT(QThread::currentThread() == thread());
    timerAnswer->stop();
    if (!awaitsBytes()) {
        dropBytes("): answer(by signal) without request: ");
        goOnAfterDrop();
        return;
    }
    takeBytes("): answer(by signal): ");
    if (current.bootType() != 0 && parseBootAnswer) {
        current = parseBootAnswer(current);
    }
    if (current.requestType() != 0) {
        current = protocol_HUBN_NX_Q::parseAnswer(current);
    }
    finishOrWait();
}

void Transmitter::sl_onTimeout()
{
    Q_ASSERT(QThread::currentThread() == thread());
    timerAnswer->stop();
    if (current.isEmpty() || (port->bytesAvailable() > 0 && !awaitsBytes())) {
        dropBytes("): answer(by timer) without request: ");
        goOnAfterDrop();
        return;
    }
    if (!takeBytes("): answer(by timer): ")) {
        finishRequest(FinishTimeout);
        return;
    }
    // Deliberately the device's parser even for a boot request, whose answer therefore can't be valid here.
    current = protocol_HUBN_NX_Q::parseAnswer(current);
    finishOrWait();
}

void Transmitter::sl_onPortError(QSerialPort::SerialPortError error)
{
    Q_ASSERT(QThread::currentThread() == thread());
    switch (error) {
    case QSerialPort::DeviceNotFoundError:
    case QSerialPort::ResourceError:
        if (state != StateNotFound) {
            state = StateNotFound;
            logLine("): PORT NOT FOUND!");
            emit sig_SendStatePort(this, state);
        }
        if (lateAnswers) {
            lateAnswers->forget();
        }
        releaseLostPort();
        break;
    case QSerialPort::PermissionError:
    case QSerialPort::OpenError:
    case QSerialPort::UnknownError:
        state = StateOpenError;
        logLine("): ERROR OPEN!");
        emit sig_SendStatePort(this, state);
        break;
    case QSerialPort::WriteError:
    case QSerialPort::ReadError:
        current.markPortFailed();
        logLine("): ERROR WRITE / READ !");
        errors->askWhetherGone();
        break;
    default:
        break;
    }
}

/// Acts on what the port reports, unless it is a misunderstanding, which may have kept bytes from being heard of.
void Transmitter::takePortError(QSerialPort::SerialPortError error)
{
    Q_ASSERT(QThread::currentThread() == thread());
    if (!errors->isMisunderstanding(error)) {
        sl_onPortError(error);
    } else if (port->bytesAvailable() > 0) {
        QMetaObject::invokeMethod(this, &Transmitter::sl_onDataReceived, Qt::QueuedConnection);
    }
}

void Transmitter::setState(StatePort newState)
{
    state = newState;
    emit sig_SendStatePort(this, state);
}

/// An open port whose device is gone keeps its thread spinning over bytes that it can neither read nor write, so it is
/// closed, once its own signal is done.
void Transmitter::releaseLostPort()
{
    const auto closeLostPort = [this] {
        if (state == StateNotFound && port->isOpen()) {
            port->close();
        }
    };
    QMetaObject::invokeMethod(this, closeLostPort, Qt::QueuedConnection);
}

bool Transmitter::applyOpeningSettings()
{
    // The rate is that of no device: the first request brings its own.
    return port->setBaudRate(QSerialPort::Baud1200) && port->setDataBits(QSerialPort::Data8) &&
           port->setParity(QSerialPort::NoParity) && port->setStopBits(QSerialPort::OneStop) &&
           port->setFlowControl(QSerialPort::NoFlowControl);
}

/// Makes the first request that may go out the current one; false if there is none.
bool Transmitter::takeNext()
{
    std::optional<message> next = queue.take([this](const message& mess) { return isHeldBack(mess); });
    if (next) {
        current = std::move(*next);
    } else if (const auto end = !queue.isEmpty() && lateAnswers ? lateAnswers->waitEnd() : std::nullopt) {
        timerQuiet->start(std::chrono::ceil<std::chrono::milliseconds>(*end - LateAnswers::Clock::now()));
    }
    return next.has_value();
}

/// Whether a request has to wait for late answers to others. On an unusable port none does: it fails or repairs it.
bool Transmitter::isHeldBack(const message& mess)
{
    const bool isUsable = state > StateNotFound && port->isOpen();
    return isUsable && lateAnswers && !lateAnswers->letsGo(mess, LateAnswers::Clock::now());
}

/// Whether the port can be used for the current request. The watch brings back a port that was lost, and the switch to
/// the bootloader opens one that the user has closed.
bool Transmitter::passGate()
{
    const int type = current.requestType();
    const bool opens = type == protocol_HUBN_NX_Q::Switch_To_Boot && !port->isOpen();
    const bool repairs = type == protocol_HUBN_NX_Q::Check_Coordinator && state <= StateNotFound;
    if (repairs && port->isOpen()) {
        port->close();
    }
    if ((opens || repairs) && port->open(QIODevice::ReadWrite)) {
        state = StateSearching;
    }
    return state > StateNotFound && port->isOpen();
}

void Transmitter::sendCurrent()
{
    if (port->baudRate() != current.baudrate()) {
        port->setBaudRate(current.baudrate());
        emit sig_SendBaudrate(this, port->baudRate());
    }
    // Late bytes of an earlier exchange are none of this request's answer.
    port->clear();
    currentSent = LateAnswers::Clock::now();
    errors->setWriting(true);
    port->write(current.request());
    // Straight away: the event loop would write it only after all that follows here.
    port->flush();
    errors->setWriting(false);
    emit sig_SendRequestInForm(QDateTime::currentDateTime(), current.request(), protocol_HUBN_NX_Q::isOfWatch(current));
    logLine("): request: ") << current.request().toHex();
    timerAnswer->start();
}

/// Reads what has arrived for the current request. False if there was nothing.
bool Transmitter::takeBytes(const char* text)
{
    const QByteArray bytes = readPort();
    current.appendRawAnswer(bytes);
    logLine(text) << bytes.toHex();
    return !bytes.isEmpty();
}

void Transmitter::dropBytes(const char* text)
{
    const QByteArray bytes = readPort();
    if (!bytes.isEmpty()) {
        logLine(text) << bytes.toHex();
    }
    if (port->isOpen()) {
        port->clear();
    }
    if (lateAnswers && current.isEmpty()) {
        lateAnswers->heardStray(bytes, LateAnswers::Clock::now());
    } else if (lateAnswers && !bytes.isEmpty()) {
        lateAnswers->heardForeign(LateAnswers::Clock::now());
    }
}

/// Whether bytes that come now belong to the request in flight.
bool Transmitter::awaitsBytes()
{
    return !current.isEmpty() && (!lateAnswers || lateAnswers->belongTo(current, LateAnswers::Clock::now()));
}

/// What was dropped may have been all that the next request waited for; the request in flight goes on waiting.
void Transmitter::goOnAfterDrop()
{
    if (!current.isEmpty()) {
        timerAnswer->start();
    } else if (lateAnswers) {
        sl_SendNextRequest();
    }
}

QByteArray Transmitter::readPort()
{
    return port->isOpen() ? port->readAll() : QByteArray();
}

void Transmitter::finishOrWait()
{
    if (current.isValid()) {
        finishRequest(FinishAnswered);
    } else {
        timerAnswer->start();
    }
}

void Transmitter::finishRequest(FinishMode mode)
{
    endCurrent(mode);
    sl_SendNextRequest();
}

void Transmitter::endCurrent(FinishMode mode)
{
    timerAnswer->stop();
    if (mode == FinishPortError) {
        current.markPortFailed();
    } else if (mode == FinishTimeout) {
        current.markTimedOut();
    }
    if (lateAnswers && mode != FinishPortError) {
        lateAnswers->ended(current, currentSent);
    }
    emit sig_SendAnswer(this, current);
    emit sig_SendAnswerInForm(QDateTime::currentDateTime(), current.rawAnswer(),
                              protocol_HUBN_NX_Q::isOfWatch(current));
    current = message();
}

/// Begins a diagnostic line, whose text closes its bracket; nothing where nobody reads it, since answers wait for it.
QDebug Transmitter::logLine(const char* text) const
{
    return !QLoggingCategory::defaultCategory()->isDebugEnabled()
               ? qDebug()
               : qDebug() << QTime::currentTime().toString(QStringLiteral("HH:mm:ss:zzz")) << " : " << this << " : "
                          << port->portName() << "(" << port->baudRate() << text;
}
