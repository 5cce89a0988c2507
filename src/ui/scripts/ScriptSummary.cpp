#include "ui/scripts/ScriptSummary.h"

#include "model/ScriptRules.h"
#include "model/tables.h"
#include "texts/texts.h"
#include "widgets/Look.h"

#include <QColor>
#include <QStringList>

namespace
{

QString heading(const QString& text)
{
    return QStringLiteral("<u>%1</u>").arg(text);
}

QString title(const QString& text)
{
    return QStringLiteral("<p align=\"center\" style=\"margin-bottom:7px; margin-top:0px\"><b>%1</b></p>")
        .arg(look::richText(text));
}

QString colored(const QColor& color, const QString& text)
{
    return QStringLiteral("<p align=\"center\" style=\"background-color: %1; margin:0px\">%2</p>")
        .arg(look::rgba(color), text.toHtmlEscaped());
}

QString centred(const QString& text)
{
    return QStringLiteral("<p align=\"center\" style=\"margin:0px\">%1</p>").arg(text);
}

QString row(const ParamItemPtr& item)
{
    return item ? colored(item->background, item->name) : colored(unsetColor(), texts::placeholderUnknown());
}

QString twoDigits(int value, int base = 10)
{
    return QStringLiteral("%1").arg(value, 2, base, QLatin1Char('0'));
}

QString channelState(const ParamItemPtr& state)
{
    using scriptRules::StateKind;
    const StateKind kind = scriptRules::kindOf(state);
    if (kind == StateKind::Other) {
        return colored(unsetColor(), QStringLiteral("0x") + twoDigits(state->code, 16));
    }
    if (!state) {
        return colored(unsetColor(), texts::placeholderNotActive());
    }
    if (!state->linked) {
        return row(state);
    }
    QString name = state->linked->name;
    if (kind == StateKind::Button) {
        name += scriptRules::isLongPress(state) ? QStringLiteral("(длин.наж)") : QStringLiteral("(кор.наж)");
    }
    return colored(state->linked->background, name);
}

QString channelNumbers(const QList<bool>& channels)
{
    QString numbers = texts::editorChannelNumbers() + QLatin1Char(' ');
    for (int i = 0; i < channels.size(); ++i) {
        if (channels.at(i)) {
            numbers += QStringLiteral("%1; ").arg(i + 1);
        }
    }
    return centred(numbers);
}

QString terminalStates(const ParamItems& states)
{
    if (states.isEmpty()) {
        return colored(unsetColor(), texts::placeholderNotActive());
    }
    QString lines;
    int number = 0;
    for (const ParamItemPtr& state : states) {
        lines += colored(state->background, QStringLiteral("%1) %2").arg(QString::number(++number), state->name));
    }
    return lines;
}

QString days(const QList<bool>& daysOfWeek)
{
    if (!daysOfWeek.contains(true)) {
        return {};
    }
    const QStringList names = {texts::dayMonday(), texts::dayTuesday(),  texts::dayWednesday(), texts::dayThursday(),
                               texts::dayFriday(), texts::daySaturday(), texts::daySunday()};
    QString chosen;
    for (int i = 0; i < names.size(); ++i) {
        if (daysOfWeek.value(i)) {
            chosen += names.at(i) + QStringLiteral("; ");
        }
    }
    return heading(texts::editorFilterByDays()) + centred(chosen);
}

/// The four numbers of a filter by time or by date in the places that a format has for them.
QString period(const QString& caption, const QString& format, const QList<int>& filter)
{
    return heading(caption) + centred(format.arg(twoDigits(filter.value(0)), twoDigits(filter.value(1)),
                                                 twoDigits(filter.value(2)), twoDigits(filter.value(3))));
}

QString terminalType(const TerminalTypePtr& type)
{
    QString name;
    if (type && type->label == texts::placeholderOtherType()) {
        name = QStringLiteral("%1%2 %3 %4")
                   .arg(QString::number(type->terminalClass, 16), QString::number(type->version, 16),
                        twoDigits(type->type, 16), twoDigits(type->characteristic, 16));
    } else if (type) {
        name = type->name;
    }
    return QStringLiteral("<p style=\"margin:0px\"><u>") + texts::editorFilterByType() + QStringLiteral(":</u> ") +
           look::richText(name) + QStringLiteral("</p>");
}

/// The noun for a count of terminals; the three forms follow the Russian rules.
QString terminalNoun(int count)
{
    const int last = count % 10;
    if (last == 1 && count != 11) {
        return texts::terminalCountOne();
    }
    const bool few = last >= 2 && last <= 4 && (count < 10 || count > 20);
    return few ? texts::terminalCountFew() : texts::terminalCountMany();
}

QString addresses(const QList<bool>& addressFilter)
{
    const int count = addressFilter.count(true);
    return QStringLiteral("<p style=\"margin:0px\"><u>") + texts::editorFilterByAddresses() +
           QStringLiteral(":</u></p> ") +
           centred(QStringLiteral("%1 %2").arg(QString::number(count), terminalNoun(count)));
}

QString filters(const ScriptInfo& script)
{
    QString lines = days(script.daysOfWeek);
    if (script.activateFilter.value(ScriptInfo::ByTime)) {
        // The record has the minutes in front of the hours.
        lines += period(texts::editorFilterByTime(), QStringLiteral("%2:%1 - %4:%3"), script.timeFilter);
    }
    if (script.activateFilter.value(ScriptInfo::ByDate)) {
        lines += period(texts::editorFilterByDate(), QStringLiteral("%1.%2 - %3.%4"), script.dateFilter);
    }
    if (script.activateFilter.value(ScriptInfo::ByType)) {
        lines += terminalType(script.terminalFilter);
    }
    if (script.activateFilter.value(ScriptInfo::ByAddress)) {
        lines += addresses(script.addressFilter);
    }
    if (!lines.isEmpty()) {
        return lines;
    }
    return QStringLiteral("<p align=\"center\" style=\"background-color: %1; margin:0px; margin-bottom:20px\">%2</p>")
        .arg(look::rgba(unsetColor()), texts::wordFilterDisabled());
}

} // namespace

QString scriptSummary(const ScriptInfoPtr& script)
{
    if (!script) {
        return title(texts::wordScriptUnknown());
    }
    QString summary = title(texts::wordScript() +
                            QStringLiteral(" №%1: '%2'").arg(QString::number(script->number + 1), script->name));
    summary += heading(texts::editorMode()) + row(script->mode);
    summary += heading(texts::editorDelay()) + row(script->delay);
    summary += heading(texts::editorDuration()) + row(script->duration);
    summary += QStringLiteral("<hr>");
    summary += heading(texts::editorChannelState()) + channelState(script->stateChannel);
    if (scriptRules::kindOf(script->stateChannel) != scriptRules::StateKind::NotActive) {
        summary += channelNumbers(script->numberChannels);
    }
    summary += heading(texts::editorTerminalStatus()) + terminalStates(script->stateTerminal);
    summary += QStringLiteral("<hr>");
    summary += filters(*script);
    return summary;
}
