#pragma once

#include "model/RelayInfo.h"
#include "simulator/UnitState.h"

#include <QByteArrayList>

/// Reads a unit into a model: the records as the program collects them.
inline void fill(RelayInfo& model, const UnitState& state)
{
    QByteArrayList terminals;
    for (const UnitTerminal& terminal : state.terminals) {
        terminals.append(terminal.infoRecord);
    }
    QByteArrayList outputs;
    for (int address = 0; address < UnitState::addressCount; ++address) {
        for (int number = 0; number < (address == 0 ? UnitState::outputsPerAddress : 2); ++number) {
            const QByteArray place{QByteArray(1, char(address)) + char(number)};
            outputs.append(place + state.outputs.at(std::size_t(address)).at(std::size_t(number)));
        }
    }
    QByteArrayList scripts;
    for (int number = 0; number < UnitState::scriptCount; ++number) {
        scripts.append(char(number) + state.scripts.at(std::size_t(number)));
    }
    model.readTerminalRecords(terminals);
    model.readOutputRecords(outputs);
    model.removeIdleGroups();
    model.readScriptRecords(scripts);
}
