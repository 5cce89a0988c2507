#include "model/ConfigurationKeys.h"

#include "model/ScriptRules.h"
#include "model/firstOf.h"

#include <algorithm>
#include <limits>

namespace
{

using Entry = ConfigurationEntry;
using Model = ConfigurationModel;

constexpr int mostGroups = 4096;
constexpr int mostOutputs = 256;
constexpr int mostScripts = 256;

/// Calls a function for each number of a list value; the function returns false for a number it refuses. Returns the
/// errors: refused numbers and parts that are none, unless the list begins with the word for an empty one.
template <typename Take>
int readList(const QString& value, Take take)
{
    const QVector<QStringRef> parts = value.splitRef(QLatin1Char(';'), Qt::SkipEmptyParts);
    const bool wordsAllowed = !parts.isEmpty() && parts.first().trimmed() == QLatin1String("NONE");
    int errors = 0;
    for (const QStringRef& part : parts) {
        bool isNumber = false;
        const int number = part.trimmed().toInt(&isNumber);
        const bool fine = isNumber ? take(number) : wordsAllowed;
        errors += fine ? 0 : 1;
    }
    return errors;
}

/// Sets the listed positions of a list of flags and clears the others.
int readFlags(QList<bool>& flags, const QString& value)
{
    std::fill(flags.begin(), flags.end(), false);
    return readList(value, [&flags](int position) {
        if (position < 0 || position >= flags.size()) {
            return false;
        }
        flags[position] = true;
        return true;
    });
}

// The effects of the keys. Each returns the number of errors it met.

int addGroups(Model& model, const Entry& entry)
{
    if (entry.number > mostGroups - model.groups.size() + 1) {
        return 1;
    }
    for (int i = 1; i < entry.number; ++i) {
        model.groups.append(GroupRelayPtr::create());
    }
    return 0;
}

int ignoreCount(Model&, const Entry&)
{
    return 0;
}

template <typename Record>
int setName(Model&, Record& record, const Entry& entry)
{
    record.name = entry.value;
    return 0;
}

template <typename Record>
int setRecordNumber(Model&, Record& record, const Entry& entry)
{
    record.number = quint8(entry.number);
    return 0;
}

int setAddress(Model&, GroupRelay& group, const Entry& entry)
{
    if (entry.number == -1) {
        return 1;
    }
    group.address = quint16(entry.number);
    return 0;
}

int setExpand(Model&, GroupRelay& group, const Entry& entry)
{
    group.expand = entry.number == 1;
    return 0;
}

int addOutputs(Model&, GroupRelay& group, const Entry& entry)
{
    if (entry.number == -1 || entry.number > mostOutputs) {
        return 1;
    }
    while (group.outputs.size() < entry.number) {
        group.outputs.append(RelayInformationPtr::create());
    }
    return 0;
}

int setReturn(Model&, RelayInformation& output, const Entry& entry)
{
    output.returnStartState = entry.number == 1;
    return 0;
}

int setStartState(Model& model, RelayInformation& output, const Entry& entry)
{
    output.startState = model.tables.outputStates.value(entry.number);
    return 0;
}

int setActivatedScripts(Model& model, RelayInformation& output, const Entry& entry)
{
    output.activatedScripts.clear();
    return readList(entry.value, [&](int number) {
        const ScriptInfoPtr script = firstOfNumber(model.scripts, quint8(number));
        if (!script || output.activatedScripts.size() == mostScripts) {
            return false;
        }
        output.activatedScripts.append(script);
        return true;
    });
}

int setAddressFilter(Model&, ScriptInfo& script, const Entry& entry)
{
    return readFlags(script.addressFilter, entry.value);
}

int setDays(Model&, ScriptInfo& script, const Entry& entry)
{
    return readFlags(script.daysOfWeek, entry.value);
}

int setChannels(Model&, ScriptInfo& script, const Entry& entry)
{
    const int errors = readFlags(script.numberChannels, entry.value);
    scriptRules::ensureChannel(script.numberChannels);
    return errors;
}

int setStatePosition(Model& model, ScriptInfo& script, const Entry& entry)
{
    const ParamItemPtr row = model.tables.stateChannels.value(entry.number);
    script.stateChannel = row ? row : scriptRules::makeOtherState(ParamItem::notActiveCode);
    return 0;
}

int setStateValue(Model&, ScriptInfo& script, const Entry& entry)
{
    if (entry.number < 0) {
        return 1;
    }
    const ParamItemPtr& state = script.stateChannel;
    const bool agrees = entry.number == state->code || (state->linked && entry.number == state->linked->code);
    if (!agrees) {
        script.stateChannel = scriptRules::makeOtherState(quint8(entry.number));
    }
    return 0;
}

int setTerminalStates(Model& model, ScriptInfo& script, const Entry& entry)
{
    script.stateTerminal.clear();
    if (entry.number == -1 || entry.number > 255) {
        return 1;
    }
    script.stateTerminal = rowsOfMask(model.tables.terminalStates, entry.number);
    return 0;
}

template <ParamItemPtr ScriptInfo::*field, ParamItems ParamTables::*table>
int setRow(Model& model, ScriptInfo& script, const Entry& entry)
{
    if (const ParamItemPtr row = findByCode(model.tables.*table, entry.number)) {
        script.*field = row;
    }
    return 0;
}

template <ScriptInfo::Filter filter>
int setFilterFlag(Model&, ScriptInfo& script, const Entry& entry)
{
    script.activateFilter[filter] = entry.number == 1;
    return 0;
}

template <QList<int> ScriptInfo::*list, int item>
int setItem(Model&, ScriptInfo& script, const Entry& entry)
{
    (script.*list)[item] = entry.number;
    return 0;
}

template <quint8 TerminalIdentity::*field>
int setTypeField(Model&, ScriptInfo& script, const Entry& entry)
{
    if (entry.number < 0) {
        return 1;
    }
    (*script.terminalFilter).*field = quint8(entry.number);
    return 0;
}

enum class Number
{
    Free,    ///< the effect looks at the number, or doesn't need one
    Demanded ///< no number is an error, whatever else the line lacks
};

constexpr int noLimit = std::numeric_limits<int>::max();

/// What a key does. The first rule whose fragment the key contains decides.
struct Rule
{
    const char* fragment;
    Number number;
    int limit; ///< a script's number above this is an error; one below 0 only where the field can't hold it
    int (*onModel)(Model&, const Entry&);
    int (*onGroup)(Model&, GroupRelay&, const Entry&);
    int (*onOutput)(Model&, RelayInformation&, const Entry&);
    int (*onScript)(Model&, ScriptInfo&, const Entry&);
};

constexpr Rule modelRule(const char* fragment, int (*effect)(Model&, const Entry&))
{
    return {fragment, Number::Demanded, noLimit, effect, nullptr, nullptr, nullptr};
}

constexpr Rule groupRule(const char* fragment, int (*effect)(Model&, GroupRelay&, const Entry&))
{
    return {fragment, Number::Free, noLimit, nullptr, effect, nullptr, nullptr};
}

constexpr Rule outputRule(const char* fragment, Number number, int (*effect)(Model&, RelayInformation&, const Entry&))
{
    return {fragment, number, noLimit, nullptr, nullptr, effect, nullptr};
}

constexpr Rule scriptRule(const char* fragment, Number number, int limit,
                          int (*effect)(Model&, ScriptInfo&, const Entry&))
{
    return {fragment, number, limit, nullptr, nullptr, nullptr, effect};
}

constexpr const char* fragmentAtEnd = ".Number"; ///< the one fragment that must be the end of its key

// Days end at 30 and months at 11, although the model and the records know 31 and 12. It is meant so: files of all
// versions are read alike.
constexpr Rule rules[] = {
    modelRule("NumberOfDevices", addGroups),
    {".Name", Number::Free, noLimit, nullptr, setName<GroupRelay>, setName<RelayInformation>, setName<ScriptInfo>},
    {".Address", Number::Free, noLimit, nullptr, setAddress, nullptr, setAddressFilter},
    groupRule(".Expand", setExpand),
    groupRule(".NumberOfOutputs", addOutputs),
    {fragmentAtEnd, Number::Demanded, noLimit, nullptr, nullptr, setRecordNumber<RelayInformation>,
     setRecordNumber<ScriptInfo>},
    outputRule(".ReturnStartState", Number::Demanded, setReturn),
    outputRule(".StartState", Number::Demanded, setStartState),
    outputRule(".ActivatedScripts", Number::Free, setActivatedScripts),
    modelRule("NumberOfScripts", ignoreCount),
    scriptRule(".StateChannelNumber", Number::Free, noLimit, setStatePosition),
    scriptRule(".StateChannelValue", Number::Demanded, 255, setStateValue),
    scriptRule(".NumberChannels", Number::Free, noLimit, setChannels),
    scriptRule(".StateTerminal", Number::Free, noLimit, setTerminalStates),
    scriptRule(".Mode", Number::Demanded, noLimit, setRow<&ScriptInfo::mode, &ParamTables::modes>),
    scriptRule(".Delay", Number::Demanded, noLimit, setRow<&ScriptInfo::delay, &ParamTables::delays>),
    scriptRule(".Duration", Number::Demanded, noLimit, setRow<&ScriptInfo::duration, &ParamTables::durations>),
    scriptRule(".ActivateFilterType", Number::Free, noLimit, setFilterFlag<ScriptInfo::ByType>),
    scriptRule(".ActivateFilterAddress", Number::Free, noLimit, setFilterFlag<ScriptInfo::ByAddress>),
    scriptRule(".ActivateFilterDate", Number::Free, noLimit, setFilterFlag<ScriptInfo::ByDate>),
    scriptRule(".ActivateFilterTime", Number::Free, noLimit, setFilterFlag<ScriptInfo::ByTime>),
    scriptRule(".DaysOfWeek", Number::Free, noLimit, setDays),
    scriptRule(".MinuteOfBegin", Number::Demanded, 60, setItem<&ScriptInfo::timeFilter, 0>),
    scriptRule(".HourOfBegin", Number::Demanded, 24, setItem<&ScriptInfo::timeFilter, 1>),
    scriptRule(".MinuteOfEnd", Number::Demanded, 60, setItem<&ScriptInfo::timeFilter, 2>),
    scriptRule(".HourOfEnd", Number::Demanded, 24, setItem<&ScriptInfo::timeFilter, 3>),
    scriptRule(".DayOfBegin", Number::Demanded, 30, setItem<&ScriptInfo::dateFilter, 0>),
    scriptRule(".MonthOfBegin", Number::Demanded, 11, setItem<&ScriptInfo::dateFilter, 1>),
    scriptRule(".DayOfEnd", Number::Demanded, 30, setItem<&ScriptInfo::dateFilter, 2>),
    scriptRule(".MonthOfEnd", Number::Demanded, 11, setItem<&ScriptInfo::dateFilter, 3>),
    scriptRule(".Class", Number::Demanded, 15, setTypeField<&TerminalIdentity::terminalClass>),
    scriptRule(".Version", Number::Demanded, 15, setTypeField<&TerminalIdentity::version>),
    scriptRule(".Type", Number::Demanded, 255, setTypeField<&TerminalIdentity::type>),
    scriptRule(".Characteristic", Number::Demanded, 255, setTypeField<&TerminalIdentity::characteristic>),
};

bool matches(const Rule& rule, const QString& key)
{
    const QLatin1String fragment(rule.fragment);
    return rule.fragment == fragmentAtEnd ? key.endsWith(fragment) : key.contains(fragment);
}

/// Lets a rule work on the terminal, or the output, that the key names.
int applyToTerminal(const Rule& rule, Model& model, const Entry& entry)
{
    const GroupRelayPtr group = model.groups.value(entry.terminal);
    if (!group) {
        return 1;
    }
    if (rule.onOutput == nullptr || entry.output < 0) {
        return rule.onGroup(model, *group, entry);
    }
    const RelayInformationPtr output = group->outputs.value(entry.output);
    return output ? rule.onOutput(model, *output, entry) : 1;
}

int applyToScript(const Rule& rule, Model& model, const Entry& entry)
{
    const ScriptInfoPtr script = model.scripts.value(entry.script);
    return script && entry.number <= rule.limit ? rule.onScript(model, *script, entry) : 1;
}

int apply(const Rule& rule, Model& model, const Entry& entry)
{
    if (rule.number == Number::Demanded && entry.number == -1) {
        return 1;
    }
    if (rule.onModel != nullptr) {
        return rule.onModel(model, entry);
    }
    const bool namesTerminal =
        entry.terminal >= 0 && (rule.onGroup != nullptr || (rule.onOutput != nullptr && entry.output >= 0));
    if (namesTerminal) {
        const int errors = applyToTerminal(rule, model, entry);
        if (errors != 0) {
            return errors;
        }
    }
    if (rule.onScript == nullptr) {
        // A key of terminals alone must name one; all other keys that name nothing are passed over.
        return rule.onGroup != nullptr && !namesTerminal ? 1 : 0;
    }
    return entry.script >= 0 ? applyToScript(rule, model, entry) : 0;
}

} // namespace

int applyEntry(ConfigurationModel& model, const ConfigurationEntry& entry)
{
    const auto rule =
        std::find_if(std::begin(rules), std::end(rules), [&](const Rule& each) { return matches(each, entry.key); });
    return rule == std::end(rules) ? 1 : apply(*rule, model, entry);
}
