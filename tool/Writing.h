#pragma once

#include "model/GroupRelay.h"
#include "model/ScriptInfo.h"
#include "tool/ConfigurationDifference.h"

#include <QByteArrayList>
#include <QStringList>
#include <QVector>

class RelayInfo;
struct UnitReading;

/// The records of a configuration as they are written into a unit, outputs first, and what became of them there. The
/// model stays as it is as long as the object lives.
class Writing
{
public:
    explicit Writing(const RelayInfo& model);

    const QByteArrayList& outputs() const
    {
        return outputRecords;
    }
    const QByteArrayList& scripts() const
    {
        return scriptRecords;
    }
    int count() const;

    /// Of the record with this index, as the engineer knows it; empty if there is none.
    QString nameOf(int index) const;

    /// The names of those that a reading doesn't ask for.
    QStringList unasked() const;

    /// In what one record differs; at least one thing.
    using Differences = QVector<ConfigurationDifference>;

    /// For each record that a unit holds otherwise, or that could not be read back, what differs: written -> held.
    QVector<Differences> differencesFrom(const UnitReading& reading) const;

private:
    struct Output
    {
        GroupRelayPtr terminal;
        RelayInformationPtr output;
    };

    static bool isAsked(const QByteArray& outputRecord);
    Differences compareOutput(int index, const QByteArray& held) const;
    Differences compareScript(int index, const QByteArray& held) const;
    Differences orUnnamed(Differences differences, int index) const;

    QByteArrayList outputRecords;
    QByteArrayList scriptRecords;
    QVector<Output> writtenOutputs;
    QList<ScriptInfoPtr> writtenScripts;
};
