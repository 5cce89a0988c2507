#pragma once

#include "eventlog/EventOfTable.h"

#include <QList>

/// A row of which every field can be told from every other.
inline EventOfTable eventRow(int number)
{
    EventOfTable row;
    row.numberEvent = quint16(number);
    row.sortDateTime = 75730373U;
    row.dateInDays = 7573;
    row.timeInMinute = 373;
    row.classTerminal = 1;
    row.version = 2;
    row.type = 3;
    row.characteristic = 4;
    row.addressTerminal = 5;
    row.numberChannel = 6;
    row.codeEvent = 7;
    row.date = QStringLiteral("25.09.2020");
    row.time = QStringLiteral("14:37");
    row.source = QStringLiteral("KV-NX (№5, channel 6)");
    row.signalLevel = 8;
    row.noiseLevel = 9;
    row.event = QStringLiteral("Alarm (fire)");
    row.information = QStringLiteral("12°C (channel 1)\n13°C (channel 2)");
    return row;
}

inline QList<EventOfTable> eventRows(int count)
{
    QList<EventOfTable> rows;
    for (int i = 0; i < count; ++i) {
        rows.append(eventRow(count - i));
    }
    return rows;
}
