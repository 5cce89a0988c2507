#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/// One packet as it passed on the line.
struct Packet
{
    enum Direction
    {
        Request,
        Answer
    };

    QDateTime time; ///< of the PC, to the millisecond
    Direction direction = Request;
    QByteArray bytes; ///< as they were on the wire; none for an answer that never came
};

/// Packets in words, and packets as a text that can be read back. Stateless: any thread. Nothing here fails: bytes that
/// are no packet are told to be none.
namespace packettext
{

/// What a request says, one thing to a line: what it asks, of whom, with which data, and whether its checksum is right.
/// Packets of the unit and of its bootloader are known.
QStringList requestInWords(const QByteArray& request);

/// The same of an answer. What its data mean depends on the request that it belongs to, which may be empty.
QStringList answerInWords(const QByteArray& answer, const QByteArray& request);

/// A line for each packet: time, direction and bytes, below a line that says so.
QString fromPackets(const QList<Packet>& packets);

/// Reads such a text. Empty lines and those that begin with # don't matter. Nothing, and the number of the line, from 1
/// on, if one is no packet.
std::optional<QList<Packet>> toPackets(const QString& text, int* faultyLine = nullptr);

} // namespace packettext
