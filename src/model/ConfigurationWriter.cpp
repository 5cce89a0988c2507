#include "model/ConfigurationWriter.h"

#include "model/ScriptRules.h"

namespace
{

const QLatin1String lineEnd("\r\n", 2);

/// A name as it fits into one line.
QString oneLine(QString name)
{
    return name.replace(lineEnd, QLatin1String(" "));
}

QString flagText(bool flag)
{
    return QString::number(flag ? 1 : 0);
}

/// The parts of a list value, each followed by "; ".
QString listText(const QStringList& parts)
{
    return parts.isEmpty() ? QStringLiteral("NONE") : parts.join(QLatin1String("; ")) + QLatin1String("; ");
}

/// The row's code; that of the first row where there is no row.
QString codeText(const ParamItemPtr& row)
{
    return QString::number(row ? row->code : 0);
}

QString scriptsText(const RelayInformation& output)
{
    QStringList numbers;
    for (const ScriptInfoPtr& script : output.activatedScripts) {
        numbers.append(QString::number(script->number));
    }
    return listText(numbers);
}

using GroupValue = QString (*)(const GroupRelay&);
using OutputValue = QString (*)(const RelayInformation&);
using ScriptValue = QString (*)(const ParamTables&, const ScriptInfo&);

template <typename Value>
struct Key
{
    const char* name;
    Value value;
};

constexpr Key<GroupValue> groupKeys[] = {
    {"Name", [](const GroupRelay& group) { return oneLine(group.name); }},
    {"Address", [](const GroupRelay& group) { return QString::number(static_cast<qint16>(group.address)); }},
    {"Expand", [](const GroupRelay& group) { return flagText(group.expand); }},
    {"NumberOfOutputs", [](const GroupRelay& group) { return QString::number(group.outputs.size()); }},
};

constexpr Key<OutputValue> outputKeys[] = {
    {"Name", [](const RelayInformation& output) { return oneLine(output.name); }},
    {"Number", [](const RelayInformation& output) { return QString::number(qint8(output.number)); }},
    {"ReturnStartState", [](const RelayInformation& output) { return flagText(output.returnStartState); }},
    {"StartState", [](const RelayInformation& output) { return codeText(output.startState); }},
    {"ActivatedScripts", scriptsText},
};

QString statePosition(const ParamTables& tables, const ScriptInfo& script)
{
    // Rows are told apart by pointer: several share a name, or a code.
    const int position = tables.stateChannels.indexOf(script.stateChannel);
    return position < 0 ? QStringLiteral("OTHER") : QString::number(position);
}

template <ParamItemPtr ScriptInfo::*field>
QString rowCode(const ParamTables&, const ScriptInfo& script)
{
    return codeText(script.*field);
}

template <ScriptInfo::Filter filter>
QString filterFlag(const ParamTables&, const ScriptInfo& script)
{
    return flagText(script.activateFilter.value(filter));
}

template <QList<bool> ScriptInfo::*list>
QString setPositions(const ParamTables&, const ScriptInfo& script)
{
    QStringList positions;
    for (int i = 0; i < (script.*list).size(); ++i) {
        if ((script.*list).at(i)) {
            positions.append(QString::number(i));
        }
    }
    return listText(positions);
}

template <QList<int> ScriptInfo::*list, int item>
QString number(const ParamTables&, const ScriptInfo& script)
{
    return QString::number((script.*list).value(item));
}

template <quint8 TerminalIdentity::*field>
QString typeField(const ParamTables&, const ScriptInfo& script)
{
    const TerminalIdentity filter = script.terminalFilter ? *script.terminalFilter : TerminalIdentity();
    return QString::number(filter.*field);
}

constexpr Key<ScriptValue> scriptKeys[] = {
    {"Name", [](const ParamTables&, const ScriptInfo& script) { return oneLine(script.name); }},
    {"Number", [](const ParamTables&, const ScriptInfo& script) { return QString::number(script.number); }},
    {"StateChannelNumber", statePosition},
    {"StateChannelValue",
     [](const ParamTables&, const ScriptInfo& script) {
         return QString::number(scriptRules::stateCode(script.stateChannel));
     }},
    {"NumberChannels", setPositions<&ScriptInfo::numberChannels>},
    {"StateTerminal",
     [](const ParamTables&, const ScriptInfo& script) { return QString::number(maskOf(script.stateTerminal)); }},
    {"Mode", rowCode<&ScriptInfo::mode>},
    {"Delay", rowCode<&ScriptInfo::delay>},
    {"Duration", rowCode<&ScriptInfo::duration>},
    {"ActivateFilterType", filterFlag<ScriptInfo::ByType>},
    {"ActivateFilterAddress", filterFlag<ScriptInfo::ByAddress>},
    {"ActivateFilterDate", filterFlag<ScriptInfo::ByDate>},
    {"ActivateFilterTime", filterFlag<ScriptInfo::ByTime>},
    {"Filter.DaysOfWeek", setPositions<&ScriptInfo::daysOfWeek>},
    {"Filter.MinuteOfBegin", number<&ScriptInfo::timeFilter, 0>},
    {"Filter.HourOfBegin", number<&ScriptInfo::timeFilter, 1>},
    {"Filter.DayOfBegin", number<&ScriptInfo::dateFilter, 0>},
    {"Filter.MonthOfBegin", number<&ScriptInfo::dateFilter, 1>},
    {"Filter.MinuteOfEnd", number<&ScriptInfo::timeFilter, 2>},
    {"Filter.HourOfEnd", number<&ScriptInfo::timeFilter, 3>},
    {"Filter.DayOfEnd", number<&ScriptInfo::dateFilter, 2>},
    {"Filter.MonthOfEnd", number<&ScriptInfo::dateFilter, 3>},
    {"Filter.Class", typeField<&TerminalIdentity::terminalClass>},
    {"Filter.Version", typeField<&TerminalIdentity::version>},
    {"Filter.Type", typeField<&TerminalIdentity::type>},
    {"Filter.Characteristic", typeField<&TerminalIdentity::characteristic>},
    {"Filter.Address", setPositions<&ScriptInfo::addressFilter>},
};

QString indexed(const char* word, int index)
{
    return QLatin1String(word) + QLatin1Char('[') + QString::number(index) + QLatin1String("].");
}

/// "prefix" + key + "=" + value for each key of a table; the arguments are what the values are made from.
template <typename Keys, typename... Records>
void writeKeys(QString& text, const QString& prefix, const Keys& keys, const Records&... records)
{
    for (const auto& key : keys) {
        text += prefix + QLatin1String(key.name) + QLatin1Char('=') + key.value(records...) + lineEnd;
    }
}

void writeGroups(QString& text, const QList<GroupRelayPtr>& groups)
{
    for (int i = 0; i < groups.size(); ++i) {
        const GroupRelay& group = *groups.at(i);
        const QString prefix = indexed("ExecutiveTerminal", i);
        writeKeys(text, prefix, groupKeys, group);
        for (int j = 0; j < group.outputs.size(); ++j) {
            writeKeys(text, prefix + indexed("Output", j), outputKeys, *group.outputs.at(j));
        }
    }
}

void writeScripts(QString& text, const ParamTables& tables, const QList<ScriptInfoPtr>& scripts)
{
    for (int i = 0; i < scripts.size(); ++i) {
        writeKeys(text, indexed("Script", i), scriptKeys, tables, *scripts.at(i));
    }
}

} // namespace

QString configurationText(const ParamTables& tables, const QList<GroupRelayPtr>& groups,
                          const QList<ScriptInfoPtr>& scripts, const QString& comment)
{
    QString text = QStringLiteral("[Comment]\r\n");
    text += QString(comment).replace(QLatin1Char('\n'), lineEnd) + lineEnd;
    text += QStringLiteral("\r\n[Configuration]\r\nNumberOfDevices=") + QString::number(groups.size()) + lineEnd;
    writeGroups(text, groups);
    text += QStringLiteral("\r\n[Scripts]\r\nNumberOfScripts=") + QString::number(scripts.size()) + lineEnd;
    writeScripts(text, tables, scripts);
    // The reader takes a NUL for the end of the text.
    return text.remove(QChar::Null);
}
