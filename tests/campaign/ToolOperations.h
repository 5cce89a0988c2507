#pragma once

#include "campaign/Operation.h"
#include "simulator/UnitSimulator.h"
#include "tool/ToolRun.h"

#include <QStringList>

/// What is common to the commands of the tool: each is run in this process, finds the unit anew, and ends with an exit
/// code.
class ToolOperation : public Operation
{
public:
    QVector<UnitRequest> learn() override;
    Outcome run(const FaultCase& faultCase) override;

protected:
    virtual QStringList arguments() const = 0;
    /// The unit before the command.
    virtual UnitState before() const;
    /// What files there are before it.
    virtual void prepare() const;
    /// Of a command that says that all is done.
    virtual Outcome judgeDone() = 0;
    /// Of one that has told an error.
    virtual Outcome judgeError() const;

    std::unique_ptr<UnitSimulator> unit;

private:
    std::unique_ptr<ToolRun> runOnce(const QVector<UnitFault>& faults, quint32 seed, bool repeatsLostLogBlock);
    Outcome judge(const ToolRun& tool);
};

class ToolRead : public ToolOperation
{
protected:
    QStringList arguments() const override;
    void prepare() const override;
    Outcome judgeDone() override;
    Outcome judgeError() const override;

private:
    QByteArray trueFile;
};

/// A write into an empty unit that is read back.
class ToolWrite : public ToolOperation
{
protected:
    QStringList arguments() const override;
    UnitState before() const override;
    void prepare() const override;
    Outcome judgeDone() override;
};

class ToolLog : public ToolOperation
{
public:
    bool readsLogOnly() const override
    {
        return true;
    }

protected:
    QStringList arguments() const override;
    void prepare() const override;
    Outcome judgeDone() override;

private:
    QByteArray trueFile;
};

class ToolFirmware : public ToolOperation
{
protected:
    QStringList arguments() const override;
    void prepare() const override;
    Outcome judgeDone() override;
};
