#pragma once

#include "simulator/UnitFault.h"
#include "simulator/UnitRequest.h"

#include <QString>
#include <QVector>

/// One request of an operation with its answer, as a run without faults shows it.
struct Step
{
    int requestType = 0; ///< numbers as in UnitRequest
    int bootType = 0;
    int nth = 1;          ///< of its type, from 1
    int answerLength = 0; ///< bytes on the wire

    /// Of the search for the unit, before there is a connection.
    bool isOfSearch() const;
    QString name() const;
    bool operator==(const Step& other) const;
};

/// What a unit has answered, by type and number. Without clock and watch, which ask whenever their time has come.
QVector<Step> stepsOf(const QVector<UnitRequest>& requests);

/// One fault at one step.
struct FaultCase
{
    /// How far a program can know that something is wrong.
    enum Promise
    {
        Kept,         ///< all that there is: it ends with the right data or with an error that is told
        PastChecksum, ///< the answer is altered, and its checksum right
        PastAnswer,   ///< a sound answer of another step stands in the place of its own
        PastSkipping  ///< the unit leaves out a log block whose answer was lost
    };

    Step step;
    QString name;
    UnitFault fault;
    Promise promise = Kept;
    quint32 seed = 0; ///< of what the unit draws

    /// Whether the unit repeats a log block that it takes for lost. One that is late is lost only if the machine was in
    /// time, so there no unit may rely on it.
    bool repeatsLostLogBlock() const;
    /// Whether the step came to its turn, so that the fault had something to hit.
    bool isMet(const QVector<UnitRequest>& requests) const;

    static QString promiseName(Promise promise);
};

/// Every fault at every step; at every byte of its answer where it can hit any. The same arguments give the same cases
/// in the same order.
QVector<FaultCase> faultCases(const QVector<Step>& steps, quint32 seed, bool alsoSkipping);
