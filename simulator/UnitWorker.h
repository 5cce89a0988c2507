#pragma once

#include "simulator/Bootloader.h"
#include "simulator/FaultPlan.h"
#include "simulator/HeadUnit.h"
#include "simulator/LogGenerator.h"
#include "simulator/PseudoTerminal.h"
#include "simulator/Schedule.h"
#include "simulator/UnitRequest.h"
#include "simulator/UnitSimulator.h"
#include "simulator/UnitState.h"
#include "simulator/Wire.h"

#include <QObject>
#include <QTimer>
#include <QVector>

/// The working half of UnitSimulator: reads the line, lets the unit or its bootloader reply, and sends the answers at
/// their time and with their faults. Owned by a UnitSimulator, lives on the unit's thread; every call is made there.
class UnitWorker : public QObject
{
    Q_OBJECT
public:
    explicit UnitWorker(UnitState initialState);

    const PseudoTerminal& line() const;

    const UnitState& unitState() const;
    void edit(const std::function<void(UnitState&)>& edit);

    void setPace(UnitSimulator::Pace newPace, int newThinkingTime);
    void setFaults(const QVector<UnitFault>& faults, quint32 seed);

    const QVector<UnitRequest>& requestsSeen() const;
    void forgetRequests();

    void unplug();
    bool plugIn();
    void sendRaw(const QByteArray& bytes);
    void growLog(int interval, quint32 seed);

signals:
    void requestReceived(const UnitRequest& request);
    void pluggedInChanged(bool pluggedIn);
    void stateChanged();

private:
    using Moment = Schedule::Clock::time_point;
    Q_DISABLE_COPY_MOVE(UnitWorker)

    void receive();
    void receiveFrame(const wire::Frame& frame, qint64 number);
    void serve(const wire::Frame& frame, qint64 number, Moment moment);
    bool isGivenUp(qint64 number) const;
    bool hears(const wire::Frame& frame, int baudRate) const;
    bool interrupted(const FaultEffects& effects);
    QByteArray answerTo(const wire::Frame& frame, const UnitRequest& request, const FaultEffects& effects);
    void send(QByteArray answer, const FaultEffects& effects, qint64 number, Moment begin);
    Moment transmit(const QByteArray& bytes, qint64 number, bool ends, Moment begin);
    void put(const QByteArray& bytes, qint64 number, bool ends, Moment due);
    Schedule::Clock::duration timeOnWire(int bytes) const;
    void unplugFor(int milliseconds);
    void losePower(int milliseconds);
    void addEvent();

    UnitState state;
    HeadUnit unit{state};
    Bootloader bootloader{state};
    PseudoTerminal port{this};
    wire::FrameCutter cutter;
    FaultPlan plan;

    Schedule traffic{this}; // requests on their way in and bytes on their way out
    Schedule recovery{this};
    UnitSimulator::Pace pace = UnitSimulator::AtOnce;
    int thinkingTime = 0;
    int baudRate = 0;  // of the line when it was last read
    Moment lastRead{}; // the latest moment at which bytes came in
    Moment inputFree{};
    Moment outputFree{};
    qint64 abandoned = -1; // the last request whose answer was broken off
    bool answerOut = true; // the last answer has gone out to its end
    int answeredType = 0;  // the request that it belongs to
    QByteArray lastAnswer; // that there was, as it should have been
    bool powered = true;
    int pullCount = 0; // tells a timed plugging in that the cable has been pulled again since

    QVector<UnitRequest> seen;
    qint64 forgotten = 0; // requests are numbered from the start on; the first of `seen` has this number

    QTimer growth{this};
    LogGenerator generator{1, LogGenerator::Everything};
};
