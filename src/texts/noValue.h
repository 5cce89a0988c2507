#pragma once

#include <QString>

namespace texts
{

/// What stands in the place of a value that isn't known.
inline QString noValue()
{
    return QStringLiteral("-");
}

} // namespace texts
