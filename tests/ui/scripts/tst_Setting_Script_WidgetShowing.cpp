#include "model/ScriptRules.h"
#include "ui/pickers/SpecialDateFrame.h"
#include "ui/pickers/SpecialTimeFrame.h"
#include "ui/scripts/ShownEditor.h"

/// Looking never edits: scripts as a unit could send them, shown and left again, keep the bytes of their record, but
/// for the exceptions that have a function here. Under a filter by type the state takes the name that the filter's
/// class has for its code, which is the same byte.
class tst_Setting_Script_WidgetShowing : public QObject
{
    Q_OBJECT

private slots:
    void showingKeepsTheBytesOfFourThousandScripts();
    void notActiveLosesItsChannels();
    void classFiveToNineOfAnOwnFilterBecomesFifteen_data();
    void classFiveToNineOfAnOwnFilterBecomesFifteen();
    void classTenToFourteenOfAnOwnFilterBecomesFour_data();
    void classTenToFourteenOfAnOwnFilterBecomesFour();
    void classOfACatalogueRowStays();
    void numbersBelowZeroAreShownAtTheirNearestAndStay();
    void stateIsNamedByTheClassOfTheFilter_data();
    void stateIsNamedByTheClassOfTheFilter();
    void otherCodeOfNoStateBecomesNotActive();

private:
    static void showAllScripts(ShownEditor& shown, RandomModel& random, int& exceptions);
    static QByteArray randomRecord(RandomModel& random, int number);
    static QByteArray withExceptions(const ScriptInfo& script, QByteArray record);
    static QByteArray afterShowing(const QByteArray& hex);
};

/// One half pure noise, one half with the values that units are full of, so that every rule is met often.
QByteArray tst_Setting_Script_WidgetShowing::randomRecord(RandomModel& random, int number)
{
    QByteArray record = random.bytes(22);
    record[0] = char(number);
    if (random.flag()) {
        static const QByteArray codes = QByteArray::fromHex("000102030405060708090a0b0c10818284887fff");
        static const QByteArrayList filters = {QByteArray::fromHex("f00000"), QByteArray::fromHex("214120"),
                                               QByteArray::fromHex("143110"), QByteArray::fromHex("313010"),
                                               QByteArray::fromHex("411511"), QByteArray::fromHex("300000"),
                                               QByteArray::fromHex("400000"), QByteArray::fromHex("100000")};
        record[3] = codes.at(random.below(codes.size()));
        record.replace(15, 3, filters.at(random.below(filters.size())));
        record[4] = char(random.flag() ? 0 : record.at(4));
    }
    return record;
}

QByteArray tst_Setting_Script_WidgetShowing::withExceptions(const ScriptInfo& script, QByteArray record)
{
    if (script.stateChannel->name == texts::placeholderNotActive()) {
        record[5] = char(record.at(5) & 0x0F); // notActiveLosesItsChannels
    }
    const int terminalClass = quint8(record.at(15)) >> 4;
    if (script.terminalFilter->label == texts::placeholderOtherType() && terminalClass >= 5 && terminalClass <= 14) {
        const int becomes = terminalClass < 10 ? 15 : 4; // classFiveToNine..., classTenToFourteen...
        record[15] = char(becomes << 4 | (record.at(15) & 0x0F));
    }
    return record;
}

void tst_Setting_Script_WidgetShowing::showingKeepsTheBytesOfFourThousandScripts()
{
    RandomModel random(20240117);
    ShownEditor shown;
    int seen = 0;
    int exceptions = 0;
    while (seen < 4000 && !QTest::currentTestFailed()) {
        showAllScripts(shown, random, exceptions);
        seen += 32;
    }
    QVERIFY(exceptions > 400 && exceptions < 3600);
}

/// Reads 32 scripts from a unit, shows one after the other, and compares each with what it was before.
void tst_Setting_Script_WidgetShowing::showAllScripts(ShownEditor& shown, RandomModel& random, int& exceptions)
{
    QByteArrayList records;
    for (int number = 0; number < 32; ++number) {
        records.append(randomRecord(random, number));
    }
    shown.model->readScriptRecords(records);
    const QByteArrayList before = shown.model->makeScriptRecords();
    QList<ScriptInfo> scripts;
    for (int i = 0; i < 32; ++i) {
        scripts.append(*shown.script(i));
    }
    for (int i = 0; i < 32; ++i) {
        shown.edit(i);
    }
    for (int i = 0; i < 32; ++i) {
        const QByteArray expected = withExceptions(scripts.at(i), before.at(i));
        QCOMPARE(shown.record(i).toHex(' '), expected.toHex(' '));
        QCOMPARE(shown.script(i)->name, scripts.at(i).name);
        QCOMPARE(shown.script(i)->notActive, scripts.at(i).notActive);
        QCOMPARE(scriptRules::stateCode(shown.script(i)->stateChannel),
                 scriptRules::stateCode(scripts.at(i).stateChannel));
        if (!scripts.at(i).activateFilter.at(0)) {
            QCOMPARE(shown.script(i)->stateChannel, scripts.at(i).stateChannel);
        }
        exceptions += expected == before.at(i) ? 0 : 1;
    }
}

/// The record of a script after a unit has sent it and the editor has shown it, in hexadecimal.
QByteArray tst_Setting_Script_WidgetShowing::afterShowing(const QByteArray& hex)
{
    ShownEditor shown;
    shown.model->addTerminalType(false, QStringLiteral("hand-made"), 7, 1, 2, 3, {});
    shown.model->readScriptRecords({QByteArray::fromHex(hex)});
    shown.edit(0);
    shown.edit(1);
    return shown.record(0).toHex(' ');
}

void tst_Setting_Script_WidgetShowing::notActiveLosesItsChannels()
{
    QCOMPARE(afterShowing("00 01 2a ff 40 f4 3e 30 08 01 01 45 17 01 01 f0 00 00 11 00 00 00"),
             QByteArray("00 01 2a ff 40 04 3e 30 08 01 01 45 17 01 01 f0 00 00 11 00 00 00"));
}

void tst_Setting_Script_WidgetShowing::classFiveToNineOfAnOwnFilterBecomesFifteen_data()
{
    QTest::addColumn<int>("terminalClass");
    for (int terminalClass = 5; terminalClass <= 9; ++terminalClass) {
        QTest::addRow("%d", terminalClass) << terminalClass;
    }
}

void tst_Setting_Script_WidgetShowing::classFiveToNineOfAnOwnFilterBecomesFifteen()
{
    QFETCH(const int, terminalClass);
    for (const char* flags : {"10", "18"}) {
        const QByteArray start = QByteArray("00 01 2a 04 00 ") + flags + " 3e 30 08 01 01 45 17 01 01 ";
        QCOMPARE(afterShowing(start + QByteArray::number(terminalClass, 16) + "1 22 33 11 00 00 00"),
                 start + "f1 22 33 11 00 00 00");
    }
}

void tst_Setting_Script_WidgetShowing::classTenToFourteenOfAnOwnFilterBecomesFour_data()
{
    QTest::addColumn<int>("terminalClass");
    for (int terminalClass = 10; terminalClass <= 14; ++terminalClass) {
        QTest::addRow("%d", terminalClass) << terminalClass;
    }
}

void tst_Setting_Script_WidgetShowing::classTenToFourteenOfAnOwnFilterBecomesFour()
{
    QFETCH(const int, terminalClass);
    for (const char* code : {"00", "04", "81", "77"}) {
        for (const char* flags : {"10", "18"}) {
            const QByteArray start = QByteArray("00 01 2a ") + code + " 00 " + flags + " 3e 30 08 01 01 45 17 01 01 ";
            QCOMPARE(afterShowing(start + QByteArray::number(terminalClass, 16) + "1 22 33 11 00 00 00"),
                     start + "41 22 33 11 00 00 00");
        }
    }
}

void tst_Setting_Script_WidgetShowing::classOfACatalogueRowStays()
{
    const QByteArray record = "00 01 2a 01 00 18 3e 30 08 01 01 45 17 01 01 71 02 03 11 00 00 00";
    QCOMPARE(afterShowing(record), record);
}

void tst_Setting_Script_WidgetShowing::numbersBelowZeroAreShownAtTheirNearestAndStay()
{
    ShownEditor shown;
    for (const int number : {-2, -7, -32768}) {
        const QList<int> numbers = {number, number, number, number};
        shown.script()->timeFilter = numbers;
        shown.script()->dateFilter = numbers;
        shown.edit();
        for (const auto* frame : shown.all<SpecialTimeFrame>()) {
            QCOMPARE(frame->hour(), 0);
            QCOMPARE(frame->minute(), 0);
        }
        for (const auto* frame : shown.all<SpecialDateFrame>()) {
            QCOMPARE(frame->day(), 1);
            QCOMPARE(frame->month(), 1);
        }
        QCOMPARE(shown.script()->timeFilter, numbers);
        QCOMPARE(shown.script()->dateFilter, numbers);
    }
}

void tst_Setting_Script_WidgetShowing::stateIsNamedByTheClassOfTheFilter_data()
{
    QTest::addColumn<int>("stateRow");
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("expectedRow"); // -1 for "<Other>"
    const QString executive = QStringLiteral("Haldeon-NX (21 41 20)");
    const QString button = QStringLiteral("PNB-NX (31 30 10)");
    const QString analog = QStringLiteral("Termia-NX (41 15 11)");
    QTest::newRow("alarm of a button") << 2 << button << 17;
    QTest::newRow("analog 9 of a button") << 14 << button << -1;
    QTest::newRow("alarm of an analog terminal") << 2 << analog << 6;
    QTest::newRow("long press of an analog terminal") << 18 << analog << -1;
    QTest::newRow("short press of another") << 17 << executive << 2;
    QTest::newRow("analog 0 of another") << 5 << executive << 1;
    QTest::newRow("long press of another") << 18 << executive << -1;
    QTest::newRow("long press of a button") << 18 << button << 18;
    QTest::newRow("not active of a button") << 0 << button << 0;
}

void tst_Setting_Script_WidgetShowing::stateIsNamedByTheClassOfTheFilter()
{
    QFETCH(const int, stateRow);
    QFETCH(const QString, type);
    QFETCH(const int, expectedRow);
    ShownEditor shown;
    const ParamItemPtr state = shown.model->stateChannels().value(stateRow);
    const int typeRow = shown.combo("comboBoxSelectType")->findText(type);
    QVERIFY2(typeRow >= 0, qPrintable(type));
    for (const bool own : {false, true}) {
        const ScriptInfoPtr script = shown.script();
        script->stateChannel = state;
        script->numberChannels = QList<bool>({false, stateRow != 0, false, false});
        script->activateFilter[0] = true;
        script->terminalFilter = shown.model->terminalTypes().value(typeRow);
        if (own) {
            scriptRules::makeTypeFilterPrivate(*script);
        }
        const QByteArray before = shown.record();
        shown.edit();
        QCOMPARE(shown.record(), before);
        QVERIFY(shown.button("checkBoxType")->isChecked());
        const ParamItemPtr expected = shown.model->stateChannels().value(expectedRow);
        if (expected) {
            QCOMPARE(script->stateChannel, expected);
        } else {
            QCOMPARE(script->stateChannel->name, texts::otherState());
        }
        QCOMPARE(shown.combo("comboStateChannel")->currentText(), script->stateChannel->name);
        QCOMPARE(shown.spin("spinBoxOtherStateChannel")->value(), int(state->effectiveCode()));
        QCOMPARE(!shown.widget("F_PNB")->isHidden(), script->stateChannel->name == texts::statePanicButton());
    }
}

void tst_Setting_Script_WidgetShowing::otherCodeOfNoStateBecomesNotActive()
{
    for (const int terminalClass : {1, 7, 11}) {
        ShownEditor shown;
        const ScriptInfoPtr script = shown.script();
        script->stateChannel = scriptRules::makeOtherState(255);
        script->activateFilter[0] = true;
        script->terminalFilter->terminalClass = quint8(terminalClass);
        shown.edit();
        QCOMPARE(script->stateChannel, shown.model->stateChannels().value(0));
        QVERIFY(script->numberChannels.isEmpty());
        QVERIFY(!shown.widget("F_NumChannel")->isEnabled());
    }
}

QTEST_MAIN(tst_Setting_Script_WidgetShowing)
#include "tst_Setting_Script_WidgetShowing.moc"
