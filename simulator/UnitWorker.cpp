#include "simulator/UnitWorker.h"

#include "simulator/UnitClock.h"

#include <QThread>

#include <algorithm>
#include <array>
#include <utility>

namespace
{
using namespace std::chrono_literals;
using Milliseconds = std::chrono::milliseconds;

constexpr int bootRate = 57600;
constexpr int bitsPerByte = 10;
constexpr int defaultRate = 57600;
constexpr auto frameGap = 100ms;   // a frame that stands still for longer will not be finished
constexpr auto deliveryTime = 4ms; // bytes come out of a serial adapter in gusts of about that length
constexpr qint64 regardless = -1;  // for bytes that go out whatever is asked meanwhile
constexpr auto stall = 80ms;       // shorter than the other side's patience
constexpr auto readingTime = 20ms; // for the other side to fetch what came before the cable is pulled

enum RequestType
{
    SetTime = 1,
    LogBlock = 3,
    WriteOutput = 5,
    WriteScript = 6,
    EnterBootloader = 22
};

bool changesState(const UnitRequest& request)
{
    constexpr std::array<int, 4> writing{SetTime, WriteOutput, WriteScript, EnterBootloader};
    return request.bootType != 0 || std::find(writing.begin(), writing.end(), request.requestType) != writing.end();
}

} // namespace

UnitWorker::UnitWorker(UnitState initialState) : state(std::move(initialState))
{
    connect(&port, &PseudoTerminal::readyRead, this, &UnitWorker::receive);
    connect(&growth, &QTimer::timeout, this, &UnitWorker::addEvent);
}

const PseudoTerminal& UnitWorker::line() const
{
    return port;
}

const UnitState& UnitWorker::unitState() const
{
    Q_ASSERT(QThread::currentThread() == thread());
    return state;
}

void UnitWorker::edit(const std::function<void(UnitState&)>& edit)
{
    Q_ASSERT(QThread::currentThread() == thread());
    edit(state);
    emit stateChanged();
}

void UnitWorker::setPace(UnitSimulator::Pace newPace, int newThinkingTime)
{
    Q_ASSERT(QThread::currentThread() == thread());
    pace = newPace;
    thinkingTime = newThinkingTime;
}

void UnitWorker::setFaults(const QVector<UnitFault>& faults, quint32 seed)
{
    Q_ASSERT(QThread::currentThread() == thread());
    plan = FaultPlan(faults, seed);
}

const QVector<UnitRequest>& UnitWorker::requestsSeen() const
{
    Q_ASSERT(QThread::currentThread() == thread());
    return seen;
}

void UnitWorker::forgetRequests()
{
    Q_ASSERT(QThread::currentThread() == thread());
    forgotten += seen.size();
    seen.clear();
}

void UnitWorker::unplug()
{
    Q_ASSERT(QThread::currentThread() == thread());
    ++pullCount;
    if (!port.isPluggedIn()) {
        return;
    }
    traffic.clear();
    cutter.reset();
    port.unplug();
    emit pluggedInChanged(false);
}

bool UnitWorker::plugIn()
{
    Q_ASSERT(QThread::currentThread() == thread());
    if (port.isPluggedIn()) {
        return true;
    }
    if (!port.plugIn()) {
        return false;
    }
    emit pluggedInChanged(true);
    return true;
}

void UnitWorker::sendRaw(const QByteArray& bytes)
{
    Q_ASSERT(QThread::currentThread() == thread());
    port.write(bytes);
}

void UnitWorker::growLog(int interval, quint32 seed)
{
    Q_ASSERT(QThread::currentThread() == thread());
    generator = LogGenerator(seed, LogGenerator::Everything);
    if (interval > 0) {
        growth.start(interval);
    } else {
        growth.stop();
    }
}

void UnitWorker::addEvent()
{
    Q_ASSERT(QThread::currentThread() == thread());
    state.log.append(generator.next(UnitClock::now(state.clockOffset)));
    emit stateChanged();
}

void UnitWorker::receive()
{
    Q_ASSERT(QThread::currentThread() == thread());
    const Moment now = Schedule::Clock::now();
    const QByteArray bytes = port.read();
    if (bytes.isEmpty()) {
        return;
    }
    if (now - lastRead > frameGap) {
        cutter.reset();
    }
    lastRead = now;
    baudRate = port.baudRate();

    const QVector<wire::Frame> frames = cutter.feed(bytes);
    const qint64 first = forgotten + seen.size();
    for (const wire::Frame& frame : frames) {
        UnitRequest request;
        request.received = now;
        request.frame = frame.raw;
        request.requestType = wire::requestType(frame);
        request.bootType = wire::bootType(frame);
        request.baudRate = baudRate;
        seen.append(request);
    }
    for (int index = 0; index < frames.size(); ++index) {
        receiveFrame(frames.at(index), first + index);
    }
}

void UnitWorker::receiveFrame(const wire::Frame& frame, qint64 number)
{
    Moment moment = lastRead;
    if (pace == UnitSimulator::OfTheWire) {
        inputFree = std::max(moment, inputFree) + timeOnWire(frame.raw.size());
        moment = inputFree;
    }
    moment += Milliseconds(thinkingTime);
    if (moment <= lastRead) {
        serve(frame, number, moment);
    } else {
        traffic.at(moment, [this, frame, number, moment] { serve(frame, number, moment); });
    }
}

void UnitWorker::serve(const wire::Frame& frame, qint64 number, Moment moment)
{
    if (number < forgotten) {
        return;
    }
    UnitRequest request = seen.at(int(number - forgotten));
    if (hears(frame, request.baudRate)) {
        if (!answerOut && answeredType == LogBlock) {
            unit.logAnswerLost();
        }
        answeredType = request.requestType;
        FaultEffects effects = plan.effectsOn(request.requestType, request.bootType);
        request.heard = !interrupted(effects);
        if (request.heard) {
            effects.answerLost = effects.answerLost || (effects.delay == 0 && isGivenUp(number));
            request.answer = answerTo(frame, request, effects);
            send(request.answer, effects, number, moment + Milliseconds(effects.delay));
        }
    }
    seen[int(number - forgotten)] = request;
    emit requestReceived(request);
    if (request.heard && changesState(request)) {
        emit stateChanged();
    }
}

/// The other side has asked again, or something else.
bool UnitWorker::isGivenUp(qint64 number) const
{
    return number <= abandoned || number + 1 < forgotten + seen.size() || port.hasInput();
}

bool UnitWorker::hears(const wire::Frame& frame, int rate) const
{
    if (!powered) {
        return false;
    }
    if (frame.kind == wire::Frame::Boot) {
        return state.inBootloader && rate == bootRate;
    }
    return !state.inBootloader && state.baudRates.contains(rate) &&
           (frame.address == 0 || frame.address == state.address);
}

/// True if the unit doesn't get to hear the request after all.
bool UnitWorker::interrupted(const FaultEffects& effects)
{
    if (effects.losesPower) {
        losePower(effects.powerOutage);
        return true;
    }
    if (effects.unplugs && effects.unplugAfter < 0) {
        unplugFor(effects.unplugTime);
        return true;
    }
    return effects.requestLost;
}

/// The whole answer as it goes out, or nothing.
QByteArray UnitWorker::answerTo(const wire::Frame& frame, const UnitRequest& request, const FaultEffects& effects)
{
    const bool isBoot = frame.kind == wire::Frame::Boot;
    UnitReply reply;
    if (effects.refused) {
        reply.code = effects.refusal;
    } else {
        reply = isBoot ? bootloader.answer(frame) : unit.answer(frame);
    }
    if (request.requestType == EnterBootloader && state.inBootloader) {
        bootloader.restart();
    }
    if (effects.spoilsAnswer() && !effects.refused && request.requestType == LogBlock) {
        unit.logAnswerLost();
    }
    if (effects.answerLost) {
        return {};
    }
    if (effects.replaced) {
        reply.data = effects.replacement;
    }
    if (effects.changed) {
        reply.data = effects.alteredData(reply.data);
    }
    QByteArray answer =
        isBoot ? wire::bootAnswer(reply.code, reply.data, effects.badChecksum)
               : wire::deviceAnswer(frame.frameKind, state.address, reply.code, reply.data, effects.badChecksum);
    const QByteArray former = std::exchange(lastAnswer, answer);
    if (effects.formerInstead) {
        return former;
    }
    answer = answer.repeated(effects.copies).prepend(effects.formerBefore ? former : QByteArray());
    if (effects.damaged) {
        answer = effects.damagedFrame(answer);
    }
    return answer;
}

void UnitWorker::send(QByteArray answer, const FaultEffects& effects, qint64 number, Moment begin)
{
    if (effects.unplugs) {
        answer.truncate(effects.unplugAfter);
    }
    const QByteArray rest = effects.takeRest(answer);
    QVector<QByteArray> pieces = effects.cut(answer);
    pieces.first().prepend(effects.noiseBefore);
    pieces.last().append(effects.noiseAfter);
    const qint64 partOf = effects.delay > 0 || pieces.size() > 1 ? regardless : number;
    answerOut = false;
    Moment end = begin;
    for (int index = 0; index < pieces.size(); ++index) {
        const bool isLast = index == pieces.size() - 1;
        end = transmit(pieces.at(index), partOf, isLast, index == 0 ? end : end + Milliseconds(effects.gap));
    }
    if (!rest.isEmpty()) {
        transmit(rest, regardless, true, end + Milliseconds(effects.restAfter));
    }
    if (!effects.noiseLater.isEmpty()) {
        transmit(effects.noiseLater, regardless, false, end + Milliseconds(effects.noiseLaterAfter));
    }
    if (effects.unplugs) {
        traffic.at(end + readingTime, [this, time = effects.unplugTime] { unplugFor(time); });
    }
}

/// Returns when the last byte is out.
UnitWorker::Moment UnitWorker::transmit(const QByteArray& bytes, qint64 number, bool ends, Moment begin)
{
    const bool paced = pace == UnitSimulator::OfTheWire;
    const Moment first = paced ? std::max(begin, outputFree) : begin;
    const int gusts = paced ? 1 + int(timeOnWire(bytes.size()) / deliveryTime) : 1;
    const int gust = bytes.size() / gusts + 1; // about the same each, so that no stray byte follows
    Moment due = first;
    for (int sent = 0; sent < bytes.size(); sent += gust) {
        const QByteArray part = bytes.mid(sent, gust);
        const bool isLast = ends && sent + gust >= bytes.size();
        due = paced ? first + timeOnWire(sent + part.size()) : first;
        if (due <= Schedule::Clock::now() && !paced) {
            put(part, number, isLast, due);
        } else {
            traffic.at(due, [this, part, number, isLast, due] { put(part, number, isLast, due); });
        }
    }
    outputFree = due;
    return due;
}

/// A part of the answer to a request. Once that is given up the rest of the answer is kept back. So is a log block when
/// this machine was away for so long that the other side may be about to give up: if both sides were of different minds
/// about whether it has arrived, records would be missing or come twice.
void UnitWorker::put(const QByteArray& bytes, qint64 number, bool ends, Moment due)
{
    const bool stalled = answeredType == LogBlock && Schedule::Clock::now() - due > stall;
    if (number != regardless && (isGivenUp(number) || stalled)) {
        abandoned = std::max(abandoned, number);
        return;
    }
    port.write(bytes);
    answerOut = answerOut || ends;
}

Schedule::Clock::duration UnitWorker::timeOnWire(int bytes) const
{
    const int rate = baudRate > 0 ? baudRate : defaultRate;
    return std::chrono::duration_cast<Schedule::Clock::duration>(1s) * bytes * bitsPerByte / rate;
}

void UnitWorker::unplugFor(int milliseconds)
{
    unplug();
    if (milliseconds > 0) {
        recovery.at(Schedule::Clock::now() + Milliseconds(milliseconds), [this, pull = pullCount] {
            if (pull == pullCount) {
                plugIn();
            }
        });
    }
}

void UnitWorker::losePower(int milliseconds)
{
    traffic.clear();
    cutter.reset();
    unit.restart();
    bootloader.restart();
    powered = false;
    recovery.at(Schedule::Clock::now() + Milliseconds(milliseconds), [this] { powered = true; });
}
