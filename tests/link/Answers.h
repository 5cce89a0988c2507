#pragma once

#include "link/message.h"

/// Answers to a request as they come back from a worker.
namespace answers
{

/// Accepted by the unit. The raw bytes stand for a frame from the coordinator at `coordinator`.
inline message good(message request, const QByteArray& payload = {}, quint8 coordinator = 1)
{
    request.setRawAnswer(QByteArray::fromHex("c206") + char(coordinator) + QByteArray::fromHex("00010000") + payload);
    request.setParseStatus(PacketOk);
    request.setAnswerCode(0);
    request.setPayload(payload);
    return request;
}

inline message refused(message request, int code, const QByteArray& payload = {})
{
    request = good(std::move(request), payload);
    request.setAnswerCode(code);
    return request;
}

inline message timedOut(message request)
{
    request.markTimedOut();
    return request;
}

inline message portFailed(message request)
{
    request.markPortFailed();
    return request;
}

/// Bytes came, but no frame could be made of them before the time was up.
inline message damaged(message request)
{
    request.setRawAnswer(QByteArray::fromHex("c2060100"));
    request.setParseStatus(PacketBadCrc);
    request.markTimedOut();
    return request;
}

} // namespace answers
