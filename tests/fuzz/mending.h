#pragma once

#include "fuzz/fuzz.h"
#include "link/protocol_HUBN_NX_Q.h"

#include <QByteArray>
#include <QByteArrayList>

#include <algorithm>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maximum);

/// Mutations that give packets the length and the checksum that they need to be read: a checksum is nothing that chance
/// finds, and behind it is most of the code.
namespace fuzz
{

constexpr quint8 escapeByte = 0xC0;
constexpr int checksumSize = 2;

inline void appendChecksum(QByteArray& bytes, const QByteArray& checked)
{
    const int checksum = protocol_HUBN_NX_Q::crc16(checked);
    bytes.append(char(checksum & 0xFF)).append(char(checksum >> 8));
}

/// Makes a frame of a unit of what stands behind the last start byte; all there is becomes its data.
inline QByteArray mendFrame(const QByteArray& wire, quint8 startByte)
{
    constexpr int shortest = 6; // without the checksum
    constexpr int longest = 132;
    const int start = std::max(0, wire.lastIndexOf(char(startByte)));
    QByteArray frame(1, char(startByte));
    for (int i = start + 1; i < wire.size(); ++i) {
        const auto byte = quint8(wire.at(i));
        if (byte == escapeByte && i + 1 < wire.size()) {
            ++i;
            frame.append(char(quint8(wire.at(i)) ^ escapeByte));
        } else {
            frame.append(char(byte));
        }
    }
    frame = frame.left(std::max(shortest, std::min(longest, frame.size() - checksumSize)));
    frame = frame.leftJustified(shortest, '\0');
    frame[1] = char((quint8(frame.at(1)) & 0x80) | 0x06);
    frame[4] = char(frame.size() - 5);
    appendChecksum(frame, frame);
    return wire.left(start) + protocol_HUBN_NX_Q::stuffBytes(frame);
}

/// The same of a packet of the bootloader, which begins with the first start byte.
inline QByteArray mendBootPacket(const QByteArray& wire)
{
    constexpr char startByte = '\xFA';
    constexpr int longest = 253;
    const int start = wire.indexOf(startByte);
    QByteArray checked = wire.mid(std::max(0, start) + 1);
    checked = checked.left(std::max(2, std::min(longest, checked.size() - checksumSize))).leftJustified(2, '\0');
    checked[0] = char(checked.size() + checksumSize - 1);
    QByteArray packet = startByte + checked;
    appendChecksum(packet, checked);
    return wire.left(std::max(0, start)) + packet;
}

inline QByteArray mended(const QByteArray& wire, unsigned how)
{
    switch (how % 4) {
    case 0:
        return mendFrame(wire, protocol_HUBN_NX_Q::requestStart);
    case 1:
        return mendBootPacket(wire);
    default:
        return mendFrame(wire, protocol_HUBN_NX_Q::answerStart);
    }
}

inline std::size_t replace(std::uint8_t* data, std::size_t maximum, const QByteArray& bytes)
{
    const std::size_t size = std::min(maximum, std::size_t(bytes.size()));
    std::copy_n(bytes.constData(), size, data);
    return size;
}

inline QByteArray mutated(const QByteArray& bytes)
{
    constexpr int room = 64;
    QByteArray changed = bytes.leftJustified(bytes.size() + room, '\0');
    auto* const data = reinterpret_cast<std::uint8_t*>(changed.data());
    return changed.left(int(LLVMFuzzerMutate(data, std::size_t(bytes.size()), std::size_t(changed.size()))));
}

/// Of an input that is bytes of the wire.
inline std::size_t mutateWire(std::uint8_t* data, std::size_t size, std::size_t maximum, unsigned seed)
{
    size = LLVMFuzzerMutate(data, size, maximum);
    return seed % 4 == 0 ? size : replace(data, maximum, mended(bytesOf(data, size), seed / 4));
}

/// Of an input that is lines of text which end with a packet in hexadecimal.
inline std::size_t mutateLines(std::uint8_t* data, std::size_t size, std::size_t maximum, unsigned seed)
{
    if (seed % 4 == 0) {
        return LLVMFuzzerMutate(data, size, maximum);
    }
    QByteArrayList lines = bytesOf(data, size).split('\n');
    QByteArray& line = lines[int(seed / 4) % lines.size()];
    int begin = line.size();
    while (begin > 0 && QByteArray("0123456789abcdefABCDEF ").contains(line.at(begin - 1))) {
        --begin;
    }
    const QByteArray bytes = mutated(QByteArray::fromHex(line.mid(begin)));
    line = line.left(begin) + ' ' + mended(bytes, seed / 64).toHex(' ');
    return replace(data, maximum, lines.join('\n'));
}

} // namespace fuzz
