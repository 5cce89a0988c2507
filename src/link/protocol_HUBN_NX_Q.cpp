#include "link/protocol_HUBN_NX_Q.h"

#include "domain/terminals.h"
#include "texts/texts.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace
{

using namespace std::string_view_literals;

constexpr quint8 escapeByte = 0xC0;
constexpr quint8 requestStart = protocol_HUBN_NX_Q::requestStart;
constexpr quint8 answerStart = protocol_HUBN_NX_Q::answerStart;

constexpr int shortestFrame = 8;
constexpr int headerSize = 5; ///< up to and with the length byte
constexpr int checksumSize = 2;

// The top bit of the kind is fixed for each request; what it means is the device's secret.
constexpr quint8 plainKind = 0x06;
constexpr quint8 markedKind = 0x86;

constexpr quint8 logContinues = 0x80;

constexpr quint8 urgent = 100;
constexpr quint8 background = 50;

/// What is constant in a request: its kind and the bytes from the command on, before the data that vary; and its names.
struct RequestForm
{
    int type;
    quint8 kind;
    quint8 priority;
    std::string_view command;
    int dataSize = 0; ///< of the bytes behind the command
    QString (*name)() = texts::packetUnknownRequest;
    const char* failure = "Error UNKNOWN COMMAND"; ///< what the debug log says of a failed step
};

constexpr int anySize = -1; ///< at least one byte

using P = protocol_HUBN_NX_Q;

// All requests there are; the numbers of their types may have gaps.
constexpr RequestForm forms[] = {
    {P::Sync_Time, markedKind, urgent, "\x05"sv, anySize, texts::packetSyncTime},
    {P::Read_Time, markedKind, background, "\x05"sv, 0, texts::packetReadTime},
    {P::Read_Log, markedKind, urgent, "\x06"sv, 0, texts::packetReadLog, "Error Read LOG!"},
    {P::Read_Info_Log, markedKind, urgent, "\x06\x00"sv, 0, texts::packetReadLogInfo, "Error Read Info about LOG!"},
    {P::Write_Config, markedKind, urgent, "\x01"sv, anySize, texts::packetWriteConfig, "Error Write CONFIGURATION!"},
    {P::Write_Script, markedKind, urgent, "\x02"sv, anySize, texts::packetWriteScript, "Error Write SCRIPT!"},
    {P::Read_Config, markedKind, urgent, "\x01"sv, 2, texts::packetReadConfig, "Error Read CONFIGURATION!"},
    {P::Read_Script, markedKind, urgent, "\x02"sv, 1, texts::packetReadScript, "Error Read SCRIPT!"},
    {P::Search_Address, plainKind, background, "\x61"sv, 0, texts::packetSearchAddress},
    {P::Search_Broadcast, markedKind, background, "\x01\x00\x00"sv, 0, texts::packetSearchAll},
    {P::Check_Coordinator, plainKind, background, "\x61"sv, 0, texts::packetSearchAddress},
    {P::Busy_Channel_System, plainKind, urgent, "\x7F\x15\xFF\xFF"sv, 0, texts::packetBusySystem,
     "Error Busy_Channel_System!"},
    {P::Busy_Channel_Sensor, plainKind, urgent, "\x15\xFF\xFF"sv, 0, texts::packetBusySensor,
     "Error Busy_Channel_Sensor!"},
    {P::Busy_Channel_Execute, plainKind, urgent, "\x35\xFF\xFF"sv, 0, texts::packetBusyExecutive,
     "Error Busy_Channel_Execute!"},
    {P::Busy_Channel_Interface, plainKind, urgent, "\x55\xFF\xFF"sv, 0, texts::packetBusyInterface,
     "Error Busy_Channel_Interface!"},
    {P::Busy_Channel_Analog, plainKind, urgent, "\x95\xFF\xFF"sv, 0, texts::packetBusyAnalog,
     "Error Busy_Channel_Analog!"},
    {P::Terminal_System_Info, plainKind, urgent, "\x7F\x14"sv, 1, texts::packetInfoSystem,
     "Error Terminal_System_Info!"},
    {P::Terminal_Sensor_Info, plainKind, urgent, "\x14"sv, 1, texts::packetInfoSensor, "Error Terminal_Sensor_Info!"},
    {P::Terminal_Execute_Info, plainKind, urgent, "\x34"sv, 1, texts::packetInfoExecutive,
     "Error Terminal_Execute_Info!"},
    {P::Terminal_Interface_Info, plainKind, urgent, "\x54"sv, 1, texts::packetInfoInterface,
     "Error Terminal_Interface_Info!"},
    {P::Terminal_Analog_Info, plainKind, urgent, "\x94"sv, 1, texts::packetInfoAnalog, "Error Terminal_Analog_Info!"},
    {P::Switch_To_Boot, plainKind, urgent, "\x6F"sv, 0, texts::packetSwitchToBoot},
};

// A question about a class that doesn't exist has no command and no type, but the length of one of the usual classes.
constexpr RequestForm unknownBusyChannels = {0, plainKind, urgent, "\xFF\xFF"sv};
constexpr RequestForm unknownTerminalInfo = {0, plainKind, urgent, ""sv};
constexpr RequestForm unknownRequest = {0, plainKind, background, ""sv};
constexpr int missingCommand = 1;

QByteArray frame(quint8 kind, quint8 address, quint8 flags, int length, const QByteArray& body)
{
    const quint8 header[headerSize] = {requestStart, kind, address, flags, quint8(length)};
    QByteArray bytes;
    bytes.reserve(headerSize + body.size() + checksumSize);
    for (const quint8 byte : header) {
        bytes.append(char(byte));
    }
    bytes.append(body);
    const int checksum = P::crc16(bytes);
    bytes.append(char(checksum & 0xFF));
    bytes.append(char(checksum >> 8));
    return P::stuffBytes(bytes);
}

message build(const RequestForm& form, quint8 address, const QByteArray& data = {}, quint8 flags = 0)
{
    const QByteArray body = QByteArray(form.command.data(), int(form.command.size())) + data;
    const int length = body.size() + (form.type == 0 ? missingCommand : 0);
    message result;
    result.setRequest(frame(form.kind, address, flags, length, body));
    result.setRequestType(form.type);
    result.setPriority(form.priority);
    return result;
}

/// The form of a type; that of no request if there is none.
const RequestForm& formOfType(int type)
{
    const auto* const found =
        std::find_if(std::begin(forms), std::end(forms), [type](const RequestForm& form) { return form.type == type; });
    return found != std::end(forms) ? *found : unknownRequest;
}

message build(P::RequestType type, quint8 address, const QByteArray& data = {}, quint8 flags = 0)
{
    return build(formOfType(type), address, data, flags);
}

bool isReserved(quint8 byte)
{
    return byte == escapeByte || byte == requestStart || byte == answerStart;
}

/// Takes the escapes out of a frame that begins with its start byte. False if it holds a byte that may not be there.
bool unstuff(QByteArray& frameBytes)
{
    int filled = 1;
    for (int i = 1; i < frameBytes.size(); ++i) {
        auto byte = quint8(frameBytes.at(i));
        if (byte == requestStart || byte == answerStart) {
            return false;
        }
        if (byte == escapeByte) {
            ++i;
            // Signed on purpose: the codes from 0x80 up pass, those from 0x03 to 0x7F don't.
            if (i == frameBytes.size() || qint8(frameBytes.at(i)) > 2) {
                return false;
            }
            byte = quint8(quint8(frameBytes.at(i)) - 0x40);
        }
        frameBytes[filled] = char(byte);
        ++filled;
    }
    frameBytes.truncate(filled);
    return true;
}

/// Whether a frame without escapes is a request of a form.
bool hasForm(const QByteArray& frameBytes, const RequestForm& form, bool ofAnySize)
{
    const QByteArray body = frameBytes.mid(headerSize, quint8(frameBytes.at(4)));
    const int dataSize = body.size() - int(form.command.size());
    const bool fits = ofAnySize ? form.dataSize == anySize && dataSize > 0 : form.dataSize == dataSize;
    // What a broadcast asks is, from a coordinator with an address, a question for an output.
    const bool isForIt = form.type != P::Search_Broadcast || frameBytes.at(2) == 0;
    return fits && isForIt && quint8(frameBytes.at(1)) == form.kind &&
           body.startsWith(QByteArray::fromRawData(form.command.data(), int(form.command.size())));
}

const RequestForm* formOf(const QByteArray& frameBytes)
{
    if (frameBytes.size() < shortestFrame) {
        return nullptr;
    }
    const RequestForm* found = nullptr;
    for (const bool ofAnySize : {false, true}) {
        for (const RequestForm& form : forms) {
            // Of two that are the same but for the address the later one asks for more of it.
            const bool isNarrower = found == nullptr || (!ofAnySize && form.type == P::Search_Broadcast);
            if (isNarrower && hasForm(frameBytes, form, ofAnySize)) {
                found = &form;
            }
        }
    }
    return found;
}

} // namespace

ParseStatus protocol_HUBN_NX_Q::cutFrame(const QByteArray& received, quint8 startByte, QByteArray& frameBytes)
{
    if (received.isEmpty()) {
        return PacketEmpty;
    }
    // The last start byte counts: what stands before it is noise or an older answer.
    const int start = received.lastIndexOf(char(startByte));
    if (start < 0) {
        return PacketNoStart;
    }
    frameBytes = received.mid(start);
    if (frameBytes.size() < 2) {
        return PacketTooShort;
    }
    if (!unstuff(frameBytes)) {
        return PacketBadByte;
    }
    if (frameBytes.size() < shortestFrame) {
        return PacketTooShort;
    }
    if ((quint8(frameBytes.at(1)) & 0x7F) != plainKind) {
        return PacketBadKind;
    }
    const int length = qint8(frameBytes.at(4));
    if (length + headerSize + 1 >= frameBytes.size()) {
        return PacketIncomplete;
    }
    // After the test above, so that a length with the top bit set ends here and not as incomplete.
    if (length <= 0) {
        return PacketBadLength;
    }
    const int end = headerSize + length;
    const int expected = quint8(frameBytes.at(end)) | quint8(frameBytes.at(end + 1)) << 8;
    return checkCrc(frameBytes, 0, quint16(end), quint16(expected)) ? PacketOk : PacketBadCrc;
}

int protocol_HUBN_NX_Q::requestType(const QByteArray& frame)
{
    const RequestForm* const form = formOf(frame);
    return form != nullptr ? form->type : 0;
}

QByteArray protocol_HUBN_NX_Q::requestData(const QByteArray& frame)
{
    const RequestForm* const form = formOf(frame);
    const int begin = headerSize + (form != nullptr ? int(form->command.size()) : 1);
    return frame.mid(begin, headerSize + quint8(frame.at(4)) - begin);
}

QString protocol_HUBN_NX_Q::requestName(int type)
{
    return formOfType(type).name();
}

const char* protocol_HUBN_NX_Q::failureLabel(int type)
{
    return formOfType(type).failure;
}

bool protocol_HUBN_NX_Q::isOfWatch(const message& request)
{
    return request.requestType() == Read_Time || request.requestType() == Check_Coordinator;
}

message protocol_HUBN_NX_Q::parseAnswer(message answer)
{
    constexpr int greatestCode = 11;
    QByteArray frameBytes;
    answer.setParseStatus(cutFrame(answer.rawAnswer(), answerStart, frameBytes));
    if (answer.isValid()) {
        const int code = qint8(frameBytes.at(headerSize));
        answer.setAnswerCode(code <= greatestCode ? code : message::noAnswerCode);
        answer.setPayload(frameBytes.mid(headerSize + 1, frameBytes.at(4) - 1));
    }
    return answer;
}

int protocol_HUBN_NX_Q::crc16(const QByteArray& bytes)
{
    // Qt's checksum is the same but for the final inversion.
    return bytes.isEmpty() ? -1 : qChecksum(bytes.constData(), uint(bytes.size()), Qt::ChecksumIso3309) ^ 0xFFFF;
}

bool protocol_HUBN_NX_Q::checkCrc(const QByteArray& bytes, quint16 first, quint16 last, quint16 expected)
{
    return quint16(crc16(bytes.mid(first, qMax(0, last - first)))) == expected;
}

QByteArray protocol_HUBN_NX_Q::stuffBytes(const QByteArray& frame)
{
    QByteArray stuffed = frame.left(1);
    stuffed.reserve(2 * frame.size());
    for (int i = 1; i < frame.size(); ++i) {
        const auto byte = quint8(frame.at(i));
        if (isReserved(byte)) {
            stuffed.append(char(escapeByte));
            stuffed.append(char(byte ^ escapeByte));
        } else {
            stuffed.append(char(byte));
        }
    }
    return stuffed;
}

int protocol_HUBN_NX_Q::nextBaudrate(int baudrate)
{
    switch (baudrate) {
    case 57600:
        return 9600;
    case 9600:
        return 0;
    default:
        return 57600;
    }
}

message protocol_HUBN_NX_Q::requestSyncTime(quint8 address, const QByteArray& data)
{
    return build(Sync_Time, address, data);
}

message protocol_HUBN_NX_Q::requestDeviceTime(quint8 address)
{
    return build(Read_Time, address);
}

message protocol_HUBN_NX_Q::requestReadLog(quint8 address, bool first)
{
    return build(Read_Log, address, {}, first ? 0 : logContinues);
}

message protocol_HUBN_NX_Q::requestReadLogInfo(quint8 address)
{
    return build(Read_Info_Log, address);
}

message protocol_HUBN_NX_Q::requestWriteConfig(quint8 address, const QByteArray& data)
{
    return build(Write_Config, address, data);
}

message protocol_HUBN_NX_Q::requestWriteScript(quint8 address, const QByteArray& data)
{
    return build(Write_Script, address, data);
}

message protocol_HUBN_NX_Q::requestReadConfig(quint8 address, quint8 terminal, quint8 output)
{
    message result = build(Read_Config, address, QByteArray(1, char(terminal)) + char(output));
    result.setAddress(terminal);
    result.setNumber(output);
    return result;
}

message protocol_HUBN_NX_Q::requestReadScript(quint8 address, quint8 number)
{
    message result = build(Read_Script, address, QByteArray(1, char(number)));
    result.setNumber(number);
    return result;
}

message protocol_HUBN_NX_Q::requestCheckCoordinator(quint8 address)
{
    return build(Search_Address, address);
}

message protocol_HUBN_NX_Q::requestSearchCoordinator()
{
    return build(Search_Broadcast, 0);
}

message protocol_HUBN_NX_Q::requestBusyChannels(quint8 address, quint8 channelClass)
{
    const bool known = channelClass < terminalClasses;
    message result = build(known ? formOfType(Busy_Channel_System + channelClass) : unknownBusyChannels, address);
    result.markRepeatCheck();
    return result;
}

message protocol_HUBN_NX_Q::requestTerminalInfo(quint8 address, quint8 channelClass, quint8 terminal)
{
    const bool known = channelClass < terminalClasses;
    message result = build(known ? formOfType(Terminal_System_Info + channelClass) : unknownTerminalInfo, address,
                           QByteArray(1, char(terminal)));
    result.markRepeatCheck();
    return result;
}

message protocol_HUBN_NX_Q::requestSwitchToBoot(quint8 address)
{
    return build(Switch_To_Boot, address);
}
