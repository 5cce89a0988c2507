#include "tool/ScriptSentence.h"

#include "model/RelayInfo.h"
#include "texts/texts.h"
#include "tool/ScriptTrigger.h"
#include "tool/english.h"

namespace sentence
{

namespace
{

constexpr quint8 noNumber = 255;

/// A name in quotation marks behind a blank that keeps it in the same line; nothing if it is one that nobody gave.
QString behind(const QString& name, const QStringList& defaults)
{
    const bool isGiven = !english::tidied(name).isEmpty() && !defaults.contains(name);
    return isGiven ? QChar(QChar::Nbsp) + english::quoted(name) : QString();
}

QString outputNumber(const RelayInformation& output)
{
    const QString number =
        output.number == noNumber ? QStringLiteral("without a number") : QString::number(output.number + 1);
    return number + behind(output.name, {texts::defaultOutputName(), texts::headUnitOutputName()});
}

/// Outputs that stand one behind the other on one terminal.
QString outputsOfOne(const GroupRelay& terminal, const QStringList& numbers)
{
    return QStringLiteral("%1\u00A0%2 of %3")
        .arg(numbers.size() == 1 ? QStringLiteral("output") : QStringLiteral("outputs"), english::list(numbers),
             sentence::terminal(terminal));
}

QString delayOf(const ScriptInfo& script)
{
    if (!script.delay) {
        return QStringLiteral(" after an unknown delay");
    }
    return script.delay->code == 0 ? QString() : QStringLiteral(" after ") + script.delay->name;
}

bool isEndless(const ScriptInfo& script)
{
    return script.duration && script.duration->code == 0;
}

QString durationOf(const ScriptInfo& script)
{
    if (!script.duration) {
        return QStringLiteral(" for an unknown time");
    }
    return isEndless(script) ? QStringLiteral(" with no time limit") : QStringLiteral(" for ") + script.duration->name;
}

/// What happens to one output or to several: "%1 is switched on". The codes are those of the modes' table.
QString driven(const ScriptInfo& script, bool isOne)
{
    const QString is = isOne ? QStringLiteral("%1 is ") : QStringLiteral("%1 are ");
    const QString pulses = isOne ? QStringLiteral("%1 pulses") : QStringLiteral("%1 pulse");
    switch (script.mode ? script.mode->code : -1) {
    case 0:
        return is + QStringLiteral("switched off");
    case 1:
        return is + QStringLiteral("switched on");
    case 2:
        return pulses + QStringLiteral(" every 2 seconds");
    case 3:
        return pulses + QStringLiteral(" once a second");
    case 7:
        return QStringLiteral("the activation of %1 is disabled");
    default:
        return is + QStringLiteral("driven in an unknown way");
    }
}

QString stateOf(const RelayInformation& output)
{
    return output.startState ? output.startState->name.toLower() : QStringLiteral("an unknown state");
}

/// "the output returns to off", "output 1 of the head unit returns to on"; nothing if all outputs stay as they are.
QString returning(const QList<PlacedOutput>& all)
{
    QStringList states;
    QList<QList<PlacedOutput>> byState;
    for (const PlacedOutput& placed : all) {
        if (!placed.output->returnStartState) {
            continue;
        }
        const QString state = stateOf(*placed.output);
        if (!states.contains(state)) {
            states.append(state);
            byState.append(QList<PlacedOutput>());
        }
        byState[states.indexOf(state)].append(placed);
    }
    QStringList words;
    for (int i = 0; i < states.size(); ++i) {
        const bool isOne = byState.at(i).size() == 1;
        const QString who = byState.at(i).size() < all.size() ? outputs(byState.at(i))
                            : isOne                           ? QStringLiteral("the output")
                                                              : QStringLiteral("the outputs");
        words.append(QStringLiteral("%1 %2 to %3")
                         .arg(who, isOne ? QStringLiteral("returns") : QStringLiteral("return"), states.at(i)));
    }
    return words.join(QStringLiteral(", and "));
}

} // namespace

QString numbered(const ScriptInfo& script)
{
    return QString::number(script.number + 1) + behind(script.name, {texts::defaultScriptName()});
}

QString terminal(const GroupRelay& terminal)
{
    return terminal.address == 0
               ? QStringLiteral("the head unit")
               : QStringLiteral("terminal\u00A0%1%2")
                     .arg(QString::number(terminal.address), behind(terminal.name, {texts::defaultTerminalName()}));
}

QString outputs(const QList<PlacedOutput>& outputs)
{
    QStringList words;
    QStringList numbers;
    for (int i = 0; i < outputs.size(); ++i) {
        const GroupRelayPtr& terminal = outputs.at(i).terminal;
        numbers.append(outputNumber(*outputs.at(i).output));
        if (i + 1 == outputs.size() || outputs.at(i + 1).terminal != terminal) {
            words.append(outputsOfOne(*terminal, numbers));
            numbers.clear();
        }
    }
    return english::list(words);
}

QList<PlacedOutput> outputsOf(const RelayInfo& model, const ScriptInfoPtr& script)
{
    QList<PlacedOutput> found;
    const QList<GroupRelayPtr> groups = model.groups();
    for (const GroupRelayPtr& group : groups) {
        for (const RelayInformationPtr& output : qAsConst(group->outputs)) {
            if (output->activatedScripts.contains(script)) {
                found.append({group, output});
            }
        }
    }
    return found;
}

QString action(const RelayInfo& model, const ScriptInfoPtr& script)
{
    const QString report = sentence::report(*script);
    const QStringList conditions =
        QStringList{QStringLiteral("When %1 reports %2").arg(reporter(model, *script), report)} + periods(*script);
    const QString condition = conditions.join(QStringLiteral(", "));
    const QList<PlacedOutput> placed = outputsOf(model, script);
    if (placed.isEmpty()) {
        return condition + QStringLiteral(", nothing happens: this script drives no output.");
    }
    // Names stay out of what is filled in step by step: they may hold anything, "%1" too.
    const QString verb = driven(*script, placed.size() == 1);
    QString words = condition + QStringLiteral(", ") + QString(verb).replace(QStringLiteral("%1"), outputs(placed)) +
                    delayOf(*script) + durationOf(*script);
    const QString end = returning(placed);
    if (!end.isEmpty()) {
        words += isEndless(*script) ? QStringLiteral("; when the script ends, ") : QStringLiteral("; afterwards ");
        words += end;
    }
    return words + QLatin1Char('.');
}

} // namespace sentence
