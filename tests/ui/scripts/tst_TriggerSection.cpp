#include "model/ScriptRules.h"
#include "ui/scripts/ShownEditor.h"

#include <QRadioButton>

/// What triggers a script, as the editor shows and edits it: channel state, channels and terminal states.
class tst_TriggerSection : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void controlsThatTakeTurnsLeaveTheOthersInPlace();

    void channelStateListHoldsEachNameOnce();
    void channelStateDecidesWhichControlsAreThere_data();
    void channelStateDecidesWhichControlsAreThere();
    void notActiveEmptiesTheChannels();
    void plainStateTakesItsRow_data();
    void plainStateTakesItsRow();
    void buttonStateStartsWithTheShortPressOfTheFirstButton();
    void analogStateStartsWithItsFirstRow();
    void otherStateTakesTheCodeOfTheFormerOne();
    void otherCodeIsStoredAsItIsTyped();
    void everyButtonAndPressFindsItsRow_data();
    void everyButtonAndPressFindsItsRow();
    void everyAnalogStateFindsItsFirstRow_data();
    void everyAnalogStateFindsItsFirstRow();
    void listOfAnotherFamilyChangesNothing();
    void pressOfAStateWithoutALinkChangesNothing();
    void tableRowsAreNeverWritten();

    void unfitStateSwitchesTheTypeFilterOff_data();
    void unfitStateSwitchesTheTypeFilterOff();

    void channelsComeBackAfterNotActive();
    void channelButtonsFlipTheirChannel();
    void lastChannelStaysLit();
    void channelButtonsAreDeadWhileNotActive();
    void channelButtonsReadOneToFour();

    void combosArePaintedInTheColourOfTheirRow();
    void combosWithoutTheValueAreRed();

    void terminalStateAloneMakesAScriptActive();
    void scriptWithoutTriggerIsReportedAsNotActive();
    void everyTriggerEditIsReported_data();
    void everyTriggerEditIsReported();

private:
    std::unique_ptr<ShownEditor> shown;
};

void tst_TriggerSection::init()
{
    shown = std::make_unique<ShownEditor>();
    shown->edit();
}

void tst_TriggerSection::cleanup()
{
    shown.reset();
}

void tst_TriggerSection::channelStateListHoldsEachNameOnce()
{
    QStringList names;
    const QComboBox* list = shown->combo("comboStateChannel");
    for (int i = 0; i < list->count(); ++i) {
        names.append(list->itemText(i));
    }
    QCOMPARE(names, QStringList({QStringLiteral("Not active"), QStringLiteral("Norm"), QStringLiteral("Alarm (fire)"),
                                 QStringLiteral("Short of loop"), QStringLiteral("Tamper of loop"),
                                 QStringLiteral("State of analog terminal"), QStringLiteral("State of PNB-NX"),
                                 QStringLiteral("<Other>")}));
    const int other = list->count() - 1;
    QCOMPARE(list->itemData(other, Qt::BackgroundRole).value<QColor>(), QColor(240, 240, 240));
    QCOMPARE(list->itemData(other, Qt::ForegroundRole).value<QColor>(), QColor(Qt::black));
    QVERIFY(!list->itemIcon(other).isNull());
}

void tst_TriggerSection::channelStateDecidesWhichControlsAreThere_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<QStringList>("there");
    QTest::addColumn<bool>("channels");
    const QStringList none;
    QTest::newRow("Not active") << texts::placeholderNotActive() << none << false;
    QTest::newRow("PNB-NX") << texts::statePanicButton() << QStringList(QStringLiteral("F_PNB")) << true;
    QTest::newRow("analog") << texts::stateAnalog() << QStringList(QStringLiteral("comboBoxAnalog")) << true;
    QTest::newRow("<Other>") << texts::otherState() << QStringList(QStringLiteral("spinBoxOtherStateChannel")) << true;
    QTest::newRow("any other") << texts::channelShort() << none << true;
}

void tst_TriggerSection::channelStateDecidesWhichControlsAreThere()
{
    QFETCH(const QString, state);
    QFETCH(const QStringList, there);
    QFETCH(const bool, channels);
    // From a state that shows something else, so that each row has something to hide.
    shown->chooseState(state == texts::statePanicButton() ? texts::stateAnalog() : texts::statePanicButton());
    shown->chooseState(state);
    for (const char* name : {"F_PNB", "comboBoxAnalog", "spinBoxOtherStateChannel"}) {
        QCOMPARE(!shown->widget(name)->isHidden(), there.contains(QLatin1String(name)));
    }
    QCOMPARE(shown->widget("F_NumChannel")->isEnabled(), channels);
    const QString unavailable = QStringLiteral("background-color: rgb(187,187,187)");
    QCOMPARE(shown->button("buttonChannel4")->styleSheet(), channels ? QString() : unavailable);
}

void tst_TriggerSection::notActiveEmptiesTheChannels()
{
    shown->chooseState(texts::channelAlarm());
    shown->chooseState(texts::placeholderNotActive());
    QCOMPARE(shown->script()->stateChannel, shown->model->stateChannels().value(0));
    QVERIFY(shown->script()->numberChannels.isEmpty());
    QCOMPARE(shown->spin("spinBoxOtherStateChannel")->value(), 255);
    QVERIFY(shown->script()->notActive);
    QCOMPARE(int(shown->record().at(5)), 0);
}

void tst_TriggerSection::plainStateTakesItsRow_data()
{
    QTest::addColumn<int>("row");
    for (int row = 0; row < 5; ++row) {
        QTest::addRow("row %d", row) << row;
    }
}

void tst_TriggerSection::plainStateTakesItsRow()
{
    QFETCH(const int, row);
    const ParamItemPtr state = shown->model->stateChannels().value(row);
    shown->chooseState(texts::otherState());
    shown->chooseState(state->name);
    QCOMPARE(shown->script()->stateChannel, state);
    QCOMPARE(shown->spin("spinBoxOtherStateChannel")->value(), int(state->code));
    QCOMPARE(quint8(shown->record().at(3)), state->code);
    QCOMPARE(shown->script()->notActive, state->code == 255);
}

void tst_TriggerSection::buttonStateStartsWithTheShortPressOfTheFirstButton()
{
    shown->chooseState(texts::statePanicButton());
    QCOMPARE(shown->combo("comboBoxPNB")->currentIndex(), 0);
    QVERIFY(shown->button("radioShortPress")->isChecked());
    QCOMPARE(quint8(shown->record().at(3)), quint8(0x01));
    QCOMPARE(shown->script()->stateChannel->linked, shown->model->buttonStates().first());
    QCOMPARE(shown->spin("spinBoxOtherStateChannel")->value(), 1);
    QVERIFY(!shown->script()->notActive);

    // The same once more after the user has been elsewhere.
    shown->choose("comboBoxPNB", texts::stateButton4());
    shown->button("radioLongPress")->click();
    QCOMPARE(quint8(shown->record().at(3)), quint8(0x88));
    shown->chooseState(texts::channelNorm());
    shown->chooseState(texts::statePanicButton());
    QCOMPARE(shown->combo("comboBoxPNB")->currentIndex(), 0);
    QVERIFY(shown->button("radioShortPress")->isChecked());
    QCOMPARE(quint8(shown->record().at(3)), quint8(0x01));
}

void tst_TriggerSection::analogStateStartsWithItsFirstRow()
{
    shown->chooseState(texts::stateAnalog());
    QCOMPARE(shown->combo("comboBoxAnalog")->currentIndex(), 0);
    QCOMPARE(shown->script()->stateChannel->linked, shown->model->analogStates().first());
    QCOMPARE(quint8(shown->record().at(3)), quint8(0));
    QCOMPARE(shown->spin("spinBoxOtherStateChannel")->value(), 0);
}

void tst_TriggerSection::otherStateTakesTheCodeOfTheFormerOne()
{
    shown->chooseState(texts::channelTamper());
    shown->chooseState(texts::otherState());
    const ParamItemPtr state = shown->script()->stateChannel;
    QCOMPARE(state->name, texts::otherState());
    QCOMPARE(state->code, quint8(3));
    QCOMPARE(state->icon, QStringLiteral(":/icons/icons/Empty.png"));
    QCOMPARE(state->background, QColor(240, 240, 240));
    QCOMPARE(state->foreground, QColor(Qt::black));
    QVERIFY(!state->linked);
    QVERIFY(!shown->model->stateChannels().contains(state));
}

void tst_TriggerSection::otherCodeIsStoredAsItIsTyped()
{
    shown->chooseState(texts::otherState());
    QVERIFY(shown->script()->notActive); // the code of "Not active" is left
    QSpinBox* code = shown->spin("spinBoxOtherStateChannel");
    QCOMPARE(code->displayIntegerBase(), 16);
    QCOMPARE(code->minimum(), 0);
    QCOMPARE(code->maximum(), 255);
    ShownEditor::type(code, "7c");
    QCOMPARE(shown->script()->stateChannel->code, quint8(0x7c));
    QVERIFY(!shown->script()->notActive);
    ShownEditor::type(code, "ff");
    QVERIFY(shown->script()->notActive);
}

void tst_TriggerSection::everyButtonAndPressFindsItsRow_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("longPress");
    QTest::addColumn<int>("code");
    QTest::newRow("1 short") << texts::stateButton1() << false << 0x01;
    QTest::newRow("1 long") << texts::stateButton1() << true << 0x81;
    QTest::newRow("2 short") << texts::stateButton2() << false << 0x02;
    QTest::newRow("2 long") << texts::stateButton2() << true << 0x82;
    QTest::newRow("3 short") << texts::stateButton3() << false << 0x04;
    QTest::newRow("3 long") << texts::stateButton3() << true << 0x84;
    QTest::newRow("4 short") << texts::stateButton4() << false << 0x08;
    QTest::newRow("4 long") << texts::stateButton4() << true << 0x88;
}

void tst_TriggerSection::everyButtonAndPressFindsItsRow()
{
    QFETCH(const QString, name);
    QFETCH(const bool, longPress);
    QFETCH(const int, code);
    const char* radio = longPress ? "radioLongPress" : "radioShortPress";

    shown->chooseState(texts::statePanicButton());
    shown->choose("comboBoxPNB", name);
    shown->button(radio)->click();
    QCOMPARE(int(shown->script()->stateChannel->linked->code), code);
    QCOMPARE(shown->spin("spinBoxOtherStateChannel")->value(), code);

    // The other way round: first the press, then the button.
    shown->chooseState(texts::channelNorm());
    shown->chooseState(texts::statePanicButton());
    shown->button(radio)->click();
    shown->choose("comboBoxPNB", name);
    QCOMPARE(int(shown->script()->stateChannel->linked->code), code);
    QVERIFY(shown->button(radio)->isChecked());
}

void tst_TriggerSection::everyAnalogStateFindsItsFirstRow_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("code");
    const RelayInfo model;
    QStringList seen;
    const ParamItems states = model.analogStates();
    for (const ParamItemPtr& state : states) {
        if (!seen.contains(state->name)) {
            seen.append(state->name);
            QTest::newRow(qPrintable(state->name)) << state->name << int(state->code);
        }
    }
}

void tst_TriggerSection::everyAnalogStateFindsItsFirstRow()
{
    QFETCH(const QString, name);
    QFETCH(const int, code);
    shown->chooseState(texts::stateAnalog());
    shown->choose("comboBoxAnalog", texts::analogTemperatureOutside());
    shown->choose("comboBoxAnalog", name);
    QCOMPARE(int(shown->script()->stateChannel->linked->code), code);
    QCOMPARE(shown->spin("spinBoxOtherStateChannel")->value(), code);
    QCOMPARE(shown->combo("comboBoxAnalog")->count(), 10);
}

void tst_TriggerSection::listOfAnotherFamilyChangesNothing()
{
    shown->chooseState(texts::stateAnalog());
    shown->choose("comboBoxPNB", texts::stateButton4());
    QCOMPARE(shown->script()->stateChannel->linked, shown->model->analogStates().first());
    shown->chooseState(texts::statePanicButton());
    shown->choose("comboBoxAnalog", texts::analogTemperatureOutside());
    QCOMPARE(shown->script()->stateChannel->linked, shown->model->buttonStates().first());
}

void tst_TriggerSection::pressOfAStateWithoutALinkChangesNothing()
{
    shown->chooseState(texts::channelAlarm());
    const QByteArray before = shown->record();
    shown->button("radioLongPress")->click();
    shown->button("radioShortPress")->click();
    QCOMPARE(shown->record(), before);
}

void tst_TriggerSection::tableRowsAreNeverWritten()
{
    shown->chooseState(texts::otherState());
    ShownEditor::type(shown->spin("spinBoxOtherStateChannel"), "2");
    shown->chooseState(texts::channelShort());
    shown->spin("spinBoxOtherStateChannel")->setValue(99);
    QCOMPARE(int(shown->model->stateChannels().value(3)->code), 2);
    shown->chooseState(texts::stateAnalog());
    shown->spin("spinBoxOtherStateChannel")->setValue(99);
    QCOMPARE(int(shown->model->stateChannels().value(5)->code), 255);
}

void tst_TriggerSection::unfitStateSwitchesTheTypeFilterOff_data()
{
    QTest::addColumn<int>("terminalClass");
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::addColumn<bool>("staysOn");
    const QString analog = texts::stateAnalog();
    const QString button = texts::statePanicButton();
    const QString plain = texts::channelAlarm();
    const QString none = texts::placeholderNotActive();
    QTest::newRow("analog under class 1") << 1 << plain << analog << false;
    QTest::newRow("button under class 1") << 1 << plain << button << false;
    QTest::newRow("plain under class 1") << 1 << none << plain << true;
    QTest::newRow("analog under class 3") << 3 << button << analog << false;
    QTest::newRow("plain under class 3") << 3 << button << plain << false;
    QTest::newRow("other under class 3") << 3 << button << texts::otherState() << false;
    QTest::newRow("button under class 3") << 3 << none << button << true;
    QTest::newRow("button under class 4") << 4 << analog << button << false;
    QTest::newRow("plain under class 4") << 4 << analog << plain << false;
    QTest::newRow("analog under class 4") << 4 << none << analog << true;
    QTest::newRow("not active under class 4") << 4 << analog << none << true;
    QTest::newRow("analog under class 15") << 15 << plain << analog << true;
    QTest::newRow("button under class 15") << 15 << plain << button << true;
    QTest::newRow("plain under class 15") << 15 << analog << plain << true;
}

void tst_TriggerSection::unfitStateSwitchesTheTypeFilterOff()
{
    QFETCH(const int, terminalClass);
    QFETCH(const QString, from);
    QFETCH(const QString, to);
    QFETCH(const bool, staysOn);
    shown->chooseState(from);
    shown->filterByClass(terminalClass, true);
    QCOMPARE(shown->combo("comboStateChannel")->currentText(), from);
    shown->chooseState(to);
    QCOMPARE(shown->button("checkBoxType")->isChecked(), staysOn);
    QCOMPARE(shown->script()->activateFilter.at(0), staysOn);
    QCOMPARE(shown->widget("F_Type")->isEnabled(), staysOn);
    QCOMPARE(shown->combo("comboStateChannel")->currentText(), to);
}

void tst_TriggerSection::channelsComeBackAfterNotActive()
{
    shown->chooseState(texts::channelAlarm());
    shown->button("buttonChannel3")->click();
    shown->chooseState(texts::channelShort());
    QCOMPARE(shown->script()->numberChannels, QList<bool>({true, false, true, false}));
    shown->chooseState(texts::placeholderNotActive());
    shown->chooseState(texts::channelAlarm());
    QCOMPARE(shown->script()->numberChannels, QList<bool>({true, false, false, false}));
    QCOMPARE(shown->button("buttonChannel1")->styleSheet(), QStringLiteral("background-color: rgb(0, 255, 17);"));
    QCOMPARE(shown->button("buttonChannel3")->styleSheet(), QString());
}

void tst_TriggerSection::channelButtonsFlipTheirChannel()
{
    shown->chooseState(texts::channelAlarm());
    for (int channel = 1; channel < 4; ++channel) {
        QAbstractButton* button = shown->button(QStringLiteral("buttonChannel%1").arg(channel + 1));
        button->click();
        QVERIFY(shown->script()->numberChannels.at(channel));
        QCOMPARE(button->styleSheet(), QStringLiteral("background-color: rgb(0, 255, 17);"));
    }
    QCOMPARE(quint8(shown->record().at(5)), quint8(0xF0));
    shown->button("buttonChannel1")->click();
    QCOMPARE(quint8(shown->record().at(5)), quint8(0xE0));
    QCOMPARE(shown->button("buttonChannel1")->styleSheet(), QString());
}

void tst_TriggerSection::lastChannelStaysLit()
{
    shown->chooseState(texts::channelAlarm());
    for (int i = 0; i < 5; ++i) {
        shown->button("buttonChannel1")->click();
        QCOMPARE(shown->script()->numberChannels, QList<bool>({true, false, false, false}));
        QCOMPARE(shown->button("buttonChannel1")->styleSheet(), QStringLiteral("background-color: rgb(0, 255, 17);"));
    }
}

void tst_TriggerSection::channelButtonsAreDeadWhileNotActive()
{
    shown->button("buttonChannel2")->click();
    QVERIFY(shown->script()->numberChannels.isEmpty());
}

void tst_TriggerSection::channelButtonsReadOneToFour()
{
    for (int channel = 1; channel <= 4; ++channel) {
        QCOMPARE(shown->button(QStringLiteral("buttonChannel%1").arg(channel))->text(), QString::number(channel));
    }
}

void tst_TriggerSection::combosArePaintedInTheColourOfTheirRow()
{
    shown->chooseState(texts::channelAlarm());
    shown->combo("comboStateChannel")->setToolTip(QStringLiteral("old"));
    shown->chooseState(texts::channelNorm());
    QCOMPARE(shown->combo("comboStateChannel")->styleSheet(),
             QStringLiteral("QComboBox{combobox-popup: 0; selection-color: black; selection-background-color: "
                            "rgba(0,0,0,20);background-color: rgba(0, 255, 17, 150);}"));
    QVERIFY(shown->combo("comboStateChannel")->toolTip().isEmpty());
    shown->chooseState(texts::statePanicButton());
    QVERIFY(
        shown->combo("comboBoxPNB")->styleSheet().endsWith(QLatin1String("background-color: rgba(255, 0, 0, 150);}")));
    shown->chooseState(texts::stateAnalog());
    shown->choose("comboBoxAnalog", texts::analogLow());
    QVERIFY(shown->combo("comboBoxAnalog")
                ->styleSheet()
                .endsWith(QLatin1String("background-color: rgba(30, 144, 255, 150);}")));
}

void tst_TriggerSection::combosWithoutTheValueAreRed()
{
    const QString red = QStringLiteral("QComboBox{combobox-popup: 0; selection-color: black; "
                                       "selection-background-color: rgba(0,0,0,20);background-color: red;}");
    auto strange = ParamItemPtr::create();
    strange->name = QStringLiteral("no table has this");
    strange->code = 77;
    shown->script()->stateChannel = strange;
    shown->edit();
    QCOMPARE(shown->combo("comboStateChannel")->currentIndex(), -1);
    QCOMPARE(shown->combo("comboStateChannel")->styleSheet(), red);
    QCOMPARE(shown->script()->stateChannel, strange);
    QCOMPARE(quint8(shown->record().at(3)), quint8(77));

    shown->script()->stateChannel.reset();
    shown->edit();
    QCOMPARE(shown->combo("comboStateChannel")->styleSheet(), red);
    QVERIFY(!shown->script()->stateChannel);
    QVERIFY(!shown->script()->numberChannels.isEmpty());
}

void tst_TriggerSection::terminalStateAloneMakesAScriptActive()
{
    QVERIFY(shown->script()->notActive);
    shown->states()->item(3)->setCheckState(Qt::Checked);
    QVERIFY(!shown->script()->notActive);
    QCOMPARE(shown->refreshes, 1);
    QCOMPARE(shown->script()->stateChannel->name, texts::placeholderNotActive());
    QVERIFY(shown->script()->numberChannels.isEmpty());
}

void tst_TriggerSection::scriptWithoutTriggerIsReportedAsNotActive()
{
    shown->states()->item(3)->setCheckState(Qt::Checked);
    shown->chooseState(texts::channelAlarm());
    shown->chooseState(texts::placeholderNotActive());
    QVERIFY(!shown->script()->notActive);
    bool reportedInactive = false;
    connect(shown->editor.get(), &Setting_Script_Widget::sig_RefreshStateScriptInList, this,
            [&] { reportedInactive = shown->editor->currentScript()->notActive; });
    shown->states()->item(3)->setCheckState(Qt::Unchecked);
    QVERIFY(shown->script()->notActive);
    QVERIFY(reportedInactive);
}

void tst_TriggerSection::everyTriggerEditIsReported_data()
{
    QTest::addColumn<QString>("state");
    const RelayInfo model;
    QStringList seen = {texts::placeholderNotActive()};
    const ParamItems rows = model.stateChannels();
    for (const ParamItemPtr& row : rows) {
        if (!seen.contains(row->name)) {
            seen.append(row->name);
            QTest::newRow(qPrintable(row->name)) << row->name;
        }
    }
}

void tst_TriggerSection::everyTriggerEditIsReported()
{
    QFETCH(const QString, state);
    shown->chooseState(state);
    QVERIFY(shown->refreshes > 0);
    shown->refreshes = 0;
    shown->chooseState(texts::placeholderNotActive());
    QVERIFY(shown->refreshes > 0);
}

/// Together the button's and the analog terminal's controls don't fit, and for a moment all others would be lower.
void tst_TriggerSection::controlsThatTakeTurnsLeaveTheOthersInPlace()
{
    class Sizes : public QObject
    {
    public:
        bool eventFilter(QObject*, QEvent* event) override
        {
            count += event->type() == QEvent::Resize ? 1 : 0;
            return false;
        }
        int count = 0;
    };
    shown->open();
    shown->edit();
    Sizes sizes;
    shown->chooseState(texts::stateAnalog());
    QCoreApplication::processEvents();
    for (const char* other : {"comboModeWorkRelay", "comboDelay", "titleMode", "F_Type"}) {
        shown->widget(other)->installEventFilter(&sizes);
    }
    shown->chooseState(texts::statePanicButton());
    QCoreApplication::processEvents();
    QVERIFY(shown->widget("F_PNB")->isVisible());
    QVERIFY(shown->widget("comboBoxAnalog")->isHidden());
    shown->chooseState(texts::stateAnalog());
    QCoreApplication::processEvents();
    QCOMPARE(sizes.count, 0);
}

QTEST_MAIN(tst_TriggerSection)
#include "tst_TriggerSection.moc"
