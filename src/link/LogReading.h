#pragma once

#include "link/DeviceOperation.h"

#include <QByteArrayList>

/// Reads the unit's log from its beginning, in blocks of up to four records, if its counter differs from that of the
/// reading before.
///
/// The first block that hasn't exactly four records is the last. The busy state is left on at the end: it goes when
/// the database has taken the events.
///
/// A unit may go on to the next block although its answer was lost, and what it says next doesn't tell. So where a
/// block had to be asked for again, the events that the unit announced and that haven't come count as errors.
class LogReading : public DeviceOperation
{
    Q_OBJECT

public:
    using DeviceOperation::DeviceOperation;

    void setCoordinator(quint8 address) override;

    /// Does nothing while the counter is being asked for: a second answer would end the reading that the first began.
    void start();

    /// Makes the next reading read, whatever the counter says.
    void forceNext()
    {
        logCountPrevious = -1;
    }

    bool handles(int requestType) const override;
    void takeAnswer(const message& answer, bool failed) override;

signals:
    /// The log is about to be read, and has so many events.
    void announced(int records);
    /// Records of 16 bytes; end marks the last call, which comes without records if the reading fails.
    void recordsRead(const QByteArrayList& records, bool end);
    /// The reading ends with an error. Comes before the last recordsRead().
    void incomplete();
    /// The log has not changed, or there is no port to read it from.
    void notNecessary();

private:
    void answerLogInfo(const message& answer);
    void answerReadLog(const message& answer);
    void fail(const char* debugLine);

    bool infoIsAsked = false; ///< and the answer will come
    int logErrors = 0;
    int announcedRecords = 0;
    int receivedRecords = 0;
    bool blockWasRepeated = false;
    int logCapacity = 0;
    int logCount = -1;
    int logCountPrevious = -1; ///< -1 is no counter that a unit gives
    bool logWrapped = false;
};
