#include "model/ConfigurationKeys.h"

#include "model/ScriptRules.h"
#include "model/firstOf.h"

#include <algorithm>
#include <limits>

namespace
{

using Entry = ConfigurationEntry;
using Model = ConfigurationModel;
using Fault = ConfigurationFault;
using Faults = ConfigurationFaults;

constexpr int noLowest = std::numeric_limits<int>::min();
constexpr int noHighest = std::numeric_limits<int>::max();

constexpr int mostGroups = 4096;
constexpr int mostOutputs = 256;
constexpr int mostScripts = 256;

Faults one(Fault::Kind kind)
{
    return {{kind, 0, 0, {}}};
}

Faults noNumber(const Entry& entry)
{
    return {{Fault::NoNumber, 0, 0, entry.value}};
}

Faults outOfRange(const Entry& entry, int lowest, int highest)
{
    return {{Fault::OutOfRange, lowest, highest, entry.value}};
}

/// The fault of an index for which a list has no item.
template <typename Items>
Faults noSuch(Fault::Kind kind, int index, const Items& items)
{
    return {{kind, 0, items.size() - 1, QString::number(index)}};
}

// Lists as values: their parts stand between semicolons.

/// Adds a fault of a part of a list; those of one kind are told together, by the first part.
void addFault(Faults& faults, const Fault& fault, const QStringRef& part)
{
    const auto known =
        std::find_if(faults.begin(), faults.end(), [&fault](const Fault& each) { return each.kind == fault.kind; });
    if (known != faults.end()) {
        ++known->count;
        return;
    }
    faults.append(fault);
    faults.last().part = part.toString();
}

/// Calls a function for each number of a list value; the function returns false for a number it refuses, for which
/// refused() makes the fault. So does a part that is no number, unless the list begins with the word for an empty one.
template <typename Take, typename Refused>
Faults readList(const QString& value, Take take, Refused refused)
{
    const QVector<QStringRef> parts = value.splitRef(QLatin1Char(';'), Qt::SkipEmptyParts);
    const bool wordsAllowed = !parts.isEmpty() && parts.first().trimmed() == QLatin1String("NONE");
    Faults faults;
    for (const QStringRef& part : parts) {
        bool isNumber = false;
        const QStringRef word = part.trimmed();
        const int number = word.toInt(&isNumber);
        if (isNumber && !take(number)) {
            addFault(faults, refused(), word);
        } else if (!isNumber && !wordsAllowed) {
            addFault(faults, {Fault::PartNoNumber, 0, 0, {}}, word);
        }
    }
    return faults;
}

// The effects of the keys. Each returns the faults it met.

Faults addGroups(Model& model, const Entry& entry)
{
    if (entry.number > mostGroups - model.groups.size() + 1) {
        return {{Fault::TooManyTerminals, 0, mostGroups, entry.value}};
    }
    for (int i = 1; i < entry.number; ++i) {
        model.groups.append(GroupRelayPtr::create());
    }
    return {};
}

Faults ignoreCount(Model&, const Entry&)
{
    return {};
}

template <typename Record>
Faults setName(Model&, Record& record, const Entry& entry)
{
    record.name = entry.value;
    return {};
}

template <typename Record>
Faults setRecordNumber(Model&, Record& record, const Entry& entry)
{
    record.number = quint8(entry.number);
    return {};
}

Faults setAddress(Model&, GroupRelay& group, const Entry& entry)
{
    if (entry.number == -1) {
        return noNumber(entry);
    }
    group.address = quint16(entry.number);
    return {};
}

Faults setExpand(Model&, GroupRelay& group, const Entry& entry)
{
    group.expand = entry.number == 1;
    return {};
}

Faults addOutputs(Model&, GroupRelay& group, const Entry& entry)
{
    if (entry.number == -1) {
        return noNumber(entry);
    }
    if (entry.number > mostOutputs) {
        return outOfRange(entry, noLowest, mostOutputs);
    }
    while (group.outputs.size() < entry.number) {
        group.outputs.append(RelayInformationPtr::create());
    }
    return {};
}

Faults setReturn(Model&, RelayInformation& output, const Entry& entry)
{
    output.returnStartState = entry.number == 1;
    return {};
}

Faults setStartState(Model& model, RelayInformation& output, const Entry& entry)
{
    output.startState = model.tables.outputStates.value(entry.number);
    return {};
}

Faults setActivatedScripts(Model& model, RelayInformation& output, const Entry& entry)
{
    output.activatedScripts.clear();
    return readList(
        entry.value,
        [&](int number) {
            const ScriptInfoPtr script = firstOfNumber(model.scripts, quint8(number));
            if (!script || output.activatedScripts.size() == mostScripts) {
                return false;
            }
            output.activatedScripts.append(script);
            return true;
        },
        [&output] {
            return output.activatedScripts.size() == mostScripts ? Fault{Fault::TooManyScripts, 0, mostScripts, {}}
                                                                 : Fault{Fault::NoScriptOfNumber, 0, 0, {}};
        });
}

/// Sets the listed positions of a list of flags and clears the others.
template <QList<bool> ScriptInfo::*list>
Faults setFlags(Model&, ScriptInfo& script, const Entry& entry)
{
    QList<bool>& flags = script.*list;
    std::fill(flags.begin(), flags.end(), false);
    return readList(
        entry.value,
        [&flags](int position) {
            if (position < 0 || position >= flags.size()) {
                return false;
            }
            flags[position] = true;
            return true;
        },
        [&flags] {
            return Fault{Fault::PartOutOfRange, 0, flags.size() - 1, {}};
        });
}

Faults setChannels(Model& model, ScriptInfo& script, const Entry& entry)
{
    const Faults faults = setFlags<&ScriptInfo::numberChannels>(model, script, entry);
    scriptRules::ensureChannel(script.numberChannels);
    return faults;
}

Faults setStatePosition(Model& model, ScriptInfo& script, const Entry& entry)
{
    const ParamItemPtr row = model.tables.stateChannels.value(entry.number);
    script.stateChannel = row ? row : scriptRules::makeOtherState(ParamItem::notActiveCode);
    return {};
}

Faults setStateValue(Model&, ScriptInfo& script, const Entry& entry)
{
    const ParamItemPtr& state = script.stateChannel;
    const bool agrees = entry.number == state->code || (state->linked && entry.number == state->linked->code);
    if (!agrees) {
        script.stateChannel = scriptRules::makeOtherState(quint8(entry.number));
    }
    return {};
}

Faults setTerminalStates(Model& model, ScriptInfo& script, const Entry& entry)
{
    script.stateTerminal.clear();
    if (entry.number == -1) {
        return noNumber(entry);
    }
    if (entry.number > 255) {
        return outOfRange(entry, noLowest, 255);
    }
    script.stateTerminal = rowsOfMask(model.tables.terminalStates, entry.number);
    return {};
}

template <ParamItemPtr ScriptInfo::*field, ParamItems ParamTables::*table>
Faults setRow(Model& model, ScriptInfo& script, const Entry& entry)
{
    if (const ParamItemPtr row = findByCode(model.tables.*table, entry.number)) {
        script.*field = row;
    }
    return {};
}

template <ScriptInfo::Filter filter>
Faults setFilterFlag(Model&, ScriptInfo& script, const Entry& entry)
{
    script.activateFilter[filter] = entry.number == 1;
    return {};
}

template <QList<int> ScriptInfo::*list, int item>
Faults setItem(Model&, ScriptInfo& script, const Entry& entry)
{
    (script.*list)[item] = entry.number;
    return {};
}

template <quint8 TerminalIdentity::*field>
Faults setTypeField(Model&, ScriptInfo& script, const Entry& entry)
{
    (*script.terminalFilter).*field = quint8(entry.number);
    return {};
}

enum class Number
{
    Free,    ///< the effect looks at the number, or doesn't need one
    Demanded ///< no number is an error, whatever else the line lacks
};

/// What a key does. The first rule whose fragment the key contains decides.
struct Rule
{
    const char* fragment;
    Number number;
    Faults (*onModel)(Model&, const Entry&);
    Faults (*onGroup)(Model&, GroupRelay&, const Entry&);
    Faults (*onOutput)(Model&, RelayInformation&, const Entry&);
    Faults (*onScript)(Model&, ScriptInfo&, const Entry&);
    int lowest = noLowest; ///< a script's number below this is an error: only where the field can't hold it
    int highest = noHighest;
};

constexpr Rule scriptRule(const char* fragment, Number number, Faults (*effect)(Model&, ScriptInfo&, const Entry&))
{
    return {fragment, number, nullptr, nullptr, nullptr, effect};
}

constexpr Rule numberRule(const char* fragment, int lowest, int highest,
                          Faults (*effect)(Model&, ScriptInfo&, const Entry&))
{
    return {fragment, Number::Demanded, nullptr, nullptr, nullptr, effect, lowest, highest};
}

constexpr const char* fragmentAtEnd = ".Number"; ///< the one fragment that must be the end of its key

// Days end at 30 and months at 11, although the model and the records know 31 and 12. It is meant so: files of all
// versions are read alike.
constexpr Rule rules[] = {
    {"NumberOfDevices", Number::Demanded, addGroups, nullptr, nullptr, nullptr},
    {".Name", Number::Free, nullptr, setName<GroupRelay>, setName<RelayInformation>, setName<ScriptInfo>},
    {".Address", Number::Free, nullptr, setAddress, nullptr, setFlags<&ScriptInfo::addressFilter>},
    {".Expand", Number::Free, nullptr, setExpand, nullptr, nullptr},
    {".NumberOfOutputs", Number::Free, nullptr, addOutputs, nullptr, nullptr},
    {fragmentAtEnd, Number::Demanded, nullptr, nullptr, setRecordNumber<RelayInformation>, setRecordNumber<ScriptInfo>},
    {".ReturnStartState", Number::Demanded, nullptr, nullptr, setReturn, nullptr},
    {".StartState", Number::Demanded, nullptr, nullptr, setStartState, nullptr},
    {".ActivatedScripts", Number::Free, nullptr, nullptr, setActivatedScripts, nullptr},
    {"NumberOfScripts", Number::Demanded, ignoreCount, nullptr, nullptr, nullptr},
    scriptRule(".StateChannelNumber", Number::Free, setStatePosition),
    numberRule(".StateChannelValue", 0, 255, setStateValue),
    scriptRule(".NumberChannels", Number::Free, setChannels),
    scriptRule(".StateTerminal", Number::Free, setTerminalStates),
    scriptRule(".Mode", Number::Demanded, setRow<&ScriptInfo::mode, &ParamTables::modes>),
    scriptRule(".Delay", Number::Demanded, setRow<&ScriptInfo::delay, &ParamTables::delays>),
    scriptRule(".Duration", Number::Demanded, setRow<&ScriptInfo::duration, &ParamTables::durations>),
    scriptRule(".ActivateFilterType", Number::Free, setFilterFlag<ScriptInfo::ByType>),
    scriptRule(".ActivateFilterAddress", Number::Free, setFilterFlag<ScriptInfo::ByAddress>),
    scriptRule(".ActivateFilterDate", Number::Free, setFilterFlag<ScriptInfo::ByDate>),
    scriptRule(".ActivateFilterTime", Number::Free, setFilterFlag<ScriptInfo::ByTime>),
    scriptRule(".DaysOfWeek", Number::Free, setFlags<&ScriptInfo::daysOfWeek>),
    numberRule(".MinuteOfBegin", noLowest, 60, setItem<&ScriptInfo::timeFilter, 0>),
    numberRule(".HourOfBegin", noLowest, 24, setItem<&ScriptInfo::timeFilter, 1>),
    numberRule(".MinuteOfEnd", noLowest, 60, setItem<&ScriptInfo::timeFilter, 2>),
    numberRule(".HourOfEnd", noLowest, 24, setItem<&ScriptInfo::timeFilter, 3>),
    numberRule(".DayOfBegin", noLowest, 30, setItem<&ScriptInfo::dateFilter, 0>),
    numberRule(".MonthOfBegin", noLowest, 11, setItem<&ScriptInfo::dateFilter, 1>),
    numberRule(".DayOfEnd", noLowest, 30, setItem<&ScriptInfo::dateFilter, 2>),
    numberRule(".MonthOfEnd", noLowest, 11, setItem<&ScriptInfo::dateFilter, 3>),
    numberRule(".Class", 0, 15, setTypeField<&TerminalIdentity::terminalClass>),
    numberRule(".Version", 0, 15, setTypeField<&TerminalIdentity::version>),
    numberRule(".Type", 0, 255, setTypeField<&TerminalIdentity::type>),
    numberRule(".Characteristic", 0, 255, setTypeField<&TerminalIdentity::characteristic>),
};

bool matches(const Rule& rule, const QString& key)
{
    const QLatin1String fragment(rule.fragment);
    return rule.fragment == fragmentAtEnd ? key.endsWith(fragment) : key.contains(fragment);
}

/// Lets a rule work on the terminal, or the output, that the key names.
Faults applyToTerminal(const Rule& rule, Model& model, const Entry& entry)
{
    const GroupRelayPtr group = model.groups.value(entry.terminal);
    if (!group) {
        return noSuch(Fault::NoSuchTerminal, entry.terminal, model.groups);
    }
    if (rule.onOutput == nullptr || entry.output < 0) {
        return rule.onGroup(model, *group, entry);
    }
    const RelayInformationPtr output = group->outputs.value(entry.output);
    return output ? rule.onOutput(model, *output, entry) : noSuch(Fault::NoSuchOutput, entry.output, group->outputs);
}

Faults applyToScript(const Rule& rule, Model& model, const Entry& entry)
{
    const ScriptInfoPtr script = model.scripts.value(entry.script);
    if (!script) {
        return noSuch(Fault::NoSuchScript, entry.script, model.scripts);
    }
    if (entry.number < rule.lowest || entry.number > rule.highest) {
        return outOfRange(entry, rule.lowest, rule.highest);
    }
    return rule.onScript(model, *script, entry);
}

Faults apply(const Rule& rule, Model& model, const Entry& entry)
{
    if (rule.number == Number::Demanded && entry.number == -1) {
        return noNumber(entry);
    }
    if (rule.onModel != nullptr) {
        return rule.onModel(model, entry);
    }
    const bool namesTerminal =
        entry.terminal >= 0 && (rule.onGroup != nullptr || (rule.onOutput != nullptr && entry.output >= 0));
    if (namesTerminal) {
        const Faults faults = applyToTerminal(rule, model, entry);
        if (!faults.isEmpty()) {
            return faults;
        }
    }
    if (rule.onScript == nullptr) {
        // A key of terminals alone must name one; all other keys that name nothing are passed over.
        return rule.onGroup != nullptr && !namesTerminal ? one(Fault::NoTerminalNamed) : Faults();
    }
    return entry.script >= 0 ? applyToScript(rule, model, entry) : Faults();
}

} // namespace

ConfigurationFaults applyEntry(ConfigurationModel& model, const ConfigurationEntry& entry)
{
    const auto rule =
        std::find_if(std::begin(rules), std::end(rules), [&](const Rule& each) { return matches(each, entry.key); });
    return rule == std::end(rules) ? one(Fault::UnknownKey) : apply(*rule, model, entry);
}
