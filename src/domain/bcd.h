#pragma once

#include <QtGlobal>

/// Packed decimals, as the unit sends and takes its times: the tens in the high half of a byte, the ones in the low
/// half.

/// The last two decimal digits of a value, packed: 0x45 for 45 and for 145.
constexpr quint8 toBcd(quint8 value)
{
    return quint8((value / 10 % 10) << 4 | value % 10);
}

/// Low half plus ten times high half, whatever the halves hold.
constexpr quint8 fromBcd(quint8 byte)
{
    return quint8((byte >> 4) * 10 + (byte & 15));
}
