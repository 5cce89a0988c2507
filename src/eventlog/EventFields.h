#pragma once

#include <QList>
#include <QString>

class QAbstractItemModel;

/// One thing that is kept of an event.
struct EventField
{
    QString name;    ///< the heading of its column
    QString value;   ///< as it is kept
    QString meaning; ///< in words; empty where the value says it all
};

/// All that the table of a log keeps of the event in a row, the columns that the view hides included, in their order.
QList<EventField> fieldsOfEvent(const QAbstractItemModel& log, int row);
