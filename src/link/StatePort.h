#pragma once

#include <QMetaType>
#include <QString>

/// What is known about a serial port and the coordinator behind it. A Transmitter reports the states of the port itself
/// (0 to 4 and 8); the Port above it adds those of the coordinator (5 to 7).
enum StatePort : int
{
    StateConnecting = 0,
    StateCreateError = 1,
    StateOpenError = 2,
    StateNotFound = 3,
    StateSearching = 4,
    StateCoordinatorNotFound = 5,
    StateCoordinatorConnected = 6,
    StateCoordinatorLost = 7,
    StatePortDisabled = 8,
};

Q_DECLARE_METATYPE(StatePort)

/// What follows from a state: how it is shown, and what is done about it.
struct StatePortTraits
{
    QString (*text)();
    bool autoDisconnect; ///< the port is closed for it, and it goes on being shown
    bool showControls;   ///< whether the controls of the port's row are visible
};

/// Any number may be asked for; those that are no state have the text "???".
const StatePortTraits& statePortTraits(StatePort state);
