#include "model/ScriptRules.h"
#include "ui/pickers/SpecialSpinBox.h"
#include "ui/scripts/ShownEditor.h"

#include <QLabel>
#include <QLineEdit>

/// The script editor with one script after the other: what it shows of each, and that none gets what is another's.
class tst_Setting_Script_WidgetSwitching : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void showingAnnouncesTitleAndRow();
    void showsEveryFieldOfAScript();

    void ownFilterOfClassThreeKeepsItsButtonState();
    void nullFilterShowsAnyTerminal();
    void emptyChannelsOfAnActiveScriptGetTheFirst();
    void codeInTwoFamiliesKeepsItsFamily_data();
    void codeInTwoFamiliesKeepsItsFamily();
    void dataCorruptedKeepsItsCode_data();
    void dataCorruptedKeepsItsCode();
    void switchingScriptsWhileTypingKeepsThemApart();
    void clearedNumberIsNotCarriedToTheNextScript();
    void fastSwitchingLeavesEveryScriptAlone();

private:
    std::unique_ptr<ShownEditor> shown;
};

void tst_Setting_Script_WidgetSwitching::init()
{
    shown = std::make_unique<ShownEditor>();
}

void tst_Setting_Script_WidgetSwitching::cleanup()
{
    shown.reset();
}

void tst_Setting_Script_WidgetSwitching::showingAnnouncesTitleAndRow()
{
    shown->script(6)->name = QStringLiteral("Siren %1 %2");
    shown->editor->sl_SetNewScript(shown->script(6));
    QCOMPARE(shown->titles, QStringList(QStringLiteral("Parameters of script: №7. Siren %1 %2")));
    QCOMPARE(shown->refreshes, 1);
    QCOMPARE(shown->find<QLabel>(QStringLiteral("labelNumScript"))->text(), QStringLiteral("№7"));
    QCOMPARE(shown->find<QLineEdit>(QStringLiteral("lineEditNameScript"))->text(), QStringLiteral("Siren %1 %2"));
    // The same script once more is announced as well: a reading may have changed it.
    shown->editor->sl_SetNewScript(shown->script(6));
    QCOMPARE(shown->titles.size(), 2);
    QCOMPARE(shown->refreshes, 2);
}

void tst_Setting_Script_WidgetSwitching::showsEveryFieldOfAScript()
{
    // Mode 1, 5 seconds after 10, fire, channel 1 and 3, all filters but that by type, Monday to Friday.
    shown->model->readScriptRecords({QByteArray::fromHex("03012a0114"
                                                         "573e"
                                                         "30080101"
                                                         "45173112"
                                                         "314130"
                                                         "11000080")});
    shown->edit(3);
    QCOMPARE(shown->combo("comboModeWorkRelay")->currentText(), texts::modeActivation());
    QCOMPARE(shown->combo("comboDuration")->currentText(), QStringLiteral("5 seconds"));
    QCOMPARE(shown->combo("comboDelay")->currentText(), QStringLiteral("10 seconds"));
    QCOMPARE(shown->combo("comboStateChannel")->currentText(), texts::channelAlarm());
    QCOMPARE(shown->spin("spinBoxOtherStateChannel")->value(), 1);
    QCOMPARE(shown->button("buttonChannel1")->styleSheet(), QStringLiteral("background-color: rgb(0, 255, 17);"));
    QCOMPARE(shown->button("buttonChannel2")->styleSheet(), QString());
    QCOMPARE(shown->button("buttonChannel3")->styleSheet(), QStringLiteral("background-color: rgb(0, 255, 17);"));
    QCOMPARE(shown->states()->item(2)->checkState(), Qt::Checked);
    QCOMPARE(shown->states()->item(4)->checkState(), Qt::Checked);
    QCOMPARE(shown->states()->item(0)->checkState(), Qt::Unchecked);
    QVERIFY(!shown->button("checkBoxType")->isChecked());
    QVERIFY(shown->button("checkBoxAddress")->isChecked());
    QVERIFY(shown->button("checkBoxTime")->isChecked());
    QVERIFY(shown->button("checkBoxDate")->isChecked());
    QVERIFY(shown->button("checkBoxMon")->isChecked());
    QVERIFY(shown->button("checkBoxFri")->isChecked());
    QVERIFY(!shown->button("checkBoxSat")->isChecked());
    QVERIFY(!shown->button("checkBoxSun")->isChecked());
    QCOMPARE(shown->picker("F_TimeBegin", "spinBoxHour")->text(), QStringLiteral("08"));
    QCOMPARE(shown->picker("F_TimeBegin", "spinBoxMinute")->text(), QStringLiteral("30"));
    QCOMPARE(shown->picker("F_TimeEnd", "spinBoxHour")->text(), QStringLiteral("17"));
    QCOMPARE(shown->picker("F_TimeEnd", "spinBoxMinute")->text(), QStringLiteral("45"));
    QCOMPARE(shown->picker("F_DateBegin", "spinBoxDay")->text(), QStringLiteral("01"));
    QCOMPARE(shown->month("F_DateBegin")->currentText(), QStringLiteral("January"));
    QCOMPARE(shown->picker("F_DateEnd", "spinBoxDay")->text(), QStringLiteral("31"));
    QCOMPARE(shown->month("F_DateEnd")->currentText(), QStringLiteral("December"));
    QCOMPARE(shown->combo("comboBoxSelectType")->currentText(), texts::placeholderOtherType());
    QCOMPARE(shown->spin("spinBoxClass")->value(), 3);
    QCOMPARE(shown->spin("spinBoxVersion")->value(), 1);
    QCOMPARE(shown->spin("spinBoxType")->value(), 0x41);
    QCOMPARE(shown->spin("spinBoxCharacteristic")->value(), 0x30);
    const QString lit = QStringLiteral("background-color: rgb(68, 255, 0); ");
    for (const char* name : {"ButtonAddress1", "ButtonAddress5", "ButtonAddressHUBN"}) {
        QVERIFY(shown->button(name)->styleSheet().contains(lit));
    }
    QVERIFY(!shown->button("ButtonAddress2")->styleSheet().contains(lit));
}

void tst_Setting_Script_WidgetSwitching::ownFilterOfClassThreeKeepsItsButtonState()
{
    const ScriptInfoPtr script = shown->script();
    script->activateFilter[0] = true;
    script->terminalFilter->terminalClass = 3;
    script->stateChannel = shown->model->stateChannels().value(18); // the long press of button 1
    const QByteArray before = shown->record();
    shown->edit();
    QVERIFY(script->activateFilter.at(0));
    QVERIFY(shown->button("checkBoxType")->isChecked());
    QCOMPARE(shown->combo("comboStateChannel")->currentText(), texts::statePanicButton());
    QVERIFY(shown->button("radioLongPress")->isChecked());
    QCOMPARE(script->stateChannel, shown->model->stateChannels().value(18));
    QCOMPARE(shown->record(), before);
}

void tst_Setting_Script_WidgetSwitching::nullFilterShowsAnyTerminal()
{
    shown->script()->terminalFilter.reset();
    shown->script()->activateFilter[0] = true;
    shown->script()->stateChannel = shown->model->stateChannels().value(2);
    const QByteArray before = shown->record();
    shown->edit();
    QCOMPARE(shown->combo("comboBoxSelectType")->currentText(), texts::placeholderOtherType());
    QCOMPARE(shown->record(), before);
    QCOMPARE(before.mid(15, 3), QByteArray::fromHex("f00000"));
    shown->spin("spinBoxVersion")->setValue(4);
    QCOMPARE(shown->record().mid(15, 3), QByteArray::fromHex("f40000"));
    shown->script()->terminalFilter.reset();
    shown->chooseState(texts::stateAnalog());
    shown->spin("spinBoxVersion")->setValue(5);
    shown->button("checkBoxType")->click();
}

void tst_Setting_Script_WidgetSwitching::emptyChannelsOfAnActiveScriptGetTheFirst()
{
    shown->script()->stateChannel = shown->model->stateChannels().value(2);
    shown->script()->numberChannels.clear();
    shown->edit();
    QCOMPARE(shown->script()->numberChannels, QList<bool>({true, false, false, false}));
    shown->script()->numberChannels = {false, false, false, false};
    shown->edit();
    QCOMPARE(shown->script()->numberChannels, QList<bool>({true, false, false, false}));
    QCOMPARE(shown->button("buttonChannel1")->styleSheet(), QStringLiteral("background-color: rgb(0, 255, 17);"));
}

void tst_Setting_Script_WidgetSwitching::codeInTwoFamiliesKeepsItsFamily_data()
{
    QTest::addColumn<int>("row");
    const RelayInfo model;
    for (int row = 0; row < model.stateChannels().size(); ++row) {
        QTest::addRow("row %d", row) << row;
    }
}

void tst_Setting_Script_WidgetSwitching::codeInTwoFamiliesKeepsItsFamily()
{
    QFETCH(const int, row);
    const ParamItemPtr state = shown->model->stateChannels().value(row);
    for (const bool filtered : {false, true}) {
        for (const int terminalClass : {0, 1, 3, 4, 15}) {
            if (filtered && row > 0 && !scriptRules::classFitsState(quint8(terminalClass), state)) {
                continue;
            }
            shown->script()->stateChannel = state;
            shown->script()->activateFilter[0] = filtered;
            shown->script()->terminalFilter->terminalClass = quint8(terminalClass);
            shown->edit();
            QCOMPARE(shown->script()->stateChannel, state);
            QCOMPARE(shown->script()->activateFilter.at(0), filtered);
            QCOMPARE(shown->combo("comboStateChannel")->currentText(), state->name);
            QCOMPARE(shown->spin("spinBoxOtherStateChannel")->value(), int(state->effectiveCode()));
        }
    }
}

void tst_Setting_Script_WidgetSwitching::dataCorruptedKeepsItsCode_data()
{
    QTest::addColumn<int>("code");
    QTest::newRow("8") << 8;
    QTest::newRow("9") << 9;
    QTest::newRow("10") << 10;
}

void tst_Setting_Script_WidgetSwitching::dataCorruptedKeepsItsCode()
{
    QFETCH(const int, code);
    shown->script()->stateChannel = shown->model->stateChannels().value(5 + code);
    shown->edit();
    QCOMPARE(shown->combo("comboBoxAnalog")->currentText(), texts::analogDataCorrupted());
    shown->edit(1);
    shown->edit(0);
    QCOMPARE(int(shown->script()->stateChannel->linked->code), code);
    QCOMPARE(int(shown->record().at(3)), code);
}

void tst_Setting_Script_WidgetSwitching::switchingScriptsWhileTypingKeepsThemApart()
{
    auto* name = shown->find<QLineEdit>(QStringLiteral("lineEditNameScript"));
    for (int i = 0; i < 32; ++i) {
        shown->script(i)->activateFilter = {true, false, true, false};
        shown->edit(i);
        name->selectAll();
        QTest::keyClicks(name, QStringLiteral("N%1").arg(i));
        ShownEditor::type(shown->spin("spinBoxType"), qPrintable(QString::number(i + 32, 16)));
        ShownEditor::type(shown->picker("F_TimeBegin", "spinBoxMinute"), qPrintable(QString::number(i + 10)));
        // and on to the next one, with the last field still being edited
    }
    for (int i = 0; i < 32; ++i) {
        QCOMPARE(shown->script(i)->name, QStringLiteral("N%1").arg(i));
        QCOMPARE(int(shown->script(i)->terminalFilter->type), i + 32);
        QCOMPARE(shown->script(i)->timeFilter.at(0), i + 10);
    }
    // Undo brings back nothing of another script.
    shown->edit(0);
    QVERIFY(!name->isUndoAvailable());
}

void tst_Setting_Script_WidgetSwitching::clearedNumberIsNotCarriedToTheNextScript()
{
    shown->script(0)->terminalFilter->type = 0x55;
    shown->script(1)->terminalFilter->type = 0x55;
    shown->script(0)->timeFilter[1] = 20;
    shown->script(1)->timeFilter[1] = 20;
    shown->script(0)->activateFilter = {true, false, true, false};
    shown->script(1)->activateFilter = {true, false, true, false};
    shown->edit(1);
    shown->edit(0);
    shown->open();
    QSpinBox* type = shown->spin("spinBoxType");
    SpecialSpinBox* hour = shown->picker("F_TimeBegin", "spinBoxHour");
    const QList<QSpinBox*> fields = {type, hour};
    for (QSpinBox* field : fields) {
        shown->edit(0);
        const QByteArray before = shown->record(1);
        field->selectAll();
        QTest::keyClick(field, Qt::Key_Delete);
        shown->edit(1);
        QCOMPARE(field->cleanText(), field == type ? QStringLiteral("55") : QStringLiteral("20"));
        QTest::keyClick(field, Qt::Key_Return);
        QCOMPARE(shown->record(1), before);
    }
}

void tst_Setting_Script_WidgetSwitching::fastSwitchingLeavesEveryScriptAlone()
{
    RandomModel random(7);
    random.fill(*shown->model);
    for (int i = 0; i < 32; ++i) {
        shown->edit(i); // what belongs to the rules of a record is now settled
    }
    const QByteArrayList before = shown->model->makeScriptRecords();
    shown->open();
    for (int i = 0; i < 320; ++i) {
        shown->editor->sl_SetNewScript(shown->script(random.below(32)));
    }
    QCOMPARE(shown->model->makeScriptRecords(), before);
}

QTEST_MAIN(tst_Setting_Script_WidgetSwitching)
#include "tst_Setting_Script_WidgetSwitching.moc"
