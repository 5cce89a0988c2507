#include "firmware/protocol_boot.h"

#include "link/protocol_HUBN_NX_Q.h"

namespace
{

constexpr char startByte = '\xFA';
constexpr int checksumSize = 2;
constexpr int smallestLength = 1 + checksumSize;
constexpr int firstHiddenStart = 255; ///< a start byte from this index on counts as none
constexpr int headSize = 2;
constexpr int blockSize = 128;
constexpr int bootBaudrate = 57600;

message build(int bootType, const QByteArray& data = {})
{
    // A full block and the last one are the same command on the wire.
    const int command = bootType == protocol_boot::LastBlock ? protocol_boot::FullBlock : bootType;
    QByteArray checked;
    checked.append(char(smallestLength + data.size()));
    checked.append(char(command));
    checked.append(data);
    const int checksum = protocol_HUBN_NX_Q::crc16(checked);

    message result;
    result.setRequest(startByte + checked + char(checksum & 0xFF) + char(checksum >> 8));
    result.setBootType(bootType);
    result.setBaudrate(bootBaudrate);
    return result;
}

ParseStatus findPacket(const QByteArray& received, int& start, int& length)
{
    if (received.isEmpty()) {
        return PacketEmpty;
    }
    start = received.indexOf(startByte);
    if (start < 0 || start >= firstHiddenStart) {
        return PacketNoStart;
    }
    if (start + 1 >= received.size()) {
        return PacketIncomplete;
    }
    length = quint8(received.at(start + 1));
    if (start + 1 + length >= received.size()) {
        return PacketIncomplete;
    }
    if (length < smallestLength) {
        return PacketBadLength;
    }
    const int checksumAt = start + length;
    const int expected = quint8(received.at(checksumAt)) | quint8(received.at(checksumAt + 1)) << 8;
    const bool good =
        protocol_HUBN_NX_Q::checkCrc(received, quint16(start + 1), quint16(checksumAt), quint16(expected));
    return good ? PacketOk : PacketBadCrc;
}

int answerCodeOf(quint8 result)
{
    // The swap of 1 and 2 is meant: the bootloader counts its results otherwise than a device.
    switch (result) {
    case 0:
        return protocol_boot::Accepted;
    case 1:
        return protocol_boot::WriteError;
    case 2:
        return protocol_boot::AcceptedToo;
    default:
        return message::noAnswerCode;
    }
}

} // namespace

protocol_boot::protocol_boot(QObject* parent) : QObject(parent)
{
}

void protocol_boot::setFirmware(const QByteArray& image)
{
    firmware.clear();
    requests.clear();
    if (image.size() >= smallestImage) {
        firmware = image;
        buildRequests();
    }
}

void protocol_boot::buildRequests()
{
    position = 0;
    requests.clear();
    requests.append(build(StartLoading));
    requests.append(build(StartImage));
    const bool hasImage = firmware.size() >= smallestImage;
    requests.append(build(ImageHead, hasImage ? takeBytes(headSize) : QByteArrayLiteral("\xFF\xFF")));
    quint8 number = 0; // wraps at 256
    int size = 0;
    do {
        const QByteArray bytes = takeBytes(blockSize);
        size = bytes.size();
        requests.append(build(size == blockSize ? FullBlock : LastBlock, char(number) + bytes));
        ++number;
    } while (size == blockSize);
    requests.append(build(Finish));
}

message protocol_boot::takeNextRequest()
{
    return requests.isEmpty() ? message() : requests.takeFirst();
}

message protocol_boot::parseAnswer(message answer)
{
    const QByteArray& received = answer.rawAnswer();
    int start = 0;
    int length = 0;
    answer.setParseStatus(findPacket(received, start, length));
    if (answer.isValid()) {
        answer.setAnswerCode(answerCodeOf(quint8(received.at(start + 2))));
        answer.setPayload(received.mid(start + 3, length - smallestLength));
    }
    return answer;
}

QByteArray protocol_boot::takeBytes(int count)
{
    const QByteArray bytes = firmware.mid(position, count);
    position += bytes.size();
    return bytes;
}
