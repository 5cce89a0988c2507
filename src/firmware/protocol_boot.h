#pragma once

#include "link/message.h"

#include <QByteArray>
#include <QList>
#include <QObject>

/// Speaks to the bootloader of the head unit: cuts a firmware image into a fixed sequence of requests, hands them out
/// one at a time, and parses the answers. The image is opaque and passes as it stands.
///
/// A packet, in both directions and without stuffing:
///
///     offset  size     content
///     0       1        start byte 0xFA
///     1       1        LEN, the number of bytes that follow it, checksum included
///     2       1        request: the command; answer: the result
///     3       LEN - 3  data
///     LEN     2        checksum over the bytes from offset 1 up to itself, low byte first
///
/// The sequence is StartLoading, StartImage, ImageHead with the first two bytes of the image, blocks of 128 bytes with
/// the rest of it, a block of less than 128 bytes (also of none, since the bootloader learns of the end from it), and
/// Finish. One object belongs to one load and lives with its dialog; parseAnswer() may be called on any thread.
class protocol_boot : public QObject
{
    Q_OBJECT

public:
    /// The kinds of request, as message::bootType() holds them.
    enum BootType
    {
        Finish = 1,
        StartLoading = 2,
        StartImage = 3,
        ImageHead = 4,
        FullBlock = 5,
        LastBlock = 6,
    };

    /// message::answerCode() of a bootloader's answer. The codes 1 and 2 are swapped against the byte received.
    enum AnswerCode
    {
        Accepted = 0,
        AcceptedToo = 1,
        WriteError = 2,
    };

    /// An image with fewer bytes than this is none.
    static constexpr int smallestImage = 3;

    explicit protocol_boot(QObject* parent = nullptr);

    /// Takes an image and starts the sequence anew. One that is too small leaves nothing to send.
    void setFirmware(const QByteArray& image);

    /// Starts the sequence anew with the image at hand.
    void buildRequests();

    /// Number of requests not handed out yet.
    int requestCount() const
    {
        return requests.size();
    }
    bool hasRequests() const
    {
        return !requests.isEmpty();
    }

    /// Hands out the next request; a default message if there is none.
    message takeNextRequest();

    /// Cuts the answer out of rawAnswer(), from the first start byte in it on, and returns the record with its
    /// parseStatus() set and, if that is PacketOk, its answerCode() and payload().
    static message parseAnswer(message answer);

private:
    QByteArray takeBytes(int count);

    QByteArray firmware;
    QList<message> requests; ///< not handed out yet, in order of sending
    int position = 0;        ///< of the next byte of the image that is in no request yet
};
