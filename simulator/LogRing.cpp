#include "simulator/LogRing.h"

#include <QtGlobal>

LogRing::LogRing(int capacity, qint64 overwritten)
    : limit(qBound(1, capacity, maximumCapacity)), total(qMax(0LL, overwritten))
{
}

int LogRing::capacity() const
{
    return limit;
}

int LogRing::size() const
{
    return int(kept.size());
}

void LogRing::append(const QByteArray& record)
{
    kept.push_back(record);
    ++total;
    if (size() > limit) {
        kept.pop_front();
    }
}

void LogRing::append(const QByteArrayList& records)
{
    for (const QByteArray& record : records) {
        append(record);
    }
}

void LogRing::clear()
{
    kept.clear();
    total = 0;
}

QByteArray LogRing::at(int index) const
{
    return index < 0 || index >= size() ? QByteArray() : kept.at(size_t(index));
}

QByteArrayList LogRing::records() const
{
    QByteArrayList list;
    list.reserve(size());
    for (const QByteArray& record : kept) {
        list.append(record);
    }
    return list;
}

qint64 LogRing::written() const
{
    return total;
}

quint16 LogRing::counter() const
{
    return total == 0 ? quint16(0) : quint16((total - 1) % limit + 1);
}

bool LogRing::wrapped() const
{
    return total > limit;
}

bool LogRing::operator==(const LogRing& other) const
{
    return limit == other.limit && total == other.total && kept == other.kept;
}
