#pragma once

#include "eventlog/EventInfo.h"
#include "eventlog/EventOfTable.h"

#include <QByteArrayList>
#include <QList>

class Device;

/// Holds the decoded events between the moment they arrive from the device and the moment they go to the database.
///
/// The log tab owns the one instance; GUI thread only. It knows the catalogue of models, which it doesn't own, for the
/// names of terminals; without one every terminal keeps its numbers.
class LogEvents
{
public:
    void setDevices(const Device* catalogue)
    {
        devices = catalogue;
    }

    /// Decodes the records of one block, from the last to the first, and appends the rows they give. A record that is
    /// too short costs one debug line and gives no row.
    void decodeEvents(const QByteArrayList& records);

    /// Numbers the events from their count down to 1, in 16 bits.
    void numberEvents();

    /// Converts and removes up to count events from the front.
    QList<EventOfTable> takeEvents(int count);

    void saveAndClearEvents(); ///< before a reading of the log
    void restoreEvents();      ///< when the reading found the log unchanged

private:
    QList<EventInfo> events;
    QList<EventInfo> savedEvents;
    const Device* devices = nullptr;
};
