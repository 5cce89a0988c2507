#include "simulator/Wire.h"

#include "simulator/UnitRequest.h"

#include <array>

namespace wire
{

namespace
{
constexpr quint8 escape = 0xC0;
constexpr quint8 requestStart = 0xC1;
constexpr quint8 answerStart = 0xC2;
constexpr quint8 bootStart = 0xFA;
constexpr int headerLength = 5; // start, kind, address, flags, length
constexpr int checksumLength = 2;
constexpr int fullBlockLength = 130; // command, block number, 128 bytes of the image

quint8 byteAt(const QByteArray& bytes, int index)
{
    return quint8(bytes.at(index));
}

bool isReserved(quint8 byte)
{
    return byte >= escape && byte <= answerStart;
}

void appendChecksum(QByteArray& frame, quint16 sum)
{
    frame.append(char(sum & 0xFF));
    frame.append(char(sum >> 8));
}

enum class Cut
{
    Whole,
    Unfinished,
    Unsound
};

/// A device request that begins at `start`; `end` is then the index behind it.
Cut cutDeviceFrame(const QByteArray& bytes, int start, int& end, Frame& frame)
{
    QByteArray plain(1, char(requestStart));
    int needed = headerLength;
    for (end = start + 1; plain.size() < needed; ++end) {
        if (end >= bytes.size()) {
            return Cut::Unfinished;
        }
        quint8 byte = byteAt(bytes, end);
        if (byte == escape) {
            if (++end >= bytes.size()) {
                return Cut::Unfinished;
            }
            byte = byteAt(bytes, end) ^ escape;
            if (!isReserved(byte)) {
                return Cut::Unsound;
            }
        } else if (isReserved(byte)) {
            return Cut::Unsound;
        }
        plain.append(char(byte));
        if (plain.size() == headerLength) {
            if (byte == 0) {
                return Cut::Unsound;
            }
            needed = headerLength + byte + checksumLength;
        }
    }
    const int contentLength = plain.size() - headerLength - checksumLength;
    const quint16 sum = checksum(plain.left(headerLength + contentLength));
    if (byteAt(plain, plain.size() - 2) != (sum & 0xFF) || byteAt(plain, plain.size() - 1) != sum >> 8) {
        return Cut::Unsound;
    }
    frame = {Frame::Device,    bytes.mid(start, end - start),         byteAt(plain, 1), byteAt(plain, 2),
             byteAt(plain, 3), plain.mid(headerLength, contentLength)};
    return Cut::Whole;
}

/// The same for a packet to the bootloader.
Cut cutBootFrame(const QByteArray& bytes, int start, int& end, Frame& frame)
{
    if (start + 1 >= bytes.size()) {
        return Cut::Unfinished;
    }
    const int length = byteAt(bytes, start + 1);
    if (length < 1 + checksumLength) {
        return Cut::Unsound;
    }
    end = start + 2 + length;
    if (end > bytes.size()) {
        return Cut::Unfinished;
    }
    const quint16 sum = checksum(bytes.mid(start + 1, length - 1));
    if (byteAt(bytes, end - 2) != (sum & 0xFF) || byteAt(bytes, end - 1) != sum >> 8) {
        return Cut::Unsound;
    }
    frame = {Frame::Boot, bytes.mid(start, end - start), 0, 0, 0, bytes.mid(start + 2, length - checksumLength)};
    return Cut::Whole;
}

/// One row for each request that differs on the wire; the first that fits wins.
struct RequestForm
{
    int type;
    quint8 frameKind;
    int codeLength; // how many bytes of `code` count
    std::array<quint8, 2> code;
    int shortest; // of command and data together
    int longest;
};

constexpr int any = 255;
constexpr std::array<RequestForm, 20> requestForms{
    {{2, 0x86, 1, {0x05, 0}, 1, 1},     {1, 0x86, 1, {0x05, 0}, 2, any}, {3, 0x86, 1, {0x06, 0}, 1, 1},
     {4, 0x86, 2, {0x06, 0x00}, 2, 2},  {7, 0x86, 1, {0x01, 0}, 3, 3},   {5, 0x86, 1, {0x01, 0}, 4, any},
     {8, 0x86, 1, {0x02, 0}, 2, 2},     {6, 0x86, 1, {0x02, 0}, 3, any}, {9, 0x06, 1, {0x61, 0}, 1, 1},
     {12, 0x06, 2, {0x7F, 0x15}, 4, 4}, {13, 0x06, 1, {0x15, 0}, 3, 3},  {14, 0x06, 1, {0x35, 0}, 3, 3},
     {15, 0x06, 1, {0x55, 0}, 3, 3},    {16, 0x06, 1, {0x95, 0}, 3, 3},  {17, 0x06, 2, {0x7F, 0x14}, 3, 3},
     {18, 0x06, 1, {0x14, 0}, 2, 2},    {19, 0x06, 1, {0x34, 0}, 2, 2},  {20, 0x06, 1, {0x54, 0}, 2, 2},
     {21, 0x06, 1, {0x94, 0}, 2, 2},    {22, 0x06, 1, {0x6F, 0}, 1, 1}}};

bool fits(const RequestForm& form, const Frame& frame)
{
    const int length = frame.content.size();
    bool equal = frame.frameKind == form.frameKind && length >= form.shortest && length <= form.longest;
    for (int index = 0; equal && index < form.codeLength; ++index) {
        equal = byteAt(frame.content, index) == form.code.at(size_t(index));
    }
    return equal;
}

} // namespace

quint16 checksum(const QByteArray& bytes)
{
    quint16 sum = 0xFFFF;
    for (const char byte : bytes) {
        auto mixed = quint8(quint8(byte) ^ (sum & 0xFF));
        mixed = quint8(mixed ^ (mixed << 4));
        sum = quint16((sum >> 8) ^ (mixed << 8) ^ (mixed << 3) ^ (mixed >> 4));
    }
    return sum;
}

int requestType(const Frame& frame)
{
    if (frame.kind != Frame::Device) {
        return 0;
    }
    // The broadcast search is the reading of the head unit's first output, sent to nobody in particular.
    if (frame.frameKind == 0x86 && frame.address == 0 && frame.content == QByteArray("\x01\0\0", 3)) {
        return 10;
    }
    for (const RequestForm& form : requestForms) {
        if (fits(form, frame)) {
            return form.type;
        }
    }
    return UnitRequest::unknownRequest;
}

int bootType(const Frame& frame)
{
    if (frame.kind != Frame::Boot) {
        return 0;
    }
    const int command = byteAt(frame.content, 0);
    return command == 5 && frame.content.size() < fullBlockLength ? 6 : command;
}

QByteArray deviceAnswer(quint8 frameKind, quint8 address, quint8 code, const QByteArray& data, bool spoilChecksum)
{
    QByteArray plain;
    for (const quint8 byte : {answerStart, frameKind, address, quint8(0), quint8(1 + data.size()), code}) {
        plain.append(char(byte));
    }
    plain.append(data);
    appendChecksum(plain, quint16(checksum(plain) ^ (spoilChecksum ? 1 : 0)));

    QByteArray stuffed = plain.left(1);
    for (int index = 1; index < plain.size(); ++index) {
        const quint8 byte = byteAt(plain, index);
        if (isReserved(byte)) {
            stuffed.append(char(escape));
            stuffed.append(char(byte ^ escape));
        } else {
            stuffed.append(char(byte));
        }
    }
    return stuffed;
}

QByteArray bootAnswer(quint8 result, const QByteArray& data, bool spoilChecksum)
{
    QByteArray packet;
    packet.append(char(1 + data.size() + checksumLength));
    packet.append(char(result));
    packet.append(data);
    appendChecksum(packet, quint16(checksum(packet) ^ (spoilChecksum ? 1 : 0)));
    return packet.prepend(char(bootStart));
}

QVector<Frame> FrameCutter::feed(const QByteArray& bytes)
{
    pending += bytes;
    QVector<Frame> frames;
    int keptFrom = -1; // the first place where a frame may still be growing
    int index = 0;
    while (index < pending.size()) {
        const quint8 byte = byteAt(pending, index);
        Frame frame;
        int end = index;
        Cut cut = Cut::Unsound;
        if (byte == requestStart) {
            cut = cutDeviceFrame(pending, index, end, frame);
        } else if (byte == bootStart) {
            cut = cutBootFrame(pending, index, end, frame);
        }
        if (cut == Cut::Whole) {
            frames.append(frame);
            index = end;
            keptFrom = -1; // what began before a whole frame was none
            continue;
        }
        if (cut == Cut::Unfinished && keptFrom < 0) {
            keptFrom = index;
        }
        ++index;
    }
    pending = keptFrom < 0 ? QByteArray() : pending.mid(keptFrom);
    return frames;
}

void FrameCutter::reset()
{
    pending.clear();
}

} // namespace wire
