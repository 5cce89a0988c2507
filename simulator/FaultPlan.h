#pragma once

#include "simulator/UnitFault.h"

#include <QByteArray>
#include <QRandomGenerator>
#include <QVector>

/// What all rules together do to one request and its answer. Times in milliseconds.
struct FaultEffects
{
    /// An answer that comes later than this has no reader any more.
    static constexpr int patience = 120;

    bool requestLost = false;
    bool answerLost = false;
    bool losesPower = false;
    int powerOutage = 0;
    bool unplugs = false;
    int unplugAfter = 0; // bytes of the answer; below 0: before the request is heard
    int unplugTime = 0;  // 0: for ever

    bool refused = false;
    quint8 refusal = 0;
    bool replaced = false;
    QByteArray replacement;
    bool changed = false;
    bool badChecksum = false;
    bool damaged = false;
    int damagedByte = -1; // below 0: any
    int damagedBit = -1;

    int delay = 0;
    int pieces = 1;
    int gap = 0;
    bool breaksOff = false;
    int breakAfter = 0; // bytes of the answer
    int restAfter = -1; // below 0: never
    int copies = 1;
    bool formerBefore = false;
    bool formerInstead = false;
    QByteArray noiseBefore;
    QByteArray noiseAfter;
    QByteArray noiseLater;
    int noiseLaterAfter = 0;

    quint32 dice = 0; // decides the random places: of a change, a damage, a cut

    /// The other side can't have received the answer.
    bool spoilsAnswer() const;
    /// One data byte of another value, if there is any.
    QByteArray alteredData(const QByteArray& data) const;
    /// One bit of another value.
    QByteArray damagedFrame(const QByteArray& frame) const;
    /// What `breaksOff` keeps back of the frame, which ends before it then.
    QByteArray takeRest(QByteArray& frame) const;
    /// The frame in `pieces` parts, none of them empty; in fewer if it is too short.
    QVector<QByteArray> cut(const QByteArray& frame) const;
};

/// The rules of a unit's faults with their counters and generators.
class FaultPlan
{
public:
    FaultPlan() = default;
    FaultPlan(const QVector<UnitFault>& faults, quint32 seed);

    /// Counts the request.
    FaultEffects effectsOn(int requestType, int bootType);

private:
    struct Rule
    {
        UnitFault fault;
        QRandomGenerator random;
        int matched = 0;
    };

    QVector<Rule> rules;
};
