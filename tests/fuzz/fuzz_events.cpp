// Any bytes as records of the event log: each gives its rows, and every row can go to the database.

#include "eventlog/LogEvents.h"
#include "fuzz/fuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool silent = fuzz::silenceDebugLines();
    Q_UNUSED(silent)

    LogEvents events;
    const QByteArrayList records = fuzz::recordsOf(fuzz::bytesOf(data, size));
    events.decodeEvents(records);
    events.numberEvents();
    const int count = events.decodedEvents().size();
    fuzz::demand(events.takeEvents(count).size() == count, QStringLiteral("rows are missing"));
    fuzz::demand(events.decodedEvents().isEmpty(), QStringLiteral("rows are left"));
    return 0;
}
