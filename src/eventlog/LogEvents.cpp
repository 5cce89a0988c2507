#include "eventlog/LogEvents.h"

#include "domain/logRecord.h"
#include "eventlog/EventDecoder.h"
#include "texts/texts.h"

#include <QDebug>

#include <algorithm>

namespace
{

EventOfTable toRow(const EventInfo& event)
{
    EventOfTable row;
    row.numberEvent = event.number;
    // Saved logs hold hour * 24 + minute as the time in minutes. Without a valid time both are -1.
    row.dateInDays = quint16(dayZero().daysTo(event.date));
    row.timeInMinute = quint16(event.time.hour() * 24 + event.time.minute());
    row.sortDateTime = row.dateInDays * 10000U + row.timeInMinute;
    row.classTerminal = event.classTerminal;
    row.version = event.version;
    row.type = event.type;
    row.characteristic = event.characteristic;
    row.addressTerminal = event.address;
    row.numberChannel = quint8(event.channel + 1);
    row.codeEvent = quint8(event.code);
    row.date = event.date.isValid() ? event.date.toString(QStringLiteral("dd.MM.yyyy")) : texts::eventIncorrectDate();
    row.time = event.time.isValid() ? event.time.toString(QStringLiteral("hh:mm")) : texts::eventIncorrectTime();
    row.source = event.source;
    row.signalLevel = event.signal;
    row.noiseLevel = event.noise;
    row.event = event.event;
    row.information = event.details;
    return row;
}

} // namespace

void LogEvents::decodeEvents(const QByteArrayList& records)
{
    // The oldest record of a block comes first; the table begins with the newest.
    for (auto record = records.crbegin(); record != records.crend(); ++record) {
        if (record->size() < logRecordSize) {
            qDebug().noquote() << QLatin1String("___WARNING___: LOG EVENTS: Missing event: ") +
                                      QString::fromLatin1(records.first().toHex());
            continue;
        }
        decodeRecord(*record, devices, events);
    }
}

void LogEvents::numberEvents()
{
    int number = events.size();
    for (EventInfo& event : events) {
        event.number = quint16(number);
        --number;
    }
}

QList<EventOfTable> LogEvents::takeEvents(int count)
{
    QList<EventOfTable> rows;
    const int size = std::min(count, events.size());
    if (size < 1) {
        return rows;
    }
    rows.reserve(size);
    const auto end = events.begin() + size;
    std::transform(events.begin(), end, std::back_inserter(rows), toRow);
    events.erase(events.begin(), end);
    return rows;
}

void LogEvents::saveAndClearEvents()
{
    savedEvents = events;
    events.clear();
}

void LogEvents::restoreEvents()
{
    events = savedEvents;
}
