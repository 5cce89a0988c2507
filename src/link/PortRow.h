#pragma once

#include "domain/terminals.h"
#include "link/message.h"

#include <QString>

#include <functional>

class QCheckBox;
class QObject;
class QPushButton;
class QTableWidgetItem;
class QThread;
class QTimer;
class QWidget;
class Transmitter;

/// One serial port in the coordinator form: its table row, its controls, its timers and its worker.
///
/// Created for a port when it is first seen, and kept by the coordinator form as long as that lives; GUI thread. The
/// table owns the items and the controls, the form owns the timers. Thread and worker are owned by nobody: they are
/// never stopped and end with the process, which may happen while they run. A destructor that met a running thread
/// would abort the process, so there is none.
struct PortRow
{
    /// The worker is on its thread afterwards, which has not been started.
    PortRow(const QString& portName, std::function<message(const message&)> parseBootAnswer, QObject* timerOwner);

    QTableWidgetItem* itemPortName;
    QTableWidgetItem* itemBaudrate;
    int baudrate = 0; ///< at which a coordinator answered; 0 until one did
    QTableWidgetItem* itemCoordinator;
    quint8 coordinatorAddress = noCoordinator; ///< as the last answer gave it
    quint8 watchedAddress = noCoordinator;     ///< as the search found it, which no misread answer changes
    QTableWidgetItem* itemSerial;
    QTableWidgetItem* itemVersion;
    QTableWidgetItem* itemState;
    QWidget* cellWidget; ///< the three controls
    QCheckBox* checkBoxCheck;
    QPushButton* buttonConnect;
    QPushButton* buttonFirmware;
    QThread* thread;
    Transmitter* transmitter;
    QTimer* timerPeriodic;        ///< the watch; 1000 ms
    int firstConnectAttempts = 4; ///< sweeps that may still start by themselves
    QTimer* timerFirstConnect;    ///< 1000 ms to the next such sweep
};
