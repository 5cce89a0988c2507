#pragma once

#include "simulator/HeadUnit.h"
#include "simulator/UnitState.h"
#include "simulator/Wire.h"

/// The bootloader of the unit: takes the packets of a firmware run and keeps the image in the state that it works on.
///
/// Commands: 2 greets, 3 erases the image, 4 brings its first two bytes and starts the blocks at number 0, 5 brings a
/// block, 1 starts the new program. A block shorter than 128 bytes closes the image. A block that comes a second time,
/// because its answer was lost, is accepted and not stored again; any other number out of order is a write error, and
/// so is starting a program that isn't whole.
class Bootloader
{
public:
    enum Result : quint8
    {
        Accepted = 0,
        WriteError = 1,
        UnknownCommand = 3
    };

    explicit Bootloader(UnitState& unitState);

    UnitReply answer(const wire::Frame& packet);

    /// Power-up: a run that had begun has to begin again.
    void restart();

private:
    Result begin(const QByteArray& data);
    Result block(const QByteArray& data);
    Result start();

    UnitState& state;
    int blocks = -1; // taken in this run; below 0 before command 4
    QByteArray lastBlock;
};
