#pragma once

#include "campaign/FaultCase.h"

#include <memory>

class QString;

/// How an operation ended.
struct Outcome
{
    enum Verdict
    {
        Right,   ///< all data are the unit's
        LeftOut, ///< what is missing is by rule not told: terminals, and after the chain the end of the log's reading
        Counted, ///< an error is told, and what is there is right
        Wrong,   ///< something is wrong, and nothing tells
        Stuck,   ///< it doesn't end
        Unmet    ///< it ended well or with an error before its fault came, which proves nothing
    };

    Verdict verdict = Right;
    QString what; ///< in words

    static QString verdictName(Verdict verdict);
};

/// The outcome of a case by what the unit was asked: Unmet where it says nothing of the fault.
Outcome ofMetFault(const Outcome& outcome, const FaultCase& faultCase, const QVector<UnitRequest>& requests);

/// What a user does with a unit, through one of the programs, over a simulated unit of its own.
///
/// The truth is what is in the unit, and what a run without faults gave, which is checked against the unit.
class Operation
{
public:
    Operation() = default;
    virtual ~Operation() = default;
    Q_DISABLE_COPY_MOVE(Operation)

    /// Runs without faults, keeps what comes of it as the truth, and gives the requests. Nothing if it didn't end well.
    virtual QVector<UnitRequest> learn() = 0;

    /// Runs with the fault. To be called once it has learned.
    virtual Outcome run(const FaultCase& faultCase) = 0;

    /// Whether units that skip lost log blocks are tried as well.
    virtual bool readsLogOnly() const
    {
        return false;
    }

    /// One by its name, "window-chain" or "tool-log"; null if there is none.
    static std::unique_ptr<Operation> make(const QString& name);
};

constexpr int stuckAfter = 150000; ///< ms; a hundred steps of which each fails for good take 60 s
