#pragma once

#include "campaign/Operation.h"
#include "support/WindowOverUnit.h"

#include <QByteArrayList>
#include <QStringList>

/// What is common to the operations of the main window: a window that stays connected from case to case as long as
/// each ends right, and what came to it.
class WindowOperation : public Operation
{
public:
    QVector<UnitRequest> learn() override;
    Outcome run(const FaultCase& faultCase) override;

protected:
    /// The unit before the operation.
    virtual UnitState before() const;
    /// What the window holds before it.
    virtual void prepare() const;
    /// Runs the operation; false if it doesn't end.
    virtual bool perform() = 0;
    virtual Outcome judge() = 0;

    void makeWindow(const QVector<UnitFault>& faults);
    bool makeReady();
    void loadFile(const QString& path) const;
    /// What the form has told last with one of these texts in it.
    QString told(const QStringList& anyOf) const;

    Outcome judgeTerminals() const;
    Outcome judgeReading() const;
    Outcome judgeLog();
    /// Whether the table shows the rows that it showed without faults.
    Outcome judgeTable();

    struct Received
    {
        QByteArrayList terminals;
        QByteArrayList outputs;
        QByteArrayList scripts;
        QByteArrayList logRecords;
    };

    std::unique_ptr<WindowOverUnit> over;
    Received received;
    QStringList trueRows; ///< of the log

private:
    void listen();
    Outcome attempt(const QVector<UnitFault>& faults, quint32 seed, bool repeatsLostLogBlock);
};

/// The automatic chain: terminals, outputs, scripts, log; into a window that has another configuration.
class WindowChain : public WindowOperation
{
public:
    QVector<UnitRequest> learn() override;
    Outcome run(const FaultCase& faultCase) override;

protected:
    void prepare() const override;
    bool perform() override;
    Outcome judge() override;

private:
    bool waitForSearch() const;
    Outcome judgeModel();

    QByteArray trueFile; ///< saved after the chain
    bool isFirstChain = false;
};

/// A configuration into an empty unit.
class WindowWrite : public WindowOperation
{
protected:
    UnitState before() const override;
    void prepare() const override;
    bool perform() override;
    Outcome judge() override;
};

class WindowLog : public WindowOperation
{
public:
    bool readsLogOnly() const override
    {
        return true;
    }

protected:
    bool perform() override;
    Outcome judge() override;
};

class WindowFirmware : public WindowOperation
{
protected:
    bool perform() override;
    Outcome judge() override;
};
