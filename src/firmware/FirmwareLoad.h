#pragma once

#include "link/message.h"

#include <QByteArray>
#include <QObject>

class protocol_boot;

/// The sequence of requests that loads a firmware image, from the request to enter the bootloader to its end.
///
/// Each request follows the answer to the one before, and each is sent at most four times. It knows neither port nor
/// worker: requests leave by requestReady(), and takeAnswer() takes the answers. One thread.
class FirmwareLoad : public QObject
{
    Q_OBJECT

public:
    enum class End
    {
        Completed,
        Aborted,
        PortError,
        NotResponding,
        WriteError,
        ProgrammingError,
    };
    Q_ENUM(End)

    explicit FirmwareLoad(QObject* parent = nullptr);

    /// An image has at least protocol_boot::smallestImage bytes.
    void setImage(const QByteArray& image);

    /// How many times stepDone() comes in a load that ends well.
    int stepCount() const
    {
        return steps;
    }

    /// Begins from the beginning. The address 255 stands for none and is sent as 0; the baud rate is that of the
    /// request to enter the bootloader.
    void start(quint8 address, int baudrate);

    bool isRunning() const
    {
        return running;
    }

    /// Ends a load that is on; the answer that is under way changes nothing any more.
    void abort();

public slots:
    void takeAnswer(const message& answer);

signals:
    void requestReady(const message& request);
    void stepDone();
    void ended(FirmwareLoad::End end);

private:
    void send(const message& request);
    void finishStep();
    void finish(End end);

    protocol_boot* protocol;
    int steps = 0;
    bool running = false; ///< answers that come without it change nothing
    int awaitedRequestType = 0;
    int awaitedBootType = 0;
};
