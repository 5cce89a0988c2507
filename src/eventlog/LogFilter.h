#pragma once

#include <QDate>
#include <QList>
#include <QPair>
#include <QSet>
#include <QString>

#include <optional>

/// What the head unit's code of event comes down to. The code says which part of a terminal the event is about.
enum class EventKind
{
    PowerUp = 0,
    Channel = 1,
    Status = 2,
    Mode = 3,
    Other ///< a code that isn't known
};

/// Addresses of terminals from the first to the last, both included.
using AddressRange = QPair<int, int>;

/// Addresses as a user writes them, say "1, 3-5, 20-": single ones and spans, which may lack an end. Nothing if they
/// make no sense.
std::optional<QList<AddressRange>> addressRanges(const QString& text);

/// What is looked for in a log. An event is shown if it fits all that is set; what is empty asks for nothing.
struct LogFilter
{
    QString text;                  ///< stands in the date, time, event, source or details, in whatever case
    QList<AddressRange> addresses; ///< of terminals; 0 is the head unit
    QSet<EventKind> kinds;
    QDate firstDay; ///< invalid for no limit
    QDate lastDay;  ///< invalid for no limit

    /// The condition in SQL for DataBase::sl_filterModel(), empty if nothing is set. The text is found as it stands:
    /// nothing in it means anything to SQL.
    QString condition() const;
};

/// So that kinds can be held in a set.
inline uint qHash(EventKind kind, uint seed = 0)
{
    return ::qHash(static_cast<int>(kind), seed);
}
