#include "domain/byteAt.h"
#include "firmware/protocol_boot.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "tool/Console.h"
#include "tool/Interruption.h"
#include "tool/commandList.h"
#include "tool/english.h"
#include "tool/packetLine.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <limits>

namespace
{

using Protocol = protocol_HUBN_NX_Q;

constexpr char bootStart = '\xFA';

/// A packet with all that can be said of it.
struct DecodedPacket
{
    QString time;
    Packet::Direction direction = Packet::Request;
    QByteArray bytes;
    QStringList words;
    ParseStatus status = PacketOk;
    bool isBoot = false;
    int address = -1; ///< of the coordinator; -1 without one
    QString type;     ///< what is asked or answered; empty if nobody knows

    /// Whether its fields could be read, however its checksum.
    bool isPacket() const
    {
        return !bytes.isEmpty() && (status == PacketOk || status == PacketBadCrc);
    }
};

/// Puts packets into words, one after the other: an answer means what the request in front of it asks.
class Decoder
{
public:
    DecodedPacket decode(const GivenPacket& given);

private:
    Packet::Direction guessed(const QByteArray& bytes) const;
    void decodeFrame(DecodedPacket& packet) const;

    QByteArray request;
    bool isAnswered = true;
};

/// What the first byte of a packet says of its direction. It is the same both ways with the bootloader, where requests
/// and answers take turns.
Packet::Direction Decoder::guessed(const QByteArray& bytes) const
{
    const bool isBoot = bytes.startsWith(bootStart);
    const int ofRequest = isBoot ? -1 : bytes.lastIndexOf(char(Protocol::requestStart));
    const int ofAnswer = isBoot ? -1 : bytes.lastIndexOf(char(Protocol::answerStart));
    if (ofRequest == ofAnswer) {
        const bool isAwaited = !isAnswered && (!isBoot || request.startsWith(bootStart));
        return isAwaited ? Packet::Answer : Packet::Request;
    }
    return ofRequest > ofAnswer ? Packet::Request : Packet::Answer;
}

void Decoder::decodeFrame(DecodedPacket& packet) const
{
    const bool isRequest = packet.direction == Packet::Request;
    QByteArray frame;
    packet.status = Protocol::cutFrame(packet.bytes, isRequest ? Protocol::requestStart : Protocol::answerStart, frame);
    if (!packet.isPacket()) {
        return;
    }
    packet.address = byteAt(frame, 2);
    QByteArray requestFrame = frame;
    const bool isKnown = isRequest || Protocol::cutFrame(request, Protocol::requestStart, requestFrame) == PacketOk;
    const int type = isKnown ? Protocol::requestType(requestFrame) : 0;
    packet.type = type > 0 ? protocol_HUBN_NX_Q::requestName(type) : QString();
}

DecodedPacket Decoder::decode(const GivenPacket& given)
{
    DecodedPacket packet;
    packet.time = given.time;
    packet.bytes = given.bytes;
    packet.direction = given.direction ? *given.direction : guessed(given.bytes);
    if (packet.direction == Packet::Request) {
        request = packet.bytes;
        isAnswered = false;
        packet.words = packettext::requestInWords(packet.bytes);
    } else {
        isAnswered = true;
        packet.words = packettext::answerInWords(packet.bytes, request);
    }
    // An answer is the bootloader's if it was asked, or if nobody was.
    const QByteArray& telling = packet.direction == Packet::Request || request.isEmpty() ? packet.bytes : request;
    packet.isBoot = telling.startsWith(bootStart);
    if (packet.bytes.isEmpty()) {
        return packet;
    }
    if (packet.isBoot) {
        message received;
        received.setRawAnswer(packet.bytes);
        packet.status = ParseStatus(protocol_boot::parseAnswer(received).parseStatus());
    } else {
        decodeFrame(packet);
    }
    return packet;
}

/// What stands in the words between who speaks to whom and the checksum.
QStringList fieldsOf(const DecodedPacket& packet)
{
    const int head = packet.isBoot ? 1 : 2;
    return packet.isPacket() ? packet.words.mid(head, packet.words.size() - head - 1) : QStringList();
}

QJsonObject jsonOf(const DecodedPacket& packet)
{
    QJsonObject object;
    if (!packet.time.isEmpty()) {
        object.insert(QStringLiteral("time"), packet.time);
    }
    object.insert(QStringLiteral("direction"),
                  packet.direction == Packet::Request ? QStringLiteral("request") : QStringLiteral("answer"));
    object.insert(QStringLiteral("bytes"), QString::fromLatin1(packet.bytes.toHex(' ')));
    object.insert(QStringLiteral("bootloader"), packet.isBoot);
    if (packet.address >= 0) {
        object.insert(QStringLiteral("address"), packet.address);
    }
    if (!packet.type.isEmpty()) {
        object.insert(QStringLiteral("type"), packet.type);
    }
    object.insert(QStringLiteral("fields"), QJsonArray::fromStringList(fieldsOf(packet)));
    if (packet.isPacket()) {
        object.insert(QStringLiteral("checksum"),
                      packet.status == PacketOk ? QStringLiteral("right") : QStringLiteral("wrong"));
    }
    object.insert(QStringLiteral("words"), QJsonArray::fromStringList(packet.words));
    return object;
}

/// Takes one line after the other and tells what is in it.
class Decoding
{
public:
    explicit Decoding(Console& theConsole) : console(theConsole)
    {
    }

    /// `place` says where the line stands.
    void take(const QString& line, const QString& place);

    ExitCode finish();

    /// Instead of finish(), if somebody wished the program to end.
    ExitCode breakOff();

private:
    void tell(const DecodedPacket& packet);
    void tellList();

    Console& console;
    Decoder decoder;
    QJsonArray told;
    int count = 0;
    bool allRight = true;
    bool allRead = true;
};

void Decoding::take(const QString& line, const QString& place)
{
    const std::optional<QVector<GivenPacket>> packets = packetsOfLine(line);
    if (!packets) {
        allRead = false;
        console.error(QStringLiteral("%1: \"%2\" is no packet in hexadecimal").arg(place, line.trimmed().left(60)));
        return;
    }
    for (const GivenPacket& given : *packets) {
        const DecodedPacket packet = decoder.decode(given);
        allRight = allRight && packet.status == PacketOk;
        tell(packet);
        ++count;
    }
}

void Decoding::tell(const DecodedPacket& packet)
{
    if (console.isJson()) {
        told.append(jsonOf(packet));
        return;
    }
    if (count > 0) {
        console.result(QString());
    }
    const QString bytes = packet.bytes.isEmpty() ? QStringLiteral("-") : QString::fromLatin1(packet.bytes.toHex(' '));
    console.result(packet.time.isEmpty() ? bytes : packet.time + QLatin1String("  ") + bytes);
    for (const QString& line : packet.words) {
        console.result(QLatin1String("  ") + line);
    }
}

void Decoding::tellList()
{
    if (console.isJson()) {
        console.result(QJsonDocument(told));
    }
}

ExitCode Decoding::breakOff()
{
    tellList();
    console.error(QStringLiteral("interrupted after %1").arg(english::counted(count, QStringLiteral("packet"))));
    return ExitCode::Interrupted;
}

ExitCode Decoding::finish()
{
    tellList();
    if (count == 0 && allRead) {
        console.error(QStringLiteral("no packet is given"));
        return ExitCode::BadInput;
    }
    if (!allRead) {
        return ExitCode::BadInput;
    }
    return allRight ? ExitCode::Done : ExitCode::WithErrors;
}

/// Whether the words of the command line are the bytes of one packet: no packet has a single byte.
bool areBytes(const QStringList& words)
{
    return std::all_of(words.cbegin(), words.cend(), [](const QString& word) { return word.size() == 2; });
}

ExitCode decodeInput(Decoding& decoding, Console& console)
{
    if (console.isInputTyped()) {
        console.note(QStringLiteral("reading packets from the standard input; end with Ctrl+D"));
    }
    Interruption interruption;
    int number = 0;
    while (!interruption.isRequested()) {
        const std::optional<QString> line = console.readLine();
        if (!line || interruption.isRequested()) {
            break; // maybe in the middle of a line
        }
        decoding.take(*line, QStringLiteral("line %1").arg(++number));
    }
    return interruption.isRequested() ? decoding.breakOff() : decoding.finish();
}

ExitCode decode(const QCommandLineParser& /*commandLine*/, const QStringList& arguments, Console& console)
{
    Decoding decoding(console);
    if (arguments.isEmpty()) {
        return decodeInput(decoding, console);
    }
    const QStringList packets = areBytes(arguments) ? QStringList(arguments.join(QLatin1Char(' '))) : arguments;
    for (int i = 0; i < packets.size(); ++i) {
        decoding.take(packets.at(i), QStringLiteral("packet %1").arg(i + 1));
    }
    return decoding.finish();
}

} // namespace

Command decodeCommand()
{
    Command command;
    command.name = QStringLiteral("decode");
    command.arguments = QStringLiteral("[PACKET...]");
    command.mostArguments = std::numeric_limits<int>::max();
    command.summary = QStringLiteral("Tells packets in words: bytes in hexadecimal, or rows of the packet logger");
    command.example = QStringLiteral("hubn-tool decode \"c1 86 01 00 01 05 2b e8\"");
    command.run = decode;
    return command;
}
