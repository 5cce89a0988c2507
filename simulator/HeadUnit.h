#pragma once

#include "simulator/UnitState.h"
#include "simulator/Wire.h"

#include <QByteArray>

/// What the unit, or its bootloader, has to say to a request.
struct UnitReply
{
    quint8 code = 0; // 0 accepted
    QByteArray data;
};

/// The running program of the unit: takes a device request and gives the reply, changing the state that it works on. It
/// knows nothing of wires and time but the clock. Refusals: 1 a request it doesn't know, 2 a number or length out of
/// range, the state's own code for a clock that isn't there.
class HeadUnit
{
public:
    enum Refusal : quint8
    {
        UnknownCommand = 1,
        BadParameter = 2
    };

    explicit HeadUnit(UnitState& unitState);

    UnitReply answer(const wire::Frame& request);

    /// The answer just given to a log block can't have reached the other side.
    void logAnswerLost();
    /// Power-up: a log reading that had begun is forgotten.
    void restart();

private:
    UnitReply setTime(const wire::Frame& request);
    UnitReply readTime(const wire::Frame& request);
    UnitReply readLogBlock(const wire::Frame& request);
    UnitReply readLogInfo(const wire::Frame& request);
    UnitReply writeOutput(const wire::Frame& request);
    UnitReply writeScript(const wire::Frame& request);
    UnitReply readOutput(const wire::Frame& request);
    UnitReply readScript(const wire::Frame& request);
    UnitReply identify(const wire::Frame& request);
    UnitReply busyList(const wire::Frame& request);
    UnitReply terminalInfo(const wire::Frame& request);
    UnitReply enterBootloader(const wire::Frame& request);

    UnitState& state;
    qint64 logNext = 0; // of all records ever written, the one before which the next block ends
    qint64 logPrevious = 0;
    bool logLost = false;
};
