// Any bytes as records of the event log: each whole one gives rows, and every row can go to the database.

#include "domain/logRecord.h"
#include "eventlog/EventDecoder.h"
#include "eventlog/LogEvents.h"
#include "fuzz/fuzz.h"

#include <algorithm>
#include <limits>

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool silent = fuzz::silenceDebugLines();
    Q_UNUSED(silent)

    LogEvents events;
    const QByteArrayList records = fuzz::recordsOf(fuzz::bytesOf(data, size));
    events.decodeEvents(records);
    events.numberEvents();
    const auto whole = std::count_if(records.begin(), records.end(),
                                     [](const QByteArray& record) { return record.size() >= logRecordSize; });
    const int count = events.takeEvents(std::numeric_limits<int>::max()).size();
    fuzz::demand(count >= whole, QStringLiteral("rows are missing"));
    fuzz::demand(events.takeEvents(1).isEmpty(), QStringLiteral("rows are left"));
    return 0;
}
