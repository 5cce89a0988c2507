#include "simulator/Bootloader.h"

namespace
{
constexpr int fullBlock = 128;
constexpr int firstBytes = 2;
} // namespace

Bootloader::Bootloader(UnitState& unitState) : state(unitState)
{
}

UnitReply Bootloader::answer(const wire::Frame& packet)
{
    const QByteArray data = packet.content.mid(1);
    switch (packet.content.at(0)) {
    case 1:
        return {start(), {}};
    case 2:
        return {Accepted, {}};
    case 3:
        restart();
        state.firmware.clear();
        state.firmwareComplete = false;
        return {Accepted, {}};
    case 4:
        return {begin(data), {}};
    case 5:
        return {block(data), {}};
    default:
        return {UnknownCommand, {}};
    }
}

void Bootloader::restart()
{
    blocks = -1;
    lastBlock.clear();
}

Bootloader::Result Bootloader::begin(const QByteArray& data)
{
    if (data.size() != firstBytes) {
        return WriteError;
    }
    state.firmware = data;
    state.firmwareComplete = false;
    blocks = 0;
    lastBlock.clear();
    return Accepted;
}

Bootloader::Result Bootloader::block(const QByteArray& data)
{
    if (blocks > 0 && data == lastBlock) {
        return Accepted;
    }
    if (blocks < 0 || state.firmwareComplete || data.isEmpty() || data.size() > 1 + fullBlock ||
        quint8(data.at(0)) != (blocks & 0xFF)) {
        return WriteError;
    }
    state.firmware += data.mid(1);
    state.firmwareComplete = data.size() < 1 + fullBlock;
    lastBlock = data;
    ++blocks;
    return Accepted;
}

Bootloader::Result Bootloader::start()
{
    if (!state.firmwareComplete) {
        return WriteError;
    }
    state.inBootloader = false;
    restart();
    return Accepted;
}
