#pragma once

#include <QByteArray>
#include <QMetaType>

#include <chrono>

/// One request as a simulated unit saw it. A plain value.
///
/// requestType numbers the device requests: 1 set time, 2 read time, 3 log block, 4 log information, 5 write output,
/// 6 write script, 7 read output, 8 read script, 9 check of a coordinator, 10 broadcast search, 12 to 16 busy list of
/// the classes 0 to 4, 17 to 21 terminal information of the classes 0 to 4, 22 enter the bootloader. The watch of a
/// connection looks like 9 on the wire. Anything else in a sound frame is unknownRequest.
///
/// bootType numbers the packets to the bootloader by their command: 2, 3, 4, 5 a full block, 6 the last block, 1.
struct UnitRequest
{
    static constexpr int unknownRequest = 99;

    std::chrono::steady_clock::time_point received; // when its last byte was read from the line
    QByteArray frame;                               // as on the wire, stuffing included
    int requestType = 0;                            // 0 for a boot packet
    int bootType = 0;                               // 0 for a device request
    int baudRate = 0;                               // of the line at that moment
    bool heard = false; // false: wrong rate, another coordinator's address, device request in the bootloader or the
                        // other way round, or a fault swallowed it
    QByteArray answer;  // the bytes that went out, without noise; empty if none did
};
Q_DECLARE_METATYPE(UnitRequest)
