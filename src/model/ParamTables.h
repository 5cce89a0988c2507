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
