#pragma once

#include <QByteArray>
#include <QByteArrayList>

#include <deque>

/// The event log of a unit: a ring of 16-byte records. A plain value. Records are never changed once written; when the
/// ring is full each new one takes the place of the oldest.
class LogRing
{
public:
    static constexpr int recordSize = 16;
    static constexpr int maximumCapacity = 0x7FFF; // the counter has 15 bits

    /// The capacity is brought into 1 to maximumCapacity. `overwritten` records were there before the first one that is
    /// kept.
    explicit LogRing(int capacity = 1000, qint64 overwritten = 0);

    int capacity() const;
    int size() const;

    /// A record that isn't recordSize long is kept as it is: a damaged log is something to try out as well.
    void append(const QByteArray& record);
    void append(const QByteArrayList& records);
    void clear();

    /// Record by age, 0 being the oldest that is kept; empty past the end.
    QByteArray at(int index) const;
    QByteArrayList records() const; // oldest first

    /// How many records were ever written since the log was empty; goes on counting after the ring is full.
    qint64 written() const;
    /// Where the last record stands in the ring, counted from 1, as the unit reports it; 0 if there is none.
    quint16 counter() const;
    /// A record was overwritten.
    bool wrapped() const;

    bool operator==(const LogRing& other) const;

private:
    int limit;
    qint64 total;
    std::deque<QByteArray> kept; // oldest first, at most `limit` items
};
