#pragma once

#include <QByteArray>
#include <QMetaType>

/// Verdict of the last parse of an answer, as message::parseStatus() holds it.
enum ParseStatus
{
    PacketOk = 0,         ///< a valid answer was found; its code and payload are set
    PacketBadByte = 1,    ///< a byte that may not stand in a frame, or a broken escape
    PacketEmpty = 2,      ///< nothing was received
    PacketTooShort = 3,   ///< fewer bytes than the shortest frame has
    PacketNoStart = 4,    ///< no start byte
    PacketBadKind = 5,    ///< the frame is of an unknown kind
    PacketIncomplete = 6, ///< fewer bytes than the frame's length byte says
    PacketBadLength = 7,  ///< a length byte that can't be
    PacketBadCrc = 8,     ///< the checksum doesn't match
    PacketNotParsed = 9,
};

/// One request on its way to a device and back: the frame as it goes on the wire, the bytes that came back, the
/// parser's verdict, and the bookkeeping for resends, queue order and baud rate.
///
/// A protocol class builds it, who sends it gives it a baud rate and hands it to a Port, and gets the same record back
/// filled in. It is a plain value, copied freely and passed between threads in queued signals. A request is one of a
/// device or one of a bootloader: exactly one of requestType() and bootType() is set.
class message
{
public:
    /// answerCode() of an answer without a usable code.
    static constexpr int noAnswerCode = 14;

    /// Resends that a fresh request is allowed.
    static constexpr quint8 fullAttempts = 3;

    /// The complete frame as it goes on the wire; empty means that there is no request.
    const QByteArray& request() const
    {
        return fields.request;
    }
    void setRequest(const QByteArray& request)
    {
        fields.request = request;
    }

    /// Every byte received while this request was in flight, as it came.
    const QByteArray& rawAnswer() const
    {
        return fields.rawAnswer;
    }
    void setRawAnswer(const QByteArray& rawAnswer)
    {
        fields.rawAnswer = rawAnswer;
    }
    /// What comes from a port has room for 32 kB, and answers are kept by the thousand: none takes more than it needs.
    void appendRawAnswer(const QByteArray& bytes)
    {
        fields.rawAnswer.append(bytes);
        fields.rawAnswer.squeeze();
    }

    /// Type of a bootloader's request, 0 for a device's.
    int bootType() const
    {
        return fields.bootType;
    }
    void setBootType(int bootType)
    {
        fields.bootType = bootType;
    }

    /// Type of a device's request, 0 for a bootloader's.
    int requestType() const
    {
        return fields.requestType;
    }
    void setRequestType(int requestType)
    {
        fields.requestType = requestType;
    }

    /// Result code of a valid answer; 0 means that the device accepted the request.
    int answerCode() const
    {
        return fields.answerCode;
    }
    void setAnswerCode(int answerCode)
    {
        fields.answerCode = answerCode;
    }

    /// Data of a valid answer, stuffing removed.
    const QByteArray& payload() const
    {
        return fields.payload;
    }
    void setPayload(const QByteArray& payload)
    {
        fields.payload = payload;
    }

    /// No byte came before the time was up.
    bool timedOut() const
    {
        return fields.timedOut;
    }
    void markTimedOut()
    {
        fields.timedOut = true;
    }

    /// The port could not be used, or reported a read or write error.
    bool portFailed() const
    {
        return fields.portFailed;
    }
    void markPortFailed()
    {
        fields.portFailed = true;
    }

    /// A ParseStatus.
    int parseStatus() const
    {
        return fields.parseStatus;
    }
    void setParseStatus(int parseStatus)
    {
        fields.parseStatus = parseStatus;
    }

    /// Resends still allowed. Who sends counts them; a Transmitter never does.
    quint8 attempts() const
    {
        return fields.attempts;
    }
    void setAttempts(quint8 attempts)
    {
        fields.attempts = attempts;
    }

    /// Address of the terminal or coordinator that the request concerns, carried through to the answer.
    quint8 address() const
    {
        return fields.address;
    }
    void setAddress(quint8 address)
    {
        fields.address = address;
    }

    /// Number of the output or script that the request concerns, carried through to the answer.
    quint8 number() const
    {
        return fields.number;
    }
    void setNumber(quint8 number)
    {
        fields.number = number;
    }

    /// The answer counts only if an identical second one confirms it.
    bool repeatCheck() const
    {
        return fields.repeatCheck;
    }
    void markRepeatCheck()
    {
        fields.repeatCheck = true;
    }

    /// The payload that the next answer must equal.
    const QByteArray& repeatPayload() const
    {
        return fields.repeatPayload;
    }
    void setRepeatPayload(const QByteArray& repeatPayload)
    {
        fields.repeatPayload = repeatPayload;
    }

    /// The larger value leaves the queue first.
    quint8 priority() const
    {
        return fields.priority;
    }
    void setPriority(quint8 priority)
    {
        fields.priority = priority;
    }

    /// Baud rate at which this request is sent.
    int baudrate() const
    {
        return fields.baudrate;
    }
    void setBaudrate(int baudrate)
    {
        fields.baudrate = baudrate;
    }

    bool isEmpty() const
    {
        return fields.request.isEmpty();
    }
    bool isValid() const
    {
        return fields.parseStatus == PacketOk;
    }
    bool hasAttempts() const
    {
        return fields.attempts != 0;
    }

    /// A whole answer came in time, and the port worked all along.
    bool isAnswered() const
    {
        return isValid() && !timedOut() && !portFailed();
    }
    /// The device didn't do what it was asked for: no isAnswered(), or it refused.
    bool isErrorAnswer() const
    {
        return !isAnswered() || answerCode() != 0;
    }

    /// Makes the record ready to be sent again after a failure, with one attempt less (never below 0).
    void prepareRetry();

    /// Makes the record ready for the resend that must confirm the present payload, with all attempts back.
    void prepareRepeat();

    /// True without a repeat check, else whether the payload equals the one before.
    bool isRepeatConfirmed() const;

    /// Compares what makes two requests the same one for a queue: the frame, the types, the answer and the attempts.
    /// Deliberately blind to address, number, repeat check, priority and baud rate.
    friend bool operator==(const message& left, const message& right);
    friend bool operator!=(const message& left, const message& right)
    {
        return !(left == right);
    }

private:
    void clearAnswer();

    struct Fields
    {
        QByteArray request;
        QByteArray rawAnswer;
        int bootType = 0;
        int requestType = 0;
        int answerCode = noAnswerCode;
        QByteArray payload;
        bool timedOut = false;
        bool portFailed = false;
        int parseStatus = PacketNotParsed;
        quint8 attempts = fullAttempts;
        quint8 address = 0;
        quint8 number = 0;
        bool repeatCheck = false;
        QByteArray repeatPayload;
        quint8 priority = 100;
        int baudrate = 57600;
    };

    Fields fields;
};

Q_DECLARE_METATYPE(message)
