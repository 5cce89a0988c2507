#include "model/ConfigurationReader.h"

#include "model/ScriptRules.h"

namespace
{

/// The index behind a marker of the key, negative without one. It has two digits at most, so it ends at 99.
int indexBehind(const QString& key, QLatin1String marker)
{
    const int position = key.indexOf(marker);
    if (position < 0) {
        return -1;
    }
    bool isNumber = false;
    const int index = key.mid(position + marker.size(), 2).remove(QLatin1Char(']')).toInt(&isNumber);
    return isNumber ? index : -1;
}

ConfigurationEntry makeEntry(const QStringRef& key, const QStringRef& value)
{
    ConfigurationEntry entry;
    entry.key = key.trimmed().toString();
    entry.value = value.trimmed().toString();
    bool isNumber = false;
    const int number = entry.value.toInt(&isNumber);
    entry.number = isNumber ? number : -1;
    entry.terminal = indexBehind(entry.key, QLatin1String("ExecutiveTerminal["));
    entry.output = indexBehind(entry.key, QLatin1String(".Output["));
    entry.script = indexBehind(entry.key, QLatin1String("Script["));
    return entry;
}

} // namespace

ConfigurationReader::ConfigurationReader(const ParamTables& paramTables, const QList<GroupRelayPtr>& resetGroups,
                                         const QList<ScriptInfoPtr>& resetScripts)
    : model{paramTables, resetGroups, resetScripts}
{
}

int ConfigurationReader::errorCount() const
{
    return errors;
}

QList<GroupRelayPtr> ConfigurationReader::groups() const
{
    return model.groups;
}

QString ConfigurationReader::comment() const
{
    return commentText;
}

void ConfigurationReader::read(const QString& text)
{
    const QVector<QStringRef> lines = text.splitRef(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
    for (const QStringRef& line : lines) {
        readLine(line);
    }
    for (const ScriptInfoPtr& script : std::as_const(model.scripts)) {
        scriptRules::updateTrigger(*script);
    }
}

void ConfigurationReader::readLine(const QStringRef& line)
{
    const QLatin1String commentSection("[Comment]");
    const QLatin1String configurationSection("[Configuration]");
    const QLatin1String scriptsSection("[Scripts]");

    if (line.contains(commentSection)) {
        inComment = true;
        return;
    }
    if (inComment && !line.contains(configurationSection) && !line.contains(scriptsSection)) {
        commentText += line;
        commentText += QLatin1Char('\n');
        return;
    }
    inComment = false;

    const QVector<QStringRef> parts = line.split(QLatin1Char('='), Qt::SkipEmptyParts);
    if (parts.size() >= 2) {
        errors += applyEntry(model, makeEntry(parts.at(0), parts.at(1)));
    } else if (parts.size() == 1 && parts.first() != configurationSection && parts.first() != scriptsSection) {
        ++errors;
    }
}
