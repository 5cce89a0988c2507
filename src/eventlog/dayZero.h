#pragma once

#include <QDate>

/// The day from which a log counts its days, and on which an event without a date stands.
inline QDate dayZero()
{
    return {2000, 1, 1};
}
