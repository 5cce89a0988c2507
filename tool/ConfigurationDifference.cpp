#include "tool/ConfigurationDifference.h"

#include "model/RecordWriter.h"
#include "model/RelayInfo.h"
#include "model/firstOf.h"
#include "texts/texts.h"
#include "tool/scriptFields.h"

#include <QJsonObject>
#include <QPair>

namespace
{

/// A terminal with the outputs that the unit keeps under its address.
struct Terminal
{
    int address = 0; ///< as the unit keeps it
    GroupRelayPtr group;
    QList<RelayInformationPtr> outputs;
};

using TerminalPtr = QSharedPointer<Terminal>;

/// Finds what belongs together on two sides: the first of a key with the first, the second with the second. One of a
/// pair is null if there is nothing.
template <typename Pointer, typename Key>
QVector<QPair<Pointer, Pointer>> pairsOf(const QList<Pointer>& before, QList<Pointer> after, Key key)
{
    QVector<QPair<Pointer, Pointer>> pairs;
    for (const Pointer& each : before) {
        const Pointer partner = firstOf(after, [&](const Pointer& candidate) { return key(*candidate) == key(*each); });
        after.removeOne(partner);
        pairs.append({each, partner});
    }
    for (const Pointer& each : qAsConst(after)) {
        pairs.append({{}, each});
    }
    return pairs;
}

QString quoted(const QString& name)
{
    QString line = name;
    return QLatin1Char('\'') + line.replace(QLatin1Char('\n'), QLatin1String(" / ")) + QLatin1Char('\'');
}

class Comparison
{
public:
    Comparison(const RelayInfo& before, const RelayInfo& after, Names whichNames)
        : sides{before, after}, names(whichNames)
    {
    }

    QVector<ConfigurationDifference> compare()
    {
        compareNames({}, QStringLiteral("comment"), sides.before.comment(), sides.after.comment());
        const auto terminals = pairsOf(terminalsOf(sides.before), terminalsOf(sides.after),
                                       [](const Terminal& each) { return each.address; });
        for (const auto& pair : terminals) {
            compareTerminals(pair.first, pair.second);
        }
        const auto scripts = pairsOf(sides.before.scripts(), sides.after.scripts(), numberOfScript);
        for (const auto& pair : scripts) {
            compareScripts(pair.first, pair.second);
        }
        return found;
    }

private:
    struct Sides
    {
        const RelayInfo& before;
        const RelayInfo& after;
    };

    // As much of the numbers as the unit keeps.
    static int numberOfScript(const ScriptInfo& script)
    {
        return script.number & 63;
    }
    static int numberOfOutput(const RelayInformation& output)
    {
        return output.number & 7;
    }

    QList<TerminalPtr> terminalsOf(const RelayInfo& model) const;
    QString described(const QString& what, const QString& before, const QString& after,
                      const QStringList& usualNames) const;
    bool isOnBothSides(const QString& where, bool isBefore, bool isAfter);
    void compareNames(const QString& where, const QString& what, const QString& before, const QString& after);
    void compareValues(const QString& where, const QString& what, const FieldValue& before, const FieldValue& after);
    void compareTerminals(const TerminalPtr& before, const TerminalPtr& after);
    void compareOutputs(const QString& terminal, const RelayInformationPtr& before, const RelayInformationPtr& after);
    void compareScripts(const ScriptInfoPtr& before, const ScriptInfoPtr& after);

    const Sides sides;
    const Names names;
    QVector<ConfigurationDifference> found;
};

/// Without names, groups with one address are one, and those without outputs are none: the unit knows outputs alone.
QList<TerminalPtr> Comparison::terminalsOf(const RelayInfo& model) const
{
    QList<TerminalPtr> terminals;
    const QList<GroupRelayPtr> groups = model.groups();
    for (const GroupRelayPtr& group : groups) {
        const int address = group->address & 255;
        TerminalPtr terminal;
        if (names == Names::Ignored) {
            if (group->outputs.isEmpty()) {
                continue;
            }
            terminal = firstOf(terminals, [address](const TerminalPtr& each) { return each->address == address; });
        }
        if (!terminal) {
            terminal = TerminalPtr::create();
            terminal->address = address;
            terminal->group = group;
            terminals.append(terminal);
        }
        terminal->outputs += group->outputs;
    }
    return terminals;
}

/// What with its name. Where names don't count one side has nothing but usual ones, which say nothing.
QString Comparison::described(const QString& what, const QString& before, const QString& after,
                              const QStringList& usualNames) const
{
    QString name = before.isEmpty() ? after : before;
    if (names == Names::Ignored && usualNames.contains(name)) {
        name = usualNames.contains(after) ? QString() : after;
    }
    return name.isEmpty() ? what : what + QLatin1Char(' ') + quoted(name);
}

bool Comparison::isOnBothSides(const QString& where, bool isBefore, bool isAfter)
{
    if (isBefore && isAfter) {
        return true;
    }
    found.append({where, isAfter ? QStringLiteral("added") : QStringLiteral("removed"), {}, {}});
    return false;
}

void Comparison::compareNames(const QString& where, const QString& what, const QString& before, const QString& after)
{
    if (names == Names::Compared && before != after) {
        found.append({where, what, quoted(before), quoted(after)});
    }
}

void Comparison::compareValues(const QString& where, const QString& what, const FieldValue& before,
                               const FieldValue& after)
{
    if (before.stored == after.stored) {
        return;
    }
    const auto withNumbers = [](const FieldValue& value) {
        QStringList numbers;
        for (const int number : value.stored) {
            numbers.append(QString::number(number));
        }
        return QStringLiteral("%1 (%2)").arg(value.words, numbers.join(QLatin1Char(' ')));
    };
    // Some rows of the tables share a name.
    const bool sameWords = before.words == after.words;
    found.append(
        {where, what, sameWords ? withNumbers(before) : before.words, sameWords ? withNumbers(after) : after.words});
}

void Comparison::compareTerminals(const TerminalPtr& before, const TerminalPtr& after)
{
    const Terminal& either = before ? *before : *after;
    const QString what =
        either.address == 0 ? QStringLiteral("head unit") : QStringLiteral("terminal %1").arg(either.group->address);
    const QString where = described(what, before ? before->group->name : QString(),
                                    after ? after->group->name : QString(), {texts::defaultTerminalName()});
    if (!isOnBothSides(where, !before.isNull(), !after.isNull())) {
        return;
    }
    compareNames(where, QStringLiteral("name"), before->group->name, after->group->name);
    const auto outputs = pairsOf(before->outputs, after->outputs, numberOfOutput);
    for (const auto& pair : outputs) {
        compareOutputs(where, pair.first, pair.second);
    }
}

FieldValue scriptsOf(const RelayInformation& output)
{
    FieldValue value;
    QStringList numbers;
    for (const ScriptInfoPtr& script : output.activatedScripts) {
        value.stored.append(script->number);
        numbers.append(QString::number(script->number + 1));
    }
    value.words = numbers.isEmpty() ? QStringLiteral("none") : numbers.join(QLatin1String(", "));
    return value;
}

void Comparison::compareOutputs(const QString& terminal, const RelayInformationPtr& before,
                                const RelayInformationPtr& after)
{
    const QString what =
        QStringLiteral("%1, output %2").arg(terminal).arg(numberOfOutput(before ? *before : *after) + 1);
    const QString where = described(what, before ? before->name : QString(), after ? after->name : QString(),
                                    {texts::defaultOutputName(), texts::headUnitOutputName()});
    if (!isOnBothSides(where, !before.isNull(), !after.isNull())) {
        return;
    }
    compareNames(where, QStringLiteral("name"), before->name, after->name);
    compareValues(where, QStringLiteral("start state"), rowValue(sides.before.outputStates(), before->startState, 1),
                  rowValue(sides.after.outputStates(), after->startState, 1));
    compareValues(where, QStringLiteral("return to the start state"), switchValue(before->returnStartState),
                  switchValue(after->returnStartState));
    compareValues(where, QStringLiteral("scripts"), scriptsOf(*before), scriptsOf(*after));
}

void Comparison::compareScripts(const ScriptInfoPtr& before, const ScriptInfoPtr& after)
{
    const QString what = QStringLiteral("script %1").arg(numberOfScript(before ? *before : *after) + 1);
    const QString where = described(what, before ? before->name : QString(), after ? after->name : QString(),
                                    {texts::defaultScriptName()});
    if (!isOnBothSides(where, !before.isNull(), !after.isNull())) {
        return;
    }
    compareNames(where, QStringLiteral("name"), before->name, after->name);
    if (scriptRecords({before}) == scriptRecords({after})) {
        return;
    }
    for (const ScriptField& field : scriptFields()) {
        compareValues(where, QLatin1String(field.what), field.valueOf(sides.before, *before),
                      field.valueOf(sides.after, *after));
    }
}

} // namespace

QVector<ConfigurationDifference> configurationDifferences(const RelayInfo& before, const RelayInfo& after, Names names)
{
    return Comparison(before, after, names).compare();
}

QJsonArray jsonOf(const QVector<ConfigurationDifference>& differences)
{
    QJsonArray list;
    for (const ConfigurationDifference& difference : differences) {
        list.append(QJsonObject{{QStringLiteral("where"), difference.where},
                                {QStringLiteral("what"), difference.what},
                                {QStringLiteral("before"), difference.before},
                                {QStringLiteral("after"), difference.after}});
    }
    return list;
}

QString inWords(const ConfigurationDifference& difference)
{
    QString words = difference.where.isEmpty() ? QString() : difference.where + QLatin1String(": ");
    words += difference.what;
    if (!difference.before.isEmpty() || !difference.after.isEmpty()) {
        words += QStringLiteral(" %1 -> %2").arg(difference.before, difference.after);
    }
    return words;
}
