#pragma once

#include "model/ConfigurationError.h"

#include <QList>
#include <QString>
#include <QVector>

#include <algorithm>

// Lists as values of a configuration file: their parts stand between semicolons.

/// Adds a fault of a part of a list; those of one kind are told together, by the first part.
inline void addFault(ConfigurationFaults& faults, const ConfigurationFault& fault, const QStringRef& part)
{
    const auto known = std::find_if(faults.begin(), faults.end(),
                                    [&fault](const ConfigurationFault& each) { return each.kind == fault.kind; });
    if (known != faults.end()) {
        ++known->count;
        return;
    }
    faults.append(fault);
    faults.last().part = part.toString();
}

/// Calls a function for each number of a list value; the function returns false for a number it refuses, for which
/// refused() makes the fault. So does a part that is no number, unless the list begins with the word for an empty one.
template <typename Take, typename Refused>
ConfigurationFaults readList(const QString& value, Take take, Refused refused)
{
    const QVector<QStringRef> parts = value.splitRef(QLatin1Char(';'), Qt::SkipEmptyParts);
    const bool wordsAllowed = !parts.isEmpty() && parts.first().trimmed() == QLatin1String("NONE");
    ConfigurationFaults faults;
    for (const QStringRef& part : parts) {
        bool isNumber = false;
        const QStringRef word = part.trimmed();
        const int number = word.toInt(&isNumber);
        if (isNumber && !take(number)) {
            addFault(faults, refused(), word);
        } else if (!isNumber && !wordsAllowed) {
            addFault(faults, {ConfigurationFault::PartNoNumber, 0, 0, {}}, word);
        }
    }
    return faults;
}

/// Sets the listed positions of a list of flags and clears the others.
inline ConfigurationFaults readFlags(QList<bool>& flags, const QString& value)
{
    std::fill(flags.begin(), flags.end(), false);
    return readList(
        value,
        [&flags](int position) {
            if (position < 0 || position >= flags.size()) {
                return false;
            }
            flags[position] = true;
            return true;
        },
        [&flags] {
            return ConfigurationFault{ConfigurationFault::PartOutOfRange, 0, flags.size() - 1, {}};
        });
}
