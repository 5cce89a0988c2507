#include "link/LogReading.h"

#include "domain/logRecord.h"
#include "link/message.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "texts/texts.h"

#include <QDebug>
#include <QtEndian>

#include <algorithm>

namespace
{

constexpr int recordsOfBlock = 4;

} // namespace

void LogReading::setCoordinator(quint8 address)
{
    DeviceOperation::setCoordinator(address);
    // What was asked on the port before isn't answered here any more.
    infoIsAsked = false;
}

void LogReading::start()
{
    if (infoIsAsked) {
        return;
    }
    infoIsAsked = hasPort();
    logErrors = 0;
    emit resultReady(texts::resultLogStarted());
    emit requestReady(protocol_HUBN_NX_Q::requestReadLogInfo(coordinator()));
    if (!hasPort()) {
        // No answer will ever come, and somebody has taken the log out of view to wait for it.
        emit notNecessary();
    }
}

bool LogReading::handles(int requestType) const
{
    return requestType == protocol_HUBN_NX_Q::Read_Log || requestType == protocol_HUBN_NX_Q::Read_Info_Log;
}

void LogReading::takeAnswer(const message& answer, bool failed)
{
    const bool isInfo = answer.requestType() == protocol_HUBN_NX_Q::Read_Info_Log;
    if (isInfo) {
        infoIsAsked = false;
    }
    if (failed) {
        fail(isInfo ? "END Read INFO Log with error" : "END Read Log with error");
    } else if (isInfo) {
        answerLogInfo(answer);
    } else {
        answerReadLog(answer);
    }
}

void LogReading::answerLogInfo(const message& answer)
{
    const QByteArray& payload = answer.payload();
    logCapacity = -1;
    logCount = -1;
    logWrapped = false;
    if (payload.size() >= 2) {
        logCapacity = qFromLittleEndian<quint16>(payload.constData());
    }
    if (payload.size() >= 4) {
        const int counter = qFromLittleEndian<quint16>(payload.constData() + 2);
        logCount = counter & ~logWrappedBit;
        logWrapped = (counter & logWrappedBit) != 0;
    }
    if (logCount == logCountPrevious) {
        emit resultReady(texts::resultLogUnchanged());
        emit notNecessary();
        emit hidden();
        return;
    }
    logCountPrevious = logCount;
    announcedRecords = std::max(0, logWrapped ? logCapacity : logCount);
    receivedRecords = 0;
    blockWasRepeated = false;
    emit announced(announcedRecords);
    emit begun(texts::busyReadingLog(), 0, announcedRecords / recordsOfBlock);
    emit shown();
    emit requestReady(protocol_HUBN_NX_Q::requestReadLog(coordinator(), true));
}

void LogReading::answerReadLog(const message& answer)
{
    const QByteArray& payload = answer.payload();
    QByteArrayList records;
    emit stepDone();
    // The first block can be asked for as often as it takes: it always is the beginning.
    blockWasRepeated = blockWasRepeated || (receivedRecords > 0 && answer.attempts() < message::fullAttempts);
    for (int offset = 0; offset + logRecordSize <= payload.size(); offset += logRecordSize) {
        records.append(payload.mid(offset, logRecordSize));
    }
    if (payload.size() % logRecordSize != 0) {
        ++logErrors;
    }
    receivedRecords += records.size();
    if (payload.size() == recordsOfBlock * logRecordSize) {
        emit recordsRead(records, false);
        emit requestReady(protocol_HUBN_NX_Q::requestReadLog(coordinator(), false));
        return;
    }
    if (blockWasRepeated) {
        logErrors += std::max(0, announcedRecords - receivedRecords);
    }
    if (logErrors > 0) {
        emit incomplete();
    }
    emit recordsRead(records, true);
    qDebug() << "END Read Log";
    emit resultReady(outcome(texts::resultLogOk(), texts::resultLogErrors(), logErrors));
    emit textChanged(texts::busyAddingLog());
}

void LogReading::fail(const char* debugLine)
{
    qDebug() << debugLine;
    emit resultReady(texts::resultLogError());
    emit incomplete();
    emit recordsRead({}, true);
    emit textChanged(texts::busyAddingLog());
}
