#pragma once

#include "model/ScriptInfo.h"

#include <QtGlobal>

#include <cstddef>

/// Where the fields stand in the records of the device, for their reader and their writer. Numbers of several bytes are
/// little-endian.
namespace recordLayout
{

// Output: address, number, flags, then the numbers of the scripts to the end.
constexpr int outputAddress = 0;
constexpr int outputNumber = 1; ///< 3 bits
constexpr int outputFlags = 2;
constexpr int outputScripts = 3;
constexpr int outputLeastSize = outputScripts;
constexpr quint8 startStateFlag = 1;
constexpr quint8 returnFlag = 2;

// Terminal: address and model. What follows is not known, but its length tells how many outputs there are.
constexpr int terminalAddress = 0;
constexpr int terminalModel = 1;
constexpr int terminalLeastSize = 7;

// Script.
constexpr int scriptNumber = 0;
constexpr int scriptMode = 1;     ///< 3 bits
constexpr int scriptDuration = 2; ///< the upper 5 bits; below them the delay
constexpr int scriptState = 3;
constexpr int scriptTerminalStates = 4;
constexpr int scriptChannels = 5; ///< the upper half; below them the switches of the filters
constexpr int scriptDays = 6;
constexpr int scriptTypeFilter = 15;
constexpr int scriptAddresses = 18; ///< 32 bits: addresses 1 to 31, then the head unit
constexpr int scriptSize = 22;

/// A flag of a script: an item of a list, at a bit of its byte.
struct Flag
{
    int item;
    int bit;
};

constexpr Flag channelFlags[] = {{0, 4}, {1, 5}, {2, 6}, {3, 7}};
constexpr Flag filterFlags[] = {
    {ScriptInfo::ByType, 3}, {ScriptInfo::ByAddress, 2}, {ScriptInfo::ByTime, 0}, {ScriptInfo::ByDate, 1}};
constexpr Flag dayFlags[] = {{0, 1}, {1, 2}, {2, 3}, {3, 4}, {4, 5}, {5, 6}, {6, 0}};

/// A packed decimal number of a script: an item of a list, in a byte of its own, under a mask.
struct Decimal
{
    int item;
    int byte;
    quint8 mask;
};

constexpr Decimal timeDecimals[] = {{0, 7, 127}, {1, 8, 63}, {2, 11, 127}, {3, 12, 63}};
constexpr Decimal dateDecimals[] = {{0, 9, 63}, {1, 10, 31}, {2, 13, 63}, {3, 14, 31}};

} // namespace recordLayout
