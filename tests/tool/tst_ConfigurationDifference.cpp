#include "support/RandomModel.h"
#include "support/rounds.h"
#include "tool/ConfigurationDifference.h"

#include <QtTest>

#include <algorithm>
#include <functional>

namespace
{

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

QStringList linesOf(const RelayInfo& before, const RelayInfo& after, Names names = Names::Compared)
{
    QStringList lines;
    const auto differences = configurationDifferences(before, after, names);
    for (const ConfigurationDifference& difference : differences) {
        lines.append(inWords(difference));
    }
    return lines;
}

/// What the unit keeps of a model, whatever the order of its terminals.
QByteArrayList recordsOf(const RelayInfo& model)
{
    QByteArrayList records = model.makeOutputRecords();
    std::sort(records.begin(), records.end());
    return records + QByteArrayList{"scripts"} + model.makeScriptRecords();
}

/// What it doesn't keep.
QStringList namesOf(const RelayInfo& model)
{
    QStringList names{model.comment()};
    const QList<GroupRelayPtr> groups = model.groups();
    for (const GroupRelayPtr& group : groups) {
        names += QString::number(group->address) + group->name;
        for (const RelayInformationPtr& output : std::as_const(group->outputs)) {
            names += output->name;
        }
    }
    const QList<ScriptInfoPtr> scripts = model.scripts();
    for (const ScriptInfoPtr& script : scripts) {
        names += script->name;
    }
    return names;
}

using Change = std::function<void(RandomModel&, RelayInfo&)>;

RelayInformationPtr anyOutput(RandomModel& random, const RelayInfo& model)
{
    const QList<GroupRelayPtr> groups = model.groups();
    const GroupRelayPtr& group = groups.at(random.below(groups.size()));
    return group->outputs.at(random.below(group->outputs.size()));
}

ScriptInfo& anyScript(RandomModel& random, const RelayInfo& model)
{
    return *model.scripts().at(random.below(32));
}

/// A change of one field, which may happen to set what it was.
const QVector<Change>& changes()
{
    using R = RandomModel;
    using M = RelayInfo;
    static const QVector<Change> list{
        [](R& r, M& m) { m.setComment(r.name()); },
        [](R& r, M& m) { m.groups().at(r.below(m.groups().size()))->name = r.name(); },
        [](R& r, M& m) { anyOutput(r, m)->name = r.name(); },
        [](R& r, M& m) { anyOutput(r, m)->startState = m.outputStates().value(r.below(3)); },
        [](R& r, M& m) { anyOutput(r, m)->returnStartState = r.flag(); },
        [](R& r, M& m) { anyOutput(r, m)->activatedScripts.append(m.findScript(quint8(r.below(32)))); },
        [](R& r, M& m) {
            QList<ScriptInfoPtr>& scripts = anyOutput(r, m)->activatedScripts;
            std::reverse(scripts.begin(), scripts.end());
        },
        [](R& r, M& m) { m.addGroup(r.name(), quint16(40 + r.below(10))); },
        [](R& r, M& m) { m.removeGroup(m.groups().at(r.below(m.groups().size()))); },
        [](R& r, M& m) { m.addOutput(m.groups().at(r.below(m.groups().size())), r.name()); },
        [](R& r, M& m) { m.groups().at(r.below(m.groups().size()))->outputs.removeLast(); },
        [](R& r, M& m) { anyScript(r, m).name = r.name(); },
        [](R& r, M& m) { anyScript(r, m).mode = m.modes().value(r.below(6)); },
        [](R& r, M& m) { anyScript(r, m).delay = m.delays().value(r.below(9)); },
        [](R& r, M& m) { anyScript(r, m).duration = m.durations().value(r.below(33)); },
        [](R& r, M& m) { anyScript(r, m).stateChannel = m.stateChannels().value(r.below(26)); },
        [](R& r, M& m) { anyScript(r, m).stateChannel = scriptRules::makeOtherState(quint8(r.below(256))); },
        [](R& r, M& m) { anyScript(r, m).stateTerminal = rowsOfMask(m.terminalStates(), r.below(256)); },
        [](R& r, M& m) { anyScript(r, m).numberChannels[r.below(4)] = r.flag(); },
        [](R& r, M& m) { anyScript(r, m).activateFilter[r.below(4)] = r.flag(); },
        [](R& r, M& m) { anyScript(r, m).daysOfWeek[r.below(7)] = r.flag(); },
        [](R& r, M& m) { anyScript(r, m).addressFilter[r.below(32)] = r.flag(); },
        [](R& r, M& m) { anyScript(r, m).timeFilter[r.below(4)] = r.below(60); },
        [](R& r, M& m) { anyScript(r, m).dateFilter[r.below(4)] = r.below(32); },
        [](R& r, M& m) { anyScript(r, m).terminalFilter = m.terminalTypes().value(r.below(7)); },
        [](R& r, M& m) {
            ScriptInfo& script = anyScript(r, m);
            scriptRules::makeTypeFilterPrivate(script);
            script.terminalFilter->characteristic = quint8(r.below(256));
        },
        // What neither the unit nor the comparison cares for.
        [](R& r, M& m) { m.groups().at(r.below(m.groups().size()))->expand = r.flag(); },
        [](R& r, M& m) { anyScript(r, m).marked = r.flag(); },
    };
    return list;
}

/// A terminal with two outputs, the first of which has two scripts, and a script with a name and a duration.
void fillPlain(RelayInfo& model)
{
    RandomModel::addTerminalTypes(model);
    const GroupRelayPtr group = model.addGroup(s("Haldeon-NX"), 5);
    model.addOutput(group, s("Horn"));
    model.addOutput(group, s("Fan"));
    group->outputs.first()->activatedScripts = {model.findScript(3), model.findScript(0)};
    model.findScript(3)->name = s("Horn");
    model.findScript(3)->duration = model.durations().value(19);
}

} // namespace

Q_DECLARE_METATYPE(Change)

class tst_ConfigurationDifference : public QObject
{
    Q_OBJECT

private slots:
    void aModelIsEqualToItself();
    void oneChangedFieldIsADifferenceIfItIsKept();
    void twoModelsDifferIfAnythingKeptDiffers();
    void eachChangeIsToldInWords_data();
    void eachChangeIsToldInWords();
    void oneThingChangedIsOneDifference();
    void statesOfOneCodeAreTheSame();
    void rowsThatShareANameAreToldApart();
    void theOrderOfTerminalsMakesNoDifference();
    void namesThatTheUnitDoesNotKeepAreIgnoredOnRequest();
    void withoutNamesATerminalWithoutOutputsIsNone();
    void withoutNamesTheSideThatHasANameGivesIt();
};

void tst_ConfigurationDifference::aModelIsEqualToItself()
{
    for (quint32 seed = 0; seed < 50; ++seed) {
        RelayInfo model;
        RelayInfo same;
        RandomModel(seed).fill(model);
        RandomModel(seed).fill(same);
        for (const Names names : {Names::Compared, Names::Ignored}) {
            QCOMPARE(linesOf(model, model, names), QStringList());
            QCOMPARE(linesOf(model, same, names), QStringList());
        }
    }
}

void tst_ConfigurationDifference::oneChangedFieldIsADifferenceIfItIsKept()
{
    int different = 0;
    for (quint32 seed = 0; seed < quint32(rounds(1000)); ++seed) {
        RelayInfo before;
        RelayInfo after;
        for (RelayInfo* const model : {&before, &after}) {
            RandomModel::addTerminalTypes(*model);
            RandomModel(seed).fill(*model);
        }
        RandomModel random(seed + 5000);
        changes().at(int(seed) % changes().size())(random, after);

        const bool recordsDiffer = recordsOf(before) != recordsOf(after);
        const bool differ = recordsDiffer || namesOf(before) != namesOf(after);
        different += differ ? 1 : 0;
        const QString place = s("seed %1").arg(seed);
        const QStringList lines = linesOf(before, after);
        QVERIFY2(lines.isEmpty() != differ, qUtf8Printable(place));
        QVERIFY2(linesOf(after, before).isEmpty() != differ, qUtf8Printable(place));
        QVERIFY2(linesOf(before, after, Names::Ignored).isEmpty() != recordsDiffer, qUtf8Printable(place));
        QVERIFY2(linesOf(after, before, Names::Ignored).isEmpty() != recordsDiffer, qUtf8Printable(place));
        QVERIFY2(lines.size() <= 1, qUtf8Printable(lines.join(QLatin1Char('\n'))));
    }
    QVERIFY(different > rounds(500));
}

void tst_ConfigurationDifference::twoModelsDifferIfAnythingKeptDiffers()
{
    for (quint32 seed = 0; seed < 100; ++seed) {
        RelayInfo before;
        RelayInfo after;
        RandomModel(seed).fill(before);
        RandomModel(seed + 1).fill(after);
        const QStringList there = linesOf(before, after);
        const QStringList back = linesOf(after, before);
        QVERIFY(!there.isEmpty());
        QCOMPARE(there.size(), back.size());
        QCOMPARE(there.filter(s(": added")).size(), back.filter(s(": removed")).size());
    }
}

void tst_ConfigurationDifference::eachChangeIsToldInWords_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QString>("line");
    const auto row = [](const char* line, const Change& change) { QTest::newRow(line) << change << s(line); };
    using R = RandomModel;
    using M = RelayInfo;
    row("comment '' -> 'Hall / floor 2'", [](R&, M& m) { m.setComment(s("Hall\nfloor 2")); });
    row("terminal 5 'Haldeon-NX': name 'Haldeon-NX' -> 'Siren'", [](R&, M& m) { m.findGroup(5)->name = s("Siren"); });
    row("terminal 9 'Lamp': added", [](R&, M& m) { m.addOutput(m.addGroup(s("Lamp"), 9), s("Output")); });
    row("terminal 5 'Haldeon-NX': removed", [](R&, M& m) { m.removeGroup(m.findGroup(5)); });
    row("terminal 5 'Haldeon-NX', output 3 'Bell': added", [](R&, M& m) { m.addOutput(m.findGroup(5), s("Bell")); });
    row("terminal 5 'Haldeon-NX', output 2 'Fan': removed", [](R&, M& m) { m.findGroup(5)->outputs.removeLast(); });
    row("terminal 5 'Haldeon-NX', output 2 'Fan': name 'Fan' -> 'Door'",
        [](R&, M& m) { m.findOutput(5, 1)->name = s("Door"); });
    row("head unit 'HUBN-NX-Q', output 8 'Internal relay': start state OFF -> ON",
        [](R&, M& m) { m.findOutput(0, 7)->startState = m.outputStates().value(1); });
    row("terminal 5 'Haldeon-NX', output 2 'Fan': return to the start state off -> on",
        [](R&, M& m) { m.findOutput(5, 1)->returnStartState = true; });
    row("terminal 5 'Haldeon-NX', output 1 'Horn': scripts 4, 1 -> 4, 1, 32",
        [](R&, M& m) { m.findOutput(5, 0)->activatedScripts.append(m.findScript(31)); });
    row("terminal 5 'Haldeon-NX', output 1 'Horn': scripts 4, 1 -> 1, 4",
        [](R&, M& m) { m.findOutput(5, 0)->activatedScripts.swapItemsAt(0, 1); });
    row("terminal 5 'Haldeon-NX', output 1 'Horn': scripts 4, 1 -> none",
        [](R&, M& m) { m.findOutput(5, 0)->activatedScripts.clear(); });
    row("script 4 'Horn': name 'Horn' -> 'Bell'", [](R&, M& m) { m.findScript(3)->name = s("Bell"); });
    row("script 4 'Horn': mode Deactivation -> Activation",
        [](R&, M& m) { m.findScript(3)->mode = m.modes().value(1); });
    row("script 4 'Horn': delay No delay -> 5 seconds", [](R&, M& m) { m.findScript(3)->delay = m.delays().value(1); });
    row("script 4 'Horn': duration 5 minutes -> 10 minutes",
        [](R&, M& m) { m.findScript(3)->duration = m.durations().value(24); });
    row("script 4 'Horn': state of a channel Not active -> Alarm (fire)",
        [](R&, M& m) { m.findScript(3)->stateChannel = m.stateChannels().value(2); });
    row("script 4 'Horn': state of a channel Not active -> State of PNB-NX: Button 1(Alarm), long press", [](R&, M& m) {
        m.findScript(3)->stateChannel = scriptRules::findStateOfClass(m.stateChannels(), InterfaceClass, 0x81);
    });
    row("script 4 'Horn': state of a channel Not active -> <Other> 0x11",
        [](R&, M& m) { m.findScript(3)->stateChannel = scriptRules::makeOtherState(0x11); });
    row("script 4 'Horn': channels 1 -> 1, 3-4", [](R&, M& m) {
        m.findScript(3)->numberChannels = {true, false, true, true};
    });
    row("script 4 'Horn': states of a terminal Not active -> Tamper",
        [](R&, M& m) { m.findScript(3)->stateTerminal = {m.terminalStates().value(0)}; });
    row("script 4 'Horn': filter by type off -> on",
        [](R&, M& m) { m.findScript(3)->activateFilter[ScriptInfo::ByType] = true; });
    row("script 4 'Horn': filter by addresses off -> on",
        [](R&, M& m) { m.findScript(3)->activateFilter[ScriptInfo::ByAddress] = true; });
    row("script 4 'Horn': filter by time off -> on",
        [](R&, M& m) { m.findScript(3)->activateFilter[ScriptInfo::ByTime] = true; });
    row("script 4 'Horn': filter by date off -> on",
        [](R&, M& m) { m.findScript(3)->activateFilter[ScriptInfo::ByDate] = true; });
    row("script 4 'Horn': type of terminal class 15, version 0, type 0x00, characteristic 0x00 -> PNB-NX",
        [](R&, M& m) {
            m.findScript(3)->terminalFilter = TerminalTypePtr::create();
            static_cast<TerminalIdentity&>(*m.findScript(3)->terminalFilter) = {InterfaceClass, 1, 0x30, 0x10};
        });
    row("script 4 'Horn': addresses none -> 1-3, 31, head unit", [](R&, M& m) {
        for (const int item : {0, 1, 2, 30, 31}) {
            m.findScript(3)->addressFilter[item] = true;
        }
    });
    row("script 4 'Horn': days none -> MON, SUN", [](R&, M& m) {
        m.findScript(3)->daysOfWeek[0] = true;
        m.findScript(3)->daysOfWeek[6] = true;
    });
    row("script 4 'Horn': time 00:00 to 00:00 -> 08:30 to 17:05", [](R&, M& m) {
        m.findScript(3)->timeFilter = {30, 8, 5, 17};
    });
    row("script 4 'Horn': dates 01.01 to 01.01 -> 24.12 to 31.12", [](R&, M& m) {
        m.findScript(3)->dateFilter = {24, 12, 31, 12};
    });
}

void tst_ConfigurationDifference::eachChangeIsToldInWords()
{
    QFETCH(Change, change);
    QFETCH(QString, line);
    RelayInfo before;
    RelayInfo after;
    fillPlain(before);
    fillPlain(after);
    RandomModel random(1);
    change(random, after);
    QCOMPARE(linesOf(before, after), QStringList(line));
    QCOMPARE(linesOf(after, before).size(), 1);
}

void tst_ConfigurationDifference::oneThingChangedIsOneDifference()
{
    RelayInfo before;
    RelayInfo after;
    fillPlain(before);
    fillPlain(after);
    after.findScript(3)->duration = after.durations().value(24);
    const auto differences = configurationDifferences(before, after, Names::Compared);
    QCOMPARE(differences.size(), 1);
    QCOMPARE(differences.at(0).where, s("script 4 'Horn'"));
    QCOMPARE(differences.at(0).what, s("duration"));
    QCOMPARE(differences.at(0).before, s("5 minutes"));
    QCOMPARE(differences.at(0).after, s("10 minutes"));
}

void tst_ConfigurationDifference::statesOfOneCodeAreTheSame()
{
    RelayInfo before;
    RelayInfo after;
    before.findScript(0)->stateChannel = before.stateChannels().value(2);
    after.findScript(0)->stateChannel = scriptRules::makeOtherState(1);
    QCOMPARE(linesOf(before, after), QStringList());
}

void tst_ConfigurationDifference::rowsThatShareANameAreToldApart()
{
    RelayInfo before;
    RelayInfo after;
    before.findScript(0)->stateChannel = scriptRules::findStateOfClass(before.stateChannels(), AnalogClass, 8);
    after.findScript(0)->stateChannel = scriptRules::findStateOfClass(after.stateChannels(), AnalogClass, 9);
    const QStringList lines = linesOf(before, after);
    QCOMPARE(lines.size(), 1);
    QVERIFY2(lines.first().contains(s(" (8) -> ")) && lines.first().endsWith(s(" (9)")), qUtf8Printable(lines.first()));
}

void tst_ConfigurationDifference::theOrderOfTerminalsMakesNoDifference()
{
    RelayInfo before;
    RelayInfo after;
    for (RelayInfo* const model : {&before, &after}) {
        model->addOutput(model->addGroup(s("A"), 1), s("a"));
        model->addOutput(model->addGroup(s("B"), 2), s("b"));
    }
    // As a file may have it.
    std::swap(*after.findGroup(1), *after.findGroup(2));
    QVERIFY(before.makeOutputRecords() != after.makeOutputRecords());
    QCOMPARE(linesOf(before, after), QStringList());
}

void tst_ConfigurationDifference::namesThatTheUnitDoesNotKeepAreIgnoredOnRequest()
{
    RelayInfo before;
    RelayInfo after;
    fillPlain(before);
    fillPlain(after);
    after.setComment(s("other"));
    after.findGroup(5)->name = s("other");
    after.findOutput(5, 1)->name = s("other");
    after.findScript(3)->name = s("other");
    QCOMPARE(linesOf(before, after).size(), 4);
    QCOMPARE(linesOf(before, after, Names::Ignored), QStringList());
}

void tst_ConfigurationDifference::withoutNamesATerminalWithoutOutputsIsNone()
{
    RelayInfo before;
    RelayInfo after;
    after.addGroup(s("Lamp"), 9);
    QCOMPARE(linesOf(before, after), QStringList(s("terminal 9 'Lamp': added")));
    QCOMPARE(linesOf(before, after, Names::Ignored), QStringList());
    after.addOutput(after.findGroup(9), s("Output"));
    QCOMPARE(linesOf(before, after, Names::Ignored), QStringList(s("terminal 9 'Lamp': added")));
}

void tst_ConfigurationDifference::withoutNamesTheSideThatHasANameGivesIt()
{
    RelayInfo file;
    RelayInfo unit;
    fillPlain(file);
    fillPlain(unit);
    unit.findScript(3)->name = texts::defaultScriptName();
    unit.findScript(3)->mode = unit.modes().value(1);
    unit.findScript(4)->mode = unit.modes().value(1);
    QCOMPARE(linesOf(file, unit, Names::Ignored), QStringList({s("script 4 'Horn': mode Deactivation -> Activation"),
                                                               s("script 5: mode Deactivation -> Activation")}));
    QCOMPARE(linesOf(unit, file, Names::Ignored).constFirst(), s("script 4 'Horn': mode Activation -> Deactivation"));
}

QTEST_GUILESS_MAIN(tst_ConfigurationDifference)
#include "tst_ConfigurationDifference.moc"
