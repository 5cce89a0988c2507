#include "tool/scriptFields.h"

#include "domain/bcd.h"
#include "model/RelayInfo.h"
#include "model/ScriptRules.h"
#include "model/firstOf.h"
#include "model/recordLayout.h"
#include "model/tables.h"
#include "texts/texts.h"

namespace
{

/// The numbers of the flags that are set, as a list in words; `last` names the very last flag where it has a name.
QString listed(const QList<bool>& flags, const QString& last = {})
{
    QStringList words;
    const int numbered = last.isEmpty() ? flags.size() : flags.size() - 1;
    for (int from = 0; from < numbered; ++from) {
        if (!flags.at(from)) {
            continue;
        }
        int to = from;
        while (to + 1 < numbered && flags.at(to + 1)) {
            ++to;
        }
        words.append(to == from ? QString::number(from + 1) : QStringLiteral("%1-%2").arg(from + 1).arg(to + 1));
        from = to;
    }
    if (!last.isEmpty() && flags.last()) {
        words.append(last);
    }
    return words.isEmpty() ? QStringLiteral("none") : words.join(QLatin1String(", "));
}

/// The first flags of a list, missing ones clear.
QList<bool> firstFlags(const QList<bool>& list, int count)
{
    QList<bool> flags;
    flags.reserve(count);
    for (int i = 0; i < count; ++i) {
        flags.append(list.value(i));
    }
    return flags;
}

QVector<int> positions(const QList<bool>& flags)
{
    QVector<int> set;
    for (int i = 0; i < flags.size(); ++i) {
        if (flags.at(i)) {
            set.append(i);
        }
    }
    return set;
}

FieldValue modeOf(const RelayInfo& model, const ScriptInfo& script)
{
    return rowValue(model.modes(), script.mode, 7);
}

FieldValue delayOf(const RelayInfo& model, const ScriptInfo& script)
{
    return rowValue(model.delays(), script.delay, 7);
}

FieldValue durationOf(const RelayInfo& model, const ScriptInfo& script)
{
    return rowValue(model.durations(), script.duration, 31);
}

QString stateInWords(const ParamItemPtr& state)
{
    using scriptRules::StateKind;
    const StateKind kind = scriptRules::kindOf(state);
    if (!state || kind == StateKind::NotActive) {
        return texts::placeholderNotActive();
    }
    if (kind == StateKind::Other) {
        return QStringLiteral("%1 0x%2").arg(texts::otherState()).arg(state->code, 2, 16, QLatin1Char('0'));
    }
    if (!state->linked) {
        return state->name;
    }
    const QString words = state->name + QLatin1String(": ") + state->linked->name;
    if (kind != StateKind::Button) {
        return words;
    }
    return words + QLatin1String(scriptRules::isLongPress(state) ? ", long press" : ", short press");
}

FieldValue channelStateOf(const RelayInfo& /*model*/, const ScriptInfo& script)
{
    return {{scriptRules::stateCode(script.stateChannel)}, stateInWords(script.stateChannel)};
}

FieldValue channelsOf(const RelayInfo& /*model*/, const ScriptInfo& script)
{
    const QList<bool> channels = firstFlags(script.numberChannels, 4);
    return {positions(channels), listed(channels)};
}

FieldValue terminalStatesOf(const RelayInfo& /*model*/, const ScriptInfo& script)
{
    QStringList names;
    for (const ParamItemPtr& state : script.stateTerminal) {
        names.append(state->name);
    }
    return {{maskOf(script.stateTerminal)},
            names.isEmpty() ? texts::placeholderNotActive() : names.join(QLatin1String(", "))};
}

template <ScriptInfo::Filter filter>
FieldValue filterOf(const RelayInfo& /*model*/, const ScriptInfo& script)
{
    return switchValue(script.activateFilter.value(filter));
}

FieldValue typeOf(const RelayInfo& model, const ScriptInfo& script)
{
    const TerminalIdentity type = script.terminalFilter ? *script.terminalFilter : TerminalIdentity();
    const QVector<int> stored{type.terminalClass, type.version & 15, type.type, type.characteristic};
    // The first of the types is blank.
    const TerminalTypePtr known =
        firstOf(model.terminalTypes().mid(1), [&type](const TerminalTypePtr& each) { return sameModel(*each, type); });
    if (known) {
        return {stored, known->name};
    }
    return {stored, QStringLiteral("class %1, version %2, type 0x%3, characteristic 0x%4")
                        .arg(type.terminalClass)
                        .arg(type.version)
                        .arg(type.type, 2, 16, QLatin1Char('0'))
                        .arg(type.characteristic, 2, 16, QLatin1Char('0'))};
}

FieldValue addressesOf(const RelayInfo& /*model*/, const ScriptInfo& script)
{
    const QList<bool> addresses = firstFlags(script.addressFilter, 32);
    return {positions(addresses), listed(addresses, QStringLiteral("head unit"))};
}

FieldValue daysOf(const RelayInfo& /*model*/, const ScriptInfo& script)
{
    const QStringList names = {texts::dayMonday(), texts::dayTuesday(),  texts::dayWednesday(), texts::dayThursday(),
                               texts::dayFriday(), texts::daySaturday(), texts::daySunday()};
    const QVector<int> days = positions(firstFlags(script.daysOfWeek, names.size()));
    QStringList words;
    for (const int day : days) {
        words.append(names.at(day));
    }
    return {days, words.isEmpty() ? QStringLiteral("none") : words.join(QLatin1String(", "))};
}

/// A span of time or of dates: its begin, then its end, of two numbers each.
template <std::size_t N>
FieldValue spanValue(const QList<int>& items, const recordLayout::Decimal (&decimals)[N], const QString& form)
{
    FieldValue value;
    value.words = form;
    for (const recordLayout::Decimal& decimal : decimals) {
        const quint8 packed = toBcd(quint8(items.value(decimal.item))) & decimal.mask;
        value.stored.append(packed);
        value.words.replace(QLatin1Char('%') + QString::number(decimal.item),
                            QStringLiteral("%1").arg(fromBcd(packed), 2, 10, QLatin1Char('0')));
    }
    return value;
}

FieldValue timeOf(const RelayInfo& /*model*/, const ScriptInfo& script)
{
    return spanValue(script.timeFilter, recordLayout::timeDecimals, QStringLiteral("%1:%0 to %3:%2"));
}

FieldValue datesOf(const RelayInfo& /*model*/, const ScriptInfo& script)
{
    return spanValue(script.dateFilter, recordLayout::dateDecimals, QStringLiteral("%0.%1 to %2.%3"));
}

} // namespace

const QVector<ScriptField>& scriptFields()
{
    static const QVector<ScriptField> fields{
        {"mode", modeOf},
        {"delay", delayOf},
        {"duration", durationOf},
        {"state of a channel", channelStateOf},
        {"channels", channelsOf},
        {"states of a terminal", terminalStatesOf},
        {"filter by type", filterOf<ScriptInfo::ByType>},
        {"type of terminal", typeOf},
        {"filter by addresses", filterOf<ScriptInfo::ByAddress>},
        {"addresses", addressesOf},
        {"days", daysOf},
        {"filter by time", filterOf<ScriptInfo::ByTime>},
        {"time", timeOf},
        {"filter by date", filterOf<ScriptInfo::ByDate>},
        {"dates", datesOf},
    };
    return fields;
}

FieldValue switchValue(bool isOn)
{
    return {{isOn ? 1 : 0}, isOn ? QStringLiteral("on") : QStringLiteral("off")};
}

FieldValue rowValue(const ParamItems& rows, const ParamItemPtr& row, int mask)
{
    const int code = (row ? row->code : 0) & mask;
    const ParamItemPtr stored = findByCode(rows, code);
    return {{code}, stored ? stored->name : QString::number(code)};
}
