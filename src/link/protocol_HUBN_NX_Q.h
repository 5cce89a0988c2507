#pragma once

#include "link/message.h"

#include <QByteArray>
#include <QObject>

/// The packet format of the head unit and its coordinator: builders for every request, and the parser of answers.
///
/// A frame, before stuffing:
///
///     offset  size   content
///     0       1      start byte: 0xC1 request, 0xC2 answer
///     1       1      kind, 0x06 or 0x86
///     2       1      coordinator address, 0 in the broadcast search
///     3       1      flags
///     4       1      L, the number of bytes from offset 5 up to the checksum
///     5       1      command code; in an answer the result code
///     6       L - 1  data
///     5 + L   2      checksum over all bytes before it, low byte first
///
/// From the second byte on, each of the reserved bytes 0xC0, 0xC1 and 0xC2 is replaced on the wire by 0xC0 and the byte
/// XOR 0xC0. There is no end byte and no sequence number.
///
/// Everything is static and without state, so it may be called on any thread. Nothing here fails, logs or blocks.
class protocol_HUBN_NX_Q : public QObject
{
    Q_OBJECT

public:
    /// The kinds of request, as message::requestType() holds them.
    enum RequestType
    {
        Sync_Time = 1,
        Read_Time = 2,
        Read_Log = 3,
        Read_Info_Log = 4,
        Write_Config = 5,
        Write_Script = 6,
        Read_Config = 7,
        Read_Script = 8,
        Search_Address = 9,
        Search_Broadcast = 10,
        Check_Coordinator = 11, ///< built as Search_Address; the type is overwritten by who sends it
        Busy_Channel_System = 12,
        Busy_Channel_Sensor = 13,
        Busy_Channel_Execute = 14,
        Busy_Channel_Interface = 15,
        Busy_Channel_Analog = 16,
        Terminal_System_Info = 17,
        Terminal_Sensor_Info = 18,
        Terminal_Execute_Info = 19,
        Terminal_Interface_Info = 20,
        Terminal_Analog_Info = 21,
        Switch_To_Boot = 22,
    };

    /// Cuts the answer out of rawAnswer(), from the last start byte in it on, and returns the record with its
    /// parseStatus() set and, if that is PacketOk, its answerCode() and payload().
    static message parseAnswer(message answer);

    /// Cuts the frame that begins with the last of the given start bytes out of some bytes and judges it. On PacketOk
    /// and PacketBadCrc the frame is there with its escapes taken out, and with what stands behind its checksum.
    static ParseStatus cutFrame(const QByteArray& received, quint8 startByte, QByteArray& frameBytes);

    /// Which request a frame without escapes is, a RequestType; 0 for none of them. Check_Coordinator is a
    /// Search_Address on the wire.
    static int requestType(const QByteArray& frame);

    /// What a type is called in words, and what the debug log says of a failed attempt at it. Any number may be asked
    /// for.
    static QString requestName(int type);
    static const char* failureLabel(int type);

    /// Whether a request is one of those that the once-a-second watch sends.
    static bool isOfWatch(const message& request);

    /// The data of a request, which is what follows its command.
    static QByteArray requestData(const QByteArray& frame);

    static constexpr quint8 requestStart = 0xC1;
    static constexpr quint8 answerStart = 0xC2;

    /// CRC-16/MCRF4XX of the whole array, -1 for an empty one.
    static int crc16(const QByteArray& bytes);

    /// Whether the bytes from index first up to, but not including, last have the expected checksum. An empty range has
    /// the checksum 0xFFFF.
    static bool checkCrc(const QByteArray& bytes, quint16 first, quint16 last, quint16 expected);

    /// Escapes the reserved bytes from the second byte on.
    static QByteArray stuffBytes(const QByteArray& frame);

    /// The baud rate that the search tries after the given one; 0 means that the sweep has ended.
    static int nextBaudrate(int baudrate);

    // Builders. The address is that of the coordinator; the baud rate stays at its default.

    /// data: second, minute, hour, day of the month, day of the week (Sunday 0), month, year of the century; all BCD
    /// but the day of the week.
    static message requestSyncTime(quint8 address, const QByteArray& data);
    static message requestDeviceTime(quint8 address);

    /// The first request starts a reading of the log, the following ones continue it.
    static message requestReadLog(quint8 address, bool first);
    static message requestReadLogInfo(quint8 address);
    static message requestWriteConfig(quint8 address, const QByteArray& data);
    static message requestWriteScript(quint8 address, const QByteArray& data);
    static message requestReadConfig(quint8 address, quint8 terminal, quint8 output);
    static message requestReadScript(quint8 address, quint8 number);
    static message requestCheckCoordinator(quint8 address);
    static message requestSearchCoordinator();

    /// channelClass: a TerminalClass that terminals have. Any other one gives a message without a type, which no queue
    /// accepts.
    static message requestBusyChannels(quint8 address, quint8 channelClass);
    static message requestTerminalInfo(quint8 address, quint8 channelClass, quint8 terminal);
    static message requestSwitchToBoot(quint8 address);
};
