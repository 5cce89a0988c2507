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

/// The number of errors that a result text names on one of its lines, 0 if it names none.
inline int errorsOn(const QString& result, int line = 0)
{
    const QRegularExpression number(QStringLiteral("\\(Number of error = (\\d+)\\)$"));
    return number.match(result.split(QLatin1Char('\n')).value(line)).captured(1).toInt();
}
