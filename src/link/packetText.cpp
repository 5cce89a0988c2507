#include "link/packetText.h"

#include "domain/byteAt.h"
#include "domain/logRecord.h"
#include "link/DeviceTime.h"
#include "link/TerminalSearch.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "texts/texts.h"

#include <QRegularExpression>

#include <iterator>

namespace packettext
{

namespace
{

using P = protocol_HUBN_NX_Q;
using Text = QString (*)();

constexpr char bootStart = '\xFA';
constexpr int headerSize = 5; ///< of a frame, up to and with its length

// By the ParseStatus of a frame that can't be read.
constexpr Text faults[] = {
    nullptr,
    &texts::packetBadByte,
    &texts::packetEmpty,
    &texts::packetTooShort,
    &texts::packetNoStart,
    &texts::packetBadKind,
    &texts::packetIncomplete,
    &texts::packetBadLength,
    nullptr, // the rest of a packet with a wrong checksum is told all the same
};

QString hexBytes(const QByteArray& bytes)
{
    return texts::packetBytes().arg(bytes.size()).arg(QString::fromLatin1(bytes.toHex(' ')));
}

int numberAt(const QByteArray& bytes, int offset)
{
    return byteAt(bytes, offset) | byteAt(bytes, offset + 1) << 8;
}

/// The checksum that stands at an offset.
QString checksumInWords(const QByteArray& packet, int offset, bool right)
{
    const QString value = QStringLiteral("%1").arg(numberAt(packet, offset), 4, 16, QLatin1Char('0')).toUpper();
    return (right ? texts::packetChecksumRight() : texts::packetChecksumWrong()).arg(value);
}

QString timeInWords(const QByteArray& data)
{
    message time;
    time.setAnswerCode(0);
    time.setPayload(data);
    return devicetime::fromAnswer(time).text;
}

// ---- Data of requests --------------------------------------------------------------------------------------------

QString dataOfRequest(int type, const QByteArray& frame)
{
    const QByteArray data = P::requestData(frame);
    switch (type) {
    case P::Sync_Time:
        return timeInWords(data);
    case P::Read_Log:
        return frame.at(3) == 0 ? texts::packetFirstBlock() : texts::packetNextBlock();
    case P::Read_Config:
        return texts::packetOutput().arg(byteAt(data, 0)).arg(byteAt(data, 1));
    case P::Write_Config:
        return data.size() < 2 ? hexBytes(data)
                               : texts::packetOutput().arg(byteAt(data, 0)).arg(byteAt(data, 1)) + QLatin1String(", ") +
                                     hexBytes(data);
    case P::Read_Script:
        return texts::packetScript().arg(byteAt(data, 0));
    case P::Write_Script:
        return texts::packetScript().arg(byteAt(data, 0)) + QLatin1String(", ") + hexBytes(data);
    default:
        break;
    }
    if (type >= P::Terminal_System_Info && type <= P::Terminal_Analog_Info) {
        return texts::packetTerminal().arg(byteAt(data, 0));
    }
    return data.isEmpty() ? QString() : hexBytes(data);
}

// ---- Data of answers ---------------------------------------------------------------------------------------------

QString addressesInUse(const QByteArray& bitmap)
{
    const QByteArray addresses = TerminalSearch::addressesInUse(bitmap);
    QStringList used;
    for (const char address : addresses) {
        used.append(QString::number(quint8(address)));
    }
    return used.isEmpty() ? texts::packetNoneInUse() : texts::packetInUse().arg(used.join(QLatin1String(", ")));
}

QString dataOfAnswer(int type, const QByteArray& data)
{
    if (type == P::Read_Time) {
        return timeInWords(data);
    }
    if (type == P::Read_Log) {
        return texts::packetEvents().arg(data.size() / logRecordSize) + QLatin1String(", ") + hexBytes(data);
    }
    if (type == P::Read_Info_Log && data.size() >= 4) {
        return texts::packetLogInfo().arg(numberAt(data, 0)).arg(numberAt(data, 2) & ~logWrappedBit);
    }
    if (type == P::Search_Address && data.size() >= 4) {
        return texts::packetCoordinator()
            .arg(numberAt(data, 0))
            .arg(byteAt(data, 3))
            .arg(byteAt(data, 2), 2, 10, QLatin1Char('0'));
    }
    if (type >= P::Busy_Channel_System && type <= P::Busy_Channel_Analog) {
        return addressesInUse(data);
    }
    return data.isEmpty() ? QString() : hexBytes(data);
}

// ---- Bootloader --------------------------------------------------------------------------------------------------

QString bootCode(int code)
{
    return texts::packetBootCode().arg(code, 2, 16, QLatin1Char('0'));
}

/// The byte as it came: 2 is no error here, 1 is.
QString bootResult(int result)
{
    constexpr Text meanings[] = {texts::packetAccepted, texts::packetBootWriteError, texts::packetAccepted};
    const bool isKnown = result < int(std::size(meanings));
    return bootCode(result) + QLatin1String(", ") + (isKnown ? meanings[result]() : texts::packetBootUnknownResult());
}

/// Start byte, number of bytes behind it, command or result, data, checksum over all but the start byte.
QStringList bootInWords(const QByteArray& bytes, const QString& whose, QString (*codeInWords)(int))
{
    const int start = bytes.indexOf(bootStart);
    if (start < 0) {
        return {whose, texts::packetNoStart()};
    }
    const QByteArray packet = bytes.mid(start);
    const int length = packet.size() > 1 ? byteAt(packet, 1) : 0;
    QStringList lines(whose);
    if (length < 3 || packet.size() < length + 2) {
        lines.append(packet.size() > 1 && length < 3 ? texts::packetBadLength() : texts::packetIncomplete());
        return lines;
    }
    lines.append(codeInWords(byteAt(packet, 2)));
    if (length > 3) {
        lines.append(hexBytes(packet.mid(3, length - 3)));
    }
    const bool right = P::checkCrc(packet, 1, quint16(length), quint16(numberAt(packet, length)));
    lines.append(checksumInWords(packet, length, right));
    return lines;
}

/// A line that says why the bytes are no packet; empty if they are one.
QString faultOf(ParseStatus status)
{
    const auto row = static_cast<std::size_t>(status);
    return row < std::size(faults) && faults[row] != nullptr ? faults[row]() : QString();
}

void appendUnlessEmpty(QStringList& lines, const QString& line)
{
    if (!line.isEmpty()) {
        lines.append(line);
    }
}

QRegularExpression formOfLine()
{
    return QRegularExpression(QStringLiteral("^(\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3})\\s+"
                                             "(request|answer)\\s+(-|[0-9a-f]{2}(?: [0-9a-f]{2})*)$"));
}

QString formOfTime()
{
    return QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz");
}

} // namespace

QStringList requestInWords(const QByteArray& request)
{
    if (request.startsWith(bootStart)) {
        return bootInWords(request, texts::packetBootRequest(), bootCode);
    }
    QByteArray frame;
    const ParseStatus status = P::cutFrame(request, P::requestStart, frame);
    const QString fault = faultOf(status);
    if (!fault.isEmpty()) {
        return {texts::packetNoRequest(), fault};
    }
    const int type = P::requestType(frame);
    QStringList lines(texts::packetRequest().arg(P::requestName(type)));
    const int address = byteAt(frame, 2);
    lines.append(address == 0 ? texts::packetToAll() : texts::packetTo().arg(address));
    appendUnlessEmpty(lines, dataOfRequest(type, frame));
    lines.append(checksumInWords(frame, headerSize + byteAt(frame, 4), status == PacketOk));
    return lines;
}

QStringList answerInWords(const QByteArray& answer, const QByteArray& request)
{
    if (answer.isEmpty()) {
        return {texts::wordNoAnswer()};
    }
    if (request.startsWith(bootStart) || (request.isEmpty() && answer.startsWith(bootStart))) {
        return bootInWords(answer, texts::packetBootAnswer(), bootResult);
    }
    QByteArray frame;
    const ParseStatus status = P::cutFrame(answer, P::answerStart, frame);
    const QString fault = faultOf(status);
    if (!fault.isEmpty()) {
        return {texts::packetNoAnswerPacket(), fault};
    }
    QByteArray requestFrame;
    const bool isKnown = P::cutFrame(request, P::requestStart, requestFrame) == PacketOk;
    const int type = isKnown ? P::requestType(requestFrame) : 0;
    QStringList lines(type > 0 ? texts::packetAnswerTo().arg(P::requestName(type)) : texts::packetAnswer());
    lines.append(texts::packetFrom().arg(byteAt(frame, 2)));
    const int code = byteAt(frame, headerSize);
    lines.append(code == 0 ? texts::packetAccepted() : texts::packetRefused().arg(code));
    // What a refusal carries is nothing of what was asked for.
    appendUnlessEmpty(lines, dataOfAnswer(code == 0 ? type : 0, frame.mid(headerSize + 1, byteAt(frame, 4) - 1)));
    lines.append(checksumInWords(frame, headerSize + byteAt(frame, 4), status == PacketOk));
    return lines;
}

QString fromPackets(const QList<Packet>& packets)
{
    QString text = texts::packetFileHead() + QLatin1Char('\n');
    for (const Packet& packet : packets) {
        text += QStringLiteral("%1  %2  %3\n")
                    .arg(packet.time.toString(formOfTime()),
                         QLatin1String(packet.direction == Packet::Request ? "request" : "answer "),
                         packet.bytes.isEmpty() ? QStringLiteral("-") : QString::fromLatin1(packet.bytes.toHex(' ')));
    }
    return text;
}

std::optional<QList<Packet>> toPackets(const QString& text, int* faultyLine)
{
    static const QRegularExpression form = formOfLine();
    QList<Packet> packets;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        const QString line = lines.at(i).trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#'))) {
            continue;
        }
        const QRegularExpressionMatch match = form.match(line);
        const QDateTime time = QDateTime::fromString(match.captured(1), formOfTime());
        if (!match.hasMatch() || !time.isValid()) {
            if (faultyLine != nullptr) {
                *faultyLine = i + 1;
            }
            return std::nullopt;
        }
        const bool isRequest = match.captured(2) == QLatin1String("request");
        const QString bytes = match.captured(3);
        packets.append({time, isRequest ? Packet::Request : Packet::Answer,
                        bytes == QLatin1String("-") ? QByteArray() : QByteArray::fromHex(bytes.toLatin1())});
    }
    return packets;
}

} // namespace packettext
