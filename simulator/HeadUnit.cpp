#include "simulator/HeadUnit.h"

#include "simulator/UnitClock.h"
#include "simulator/UnitRequest.h"

#include <array>

namespace
{
constexpr int recordsInBlock = 4;
constexpr int busyListLength = 16; // a bit for each of 128 addresses
constexpr int firstBusyType = 12;
constexpr int firstInfoType = 17;
constexpr quint8 continueFlag = 0x80;

quint8 byteAt(const QByteArray& bytes, int index)
{
    return quint8(bytes.at(index));
}

UnitReply refusal(quint8 code)
{
    return {code, {}};
}

QByteArray littleEndian(int value)
{
    QByteArray bytes;
    bytes.append(char(value & 0xFF));
    bytes.append(char((value >> 8) & 0xFF));
    return bytes;
}

} // namespace

HeadUnit::HeadUnit(UnitState& unitState) : state(unitState)
{
}

UnitReply HeadUnit::answer(const wire::Frame& request)
{
    using Handler = UnitReply (HeadUnit::*)(const wire::Frame&);
    constexpr int handledTypes = 23;
    static constexpr std::array<Handler, handledTypes> handlers{nullptr, // 0
                                                                &HeadUnit::setTime,
                                                                &HeadUnit::readTime, // 1, 2
                                                                &HeadUnit::readLogBlock,
                                                                &HeadUnit::readLogInfo, // 3, 4
                                                                &HeadUnit::writeOutput,
                                                                &HeadUnit::writeScript, // 5, 6
                                                                &HeadUnit::readOutput,
                                                                &HeadUnit::readScript, // 7, 8
                                                                &HeadUnit::identify,
                                                                &HeadUnit::readOutput, // 9, 10
                                                                nullptr,               // 11 looks like 9
                                                                &HeadUnit::busyList,
                                                                &HeadUnit::busyList, // 12, 13
                                                                &HeadUnit::busyList,
                                                                &HeadUnit::busyList, // 14, 15
                                                                &HeadUnit::busyList, // 16
                                                                &HeadUnit::terminalInfo,
                                                                &HeadUnit::terminalInfo, // 17, 18
                                                                &HeadUnit::terminalInfo,
                                                                &HeadUnit::terminalInfo, // 19, 20
                                                                &HeadUnit::terminalInfo,
                                                                &HeadUnit::enterBootloader}; // 21, 22

    const int type = wire::requestType(request);
    const Handler handler = type < handledTypes ? handlers.at(size_t(type)) : nullptr;
    return handler == nullptr ? refusal(UnknownCommand) : (this->*handler)(request);
}

void HeadUnit::logAnswerLost()
{
    logLost = true;
}

void HeadUnit::restart()
{
    logNext = 0;
    logPrevious = 0;
    logLost = false;
}

UnitReply HeadUnit::setTime(const wire::Frame& request)
{
    if (state.timeRefusal != 0) {
        return refusal(state.timeRefusal);
    }
    const QDateTime time = UnitClock::decoded(request.content.mid(1));
    if (!time.isValid()) {
        return refusal(BadParameter);
    }
    state.clockOffset = UnitClock::offsetFor(time);
    return {};
}

UnitReply HeadUnit::readTime(const wire::Frame& /*request*/)
{
    if (state.timeRefusal != 0) {
        return refusal(state.timeRefusal);
    }
    return {0, UnitClock::encoded(UnitClock::now(state.clockOffset))};
}

/// Newest block first, the oldest record first within a block. Records that come in meanwhile don't disturb a reading
/// that has begun; records that are overwritten meanwhile are missing at its end.
UnitReply HeadUnit::readLogBlock(const wire::Frame& request)
{
    if ((request.flags & continueFlag) == 0) {
        logNext = state.log.written();
    } else if (logLost && state.repeatsLostLogBlock) {
        logNext = logPrevious;
    }
    logLost = false;
    logPrevious = logNext;

    const qint64 oldest = state.log.written() - state.log.size();
    const qint64 begin = qMax(oldest, logNext - recordsInBlock);
    UnitReply reply;
    for (qint64 record = begin; record < logNext; ++record) {
        reply.data += state.log.at(int(record - oldest));
    }
    logNext = qMin(begin, logNext);
    return reply;
}

UnitReply HeadUnit::readLogInfo(const wire::Frame& /*request*/)
{
    const int wrapBit = state.log.wrapped() ? 0x8000 : 0;
    return {0, littleEndian(state.log.capacity()) + littleEndian(state.log.counter() | wrapBit)};
}

UnitReply HeadUnit::writeOutput(const wire::Frame& request)
{
    const int address = byteAt(request.content, 1);
    const int output = byteAt(request.content, 2);
    if (address >= UnitState::addressCount || output >= UnitState::outputsPerAddress) {
        return refusal(BadParameter);
    }
    state.outputs.at(size_t(address)).at(size_t(output)) = request.content.mid(3);
    return {};
}

UnitReply HeadUnit::writeScript(const wire::Frame& request)
{
    const int number = byteAt(request.content, 1);
    const QByteArray script = request.content.mid(2);
    if (number >= UnitState::scriptCount || script.size() != UnitState::scriptLength) {
        return refusal(BadParameter);
    }
    state.scripts.at(size_t(number)) = script;
    return {};
}

UnitReply HeadUnit::readOutput(const wire::Frame& request)
{
    const int address = byteAt(request.content, 1);
    const int output = byteAt(request.content, 2);
    if (address >= UnitState::addressCount || output >= UnitState::outputsPerAddress) {
        return refusal(BadParameter);
    }
    return {0, state.outputs.at(size_t(address)).at(size_t(output))};
}

UnitReply HeadUnit::readScript(const wire::Frame& request)
{
    const int number = byteAt(request.content, 1);
    if (number >= UnitState::scriptCount) {
        return refusal(BadParameter);
    }
    return {0, state.scripts.at(size_t(number))};
}

UnitReply HeadUnit::identify(const wire::Frame& /*request*/)
{
    QByteArray identity = littleEndian(state.serialNumber);
    identity.append(char(state.versionMinor));
    identity.append(char(state.versionMajor));
    return {0, identity};
}

UnitReply HeadUnit::busyList(const wire::Frame& request)
{
    const int channelClass = wire::requestType(request) - firstBusyType;
    UnitReply reply{0, QByteArray(busyListLength, '\0')};
    for (const UnitTerminal& terminal : std::as_const(state.terminals)) {
        const int bit = terminal.address - 1;
        if (terminal.channelClass == channelClass && bit >= 0 && bit < busyListLength * 8) {
            reply.data[bit / 8] = char(byteAt(reply.data, bit / 8) | (1 << (bit % 8)));
        }
    }
    return reply;
}

UnitReply HeadUnit::terminalInfo(const wire::Frame& request)
{
    const int channelClass = wire::requestType(request) - firstInfoType;
    const quint8 address = byteAt(request.content, request.content.size() - 1);
    for (const UnitTerminal& terminal : std::as_const(state.terminals)) {
        if (terminal.channelClass == channelClass && terminal.address == address) {
            return {0, terminal.infoRecord};
        }
    }
    return refusal(BadParameter);
}

UnitReply HeadUnit::enterBootloader(const wire::Frame& /*request*/)
{
    state.inBootloader = true;
    return {};
}
