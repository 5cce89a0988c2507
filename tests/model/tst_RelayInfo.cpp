#include "model/Device.h"
#include "model/RelayInfo.h"
#include "model/modelShorthand.h"

#include <QDir>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

namespace
{

/// A record of a connected terminal, 8 bytes long, so with two outputs.
QByteArray terminalRecord(int address, int terminalClass)
{
    QByteArray record(8, '\0');
    record[0] = char(address);
    record[1] = char(terminalClass << 4 | 1);
    record[2] = 0x41;
    record[3] = 0x20;
    return record;
}

} // namespace

/// The model in memory: what it holds at start and after a reset, how groups, outputs and types come and go.
class tst_RelayInfo : public QObject
{
    Q_OBJECT

private slots:
    void blankRecordsHaveTheirDefaults();
    void startsWithTheHeadUnitAlone();
    void startsWithThirtyTwoScriptsInTheirDefaults();
    void positionsOutsideTheTablesGiveNoRow();
    void resetOfTheHeadUnitAloneConnectsIt();
    void resetBringsBackTheConnectedExecutiveTerminals();
    void resetOfScriptsKeepsTheRecordsAndReplacesTheirFields();
    void resetOfScriptsLeavesTheMarkOfARow();
    void findsByNumberAndAddress();
    void findingAnOutputThatIsMissingCreatesNothing();
    void addedGroupIsOpenAndNotConnected();
    void groupsAreSortedBySignedAddressBehindTheHeadUnit();
    void groupsOfEqualAddressKeepTheirOrder();
    void outputsTakeTheLowestFreeNumber();
    void theNinthOutputIsNamelessAndWithoutNumber();
    void removingTheHeadUnitChangesNothing();
    void removingAStrangerChangesNothing();
    void removingAGroupYieldsTheAddressInFrontOfIt();
    void removingAGroupKeepsTheScripts();
    void removingDisconnectedGroupsKeepsTheHeadUnit();
    void removingIdleGroupsKeepsThoseWithAScript();
    void terminalTypesAreLabelledAndSorted();
    void theFirstTerminalTypeBeginsTheListAnew();
    void aCatalogueReplacesTheTypesOfTheOneBefore();
    void terminalTypesMayHaveEqualNumbers();
    void aNameThatLooksLikeAPlaceMarkerStaysAsItIs();
    void commentIsKept();
};

void tst_RelayInfo::blankRecordsHaveTheirDefaults()
{
    const ParamItem item;
    QCOMPARE(int(item.code), 255);
    QVERIFY(item.name.isEmpty() && item.icon.isEmpty() && !item.linked);
    QCOMPARE(item.background, QColor(240, 240, 240));
    QCOMPARE(item.foreground, QColor(0, 0, 0));

    const TerminalType type;
    QCOMPARE(type.label, s("<other type>"));
    QCOMPARE(int(type.terminalClass), 15);
    QCOMPARE(int(type.version) + type.type + type.characteristic, 0);
    QCOMPARE(type.name, s("F0 00 00"));
    QVERIFY(type.outputs.isEmpty());
    QCOMPARE(type.background, QColor(240, 240, 240));
    QCOMPARE(type.foreground, QColor(0, 0, 0));

    const ConnectedTerminal terminal;
    QCOMPARE(terminal.label, s("F0 00 00"));
    QCOMPARE(int(terminal.terminalClass), 15);
    QCOMPARE(int(terminal.version) + terminal.type + terminal.characteristic + terminal.address, 0);
    QVERIFY(terminal.outputs.isEmpty());

    const RelayInformation output;
    QCOMPARE(int(output.number), 255);
    QVERIFY(output.name.isEmpty() && !output.startState && !output.returnStartState);
    QVERIFY(output.activatedScripts.isEmpty());

    const GroupRelay group;
    QCOMPARE(int(group.address), 65535);
    QVERIFY(group.name.isEmpty() && group.outputs.isEmpty() && !group.expand && !group.connected);

    const ScriptInfo script;
    QCOMPARE(int(script.number), 255);
    QVERIFY(script.notActive && !script.marked);
}

void tst_RelayInfo::startsWithTheHeadUnitAlone()
{
    const RelayInfo model;
    QCOMPARE(model.groups().size(), 1);
    const GroupRelayPtr unit = model.groups().constFirst();
    QCOMPARE(int(unit->address), 0);
    QCOMPARE(unit->name, s("HUBN-NX-Q"));
    QVERIFY(unit->expand);
    QVERIFY(!unit->connected);
    QCOMPARE(unit->outputs.size(), 8);
    for (int i = 0; i < 8; ++i) {
        QCOMPARE(int(unit->outputs.at(i)->number), i);
        QCOMPARE(unit->outputs.at(i)->name, s("Internal relay"));
        QCOMPARE(unit->outputs.at(i)->startState, model.outputStates().value(0));
        QVERIFY(!unit->outputs.at(i)->returnStartState);
        QVERIFY(unit->outputs.at(i)->activatedScripts.isEmpty());
    }
    QVERIFY(model.connectedTerminals().isEmpty());
    QVERIFY(model.comment().isEmpty());
    QCOMPARE(model.errorCount(), 0);
}

void tst_RelayInfo::startsWithThirtyTwoScriptsInTheirDefaults()
{
    const RelayInfo model;
    QCOMPARE(model.scripts().size(), 32);
    QSet<const TerminalType*> filters;
    for (int i = 0; i < 32; ++i) {
        const ScriptInfoPtr script = model.scripts().at(i);
        QCOMPARE(int(script->number), i);
        QCOMPARE(script->name, s("Script"));
        QCOMPARE(script->mode, model.modes().value(0));
        QCOMPARE(script->delay, model.delays().value(0));
        QCOMPARE(script->duration, model.durations().value(0));
        QCOMPARE(script->stateChannel, model.stateChannels().value(0));
        QVERIFY(script->stateTerminal.isEmpty());
        QCOMPARE(script->activateFilter, (QList<bool>{false, false, false, false}));
        QCOMPARE(script->daysOfWeek, (QList<bool>{false, false, false, false, false, false, false}));
        QCOMPARE(script->timeFilter, (QList<int>{0, 0, 0, 0}));
        QCOMPARE(script->dateFilter, (QList<int>{1, 1, 1, 1}));
        QCOMPARE(script->addressFilter.size(), 32);
        QCOMPARE(script->addressFilter.count(true), 0);
        QCOMPARE(script->numberChannels, (QList<bool>{true, false, false, false}));
        QVERIFY(script->notActive);
        QVERIFY(!script->marked);
        QCOMPARE(script->terminalFilter->label, s("<other type>"));
        QCOMPARE(int(script->terminalFilter->terminalClass), 15);
        filters.insert(script->terminalFilter.data());
    }
    QCOMPARE(filters.size(), 32); // each script has a filter of its own
}

void tst_RelayInfo::positionsOutsideTheTablesGiveNoRow()
{
    const RelayInfo model;
    for (const int index : {-1, -1000, 1000}) {
        QVERIFY(!model.stateChannels().value(index));
        QVERIFY(!model.terminalStates().value(index));
        QVERIFY(!model.outputStates().value(index));
        QVERIFY(!model.durations().value(index));
        QVERIFY(!model.delays().value(index));
        QVERIFY(!model.modes().value(index));
        QVERIFY(!model.terminalTypes().value(index));
    }
    QVERIFY(!model.outputStates().value(model.outputStates().size()));
    QCOMPARE(model.stateChannels().value(24), model.stateChannels().constLast());
    QCOMPARE(model.terminalStates().value(0), model.terminalStates().constFirst());
    QCOMPARE(model.durations().value(31), model.durations().constLast());
    QCOMPARE(model.delays().value(7), model.delays().constLast());
    QCOMPARE(model.modes().value(4), model.modes().constLast());
}

void tst_RelayInfo::resetOfTheHeadUnitAloneConnectsIt()
{
    RelayInfo model;
    model.addGroup(s("Siren"), 5);
    model.resetGroups(true);
    QCOMPARE(addresses(model), QList<int>{0});
    QVERIFY(model.groups().constFirst()->connected);
    QVERIFY(model.groups().constFirst()->expand);
    QCOMPARE(model.groups().constFirst()->outputs.size(), 8);
}

void tst_RelayInfo::resetBringsBackTheConnectedExecutiveTerminals()
{
    RelayInfo model;
    model.readTerminalRecords({terminalRecord(9, 2), terminalRecord(4, 1), terminalRecord(3, 2)});
    model.addGroup(s("By hand"), 20);
    model.findOutput(9, 0)->name = s("Renamed");
    model.resetGroups(false);
    QCOMPARE(addresses(model), (QList<int>{0, 9, 3})); // in the order of the list
    const GroupRelayPtr group = model.findGroup(9);
    QCOMPARE(group->name, s("21 41 20"));
    QVERIFY(group->connected);
    QVERIFY(!group->expand);
    QCOMPARE(group->outputs.size(), 2);
    QCOMPARE(int(group->outputs.at(1)->number), 1);
    QCOMPARE(group->outputs.at(0)->name, s("Output"));
    QCOMPARE(group->outputs.at(0)->startState, model.outputStates().value(0));
}

void tst_RelayInfo::resetOfScriptsKeepsTheRecordsAndReplacesTheirFields()
{
    RelayInfo model;
    const ScriptInfoPtr script = model.findScript(7);
    const TerminalTypePtr formerFilter = script->terminalFilter;
    script->number = 99;
    script->name = s("Fire");
    script->mode = model.modes().value(1);
    script->delay = model.delays().value(1);
    script->duration = model.durations().value(1);
    script->stateChannel = model.stateChannels().value(2);
    script->stateTerminal = model.terminalStates();
    script->activateFilter = {true, true, true, true};
    script->daysOfWeek[3] = true;
    script->timeFilter = {1, 2, 3, 4};
    script->dateFilter = {5, 6, 7, 8};
    script->addressFilter[31] = true;
    script->numberChannels.clear();
    script->notActive = false;
    formerFilter->terminalClass = 2;

    model.resetScripts();

    const RelayInfo fresh;
    QCOMPARE(model.scripts().at(7), script);
    QCOMPARE(int(script->number), 7);
    QCOMPARE(script->name, s("Script"));
    QCOMPARE(script->mode, model.modes().value(0));
    QCOMPARE(script->delay, model.delays().value(0));
    QCOMPARE(script->duration, model.durations().value(0));
    QCOMPARE(script->stateChannel, model.stateChannels().value(0));
    QVERIFY(script->stateTerminal.isEmpty());
    QCOMPARE(script->activateFilter, fresh.findScript(7)->activateFilter);
    QCOMPARE(script->daysOfWeek, fresh.findScript(7)->daysOfWeek);
    QCOMPARE(script->timeFilter, fresh.findScript(7)->timeFilter);
    QCOMPARE(script->dateFilter, fresh.findScript(7)->dateFilter);
    QCOMPARE(script->addressFilter, fresh.findScript(7)->addressFilter);
    QCOMPARE(script->numberChannels, fresh.findScript(7)->numberChannels);
    QVERIFY(script->notActive);
    QVERIFY(script->terminalFilter != formerFilter);
    QCOMPARE(int(script->terminalFilter->terminalClass), 15);
}

void tst_RelayInfo::resetOfScriptsLeavesTheMarkOfARow()
{
    RelayInfo model;
    model.findScript(7)->marked = true;
    model.resetScripts();
    QVERIFY(model.findScript(7)->marked);
}

void tst_RelayInfo::findsByNumberAndAddress()
{
    RelayInfo model;
    model.readTerminalRecords({terminalRecord(9, 1)});
    QCOMPARE(model.findScript(31), model.scripts().at(31));
    QVERIFY(!model.findScript(32));
    model.scripts().at(5)->number = 31;
    QCOMPARE(model.findScript(31), model.scripts().at(5)); // the first with the number
    QCOMPARE(model.findGroup(0), model.groups().constFirst());
    QVERIFY(!model.findGroup(5));
    QCOMPARE(model.findConnectedTerminal(9), model.connectedTerminals().constFirst());
    QVERIFY(!model.findConnectedTerminal(8));
    QCOMPARE(model.findOutput(0, 7), model.groups().constFirst()->outputs.at(7));
}

void tst_RelayInfo::findingAnOutputThatIsMissingCreatesNothing()
{
    const RelayInfo model;
    QVERIFY(!model.findOutput(5, 0));
    QVERIFY(!model.findOutput(0, 8));
    QCOMPARE(model.groups().size(), 1);
    QCOMPARE(model.groups().constFirst()->outputs.size(), 8);
}

void tst_RelayInfo::addedGroupIsOpenAndNotConnected()
{
    RelayInfo model;
    const GroupRelayPtr group = model.addGroup(s("Siren"), 5);
    QCOMPARE(model.groups().at(1), group);
    QCOMPARE(group->name, s("Siren"));
    QCOMPARE(int(group->address), 5);
    QVERIFY(group->expand);
    QVERIFY(!group->connected);
    QVERIFY(group->outputs.isEmpty());
}

void tst_RelayInfo::groupsAreSortedBySignedAddressBehindTheHeadUnit()
{
    RelayInfo model;
    for (const int address : {7, 65408, 3, 65535, 31}) {
        model.addGroup(QString(), quint16(address));
    }
    QCOMPARE(addresses(model), (QList<int>{0, -128, -1, 3, 7, 31}));
    QCOMPARE(model.removeGroup(model.groups().constFirst()), quint16(0));
    QCOMPARE(model.groups().size(), 6);
}

void tst_RelayInfo::groupsOfEqualAddressKeepTheirOrder()
{
    RelayInfo model;
    const GroupRelayPtr first = model.addGroup(s("First"), 5);
    model.addGroup(s("Second"), 5);
    model.addGroup(s("Third"), 4);
    QCOMPARE(model.findGroup(5), first);
}

void tst_RelayInfo::outputsTakeTheLowestFreeNumber()
{
    RelayInfo model;
    const GroupRelayPtr group = model.addGroup(s("Siren"), 5);
    model.addOutput(group, s("A"));
    model.addOutput(group, s("B"));
    model.addOutput(group, s("C"));
    group->outputs.removeAt(1);
    model.addOutput(group, s("D"));
    QCOMPARE(int(group->outputs.at(2)->number), 1);
    QCOMPARE(group->outputs.at(2)->name, s("D"));
    QCOMPARE(group->outputs.at(2)->startState, model.outputStates().value(0));
}

void tst_RelayInfo::theNinthOutputIsNamelessAndWithoutNumber()
{
    RelayInfo model;
    const GroupRelayPtr unit = model.groups().constFirst();
    model.addOutput(unit, s("Ninth"));
    QCOMPARE(unit->outputs.size(), 9);
    QCOMPARE(int(unit->outputs.last()->number), 255);
    QVERIFY(unit->outputs.last()->name.isEmpty());
    QVERIFY(!unit->outputs.last()->startState);
}

void tst_RelayInfo::removingTheHeadUnitChangesNothing()
{
    RelayInfo model;
    model.addGroup(s("Siren"), 5);
    QCOMPARE(int(model.removeGroup(model.groups().constFirst())), 0);
    QCOMPARE(addresses(model), (QList<int>{0, 5}));
}

void tst_RelayInfo::removingAStrangerChangesNothing()
{
    RelayInfo model;
    model.addGroup(s("Siren"), 5);
    QCOMPARE(int(model.removeGroup({})), 0);
    QCOMPARE(int(model.removeGroup(GroupRelayPtr::create(*model.findGroup(5)))), 0); // equal, but another record
    QCOMPARE(addresses(model), (QList<int>{0, 5}));
}

void tst_RelayInfo::removingAGroupYieldsTheAddressInFrontOfIt()
{
    RelayInfo model;
    model.addGroup(s("A"), 5);
    model.addGroup(s("B"), 9);
    QCOMPARE(int(model.removeGroup(model.findGroup(9))), 5);
    QCOMPARE(int(model.removeGroup(model.findGroup(5))), 0);
    QCOMPARE(addresses(model), QList<int>{0});
}

void tst_RelayInfo::removingAGroupKeepsTheScripts()
{
    RelayInfo model;
    const GroupRelayPtr group = model.addGroup(s("A"), 5);
    model.addOutput(group, s("Output"));
    group->outputs.first()->activatedScripts = model.scripts();
    model.removeGroup(group);
    QCOMPARE(model.scripts().size(), 32);
}

void tst_RelayInfo::removingDisconnectedGroupsKeepsTheHeadUnit()
{
    RelayInfo model; // its head unit is not connected yet
    const GroupRelayPtr connected = model.addGroup(s("A"), 5);
    connected->connected = true;
    const GroupRelayPtr used = model.addGroup(s("B"), 6);
    model.addOutput(used, s("Output"));
    used->outputs.first()->activatedScripts = {model.findScript(0)};
    model.removeDisconnectedGroups();
    QCOMPARE(addresses(model), (QList<int>{0, 5}));
}

void tst_RelayInfo::removingIdleGroupsKeepsThoseWithAScript()
{
    RelayInfo model;
    model.addGroup(s("Connected"), 5)->connected = true;
    model.addGroup(s("Without outputs"), 6);
    const GroupRelayPtr used = model.addGroup(s("Used"), 7);
    model.addOutput(used, s("Output"));
    model.addOutput(used, s("Output"));
    used->outputs.last()->activatedScripts = {model.findScript(0)};
    model.addOutput(model.addGroup(s("Idle"), 8), s("Output"));
    model.removeIdleGroups();
    QCOMPARE(addresses(model), (QList<int>{0, 5, 7}));
}

void tst_RelayInfo::terminalTypesAreLabelledAndSorted()
{
    RelayInfo model;
    model.addTerminalType(true, s("Siren"), 2, 10, 0x0B, 0xC, {s("Left"), s("Right")});
    model.addTerminalType(false, s("Button"), 3, 1, 0x30, 0x10, {});
    QStringList labels;
    const TerminalTypes types = model.terminalTypes();
    for (const TerminalTypePtr& type : types) {
        labels.append(type->label);
    }
    QCOMPARE(labels, (QStringList{s("<other type>"), s("Button (31 30 10)"), s("Siren (2a 0b 0c)")}));
    const TerminalTypePtr siren = model.terminalTypes().value(2);
    QCOMPARE(siren->name, s("Siren"));
    QCOMPARE(int(siren->terminalClass), 2);
    QCOMPARE(int(siren->version), 10);
    QCOMPARE(int(siren->type), 0x0B);
    QCOMPARE(int(siren->characteristic), 0x0C);
    QCOMPARE(siren->outputs, (QStringList{s("Left"), s("Right")}));
    QCOMPARE(siren->background, QColor(240, 240, 240));
}

void tst_RelayInfo::theFirstTerminalTypeBeginsTheListAnew()
{
    RelayInfo model;
    model.addTerminalType(true, s("A"), 1, 1, 1, 1, {});
    model.addTerminalType(true, s("B"), 1, 1, 1, 2, {});
    QCOMPARE(model.terminalTypes().size(), 2);
    QCOMPARE(model.terminalTypes().value(0)->background, QColor(187, 187, 187, 150));
    QCOMPARE(model.terminalTypes().value(1)->name, s("B"));
}

void tst_RelayInfo::aCatalogueReplacesTheTypesOfTheOneBefore()
{
    const QTemporaryDir directory;
    const QString former = QDir::currentPath();
    QVERIFY(QDir::setCurrent(directory.path())); // the catalogue writes its files there
    const Device catalogue;
    QVERIFY(QDir::setCurrent(former));
    RelayInfo model;
    model.setCatalogue(catalogue);
    QCOMPARE(model.terminalTypes().size(), 1 + catalogue.deviceCount());
    model.setCatalogue(catalogue);
    QCOMPARE(model.terminalTypes().size(), 1 + catalogue.deviceCount());
}

void tst_RelayInfo::terminalTypesMayHaveEqualNumbers()
{
    RelayInfo model;
    model.addTerminalType(true, s("B"), 1, 1, 1, 1, {});
    model.addTerminalType(false, s("A"), 1, 1, 1, 1, {});
    QCOMPARE(model.terminalTypes().size(), 3);
    QVERIFY(sameModel(*model.terminalTypes().value(1), *model.terminalTypes().value(2)));
}

void tst_RelayInfo::aNameThatLooksLikeAPlaceMarkerStaysAsItIs()
{
    RelayInfo model;
    model.addTerminalType(true, s("%1 %5"), 1, 1, 1, 1, {});
    QCOMPARE(model.terminalTypes().value(0)->label, s("%1 %5 (11 01 01)")); // "%" sorts before "<"
}

void tst_RelayInfo::commentIsKept()
{
    RelayInfo model;
    model.setComment(s("Hall,\nfloor 2"));
    QCOMPARE(model.comment(), s("Hall,\nfloor 2"));
}

QTEST_GUILESS_MAIN(tst_RelayInfo)
#include "tst_RelayInfo.moc"
