#pragma once

#include "model/ConfigurationKeys.h"

#include <QList>
#include <QString>
#include <QStringRef>

/// Reads the text of a configuration file into groups and scripts that were reset before.
///
/// RelayInfo makes one for a load. The reader never stops at a bad line: it counts an error and leaves what it would
/// have changed. It takes time in proportion to the length of the text, and bounds what a few bytes can make of it:
/// no more than 4096 groups, and 256 outputs to a group and scripts to an output, as their numbers have eight bits.
class ConfigurationReader
{
public:
    /// The tables must outlive the reader. The groups hold the head unit alone.
    ConfigurationReader(const ParamTables& paramTables, const QList<GroupRelayPtr>& resetGroups,
                        const QList<ScriptInfoPtr>& resetScripts);

    void read(const QString& text);

    /// Reads a text and keeps each line that is wrong, with what is wrong with it.
    ConfigurationErrors readAndTell(const QString& text);

    int errorCount() const;
    QList<GroupRelayPtr> groups() const;
    QString comment() const;

private:
    void readLines(const QString& text, ConfigurationErrors* told);
    ConfigurationFaults readLine(const QStringRef& line);

    ConfigurationModel model;
    QString commentText;
    bool inComment = false;
    int errors = 0;
};
