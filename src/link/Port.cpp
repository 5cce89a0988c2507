#include "link/Port.h"

#include "link/protocol_HUBN_NX_Q.h"

#include <QCalendar>
#include <QDebug>
#include <QSemaphore>
#include <QSharedPointer>
#include <QThread>

#include <chrono>
#include <utility>

Port::Port(const QString& name, Transmitter::BootParser parseBootAnswer, QObject* parent)
    : QObject(parent), portName(name), thread(new QThread), transmitter(new Transmitter), timerPeriodic(this),
      timerFirstConnect(this)
{
    timerPeriodic.setInterval(std::chrono::seconds(1));
    timerFirstConnect.setInterval(std::chrono::seconds(1));
    timerFirstConnect.setSingleShot(true);
    connect(&timerPeriodic, &QTimer::timeout, this, &Port::checkCoordinator);
    connect(&timerFirstConnect, &QTimer::timeout, this, &Port::repeatSearch);
    thread->setObjectName(name);
    transmitter->setBootParser(std::move(parseBootAnswer));
    transmitter->keepLateAnswersApart();
    transmitter->moveToThread(thread);
    connectWorker();
    // Qt makes its calendar when a time is first written, in which two workers might meet.
    [[maybe_unused]] const QCalendar calendar;
    thread->start(QThread::InheritPriority);
}

Port::~Port()
{
    stop();
    if (thread && thread->wait(*closing)) {
        delete thread;
    }
}

void Port::connectWorker()
{
    connect(this, &Port::initRequested, transmitter, &Transmitter::sl_initialization);
    connect(this, &Port::openRequested, transmitter, &Transmitter::sl_CheckPort);
    connect(this, &Port::closeRequested, transmitter, &Transmitter::sl_ClosePort);
    connect(this, &Port::sendRequested, transmitter, &Transmitter::sl_AddRequestInQueue);
    connect(transmitter, &Transmitter::sig_SendStatePort, this,
            [this](Transmitter*, StatePort state) { setState(state); });
    connect(transmitter, &Transmitter::sig_SendBaudrate, this,
            [this](Transmitter*, int baudrate) { setLineBaudrate(baudrate); });
    connect(transmitter, &Transmitter::sig_SendAnswer, this,
            [this](Transmitter*, const message& answer) { takeAnswer(answer); });
    connect(this, &Port::troubleAsked, transmitter, &Transmitter::findTrouble);
    connect(transmitter, &Transmitter::troubleFound, this, &Port::takeTrouble);
    connect(thread, &QThread::finished, transmitter, &QObject::deleteLater);
    connect(thread, &QThread::finished, thread, &QObject::deleteLater);
}

void Port::stop()
{
    if (closing) {
        return;
    }
    closing.emplace(closingTime);
    timerPeriodic.stop();
    timerFirstConnect.stop();
    // By the worker's queue, behind what it was told before. It closes the port when it goes. Its event loop must not
    // go while this thread still wakes it for that.
    const auto told = QSharedPointer<QSemaphore>::create();
    QMetaObject::invokeMethod(transmitter, [told] {
        told->acquire();
        QThread::currentThread()->quit();
    });
    told->release();
}

void Port::open()
{
    known.connected = true;
    switchWatch(false);
    emit changed();
    emit openRequested(transmitter, portName);
}

void Port::close()
{
    known.connected = false;
    known.lineBaudrate.reset();
    known.coordinator.reset();
    watchedAddress = noCoordinator;
    switchWatch(false);
    emit changed();
    emit closeRequested(transmitter);
}

void Port::setWatched(bool on)
{
    switchWatch(on);
    emit changed();
    // What the watch saw last says nothing from now on.
    if (!on) {
        emit statusDue();
    }
}

void Port::switchWatch(bool on)
{
    known.watched = on;
    if (on) {
        timerPeriodic.start();
    } else {
        timerPeriodic.stop();
    }
}

/// The system is asked once for each state: a port under watch is opened again and again. A cause that has gone is none
/// for an attempt that fails after it.
void Port::noteTrouble(StatePort reported)
{
    const bool isPast = known.trouble && known.trouble->cause == PortTrouble::Cause::Past;
    switch (reported) {
    case StateCreateError:
    case StateOpenError:
    case StateNotFound:
        isAttemptOver = false;
        if (reported != troubledState || isPast) {
            troubledState = reported;
            askTrouble(reported == StateNotFound);
        }
        break;
    case StateCoordinatorLost:
        break; // the cause may be known already
    case StatePortDisabled:
        // By the user, and not for a cause.
        if (!statePortTraits(known.state).autoDisconnect) {
            forgetTrouble();
        }
        break;
    default:
        forgetTrouble();
        break;
    }
}

void Port::askTrouble(bool isGone)
{
    known.troubleAwaited = true;
    emit troubleAsked(++troubleNumber, portName, isGone);
}

void Port::checkTrouble()
{
    if (known.trouble && !known.troubleAwaited) {
        isAttemptOver = true;
        askTrouble(false);
    }
}

void Port::takeTrouble(int number, PortTrouble trouble)
{
    if (number != troubleNumber || !known.troubleAwaited) {
        return; // the port has got on since
    }
    known.troubleAwaited = false;
    const QString before = known.trouble ? known.trouble->whatIsWrong() + known.trouble->whatToDo() : QString();
    if (isAttemptOver && known.trouble) {
        trouble.compareWith(*known.trouble);
    }
    const QString cause = trouble.whatIsWrong();
    const QString advice = trouble.whatToDo();
    known.trouble = std::move(trouble);
    if (cause + advice != before) {
        qDebug().noquote() << portName << ": " << cause << advice;
    }
    emit changed(); // at the least, it is no longer awaited
}

void Port::forgetTrouble()
{
    known.trouble.reset();
    troubledState.reset();
    known.troubleAwaited = false;
}

void Port::setState(StatePort state)
{
    noteTrouble(state);
    if (known.watched && state != StateCoordinatorConnected && state != StatePortDisabled) {
        state = StateCoordinatorLost;
    }
    // The cause stays in view after the port has been closed for it.
    if (state != StatePortDisabled || !statePortTraits(known.state).autoDisconnect) {
        known.state = state;
    }
    emit changed();
    emit statusDue();
    if (statePortTraits(state).autoDisconnect) {
        close();
    }
    if (state == StateSearching) {
        watchedAddress = noCoordinator;
        send(CoordinatorSearch::begin());
    }
}

void Port::setLineBaudrate(int baudrate)
{
    known.lineBaudrate = baudrate;
    emit changed();
}

void Port::takeAnswer(const message& answer)
{
    switch (answer.requestType()) {
    case protocol_HUBN_NX_Q::Search_Address:
    case protocol_HUBN_NX_Q::Search_Broadcast:
        answerSearch(answer);
        break;
    case protocol_HUBN_NX_Q::Check_Coordinator:
        answerCheck(answer);
        break;
    default:
        emit answered(answer);
        break;
    }
}

// Search.

void Port::answerSearch(const message& answer)
{
    if (answer.requestType() == protocol_HUBN_NX_Q::Search_Broadcast && !answer.rawAnswer().isEmpty()) {
        known.baudrate = answer.baudrate();
    }
    const CoordinatorSearch::Step step = CoordinatorSearch::next(answer);
    switch (step.verdict) {
    case CoordinatorSearch::Verdict::Going:
        send(step.request);
        break;
    case CoordinatorSearch::Verdict::Found:
        takeCoordinator(step.coordinator);
        setState(StateCoordinatorConnected);
        switchWatch(true);
        emit changed();
        break;
    case CoordinatorSearch::Verdict::Silent:
        setState(StateCoordinatorNotFound);
        if (isSearchRepeated && firstConnectAttempts != 0) {
            --firstConnectAttempts;
            scheduleSearch();
        }
        break;
    case CoordinatorSearch::Verdict::Nameless:
        // Something that isn't a coordinator is no reason to come back by oneself.
        setState(StateCoordinatorNotFound);
        break;
    }
}

bool Port::holdSearch()
{
    const bool isDue = timerFirstConnect.isActive();
    timerFirstConnect.stop();
    return isDue;
}

void Port::repeatSearch()
{
    timerFirstConnect.stop();
    if (isSearchRepeated) {
        open();
    }
}

// Watch.

void Port::checkCoordinator()
{
    if (isWatchResting) {
        return;
    }
    send(CoordinatorSearch::check(watchedAddress, known.baudrate));
    message timeRequest = protocol_HUBN_NX_Q::requestDeviceTime(watchedAddress);
    timeRequest.setBaudrate(known.baudrate);
    send(timeRequest);
}

void Port::answerCheck(const message& answer)
{
    // A check that was on its way when the port was disconnected has nothing to say any more.
    if (!known.connected) {
        return;
    }
    if (CoordinatorSearch::isPresent(answer)) {
        takeCoordinator(CoordinatorInfo::fromAnswer(answer));
        setState(StateCoordinatorConnected);
    } else {
        setState(StateCoordinatorLost);
    }
}

void Port::takeCoordinator(const CoordinatorInfo& coordinator)
{
    known.coordinator = coordinator;
    if (watchedAddress == noCoordinator) {
        watchedAddress = coordinator.address;
    }
    emit changed();
    emit coordinatorSeen();
}
