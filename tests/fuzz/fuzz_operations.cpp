// Any data as the answers to what the operations of a unit ask: each operation comes to its end, and what it has found
// can be read. The time is read as well.

#include "domain/logRecord.h"
#include "eventlog/LogEvents.h"
#include "fuzz/fuzz.h"
#include "link/ConfigurationReading.h"
#include "link/DeviceTime.h"
#include "link/LogReading.h"
#include "link/TerminalSearch.h"
#include "link/message.h"
#include "model/RelayInfo.h"
#include "support/ModelInvariants.h"

#include <QQueue>
#include <QSet>

namespace
{

constexpr int longestAnswer = 127;
constexpr int yearAfterLast = 2100; ///< two decimal digits give none from here on

/// Answers an operation with one piece of data after the other, and with failures when there are no more of them.
template <typename Operation, typename Start>
void run(Operation& operation, const QByteArrayList& data, Start start)
{
    constexpr int mostRequests = 4000; // all addresses of all classes, each read as often as the limit allows
    QQueue<message> asked;
    const auto connection = QObject::connect(&operation, &DeviceOperation::requestReady, &operation,
                                             [&asked](const message& request) { asked.enqueue(request); });
    operation.setCoordinator(1);
    start();
    int count = 0;
    while (!asked.isEmpty()) {
        message answer = asked.dequeue();
        fuzz::demand(++count < mostRequests + data.size(), QStringLiteral("an operation without an end"));
        const bool failed = count > data.size();
        answer.setParseStatus(failed ? PacketEmpty : PacketOk);
        answer.setAnswerCode(failed ? message::noAnswerCode : 0);
        answer.setPayload(failed ? QByteArray() : data.at(count - 1));
        operation.takeAnswer(answer, failed);
    }
    QObject::disconnect(connection);
}

void searchTerminals(const QByteArrayList& data, RelayInfo& model)
{
    TerminalSearch search;
    int ends = 0;
    QObject::connect(&search, &TerminalSearch::terminalsFound, &search, [&](const QByteArrayList& records) {
        fuzz::demand(QSet<QByteArray>(records.begin(), records.end()).size() == records.size(),
                     QStringLiteral("a terminal twice"));
        model.readTerminalRecords(records);
        ++ends;
    });
    run(search, data, [&search] { search.start(3); });
    fuzz::demand(ends == 1, QStringLiteral("the search doesn't end once"));
}

void readConfiguration(const QByteArrayList& data, RelayInfo& model)
{
    model.readTerminalRecords({});
    ConfigurationReading reading;
    int ends = 0;
    QObject::connect(&reading, &ConfigurationReading::outputsRead, &reading,
                     [&model](const QByteArrayList& records) { model.readOutputRecords(records); });
    QObject::connect(&reading, &ConfigurationReading::scriptsRead, &reading, [&](const QByteArrayList& records) {
        model.readScriptRecords(records);
        ++ends;
    });
    run(reading, data, [&reading] { reading.start(); });
    fuzz::demand(ends == 1, QStringLiteral("the reading doesn't end once"));
    const QString broken = brokenInvariant(model);
    fuzz::demand(broken.isEmpty(), broken);
}

void readLog(const QByteArrayList& data)
{
    LogReading reading;
    LogEvents events;
    int records = 0;
    QObject::connect(&reading, &LogReading::recordsRead, &reading, [&](const QByteArrayList& block, bool) {
        for (const QByteArray& record : block) {
            fuzz::demand(record.size() == logRecordSize, QStringLiteral("half a record"));
        }
        events.decodeEvents(block);
        records += block.size();
    });
    run(reading, data, [&reading] { reading.start(); });
    events.numberEvents();
    fuzz::demand(events.takeEvents(1 << 20).size() >= records, QStringLiteral("rows are missing"));
}

void readTime(const QByteArray& data)
{
    message answer;
    answer.setAnswerCode(0);
    answer.setPayload(data);
    const devicetime::Shown shown = devicetime::fromAnswer(answer);
    fuzz::demand(!shown.text.isEmpty(), QStringLiteral("a time without a text"));
    const QDateTime time = devicetime::valueOf(answer);
    if (time.isValid() && time.date().year() < yearAfterLast) {
        message own;
        own.setAnswerCode(0);
        own.setPayload(devicetime::toBytes(time));
        fuzz::demand(devicetime::valueOf(own) == time, QStringLiteral("a time doesn't come back"));
        fuzz::demand(shown.correct, QStringLiteral("a time that isn't shown"));
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool silent = fuzz::silenceDebugLines();
    Q_UNUSED(silent)
    static RelayInfo model;

    if (size == 0) {
        return 0;
    }
    const QByteArrayList answers = fuzz::recordsOf(fuzz::bytesOf(data + 1, size - 1), longestAnswer + 1);
    switch (data[0] % 4) {
    case 0:
        searchTerminals(answers, model);
        break;
    case 1:
        readConfiguration(answers, model);
        break;
    case 2:
        readLog(answers);
        break;
    default:
        for (const QByteArray& answer : answers) {
            readTime(answer);
        }
    }
    return 0;
}
