#include "model/RelayInfo.h"
#include "model/ScriptRules.h"
#include "model/modelShorthand.h"
#include "model/tables.h"
#include "support/RandomModel.h"

#include <QTest>

#include <memory>

using scriptRules::findLinkedState;
using scriptRules::StateKind;
using scriptRules::TypeFilter;

/// The rules between trigger, channels and terminal filter of a script.
class tst_ScriptRules : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void statesHaveTheirKind_data();
    void statesHaveTheirKind();
    void linkedStatesAloneBelongToAFamily();
    void twoClassesReportAFamily();
    void statesOfACodeAreThoseOfTheClass();
    void aMissingStateIsNotActive();
    void statesAreFoundByName();
    void everyButtonStateIsFoundByKeyAndPress();
    void oneNameOfAnalogStatesStandsForThreeCodes();
    void familiesWithoutKeysKnowTheShortPressOnly();
    void unknownNamesFindNothing();
    void statesOfAFamilyAreThoseOfItsTable();
    void pressChangesTheRowOfTheSameKey();
    void pressOfAStateWithoutLinkChangesNothing();
    void onlyButtonsHaveALongPress();
    void otherStatesArePrivateRows();

    void oneTerminalStateIsATrigger();
    void aChannelStateIsATrigger();
    void code255IsNoTrigger();

    void notActiveEmptiesTheChannels();
    void aStateBringsBackChannelOne();
    void aStateKeepsTheChannelsThatAreSet();
    void aStateSwitchesOffAFilterThatCannotReportIt_data();
    void aStateSwitchesOffAFilterThatCannotReportIt();
    void notActiveLeavesTheFilterOn();
    void keepingLeavesTheFilterOn();
    void aFilterThatIsOffOrMissingIsNoHindrance();

    void adaptingActsOnlyWithAFilter_data();
    void adaptingActsOnlyWithAFilter();
    void adaptingGivesTheStateOfTheClass_data();
    void adaptingGivesTheStateOfTheClass();
    void adaptingNeverChangesTheCode();
    void adaptingTwiceIsAdaptingOnce();
    void adaptingAnUnknownStateKeepsItsRow();

    void theLastChannelStaysOn();
    void channelsOutsideTheListAreRefused();
    void emptyChannelsCannotBeSwitched();

    void terminalPassesTheTypeFilter_data();
    void terminalPassesTheTypeFilter();
    void withoutAFilterEveryTerminalPasses();
    void privateFilterKeepsTheNumbersAndLeavesTheCatalogue();
    void classesBetweenFourAndFifteenAreJumpedOver();

private:
    std::unique_ptr<RelayInfo> model;
    ScriptInfoPtr script;
};

void tst_ScriptRules::init()
{
    model = std::make_unique<RelayInfo>();
    script = model->findScript(0);
}

void tst_ScriptRules::statesHaveTheirKind_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("kind");
    for (int i = 0; i < 25; ++i) {
        const StateKind kind = i == 0   ? StateKind::NotActive
                               : i < 5  ? StateKind::Plain
                               : i < 17 ? StateKind::Analog
                                        : StateKind::Button;
        QTest::addRow("row %d", i) << i << int(kind);
    }
}

void tst_ScriptRules::statesHaveTheirKind()
{
    QFETCH(int, position);
    QTEST(int(scriptRules::kindOf(model->stateChannels().value(position))), "kind");
}

void tst_ScriptRules::linkedStatesAloneBelongToAFamily()
{
    const ParamItems rows = model->stateChannels();
    for (const ParamItemPtr& row : rows) {
        const scriptRules::StateFamily* family = scriptRules::familyOf(row);
        QCOMPARE(family != nullptr, !row->linked.isNull());
        QVERIFY(family == nullptr || family->kind == scriptRules::kindOf(row));
    }
    QVERIFY(scriptRules::familyOf({}) == nullptr);
    QVERIFY(scriptRules::familyOf(scriptRules::makeOtherState(4)) == nullptr);
}

void tst_ScriptRules::twoClassesReportAFamily()
{
    for (int terminalClass = 0; terminalClass < 16; ++terminalClass) {
        const scriptRules::StateFamily* family = scriptRules::familyOfClass(quint8(terminalClass));
        QCOMPARE(family != nullptr, terminalClass == 3 || terminalClass == 4);
    }
    QVERIFY(scriptRules::familyOfClass(3)->kind == StateKind::Button);
    QVERIFY(scriptRules::familyOfClass(4)->kind == StateKind::Analog);
}

void tst_ScriptRules::statesOfACodeAreThoseOfTheClass()
{
    const ParamItems rows = model->stateChannels();
    QCOMPARE(scriptRules::findStateOfCode(rows, 4), model->stateChannels().value(9));
    QCOMPARE(scriptRules::findStateOfClass(rows, 4, 4), model->stateChannels().value(9));
    QCOMPARE(scriptRules::findStateOfClass(rows, 3, 4), model->stateChannels().value(21));
    QVERIFY(!scriptRules::findStateOfClass(rows, 1, 4));
    QCOMPARE(scriptRules::findStateOfClass(rows, 1, 1), model->stateChannels().value(2));
    QCOMPARE(scriptRules::findStateOfClass(rows, 1, 255), model->stateChannels().value(0));
    QVERIFY(!scriptRules::findStateOfClass(rows, 3, 255));
}

void tst_ScriptRules::aMissingStateIsNotActive()
{
    QVERIFY(scriptRules::kindOf({}) == StateKind::NotActive);
    QCOMPARE(int(scriptRules::stateCode({})), 255);
}

void tst_ScriptRules::statesAreFoundByName()
{
    QCOMPARE(scriptRules::findState(model->stateChannels(), s("Alarm (fire)")), model->stateChannels().value(2));
    QCOMPARE(scriptRules::findState(model->stateChannels(), s("State of PNB-NX")), model->stateChannels().value(17));
}

void tst_ScriptRules::everyButtonStateIsFoundByKeyAndPress()
{
    for (int i = 17; i < 25; ++i) {
        const ParamItemPtr row = model->stateChannels().value(i);
        const bool isLong = row->linked->code > 15;
        QCOMPARE(findLinkedState(model->stateChannels(), StateKind::Button, row->linked->name, isLong), row);
    }
}

void tst_ScriptRules::oneNameOfAnalogStatesStandsForThreeCodes()
{
    const ParamItemPtr found = findLinkedState(model->stateChannels(), StateKind::Analog, s("Data corrupted"), false);
    QCOMPARE(found, model->stateChannels().value(13)); // the first, code 8
    QCOMPARE(int(found->effectiveCode()), 8);
}

void tst_ScriptRules::familiesWithoutKeysKnowTheShortPressOnly()
{
    const ParamItemPtr row = model->stateChannels().value(5); // the first analog one
    row->linked = ParamItemPtr::create(*row->linked);
    row->linked->code = 0x81; // a long press, were it a button's
    QCOMPARE(findLinkedState(model->stateChannels(), StateKind::Analog, row->linked->name, false), row);
    QVERIFY(!findLinkedState(model->stateChannels(), StateKind::Analog, row->linked->name, true));
}

void tst_ScriptRules::unknownNamesFindNothing()
{
    QVERIFY(!scriptRules::findState(model->stateChannels(), s("<Other>")));
    QVERIFY(!findLinkedState(model->stateChannels(), StateKind::Analog, s("Button 1(Alarm)"), false));
    QVERIFY(!findLinkedState(model->stateChannels(), StateKind::Button, s("Norm"), false));
}

void tst_ScriptRules::statesOfAFamilyAreThoseOfItsTable()
{
    QCOMPARE(scriptRules::linkedStates(model->stateChannels(), StateKind::Analog), model->analogStates());
    QCOMPARE(scriptRules::linkedStates(model->stateChannels(), StateKind::Button), model->buttonStates());
    QVERIFY(scriptRules::linkedStates(model->stateChannels(), StateKind::Plain).isEmpty());
}

void tst_ScriptRules::pressChangesTheRowOfTheSameKey()
{
    const ParamItemPtr shortPress = model->stateChannels().value(21); // button 3
    const ParamItemPtr longPress = scriptRules::withPress(model->stateChannels(), shortPress, true);
    QCOMPARE(longPress, model->stateChannels().value(22));
    QCOMPARE(scriptRules::withPress(model->stateChannels(), longPress, true), longPress);
    QCOMPARE(scriptRules::withPress(model->stateChannels(), longPress, false), shortPress);
}

void tst_ScriptRules::pressOfAStateWithoutLinkChangesNothing()
{
    QCOMPARE(scriptRules::withPress(model->stateChannels(), model->stateChannels().value(2), true),
             model->stateChannels().value(2));
    QVERIFY(!scriptRules::withPress(model->stateChannels(), {}, true));
    const ParamItemPtr analog = model->stateChannels().value(6);
    QCOMPARE(scriptRules::withPress(model->stateChannels(), analog, true), analog); // it has no long press
}

void tst_ScriptRules::onlyButtonsHaveALongPress()
{
    QVERIFY(scriptRules::isLongPress(model->stateChannels().value(18)));
    QVERIFY(!scriptRules::isLongPress(model->stateChannels().value(17)));
    QVERIFY(!scriptRules::isLongPress(model->stateChannels().value(0)));
    QVERIFY(!scriptRules::isLongPress(scriptRules::makeOtherState(0x81)));
    QVERIFY(!scriptRules::isLongPress({}));
}

void tst_ScriptRules::otherStatesArePrivateRows()
{
    const ParamItemPtr state = scriptRules::makeOtherState(0x55);
    QCOMPARE(state->name, s("<Other>"));
    QCOMPARE(int(state->code), 0x55);
    QCOMPARE(state->icon, s(":/icons/icons/Empty.png"));
    QCOMPARE(state->background, QColor(240, 240, 240));
    QCOMPARE(state->foreground, QColor(0, 0, 0));
    QVERIFY(!state->linked);
    QVERIFY(scriptRules::makeOtherState(0x55) != state);
}

void tst_ScriptRules::oneTerminalStateIsATrigger()
{
    scriptRules::setTerminalStates(*script, {model->terminalStates().value(3)});
    QVERIFY(!script->notActive);
    scriptRules::setTerminalStates(*script, {});
    QVERIFY(script->notActive);
}

void tst_ScriptRules::aChannelStateIsATrigger()
{
    for (int i = 1; i < 25; ++i) {
        scriptRules::setStateChannel(*script, model->stateChannels().value(i), TypeFilter::Keep);
        QVERIFY(!script->notActive);
    }
    scriptRules::setStateChannel(*script, model->stateChannels().value(0), TypeFilter::Keep);
    QVERIFY(script->notActive);
}

void tst_ScriptRules::code255IsNoTrigger()
{
    scriptRules::setStateChannel(*script, scriptRules::makeOtherState(255), TypeFilter::Keep);
    QVERIFY(script->notActive);
    script->stateChannel->code = 254;
    scriptRules::updateTrigger(*script);
    QVERIFY(!script->notActive);
    script->stateChannel.reset();
    QVERIFY(!scriptRules::hasTrigger(*script));
}

void tst_ScriptRules::notActiveEmptiesTheChannels()
{
    scriptRules::setStateChannel(*script, model->stateChannels().value(2), TypeFilter::Keep);
    scriptRules::setStateChannel(*script, model->stateChannels().value(0), TypeFilter::Keep);
    QVERIFY(script->numberChannels.isEmpty());
}

void tst_ScriptRules::aStateBringsBackChannelOne()
{
    for (const QList<bool>& none : {QList<bool>(), QList<bool>{false, false, false, false}}) {
        script->numberChannels = none;
        scriptRules::setStateChannel(*script, model->stateChannels().value(2), TypeFilter::Keep);
        QCOMPARE(script->numberChannels, (QList<bool>{true, false, false, false}));
    }
}

void tst_ScriptRules::aStateKeepsTheChannelsThatAreSet()
{
    script->numberChannels = {false, true, false, true};
    scriptRules::setStateChannel(*script, model->stateChannels().value(2), TypeFilter::Keep);
    QCOMPARE(script->numberChannels, (QList<bool>{false, true, false, true}));
}

void tst_ScriptRules::aStateSwitchesOffAFilterThatCannotReportIt_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("terminalClass");
    QTest::addColumn<bool>("filterOn");

    for (const int terminalClass : {0, 1, 2, 3, 4, 15}) {
        const bool any = terminalClass == 15;
        QTest::addRow("plain state, class %d", terminalClass)
            << 2 << terminalClass << (terminalClass != 3 && terminalClass != 4);
        QTest::addRow("analog state, class %d", terminalClass) << 6 << terminalClass << (terminalClass == 4 || any);
        QTest::addRow("button state, class %d", terminalClass) << 17 << terminalClass << (terminalClass == 3 || any);
        QTest::addRow("other state, class %d", terminalClass)
            << -1 << terminalClass << (terminalClass != 3 && terminalClass != 4);
    }
}

void tst_ScriptRules::aStateSwitchesOffAFilterThatCannotReportIt()
{
    QFETCH(int, position);
    QFETCH(int, terminalClass);
    script->activateFilter = {true, true, true, true};
    script->terminalFilter->terminalClass = quint8(terminalClass);
    const ParamItemPtr state = position < 0 ? scriptRules::makeOtherState(7) : model->stateChannels().value(position);
    scriptRules::setStateChannel(*script, state, TypeFilter::SwitchOffIfUnfit);
    QTEST(script->activateFilter.first(), "filterOn");
    QCOMPARE(script->activateFilter.mid(1), (QList<bool>{true, true, true}));
    QCOMPARE(script->stateChannel, state);
}

void tst_ScriptRules::notActiveLeavesTheFilterOn()
{
    script->activateFilter[0] = true;
    script->terminalFilter->terminalClass = 3;
    scriptRules::setStateChannel(*script, model->stateChannels().value(0), TypeFilter::SwitchOffIfUnfit);
    QVERIFY(script->activateFilter.first());
}

void tst_ScriptRules::keepingLeavesTheFilterOn()
{
    script->activateFilter[0] = true;
    script->terminalFilter->terminalClass = 1;
    scriptRules::setStateChannel(*script, model->stateChannels().value(6), TypeFilter::Keep);
    QVERIFY(script->activateFilter.first());
}

void tst_ScriptRules::aFilterThatIsOffOrMissingIsNoHindrance()
{
    script->terminalFilter.reset();
    script->activateFilter[0] = true;
    scriptRules::setStateChannel(*script, model->stateChannels().value(6), TypeFilter::SwitchOffIfUnfit);
    QVERIFY(script->activateFilter.first());
    QVERIFY(!scriptRules::adaptStateToFilter(*script, model->stateChannels()));
}

void tst_ScriptRules::adaptingActsOnlyWithAFilter_data()
{
    QTest::addColumn<bool>("filterOn");
    QTest::addColumn<int>("terminalClass");
    QTest::addColumn<int>("position");

    QTest::newRow("filter off") << false << 3 << 2;
    QTest::newRow("any class") << true << 15 << 6;
    QTest::newRow("not active") << true << 3 << 0;
    QTest::newRow("button under its class") << true << 3 << 17;
    QTest::newRow("long press under its class") << true << 3 << 18;
    QTest::newRow("analog under its class") << true << 4 << 14;
    QTest::newRow("plain under a plain class") << true << 1 << 2;
}

void tst_ScriptRules::adaptingActsOnlyWithAFilter()
{
    QFETCH(bool, filterOn);
    QFETCH(int, terminalClass);
    QFETCH(int, position);
    script->stateChannel = model->stateChannels().value(position);
    script->activateFilter[0] = filterOn;
    script->terminalFilter->terminalClass = quint8(terminalClass);
    QVERIFY(!scriptRules::adaptStateToFilter(*script, model->stateChannels()));
    QCOMPARE(script->stateChannel, model->stateChannels().value(position));
    QCOMPARE(script->numberChannels, (QList<bool>{true, false, false, false}));
}

void tst_ScriptRules::adaptingGivesTheStateOfTheClass_data()
{
    QTest::addColumn<int>("code"); // of an other state if negative positions are given
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("terminalClass");
    QTest::addColumn<int>("to"); // -1: "<Other>"

    QTest::newRow("alarm becomes button 1") << 1 << 2 << 3 << 17;
    QTest::newRow("alarm becomes high level") << 1 << 2 << 4 << 6;
    QTest::newRow("norm has no button") << 0 << 1 << 3 << -1;
    QTest::newRow("tamper of a loop is detector reset") << 3 << 4 << 4 << 8;
    QTest::newRow("analog tamper becomes button 3") << 4 << 9 << 3 << 21;
    QTest::newRow("button 3 becomes analog tamper") << 4 << 21 << 4 << 9;
    QTest::newRow("button 1 becomes alarm") << 1 << 17 << 1 << 2;
    QTest::newRow("high level becomes alarm") << 1 << 6 << 0 << 2;
    QTest::newRow("analog tamper has no plain state") << 4 << 9 << 2 << -1;
    QTest::newRow("long press has no plain state") << 0x81 << 18 << 1 << -1;
    QTest::newRow("long press has no analog state") << 0x81 << 18 << 4 << -1;
    QTest::newRow("data corrupted keeps its code") << 10 << 15 << 1 << -1;
    QTest::newRow("other 0x81 becomes the long press") << 0x81 << -1 << 3 << 18;
    QTest::newRow("other 1 becomes alarm") << 1 << -1 << 1 << 2;
    QTest::newRow("other 9 becomes the second data corrupted") << 9 << -1 << 4 << 14;
    QTest::newRow("other 255 becomes not active") << 255 << -1 << 2 << 0;
    QTest::newRow("class 7 is a plain class") << 1 << 6 << 7 << 2;
}

void tst_ScriptRules::adaptingGivesTheStateOfTheClass()
{
    QFETCH(int, code);
    QFETCH(int, from);
    QFETCH(int, terminalClass);
    QFETCH(int, to);
    script->stateChannel = from < 0 ? scriptRules::makeOtherState(quint8(code)) : model->stateChannels().value(from);
    script->activateFilter[0] = true;
    script->terminalFilter->terminalClass = quint8(terminalClass);
    QVERIFY(scriptRules::adaptStateToFilter(*script, model->stateChannels()));
    QCOMPARE(model->stateChannels().indexOf(script->stateChannel), to);
    QCOMPARE(int(scriptRules::stateCode(script->stateChannel)), code);
    QVERIFY(script->activateFilter.first());
}

void tst_ScriptRules::adaptingNeverChangesTheCode()
{
    RandomModel random(3);
    for (int i = 0; i < 10000; ++i) {
        random.fillScript(*model, *script);
        const quint8 code = scriptRules::stateCode(script->stateChannel);
        const QList<bool> filters = script->activateFilter;
        scriptRules::adaptStateToFilter(*script, model->stateChannels());
        QCOMPARE(scriptRules::stateCode(script->stateChannel), code);
        QCOMPARE(script->activateFilter, filters);
        QCOMPARE(script->notActive, !scriptRules::hasTrigger(*script));
    }
}

void tst_ScriptRules::adaptingTwiceIsAdaptingOnce()
{
    RandomModel random(4);
    for (int i = 0; i < 10000; ++i) {
        random.fillScript(*model, *script);
        scriptRules::adaptStateToFilter(*script, model->stateChannels());
        QVERIFY(!scriptRules::adaptStateToFilter(*script, model->stateChannels()));
    }
}

void tst_ScriptRules::adaptingAnUnknownStateKeepsItsRow()
{
    const ParamItemPtr state = scriptRules::makeOtherState(0x55);
    script->stateChannel = state;
    script->activateFilter[0] = true;
    for (const quint8 terminalClass : {quint8(1), quint8(3), quint8(4)}) {
        script->terminalFilter->terminalClass = terminalClass;
        QVERIFY(!scriptRules::adaptStateToFilter(*script, model->stateChannels()));
        QCOMPARE(script->stateChannel, state);
    }
}

void tst_ScriptRules::theLastChannelStaysOn()
{
    QList<bool> channels = {true, false, false, false};
    QVERIFY(!scriptRules::toggleChannel(channels, 0));
    QVERIFY(scriptRules::toggleChannel(channels, 3));
    QVERIFY(scriptRules::toggleChannel(channels, 0));
    QCOMPARE(channels, (QList<bool>{false, false, false, true}));
    QVERIFY(!scriptRules::toggleChannel(channels, 3));
    QCOMPARE(channels, (QList<bool>{false, false, false, true}));
}

void tst_ScriptRules::channelsOutsideTheListAreRefused()
{
    QList<bool> channels = {true, false, false, false};
    QVERIFY(!scriptRules::toggleChannel(channels, -1));
    QVERIFY(!scriptRules::toggleChannel(channels, 4));
    QCOMPARE(channels, (QList<bool>{true, false, false, false}));
}

void tst_ScriptRules::emptyChannelsCannotBeSwitched()
{
    QList<bool> channels;
    QVERIFY(!scriptRules::toggleChannel(channels, 0));
    QVERIFY(channels.isEmpty());
}

void tst_ScriptRules::terminalPassesTheTypeFilter_data()
{
    QTest::addColumn<QList<int>>("filter"); // class, version, type, characteristic
    QTest::addColumn<QList<int>>("terminal");
    QTest::addColumn<bool>("passes");

    const QList<int> terminal = {2, 1, 0x41, 0x20};
    QTest::newRow("equal") << terminal << terminal << true;
    QTest::newRow("other class") << QList<int>{1, 1, 0x41, 0x20} << terminal << false;
    QTest::newRow("any class") << QList<int>{15, 1, 0x41, 0x20} << terminal << true;
    QTest::newRow("class 0 is no wildcard") << QList<int>{0, 1, 0x41, 0x20} << terminal << false;
    QTest::newRow("other version") << QList<int>{2, 2, 0x41, 0x20} << terminal << false;
    QTest::newRow("any version") << QList<int>{2, 0, 0x41, 0x20} << terminal << true;
    QTest::newRow("other high half") << QList<int>{2, 1, 0x51, 0x20} << terminal << false;
    QTest::newRow("any high half") << QList<int>{2, 1, 0x01, 0x20} << terminal << true;
    QTest::newRow("other low half") << QList<int>{2, 1, 0x42, 0x20} << terminal << false;
    QTest::newRow("any low half") << QList<int>{2, 1, 0x40, 0x20} << terminal << true;
    QTest::newRow("any type") << QList<int>{2, 1, 0, 0x20} << terminal << true;
    QTest::newRow("other characteristic") << QList<int>{2, 1, 0x41, 0x10} << terminal << false;
    QTest::newRow("any characteristic") << QList<int>{2, 1, 0x41, 0} << terminal << true;
    QTest::newRow("any terminal") << QList<int>{15, 0, 0, 0} << terminal << true;
    QTest::newRow("wildcards of the terminal are none") << terminal << QList<int>{15, 0, 0, 0} << false;
}

void tst_ScriptRules::terminalPassesTheTypeFilter()
{
    QFETCH(QList<int>, filter);
    QFETCH(QList<int>, terminal);
    const auto assign = [](auto& record, const QList<int>& numbers) {
        record.terminalClass = quint8(numbers.at(0));
        record.version = quint8(numbers.at(1));
        record.type = quint8(numbers.at(2));
        record.characteristic = quint8(numbers.at(3));
    };
    ConnectedTerminal connected;
    assign(connected, terminal);
    assign(*script->terminalFilter, filter);
    script->activateFilter[0] = true;
    QTEST(scriptRules::passesTypeFilter(*script, connected), "passes");
}

void tst_ScriptRules::withoutAFilterEveryTerminalPasses()
{
    ConnectedTerminal terminal;
    terminal.terminalClass = 2;
    script->terminalFilter->terminalClass = 1;
    QVERIFY(scriptRules::passesTypeFilter(*script, terminal)); // the filter is off
    script->activateFilter[0] = true;
    QVERIFY(!scriptRules::passesTypeFilter(*script, terminal));
    script->terminalFilter.reset();
    QVERIFY(scriptRules::passesTypeFilter(*script, terminal));
}

void tst_ScriptRules::privateFilterKeepsTheNumbersAndLeavesTheCatalogue()
{
    RandomModel::addTerminalTypes(*model);
    const TerminalTypePtr row = model->terminalTypes().value(3);
    const TerminalType before = *row;
    script->terminalFilter = row;
    scriptRules::makeTypeFilterPrivate(*script);
    QVERIFY(script->terminalFilter != row);
    QVERIFY(sameModel(*script->terminalFilter, before));
    QCOMPARE(script->terminalFilter->label, s("<other type>"));
    script->terminalFilter->terminalClass = 4;
    QVERIFY(sameModel(*row, before));

    script->terminalFilter.reset();
    scriptRules::makeTypeFilterPrivate(*script);
    QCOMPARE(int(script->terminalFilter->terminalClass), 15);
}

void tst_ScriptRules::classesBetweenFourAndFifteenAreJumpedOver()
{
    const QList<int> expected = {0, 1, 2, 3, 4, 15, 15, 15, 15, 15, 4, 4, 4, 4, 4, 15};
    for (int value = 0; value < 16; ++value) {
        QCOMPARE(int(scriptRules::allowedClass(value)), expected.at(value));
    }
    QCOMPARE(int(scriptRules::allowedClass(-1)), 0);
    QCOMPARE(int(scriptRules::allowedClass(1000)), 15);
}

QTEST_GUILESS_MAIN(tst_ScriptRules)
#include "tst_ScriptRules.moc"
