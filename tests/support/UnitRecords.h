#pragma once

#include "simulator/UnitState.h"

#include <QByteArrayList>
#include <QRegularExpression>
#include <QString>

inline QByteArray byte(int value)
{
    return {1, char(value)};
}

/// What a reading gives of the outputs that the unit has at that moment.
inline QByteArrayList outputsOf(const UnitState& state)
{
    QByteArrayList list;
    for (int address = 0; address < UnitState::addressCount; ++address) {
        for (int output = 0; output <= (address == 0 ? 7 : 1); ++output) {
            list.append(byte(address) + byte(output) + state.outputs.at(size_t(address)).at(size_t(output)));
        }
    }
    return list;
}

/// The same of its scripts.
inline QByteArrayList scriptsOf(const UnitState& state)
{
    QByteArrayList list;
    for (int number = 0; number < UnitState::scriptCount; ++number) {
        list.append(byte(number) + state.scripts.at(size_t(number)));
    }
    return list;
}

/// Whether `part` stands in `whole` in this order, with nothing else between and none twice.
inline bool isPartOf(const QByteArrayList& part, const QByteArrayList& whole)
{
    int next = 0;
    for (const QByteArray& element : part) {
        next = whole.indexOf(element, next) + 1;
        if (next == 0) {
            return false;
        }
    }
    return true;
}

/// The records in the order of the unit's answers: block after block from the end of the log.
inline QByteArrayList inBlocks(QByteArrayList records)
{
    constexpr int block = 4;
    QByteArrayList result;
    while (!records.isEmpty()) {
        const int first = qMax(0, records.size() - block);
        result.append(records.mid(first));
        records.erase(records.begin() + first, records.end());
    }
    return result;
}

/// How many of the elements of one stand otherwise in the other.
inline int differences(const QByteArrayList& left, const QByteArrayList& right)
{
    int count = 0;
    for (int i = 0; i < left.size(); ++i) {
        count += left.at(i) == right.value(i) ? 0 : 1;
    }
    return count;
}

/// The number of errors that a result text names on one of its lines, 0 if it names none.
inline int errorsOn(const QString& result, int line = 0)
{
    const QRegularExpression number(QStringLiteral("\\(Number of error = (\\d+)\\)$"));
    return number.match(result.split(QLatin1Char('\n')).value(line)).captured(1).toInt();
}
