#pragma once

#include <QtGlobal>

/// The class of a terminal, the first of the four numbers that name its model. No terminal has one from 5 to 14.
enum TerminalClass : quint8
{
    SystemClass = 0, ///< the head unit
    SensorClass = 1,
    ExecutiveClass = 2, ///< the terminals with outputs
    InterfaceClass = 3, ///< panic buttons
    AnalogClass = 4,
    AnyClass = 15 ///< in a filter
};

constexpr int terminalClasses = 5; ///< system to analog, the classes that terminals have

/// The address of a coordinator where there is none.
constexpr quint8 noCoordinator = 255;
