#include "link/TerminalSearch.h"

#include "link/message.h"
#include "link/protocol_HUBN_NX_Q.h"

namespace
{

constexpr int lastTerminalAddress = 124;

// Room on the bar for what follows the search: the reading of outputs and scripts.
constexpr int stepsBesideTerminals = 103;

} // namespace

QByteArray TerminalSearch::addressesInUse(const QByteArray& bitmap)
{
    QByteArray addresses;
    for (int address = 1; address <= lastTerminalAddress && address <= 8 * bitmap.size(); ++address) {
        const int bit = address - 1;
        if (((quint8(bitmap.at(bit / 8)) >> (bit % 8)) & 1) != 0) {
            addresses.append(char(address));
        }
    }
    return addresses;
}

void TerminalSearch::start(int mostReadingsOfStep)
{
    mostReadings = mostReadingsOfStep;
    readings = 0;
    emit requestReady(protocol_HUBN_NX_Q::requestBusyChannels(coordinator(), 0));
}

bool TerminalSearch::handles(int requestType) const
{
    return requestType >= protocol_HUBN_NX_Q::Busy_Channel_System &&
           requestType <= protocol_HUBN_NX_Q::Terminal_Analog_Info;
}

bool TerminalSearch::endsStep(const message& answer) const
{
    return answer.isRepeatConfirmed() || (mostReadings > 0 && readings + 1 >= mostReadings);
}

// A failed step isn't told from one with an empty answer.
void TerminalSearch::takeAnswer(const message& answer, bool failed)
{
    message counted = answer;
    if (!answer.isRepeatConfirmed() && endsStep(answer)) {
        counted.setPayload({});
        if (!failed) {
            emit unconfirmed(answer);
        }
    }
    if (counted.requestType() <= protocol_HUBN_NX_Q::Busy_Channel_Analog) {
        answerBusyChannel(counted);
    } else {
        answerTerminalInfo(counted);
    }
}

void TerminalSearch::answerBusyChannel(const message& answer)
{
    const int type = answer.requestType();
    if (type == protocol_HUBN_NX_Q::Busy_Channel_System) {
        channelLists.fill({});
        terminalInfos.clear();
    }
    if (!isOver(answer)) {
        return;
    }
    const int channelClass = type - protocol_HUBN_NX_Q::Busy_Channel_System;
    if (type < protocol_HUBN_NX_Q::Busy_Channel_Analog) {
        emit requestReady(protocol_HUBN_NX_Q::requestBusyChannels(coordinator(), quint8(channelClass + 1)));
    }
    channelLists.at(channelClass).append(addressesInUse(answer.payload()));
    if (type < protocol_HUBN_NX_Q::Busy_Channel_Analog) {
        return;
    }
    int terminalCount = 0;
    for (const QByteArray& addresses : channelLists) {
        terminalCount += addresses.size();
    }
    emit maximumChanged(terminalCount + stepsBesideTerminals);
    emit stepDone();
    askNextTerminal();
}

void TerminalSearch::answerTerminalInfo(const message& answer)
{
    if (!isOver(answer)) {
        return;
    }
    emit stepDone();
    if (!terminalInfos.contains(answer.payload())) {
        terminalInfos.append(answer.payload());
    }
    askNextTerminal();
}

/// Ends the step, or asks once more.
bool TerminalSearch::isOver(const message& answer)
{
    if (endsStep(answer)) {
        readings = 0;
        return true;
    }
    ++readings;
    message again = answer;
    again.prepareRepeat();
    emit requestReady(again);
    return false;
}

void TerminalSearch::askNextTerminal()
{
    for (int channelClass = 0; channelClass < terminalClasses; ++channelClass) {
        QByteArray& addresses = channelLists.at(channelClass);
        if (!addresses.isEmpty()) {
            const auto address = quint8(addresses.at(0));
            addresses.remove(0, 1);
            emit requestReady(protocol_HUBN_NX_Q::requestTerminalInfo(coordinator(), quint8(channelClass), address));
            return;
        }
    }
    emit terminalsFound(terminalInfos);
}
