#include "simulator/UnitState.h"

#include <tuple>

UnitTerminal UnitTerminal::make(quint8 address, int channelClass, int version, int type, int characteristic,
                                int recordLength)
{
    UnitTerminal terminal;
    terminal.channelClass = channelClass;
    terminal.address = address;
    terminal.infoRecord = QByteArray(qMax(recordLength, 7), '\0');
    terminal.infoRecord[0] = char(address);
    terminal.infoRecord[1] = char((channelClass << 4) | (version & 0x0F));
    terminal.infoRecord[2] = char(type);
    terminal.infoRecord[3] = char(characteristic);
    return terminal;
}

bool UnitTerminal::operator==(const UnitTerminal& other) const
{
    return channelClass == other.channelClass && address == other.address && infoRecord == other.infoRecord;
}

bool UnitState::operator==(const UnitState& other) const
{
    const auto tied = [](const UnitState& state) {
        return std::tie(state.address, state.serialNumber, state.versionMajor, state.versionMinor, state.baudRates,
                        state.terminals, state.outputs, state.scripts, state.log, state.repeatsLostLogBlock,
                        state.timeRefusal, state.clockOffset, state.inBootloader, state.firmware,
                        state.firmwareComplete);
    };
    return tied(*this) == tied(other);
}

bool UnitState::operator!=(const UnitState& other) const
{
    return !(*this == other);
}

/// Off at power-up, no script.
QByteArray UnitState::emptyOutput()
{
    return {1, '\0'};
}

/// No trigger: state 255; channel 1, the first of January as both dates, any terminal.
QByteArray UnitState::emptyScript()
{
    return QByteArray::fromHex("0000ff001000000001010000"
                               "0101f0000000000000");
}

std::array<std::array<QByteArray, UnitState::outputsPerAddress>, UnitState::addressCount> UnitState::emptyOutputs()
{
    std::array<std::array<QByteArray, outputsPerAddress>, addressCount> all;
    for (auto& outputsOfAddress : all) {
        outputsOfAddress.fill(emptyOutput());
    }
    return all;
}

std::array<QByteArray, UnitState::scriptCount> UnitState::emptyScripts()
{
    std::array<QByteArray, scriptCount> all;
    all.fill(emptyScript());
    return all;
}
