#include "model/RecordsTest.h"
#include "model/ScriptRules.h"

/// Records of the scripts up to their states: what starts a script, what it does, and how its record is taken.
class tst_recordsScripts : public RecordsTest
{
    Q_OBJECT

private slots:
    void init()
    {
        begin();
    }

    void scriptIsWrittenAsItsWorkedExample();
    void scriptIsReadAsItsWorkedExample();
    void scriptOfZeros();
    void shortScriptRecordLeavesTheResetScript();
    void bytesBehindTheRecordAreIgnored();
    void readingScriptsResetsTheOthers();
    void scriptNumberIsWrittenWithSixBitsAndReadWithFive();
    void modeDelayAndDurationAreRowsOfTheirCodes();
    void unknownModeKeepsTheDefault();

    void stateCodes_data();
    void stateCodes();
    void unknownStateCodeIsWrittenBackUnchanged();
    void triggerFlagFollowsStateAndTerminalStates_data();
    void triggerFlagFollowsStateAndTerminalStates();
    void terminalStatesAreRowsOfTheirBits();

    void missingRowsAreWrittenAsZero();
};

void tst_recordsScripts::scriptIsWrittenAsItsWorkedExample()
{
    ScriptInfo& script = *model->findScript(3);
    script.mode = model->modes().value(1);
    script.duration = model->durations().value(5);
    script.delay = model->delays().value(2);
    script.stateChannel = model->stateChannels().value(2);
    script.activateFilter = {false, true, true, false};
    script.daysOfWeek = {true, true, true, true, true, false, false};
    script.timeFilter = {30, 8, 45, 17};
    script.addressFilter[0] = true;
    script.addressFilter[4] = true;
    QCOMPARE(writeScript(*model, 3).toHex(' '),
             QByteArray("03 01 2a 01 00 15 3e 30 08 01 01 45 17 01 01 f0 00 00 11 00 00 00"));
}

void tst_recordsScripts::scriptIsReadAsItsWorkedExample()
{
    const ScriptInfoPtr script =
        readScript(*model, hex("03 01 2a 01 00 15 3e 30 08 01 01 45 17 01 01 f0 00 00 11 00 00 00"));
    QCOMPARE(script->mode->name, s("Activation"));
    QCOMPARE(script->duration->name, s("5 seconds"));
    QCOMPARE(script->delay->name, s("10 seconds"));
    QCOMPARE(script->stateChannel->name, s("Alarm (fire)"));
    QVERIFY(script->stateTerminal.isEmpty());
    QCOMPARE(script->numberChannels, (QList<bool>{true, false, false, false}));
    QCOMPARE(script->activateFilter, (QList<bool>{false, true, true, false}));
    QCOMPARE(script->daysOfWeek, (QList<bool>{true, true, true, true, true, false, false}));
    QCOMPARE(script->timeFilter, (QList<int>{30, 8, 45, 17}));
    QCOMPARE(script->dateFilter, (QList<int>{1, 1, 1, 1}));
    QCOMPARE(int(script->terminalFilter->terminalClass), 15);
    QCOMPARE(script->terminalFilter->label, s("<other type>"));
    QVERIFY(script->addressFilter.at(0) && script->addressFilter.at(4));
    QCOMPARE(script->addressFilter.count(true), 2);
    QVERIFY(!script->notActive);
    QCOMPARE(script->name, s("Script"));
    QCOMPARE(int(script->number), 3);
}

void tst_recordsScripts::scriptOfZeros()
{
    const ScriptInfoPtr script = readScript(*model, QByteArray(22, '\0'));
    QCOMPARE(script->mode->name, s("Deactivation"));
    QCOMPARE(script->stateChannel, model->stateChannels().value(1)); // code 0, "Norm"
    QCOMPARE(script->numberChannels, (QList<bool>{true, false, false, false}));
    QCOMPARE(script->dateFilter, (QList<int>{1, 1, 1, 1}));
    QCOMPARE(int(script->terminalFilter->terminalClass), 0);
    QVERIFY(!script->notActive);
}

void tst_recordsScripts::shortScriptRecordLeavesTheResetScript()
{
    model->findScript(3)->name = s("Fire");
    model->readScriptRecords({hex("03 01 2a 01 00 15 3e 30 08 01 01 45 17 01 01 f0 00 00 11 00 00")});
    QCOMPARE(writeScript(*model, 3), writeScript(RelayInfo(), 3));
    QCOMPARE(model->findScript(3)->name, s("Script"));
}

void tst_recordsScripts::bytesBehindTheRecordAreIgnored()
{
    const QByteArray record = hex("03 01 2a 01 00 15 3e 30 08 01 01 45 17 01 01 f0 00 00 11 00 00 00");
    readScript(*model, record + "more");
    QCOMPARE(writeScript(*model, 3), record);
}

void tst_recordsScripts::readingScriptsResetsTheOthers()
{
    const ScriptInfoPtr other = model->findScript(9);
    other->name = s("Fire");
    other->stateChannel = model->stateChannels().value(2);
    model->readScriptRecords({});
    QCOMPARE(other->name, s("Script"));
    QVERIFY(other->notActive);
    QCOMPARE(other->stateChannel, model->stateChannels().value(0));
}

void tst_recordsScripts::scriptNumberIsWrittenWithSixBitsAndReadWithFive()
{
    model->scripts().at(0)->number = 0xFF;
    QCOMPARE(writeScript(*model, 0).at(0), char(63));
    model->readScriptRecords({scriptRecord({{0, 0x20 | 7}, {3, 1}})});
    QCOMPARE(model->findScript(7)->stateChannel, model->stateChannels().value(2));
}

void tst_recordsScripts::modeDelayAndDurationAreRowsOfTheirCodes()
{
    for (int code = 0; code < 256; ++code) {
        const ScriptInfoPtr script = readScript(*model, scriptRecord({{2, code}}));
        QCOMPARE(script->duration, model->durations().value(code >> 3));
        QCOMPARE(script->delay, model->delays().value(code & 7));
        QCOMPARE(quint8(writeScript(*model, 0).at(2)), quint8(code));
    }
    const ParamItems modes = model->modes();
    for (const ParamItemPtr& mode : modes) {
        QCOMPARE(readScript(*model, scriptRecord({{1, mode->code | 0xF8}}))->mode, mode);
        QCOMPARE(quint8(writeScript(*model, 0).at(1)), mode->code);
    }
}

void tst_recordsScripts::unknownModeKeepsTheDefault()
{
    for (const int code : {4, 5, 6}) {
        QCOMPARE(readScript(*model, scriptRecord({{1, code}}))->mode, model->modes().value(0));
    }
}

void tst_recordsScripts::stateCodes_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("filterClass"); // -1: the filter by type is off
    QTest::addColumn<int>("position");    // in the table of channel states; -1: a row of the script's own

    QTest::newRow("not active") << 255 << -1 << 0;
    QTest::newRow("not active, class 1") << 255 << 1 << 0;
    QTest::newRow("not active, class 15") << 255 << 15 << 0;
    QTest::newRow("not active, class 3") << 255 << 3 << -1;
    QTest::newRow("not active, class 4") << 255 << 4 << -1;
    QTest::newRow("norm") << 0 << -1 << 1;
    QTest::newRow("norm, class 0") << 0 << 0 << 1;
    QTest::newRow("norm, class 4") << 0 << 4 << 5;
    QTest::newRow("norm, class 3") << 0 << 3 << -1;
    QTest::newRow("alarm") << 1 << -1 << 2;
    QTest::newRow("alarm, class 3 is button 1") << 1 << 3 << 17;
    QTest::newRow("alarm, class 4 is high level") << 1 << 4 << 6;
    QTest::newRow("alarm, class 15") << 1 << 15 << 2;
    QTest::newRow("code 4 is the first linked row") << 4 << -1 << 9;
    QTest::newRow("code 4, class 3 is button 3") << 4 << 3 << 21;
    QTest::newRow("code 4, class 4 is tamper") << 4 << 4 << 9;
    QTest::newRow("code 4, class 1 has no row") << 4 << 1 << -1;
    QTest::newRow("code 4, class 2 has no row") << 4 << 2 << -1;
    QTest::newRow("code 4, class 15 is the first linked row") << 4 << 15 << 9;
    QTest::newRow("code 4, class 7 is the first linked row") << 4 << 7 << 9;
    QTest::newRow("code 8 is data corrupted") << 8 << -1 << 13;
    QTest::newRow("code 8, class 3 is button 4") << 8 << 3 << 23;
    QTest::newRow("code 9 keeps its own row") << 9 << -1 << 14;
    QTest::newRow("code 10 keeps its own row") << 10 << 4 << 15;
    QTest::newRow("long press of button 1") << 0x81 << -1 << 18;
    QTest::newRow("long press of button 1, class 3") << 0x81 << 3 << 18;
    QTest::newRow("long press of button 1, class 4") << 0x81 << 4 << -1;
    QTest::newRow("long press of button 4") << 0x88 << -1 << 24;
    QTest::newRow("unknown") << 0x55 << -1 << -1;
}

void tst_recordsScripts::stateCodes()
{
    QFETCH(int, code);
    QFETCH(int, filterClass);
    QFETCH(int, position);
    const ScriptInfoPtr script = readScript(
        *model, scriptRecord({{3, code}, {5, filterClass < 0 ? 0 : 8}, {15, filterClass < 0 ? 0 : filterClass << 4}}));
    if (position >= 0) {
        QCOMPARE(model->stateChannels().indexOf(script->stateChannel), position);
    } else {
        QCOMPARE(script->stateChannel->name, s("<Other>"));
        QVERIFY(!script->stateChannel->linked);
        QVERIFY(!model->stateChannels().contains(script->stateChannel));
    }
    QCOMPARE(int(script->stateChannel->effectiveCode()), code);
    QCOMPARE(int(quint8(writeScript(*model, 0).at(3))), code);
}

void tst_recordsScripts::unknownStateCodeIsWrittenBackUnchanged()
{
    for (int code = 0; code < 256; ++code) {
        for (int filterClass = -1; filterClass < 16; ++filterClass) {
            readScript(*model,
                       scriptRecord({{3, code}, {5, filterClass < 0 ? 0 : 8}, {15, qMax(0, filterClass) << 4}}));
            QCOMPARE(int(quint8(writeScript(*model, 0).at(3))), code);
        }
    }
}

void tst_recordsScripts::triggerFlagFollowsStateAndTerminalStates_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<int>("terminalStates");
    QTest::addColumn<bool>("notActive");

    QTest::newRow("nothing") << 255 << 0 << true;
    QTest::newRow("a terminal state") << 255 << 0x40 << false;
    QTest::newRow("a channel state") << 0 << 0 << false;
    QTest::newRow("both") << 1 << 0x7E << false;
    QTest::newRow("bits that no row has") << 255 << 0x81 << true;
    QTest::newRow("an unknown channel state") << 0x55 << 0 << false;
}

void tst_recordsScripts::triggerFlagFollowsStateAndTerminalStates()
{
    QFETCH(int, state);
    QFETCH(int, terminalStates);
    const ScriptInfoPtr script = readScript(*model, scriptRecord({{3, state}, {4, terminalStates}}));
    QTEST(script->notActive, "notActive");
    QCOMPARE(script->notActive, !scriptRules::hasTrigger(*script));
}

void tst_recordsScripts::terminalStatesAreRowsOfTheirBits()
{
    const ScriptInfoPtr script = readScript(*model, scriptRecord({{4, 0xC3}}));
    QCOMPARE(script->stateTerminal, (ParamItems{model->terminalStates().value(0), model->terminalStates().value(5)}));
    QCOMPARE(writeScript(*model, 0).at(4), char(0x42));
}

void tst_recordsScripts::missingRowsAreWrittenAsZero()
{
    ScriptInfo& script = *model->findScript(0);
    script.mode.reset();
    script.delay.reset();
    script.duration.reset();
    script.stateChannel.reset();
    script.addressFilter.clear();
    script.timeFilter.clear();
    QCOMPARE(writeScript(*model, 0).left(4), hex("00 00 00 ff"));
}

QTEST_GUILESS_MAIN(tst_recordsScripts)
#include "tst_recordsScripts.moc"
