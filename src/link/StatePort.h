#pragma once

#include <QMetaType>
#include <QString>

/// What is known about a serial port and the coordinator behind it. A Transmitter reports the states of the port itself
/// (0 to 4 and 8); the coordinator form adds those of the coordinator (5 to 7).
enum StatePort
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

/// How the coordinator form shows a state and what it does about it.
struct StatePortTraits
{
    QString text;
    bool autoDisconnect; ///< the form disconnects the port by itself after showing the text
    bool showControls;   ///< whether the controls of the port's row are visible
};

/// Any number may be asked for; those that are no state have the text "???".
StatePortTraits statePortTraits(StatePort state);
