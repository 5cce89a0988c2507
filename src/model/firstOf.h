#pragma once

#include <QList>

#include <algorithm>

/// The first record of a list that a test accepts, else null.
template <typename Pointer, typename Fits>
Pointer firstOf(const QList<Pointer>& list, Fits fits)
{
    const auto found = std::find_if(list.begin(), list.end(), fits);
    return found == list.end() ? Pointer() : *found;
}

/// The first script or output with a number, else null.
template <typename Pointer>
Pointer firstOfNumber(const QList<Pointer>& list, quint8 number)
{
    return firstOf(list, [number](const Pointer& record) { return record->number == number; });
}
