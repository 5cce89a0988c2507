#pragma once

#include "model/ParamItem.h"

/// The lookup tables of the system, each in its fixed order. Positions matter as well as codes: the configuration file
/// and the output records name rows by position.
struct ParamTables
{
    ParamItems buttonStates;   ///< keys of a panic-button terminal; bit 7 of the code is a long press
    ParamItems analogStates;   ///< states of an analog terminal
    ParamItems stateChannels;  ///< five plain rows, then one linked to each row of each family
    ParamItems terminalStates; ///< fault bits of a terminal, one bit to a row
    ParamItems outputStates;
    ParamItems modes;
    ParamItems durations;
    ParamItems delays;
};

/// Builds the tables. Each call makes rows of its own.
ParamTables makeParamTables();

/// The translucent grey of what is unset: the row "Not active", the blank terminal type.
QColor unsetColor();

/// The blank picture of rows and states that have no picture of their own.
QString emptyIcon();

/// First row with a code, else null.
ParamItemPtr findByCode(const ParamItems& rows, int code);

/// The rows whose code has a bit in common with a mask, in table order.
ParamItems rowsOfMask(const ParamItems& rows, int mask);

/// The codes of all rows in one mask.
int maskOf(const ParamItems& rows);
