#include "link/message.h"

void message::prepareRetry()
{
    clearAnswer();
    if (fields.attempts > 0) {
        --fields.attempts;
    }
}

void message::prepareRepeat()
{
    fields.repeatCheck = true;
    fields.repeatPayload = fields.payload;
    clearAnswer();
    fields.attempts = fullAttempts;
}

bool message::isRepeatConfirmed() const
{
    return !fields.repeatCheck || fields.payload == fields.repeatPayload;
}

void message::clearAnswer()
{
    fields.rawAnswer.clear();
    fields.payload.clear();
    fields.answerCode = noAnswerCode;
    fields.timedOut = false;
    fields.portFailed = false;
    fields.parseStatus = PacketNotParsed;
}

bool operator==(const message& left, const message& right)
{
    const message::Fields& a = left.fields;
    const message::Fields& b = right.fields;
    return a.request == b.request && a.rawAnswer == b.rawAnswer && a.requestType == b.requestType &&
           a.bootType == b.bootType && a.answerCode == b.answerCode && a.payload == b.payload &&
           a.timedOut == b.timedOut && a.portFailed == b.portFailed && a.parseStatus == b.parseStatus &&
           a.attempts == b.attempts;
}
