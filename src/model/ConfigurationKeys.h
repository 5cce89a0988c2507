#pragma once

#include "model/ConfigurationError.h"
#include "model/GroupRelay.h"
#include "model/ScriptInfo.h"
#include "model/tables.h"

#include <QList>
#include <QString>

/// A line of a configuration file: a key with its value.
struct ConfigurationEntry
{
    QString key;
    QString value;
    int number = -1;   ///< the value, or -1 if it isn't a number
    int terminal = -1; ///< the indexes in the key, negative where there is none
    int output = -1;
    int script = -1;
};

/// What a configuration file holds and its keys work on. The tables must outlive it.
struct ConfigurationModel
{
    const ParamTables& tables;
    QList<GroupRelayPtr> groups;
    QList<ScriptInfoPtr> scripts;
    QString comment;
};

/// Does what a key says. Returns what is wrong with it, which stays as it was.
ConfigurationFaults applyEntry(ConfigurationModel& model, const ConfigurationEntry& entry);
