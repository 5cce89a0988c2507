#include "model/ConfigurationReader.h"

#include "model/ScriptRules.h"

#include <algorithm>
#include <numeric>

namespace
{

constexpr QLatin1String commentSection("[Comment]", 9);
constexpr QLatin1String configurationSection("[Configuration]", 15);
constexpr QLatin1String scriptsSection("[Scripts]", 9);

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

/// Counts the lines of a text as an editor does, for positions that only grow.
class LineCounter
{
public:
    int lineAt(const QStringRef& place)
    {
        const QChar* const text = place.string()->constData();
        line += int(std::count(text + counted, text + place.position(), QLatin1Char('\n')));
        counted = place.position();
        return line;
    }

private:
    int line = 1;
    int counted = 0;
};

QString upToLineFeed(const QStringRef& line)
{
    return line.left(line.indexOf(QLatin1Char('\n'))).toString();
}

bool endsComment(const QStringRef& line)
{
    return line.contains(configurationSection) || line.contains(scriptsSection);
}

/// What is wrong with a line that is no section and no key with its value.
ConfigurationFault::Kind faultOfForm(const QStringRef& line)
{
    if (endsComment(line)) {
        return ConfigurationFault::SectionNotAlone;
    }
    if (!line.contains(QLatin1Char('='))) {
        return ConfigurationFault::NoEqualsSign;
    }
    return line.startsWith(QLatin1Char('=')) ? ConfigurationFault::NoKey : ConfigurationFault::NoValue;
}

ConfigurationFaults readLine(const QStringRef& line, ConfigurationModel& model, bool& inComment)
{
    if (line.contains(commentSection)) {
        inComment = true;
        return {};
    }
    if (inComment && !endsComment(line)) {
        model.comment += line;
        model.comment += QLatin1Char('\n');
        return {};
    }
    inComment = false;

    const QVector<QStringRef> parts = line.split(QLatin1Char('='), Qt::SkipEmptyParts);
    if (parts.size() >= 2) {
        return applyEntry(model, makeEntry(parts.at(0), parts.at(1)));
    }
    if (parts.size() == 1 && parts.first() != configurationSection && parts.first() != scriptsSection) {
        return {{faultOfForm(line), 0, 0, {}}};
    }
    return {};
}

} // namespace

int readConfiguration(const QString& text, ConfigurationModel& model, ConfigurationErrors* told)
{
    int errors = 0;
    bool inComment = false;
    LineCounter counter;
    const QVector<QStringRef> lines = text.splitRef(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
    for (const QStringRef& line : lines) {
        ConfigurationFaults faults = readLine(line, model, inComment);
        errors += countOf(faults);
        if (told == nullptr) {
            continue;
        }
        // Within the comment it does no harm.
        const bool isJoined = line.contains(QLatin1Char('\n'));
        if (isJoined && (!inComment || line.contains(commentSection))) {
            faults.append({ConfigurationFault::LinesEndedByLfOnly, 0, 0, {}, 0});
        }
        if (!faults.isEmpty()) {
            told->append({counter.lineAt(line), upToLineFeed(line), faults});
        }
    }
    for (const ScriptInfoPtr& script : std::as_const(model.scripts)) {
        scriptRules::updateTrigger(*script);
    }
    return errors;
}

int countOf(const ConfigurationFaults& faults)
{
    return std::accumulate(faults.begin(), faults.end(), 0,
                           [](int count, const ConfigurationFault& fault) { return count + fault.count; });
}
