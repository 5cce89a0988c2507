#include "tool/ScriptTrigger.h"

#include "domain/terminals.h"
#include "model/RelayInfo.h"
#include "model/ScriptRules.h"
#include "model/firstOf.h"
#include "texts/texts.h"
#include "tool/english.h"

#include <QLocale>
#include <QVector>

namespace sentence
{

namespace
{

using english::quoted;

constexpr int headUnitItem = 31;

QString orWord()
{
    return QStringLiteral("or");
}

QString hexNumber(int value)
{
    return QStringLiteral("0x%1").arg(QString::number(value, 16).toUpper().rightJustified(2, QLatin1Char('0')));
}

/// The numbers, from 1 on, of the items that are set among the first `count`.
QVector<int> chosen(const QList<bool>& items, int count)
{
    QVector<int> numbers;
    for (int i = 0; i < qMin(count, items.size()); ++i) {
        if (items.at(i)) {
            numbers.append(i + 1);
        }
    }
    return numbers;
}

QString classNoun(quint8 terminalClass)
{
    switch (terminalClass) {
    case SystemClass:
        return QStringLiteral("system unit");
    case SensorClass:
        return QStringLiteral("sensor");
    case ExecutiveClass:
        return QStringLiteral("executive terminal");
    case InterfaceClass:
        return QStringLiteral("panic button");
    case AnalogClass:
        return QStringLiteral("analog terminal");
    case AnyClass:
        return QStringLiteral("terminal");
    default:
        return QStringLiteral("terminal of the class %1").arg(terminalClass);
    }
}

/// The features that a type names in its low half, which a filter wants all as they are, or not at all.
QStringList features(quint8 type)
{
    const struct
    {
        int bit;
        QString name;
    } flags[] = {{8, texts::featureAlwaysConnected()},
                 {4, texts::featureSound()},
                 {2, texts::featureExternalPower()},
                 {1, texts::featureReservePower()}};
    QStringList names;
    for (const auto& flag : flags) {
        if ((type & flag.bit) != 0) {
            names.append(quoted(flag.name));
        }
    }
    return names;
}

/// What a filter of the user's own asks for beside the class.
QString numbersOf(const TerminalIdentity& filter)
{
    QStringList numbers;
    if (filter.version != 0) {
        numbers.append(QStringLiteral("version %1").arg(QString::number(filter.version, 16).toUpper()));
    }
    if (filter.type > 15) {
        numbers.append(QStringLiteral("type %1").arg(hexNumber(filter.type & 0xF0)));
    }
    if (filter.characteristic != 0) {
        numbers.append(QStringLiteral("description %1").arg(hexNumber(filter.characteristic)));
    }
    const QStringList marks = features(filter.type);
    QString words = numbers.isEmpty() ? QString() : QStringLiteral(" of ") + english::list(numbers);
    if (!marks.isEmpty()) {
        words += QStringLiteral(" with %1 and nothing else").arg(english::list(marks));
    }
    return words;
}

bool filters(const ScriptInfo& script, ScriptInfo::Filter filter)
{
    return script.activateFilter.value(filter);
}

/// The model that a filter names, if the catalogue has it. A file holds the numbers alone.
TerminalTypePtr modelOf(const TerminalTypes& types, const TerminalType& filter)
{
    return firstOf(types, [&filter](const TerminalTypePtr& type) {
        return sameModel(*type, filter) && type->label != texts::placeholderOtherType();
    });
}

/// The kind of terminal, without an article; "terminal" if any will do.
QString reporterNoun(const RelayInfo& model, const ScriptInfo& script)
{
    if (!filters(script, ScriptInfo::ByType) || !script.terminalFilter) {
        return classNoun(AnyClass);
    }
    const TerminalType& filter = *script.terminalFilter;
    const QString noun = classNoun(filter.terminalClass);
    const TerminalTypePtr named = modelOf(model.terminalTypes(), filter);
    return named ? noun + QLatin1Char(' ') + quoted(named->name) : noun + numbersOf(filter);
}

QString terminalsAt(const QVector<int>& addresses)
{
    return (addresses.size() == 1 ? QStringLiteral("terminal ") : QStringLiteral("terminals ")) +
           english::ranges(addresses).join(QStringLiteral(", "));
}

/// Reporters that are named by nothing but their addresses.
QString placedReporter(const QVector<int>& addresses, bool withHeadUnit)
{
    if (addresses.size() == headUnitItem) {
        return QStringLiteral("any terminal but the head unit");
    }
    QStringList places;
    if (withHeadUnit) {
        places.append(QStringLiteral("the head unit"));
    }
    if (!addresses.isEmpty()) {
        places.append(addresses.size() == 1
                          ? terminalsAt(addresses)
                          : QStringLiteral("one of the terminals ") + english::list(english::ranges(addresses)));
    }
    return english::list(places, orWord());
}

QString channelState(const ParamItemPtr& state)
{
    using scriptRules::StateKind;
    switch (scriptRules::kindOf(state)) {
    case StateKind::Other:
        return QStringLiteral("the state %1").arg(hexNumber(scriptRules::stateCode(state)));
    case StateKind::Button:
        return QStringLiteral("%1 of %2")
            .arg(english::withArticle(
                     (scriptRules::isLongPress(state) ? texts::pressLong() : texts::pressShort()).toLower()),
                 quoted(state->linked ? state->linked->name : state->name));
    default:
        return quoted(state->linked ? state->linked->name : state->name);
    }
}

QString channels(const QList<bool>& numberChannels)
{
    QList<bool> numbers = numberChannels;
    scriptRules::ensureChannel(numbers);
    if (!numbers.contains(false)) {
        return QStringLiteral("any channel");
    }
    QStringList words;
    const QVector<int> switchedOn = chosen(numbers, numbers.size());
    for (const int number : switchedOn) {
        words.append(QString::number(number));
    }
    return QStringLiteral("channel ") + english::list(words, orWord());
}

QString clockTime(int hour, int minute)
{
    return QStringLiteral("%1:%2").arg(hour, 2, 10, QLatin1Char('0')).arg(minute, 2, 10, QLatin1Char('0'));
}

QString hours(const QList<int>& filter)
{
    // The record has the minutes in front of the hours.
    const QString begin = clockTime(filter.value(1), filter.value(0));
    const QString end = clockTime(filter.value(3), filter.value(2));
    return QStringLiteral("between %1 and %2%3")
        .arg(begin, end, end < begin ? QStringLiteral(" the next day") : QString());
}

/// "Monday to Friday", "on Monday, Thursday and Friday". Three in a row and more become one item.
QString days(const QList<bool>& daysOfWeek)
{
    const QVector<int> numbers = chosen(daysOfWeek, 7);
    const auto name = [](int day) { return QLocale::c().dayName(day); };
    QStringList items;
    bool isOneRun = false;
    for (int i = 0; i < numbers.size();) {
        int last = i;
        while (last + 1 < numbers.size() && numbers.at(last + 1) == numbers.at(last) + 1) {
            ++last;
        }
        if (last - i < 2) {
            items.append(name(numbers.at(i++)));
            continue;
        }
        items.append(QStringLiteral("%1 to %2").arg(name(numbers.at(i)), name(numbers.at(last))));
        isOneRun = last - i + 1 == numbers.size();
        i = last + 1;
    }
    return isOneRun ? items.first() : QStringLiteral("on ") + english::list(items);
}

/// "1 May". A month that no calendar has stays a number.
QString date(int day, int month)
{
    return month >= 1 && month <= 12 ? QStringLiteral("%1 %2").arg(QString::number(day), QLocale::c().monthName(month))
                                     : QStringLiteral("day %1 of month %2").arg(day).arg(month);
}

QString dates(const QList<int>& filter)
{
    const QString begin = date(filter.value(0), filter.value(1));
    const QString end = date(filter.value(2), filter.value(3));
    return begin == end ? QStringLiteral("on ") + begin : QStringLiteral("from %1 to %2").arg(begin, end);
}

} // namespace

QString reporter(const RelayInfo& model, const ScriptInfo& script)
{
    const QString noun = reporterNoun(model, script);
    const QVector<int> addresses = chosen(script.addressFilter, headUnitItem);
    const bool withHeadUnit = script.addressFilter.value(headUnitItem);
    const bool isEverywhere = addresses.size() == headUnitItem && withHeadUnit;
    if (!filters(script, ScriptInfo::ByAddress) || isEverywhere) {
        return QStringLiteral("any ") + noun;
    }
    if (hearsNobody(script)) {
        return english::withArticle(noun) + QStringLiteral(" at no address");
    }
    if (noun == classNoun(AnyClass)) {
        return placedReporter(addresses, withHeadUnit);
    }
    QStringList places;
    if (withHeadUnit) {
        places.append(QStringLiteral("the head unit"));
    }
    if (!addresses.isEmpty()) {
        places.append(terminalsAt(addresses));
    }
    return QStringLiteral("%1 (%2)").arg(english::withArticle(noun), places.join(QStringLiteral(", ")));
}

QString report(const ScriptInfo& script)
{
    QStringList reports;
    if (scriptRules::stateCode(script.stateChannel) != ParamItem::notActiveCode) {
        reports.append(
            QStringLiteral("%1 on %2").arg(channelState(script.stateChannel), channels(script.numberChannels)));
    }
    QStringList statuses;
    for (const ParamItemPtr& state : script.stateTerminal) {
        statuses.append(quoted(state->name));
    }
    if (!statuses.isEmpty()) {
        reports.append(QStringLiteral("the status ") + english::list(statuses, orWord()));
    }
    return reports.join(QStringLiteral(", or "));
}

QStringList periods(const ScriptInfo& script)
{
    QStringList words;
    if (filters(script, ScriptInfo::ByTime)) {
        words.append(hours(script.timeFilter));
    }
    // The days have no switch of their own: none stands for all.
    if (script.daysOfWeek.contains(true) && script.daysOfWeek.contains(false)) {
        words.append(days(script.daysOfWeek));
    }
    if (filters(script, ScriptInfo::ByDate)) {
        words.append(dates(script.dateFilter));
    }
    return words;
}

bool hearsNobody(const ScriptInfo& script)
{
    return filters(script, ScriptInfo::ByAddress) && !script.addressFilter.contains(true);
}

} // namespace sentence
