#pragma once

#include <QSerialPort>

/// What a serial port reports as its errors, and what of it is true. Belongs to a Transmitter, on its thread.
class PortErrors
{
public:
    /// The port has to live as long.
    explicit PortErrors(QSerialPort& serialPort);

    /// While bytes are being written the errors are those of writing.
    void setWriting(bool on)
    {
        isWriting = on;
    }

    /// Whether an error means nothing. Clearing the buffers can take bytes whose arrival was announced already; the
    /// read that follows finds none, and Qt tells that as the error of whatever call failed last.
    bool isMisunderstanding(QSerialPort::SerialPortError error);

    /// A line that hung up reports nothing but read errors, lets itself be read, and does both without end. Asked for
    /// its signals it says that it is gone; a living one takes no notice.
    void askWhetherGone();

private:
    bool isGone();

    QSerialPort& port;
    bool isWriting = false;
};
