#include "link/PortErrors.h"

#include <QSignalBlocker>

PortErrors::PortErrors(QSerialPort& serialPort) : port(serialPort)
{
}

bool PortErrors::isMisunderstanding(QSerialPort::SerialPortError error)
{
    const bool isOfReading = error == QSerialPort::ResourceError || error == QSerialPort::ReadError;
    return isOfReading && !isWriting && port.isOpen() && !isGone();
}

void PortErrors::askWhetherGone()
{
    if (port.isOpen()) {
        port.pinoutSignals();
    }
}

/// Whether the device behind the open port has gone.
bool PortErrors::isGone()
{
    const QSignalBlocker blocker(port);
    // After an error the port doesn't listen any more; this makes it do so again.
    port.setReadBufferSize(port.readBufferSize());
    port.clearError();
    const bool canRead = port.waitForReadyRead(0) || port.error() == QSerialPort::TimeoutError;
    port.clearError();
    askWhetherGone();
    return !canRead || port.error() == QSerialPort::ResourceError;
}
