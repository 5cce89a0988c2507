#pragma once

#include "simulator/UnitFault.h"
#include "simulator/UnitRequest.h"
#include "simulator/UnitState.h"

#include <QObject>
#include <QString>
#include <QThread>
#include <QVector>

#include <functional>

class UnitWorker;

/// A whole head unit with its coordinator and its bootloader behind a pseudo-terminal: the other end of the program's
/// serial port. It shares no code with the program: it cuts and builds frames by itself.
///
/// The unit works on a thread of its own, so that a busy GUI thread doesn't delay its answers; with OnCallersThread it
/// works in the event loop of the thread that creates it. The object belongs to that thread. Every call below is done
/// before it returns and may be made from the owner's thread at any time; states, requests and faults pass by copy.
/// Signals come on the owner's thread.
///
/// The other side asks one thing at a time. A request that is followed by another one before the unit has come to
/// answer it has been given up: it is done, but not answered, as if its answer was lost. So a machine too busy to
/// answer within the other side's patience doesn't put answers one place out. Answers that a fault makes late come all
/// the same.
class UnitSimulator : public QObject
{
    Q_OBJECT
public:
    enum Place
    {
        OnOwnThread,
        OnCallersThread
    };

    enum Pace
    {
        AtOnce,   // as fast as the machine can
        OfTheWire // ten bit times a byte in both directions, at the rate of the line
    };

    explicit UnitSimulator(const UnitState& state = UnitState(), Place place = OnOwnThread, QObject* parent = nullptr);
    ~UnitSimulator() override;

    /// False when the system gave no pseudo-terminal; errorString() says why.
    bool isValid() const;
    QString errorString() const;
    /// The port of the unit as QSerialPort takes it; the same for the object's life.
    QString portName() const;

    /// What the unit remembers. A change is seen by the next request.
    UnitState state() const;
    void setState(const UnitState& state);
    /// Runs `edit` on the unit's thread between two requests. It must not call this object.
    void change(const std::function<void(UnitState&)>& edit);

    /// Starts with AtOnce. `thinkingTime` in ms passes between the end of a request and the begin of its answer.
    void setPace(Pace pace, int thinkingTime = 0);

    /// Replaces all rules; an empty list makes the unit well-behaved again. See UnitFault.
    void setFaults(const QVector<UnitFault>& faults, quint32 seed = 1);

    /// Every request since the start or the last clearRequests(), also those that the unit did not hear.
    QVector<UnitRequest> requests() const;
    /// How many of a type; 0 counts all of them.
    int requestCount(int requestType = 0) const;
    int bootRequestCount(int bootType) const;
    void clearRequests();

    /// Pulls the cable and puts it back. Answers on their way are lost; what the unit remembers stays.
    void unplug();
    bool plugIn();
    bool isPluggedIn() const;

    /// Puts bytes on the line as they are, at once.
    void sendRaw(const QByteArray& bytes);

    /// A new event every `interval` ms while the unit runs; 0 stops it. The events are those of LogGenerator.
    void growLog(int interval, quint32 seed = 1);

signals:
    void requestReceived(const UnitRequest& request);
    void pluggedInChanged(bool pluggedIn);
    /// A write, a time, an event or a firmware block has changed what state() gives.
    void stateChanged();

private:
    Q_DISABLE_COPY_MOVE(UnitSimulator)

    void onWorker(const std::function<void()>& call) const;

    QThread thread;
    UnitWorker* worker = nullptr; // lives on `thread`, or on this object's
};
