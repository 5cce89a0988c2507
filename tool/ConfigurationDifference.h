#pragma once

#include <QJsonArray>
#include <QString>
#include <QVector>

class RelayInfo;

/// One thing in which two configurations differ, in the engineer's words.
struct ConfigurationDifference
{
    QString where; ///< "script 4 'Horn'"
    QString what;  ///< "duration", or "added" or "removed"
    QString before;
    QString after;
};

/// Whether names and the comment count. The unit doesn't keep them.
enum class Names
{
    Compared,
    Ignored
};

/// All in which two configurations differ: the comment, terminals, outputs, then scripts. Nothing if the unit would
/// keep the same of both, and a file the same names.
///
/// With names ignored a terminal without outputs is as good as none.
QVector<ConfigurationDifference> configurationDifferences(const RelayInfo& before, const RelayInfo& after, Names names);

QJsonArray jsonOf(const QVector<ConfigurationDifference>& differences);

/// "script 4 'Horn': duration 5 minutes -> 10 minutes"
QString inWords(const ConfigurationDifference& difference);
