#pragma once

#include "model/RelayInfo.h"
#include "simulator/UnitState.h"

#include <QRandomGenerator>

/// Draws what an engineer could have configured: every value one that the program writes as it was read.
class RandomUnit
{
public:
    /// The dates that a unit keeps, or those of them that a configuration file gives back: it has no day 31 and no
    /// December.
    enum Dates
    {
        OfUnits,
        OfFiles
    };

    explicit RandomUnit(quint32 seed, Dates dates = OfUnits)
        : random(seed), lastDay(dates == OfFiles ? 30 : 31), lastMonth(dates == OfFiles ? 11 : 12)
    {
    }

    UnitState draw()
    {
        UnitState state;
        for (quint8 address = 1; address < UnitState::addressCount; ++address) {
            if (chance(4)) {
                // Two outputs, the number that the unit is asked for.
                state.terminals.append(UnitTerminal::make(address, 2, below(16), below(256), below(256), 8));
            }
            const bool isReported = !state.terminals.isEmpty() && state.terminals.constLast().address == address;
            if (isReported || chance(8)) {
                drawOutputs(state, address, 2);
            }
            // One that isn't reported shows only by its scripts.
            if (!isReported && state.outputs.at(address).at(0).size() == 1) {
                state.outputs.at(address).at(0) = UnitState::emptyOutput();
                state.outputs.at(address).at(1) = UnitState::emptyOutput();
            }
        }
        drawOutputs(state, 0, UnitState::outputsPerAddress);
        for (QByteArray& script : state.scripts) {
            script = drawScript();
        }
        // The editor shows the first script of the first output, and showing one without a trigger clears its channels.
        state.outputs[0][0] = QByteArrayLiteral("\x01\x00");
        state.scripts[0][2] = 1;
        state.scripts[0][14] = char(0x20);
        return state;
    }

private:
    bool chance(int oneIn)
    {
        return random.bounded(oneIn) == 0;
    }
    int below(int limit)
    {
        return random.bounded(limit);
    }
    int bcd(int from, int to)
    {
        const int value = random.bounded(from, to + 1);
        return value / 10 * 16 + value % 10;
    }

    void drawOutputs(UnitState& state, int address, int count)
    {
        for (int number = 0; number < count; ++number) {
            QByteArray record(1, char(below(4)));
            for (char script = 0; script < UnitState::scriptCount; ++script) {
                if (chance(10)) {
                    record.insert(1 + below(record.size()), script);
                }
            }
            state.outputs.at(std::size_t(address)).at(std::size_t(number)) = record;
        }
    }

    QByteArray drawScript()
    {
        const int mode = tables.modes().at(below(tables.modes().size()))->code;
        const int duration = tables.durations().at(below(tables.durations().size()))->code;
        const int delay = tables.delays().at(below(tables.delays().size()))->code;
        const int stateCode =
            chance(3) ? below(256) : tables.stateChannels().at(below(tables.stateChannels().size()))->effectiveCode();
        int faults = 0;
        const auto rows = tables.terminalStates();
        for (const ParamItemPtr& row : rows) {
            faults |= chance(3) ? row->code : 0;
        }
        QByteArray script;
        for (const int byte : {mode,
                               duration * 8 + delay,
                               stateCode,
                               faults,
                               16 * random.bounded(1, 16) + below(16),
                               below(128),
                               bcd(0, 59),
                               bcd(0, 23),
                               bcd(1, lastDay),
                               bcd(1, lastMonth),
                               bcd(0, 59),
                               bcd(0, 23),
                               bcd(1, lastDay),
                               bcd(1, lastMonth),
                               (chance(3) ? 15 : below(5)) * 16 + below(16),
                               below(256),
                               below(256),
                               below(256),
                               below(256),
                               below(256),
                               below(256)}) {
            script.append(char(byte));
        }
        return script;
    }

    QRandomGenerator random;
    const int lastDay;
    const int lastMonth;
    const RelayInfo tables;
};
