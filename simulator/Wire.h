#pragma once

#include <QByteArray>
#include <QVector>

/// The frames of the unit and of its bootloader, from the unit's side of the wire. Pure functions and values.
namespace wire
{

/// CRC-16/MCRF4XX, as both kinds of frames end with it, low byte first.
quint16 checksum(const QByteArray& bytes);

/// A request as it came out of a sound frame.
struct Frame
{
    enum Kind
    {
        Device, // C1, kind, address, flags, length, command and data
        Boot    // FA, length, command, data
    };

    Kind kind = Device;
    QByteArray raw; // as on the wire
    /// Device frames only.
    quint8 frameKind = 0;
    quint8 address = 0;
    quint8 flags = 0;
    /// Command and data, without length and checksum; at least one byte.
    QByteArray content;
};

/// The number of UnitRequest::requestType or UnitRequest::bootType that a frame stands for.
int requestType(const Frame& frame);
int bootType(const Frame& frame);

/// A whole answer with start byte, checksum and stuffing. `spoilChecksum` makes the checksum wrong.
QByteArray deviceAnswer(quint8 frameKind, quint8 address, quint8 code, const QByteArray& data, bool spoilChecksum);
QByteArray bootAnswer(quint8 result, const QByteArray& data, bool spoilChecksum);

/// Cuts requests out of a stream of bytes. Whatever is no sound frame is passed over: noise, wrong checksums, bytes
/// that may not stand in a frame. A frame may come in any number of pieces.
class FrameCutter
{
public:
    /// The frames that are complete now, in order.
    QVector<Frame> feed(const QByteArray& bytes);
    /// Forgets the begin of a frame that never got its end.
    void reset();

private:
    QByteArray pending;
};

} // namespace wire
