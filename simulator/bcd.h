#pragma once

#include <QtGlobal>

/// Packed decimals: the tens in the high half of a byte, the ones in the low half.

/// The last two decimal digits of a value that isn't negative.
constexpr int toBcd(int value)
{
    return (value / 10 % 10) << 4 | value % 10;
}

/// -1 if one of the digits isn't one.
constexpr int fromBcd(char byte)
{
    const auto value = quint8(byte);
    return value >> 4 > 9 || (value & 0x0F) > 9 ? -1 : (value >> 4) * 10 + (value & 0x0F);
}
