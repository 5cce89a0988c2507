#pragma once

#include <QByteArray>

/// Builds and checks bytes of the wire with code of its own, so that an error of the program isn't mirrored here.
namespace frames
{

inline QByteArray hex(const char* text)
{
    return QByteArray::fromHex(text);
}

/// CRC-16/MCRF4XX, bit by bit.
inline quint16 checksum(const QByteArray& bytes)
{
    quint16 crc = 0xFFFF;
    for (const char byte : bytes) {
        crc = quint16(crc ^ quint8(byte));
        for (int bit = 0; bit < 8; ++bit) {
            const bool carry = (crc & 1) != 0;
            crc = quint16(crc >> 1);
            crc = carry ? quint16(crc ^ 0x8408) : crc;
        }
    }
    return crc;
}

inline QByteArray withChecksum(QByteArray bytes)
{
    const quint16 crc = checksum(bytes);
    bytes.append(char(crc & 0xFF));
    bytes.append(char(crc >> 8));
    return bytes;
}

inline QByteArray stuffed(const QByteArray& bytes)
{
    QByteArray result = bytes.left(1);
    for (int i = 1; i < bytes.size(); ++i) {
        switch (quint8(bytes.at(i))) {
        case 0xC0:
            result.append(hex("C000"));
            break;
        case 0xC1:
            result.append(hex("C001"));
            break;
        case 0xC2:
            result.append(hex("C002"));
            break;
        default:
            result.append(bytes.at(i));
        }
    }
    return result;
}

/// A frame as it goes on the wire; the length byte is that of the body unless another one is given.
inline QByteArray frame(quint8 start, quint8 kind, quint8 address, const QByteArray& body, int length = -1)
{
    QByteArray bytes;
    for (const int byte : {int(start), int(kind), int(address), 0, length < 0 ? body.size() : length}) {
        bytes.append(char(byte));
    }
    return stuffed(withChecksum(bytes + body));
}

/// An answer of a device.
inline QByteArray answer(quint8 code, const QByteArray& payload = {}, quint8 address = 1, quint8 kind = 0x06)
{
    return frame(0xC2, kind, address, QByteArray(1, char(code)) + payload);
}

} // namespace frames
