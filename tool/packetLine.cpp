#include "tool/packetLine.h"

#include "texts/texts.h"

#include <QRegularExpression>
#include <QStringList>

namespace
{

using Packets = std::optional<QVector<GivenPacket>>;

/// Bytes in hexadecimal; blanks may stand between bytes, not within one.
std::optional<QByteArray> bytesOf(const QString& text)
{
    static const QRegularExpression form(QStringLiteral("^\\s*(?:[0-9a-fA-F]{2}\\s*)+$"));
    if (!form.match(text).hasMatch()) {
        return std::nullopt;
    }
    return QByteArray::fromHex(text.toLatin1());
}

bool saysNoAnswer(const QString& cell)
{
    return cell == QLatin1String("-") || cell.contains(QLatin1Char('<') + texts::wordNoAnswer() + QLatin1Char('>'));
}

/// Adds the packet of a cell. A cell without anything has none; returns false if it has something else.
bool addCell(QVector<GivenPacket>& packets, const QString& time, Packet::Direction direction, const QString& cell)
{
    if (cell.isEmpty()) {
        return true;
    }
    const std::optional<QByteArray> bytes = saysNoAnswer(cell) ? QByteArray() : bytesOf(cell);
    if (bytes) {
        packets.append({time, direction, *bytes});
    }
    return bytes.has_value();
}

std::optional<Packet::Direction> directionOf(const QString& word)
{
    if (word == QLatin1String("request")) {
        return Packet::Request;
    }
    return word == QLatin1String("answer") ? std::optional(Packet::Answer) : std::nullopt;
}

/// A row of the packet logger: time and bytes of the request, time and bytes of the answer. Or time, direction, bytes.
Packets packetsOfRow(const QString& row)
{
    QStringList cells = row.split(QLatin1Char('\t'));
    for (QString& cell : cells) {
        cell = cell.trimmed();
    }
    if (cells.value(0) == texts::loggerTimeOfRequest()) {
        return QVector<GivenPacket>();
    }
    QVector<GivenPacket> packets;
    const std::optional<Packet::Direction> direction = directionOf(cells.value(1));
    const bool isRead = direction ? addCell(packets, cells.value(0), *direction, cells.value(2))
                                  : addCell(packets, cells.value(0), Packet::Request, cells.value(1)) &&
                                        addCell(packets, cells.value(2), Packet::Answer, cells.value(3));
    return isRead ? Packets(packets) : std::nullopt;
}

} // namespace

std::optional<QVector<GivenPacket>> packetsOfLine(const QString& line)
{
    if (const auto saved = packettext::toPackets(line)) {
        QVector<GivenPacket> packets;
        for (const Packet& packet : *saved) {
            packets.append({line.trimmed().left(23), packet.direction, packet.bytes});
        }
        return packets;
    }
    if (const std::optional<QByteArray> bytes = bytesOf(line)) {
        return QVector<GivenPacket>{{{}, std::nullopt, *bytes}};
    }
    return line.contains(QLatin1Char('\t')) ? packetsOfRow(line) : std::nullopt;
}
