#include "model/ScriptRules.h"
#include "ui/scripts/ShownEditor.h"

#include <QRadioButton>

/// The filter by type of terminal, as the editor shows and edits it, and what it does to the trigger.
class tst_TypeFilterSection : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void typeFilterSwitchEnablesAndShades();
    void listOfTypesIsPaintedInTheColourOfItsRow();
    void catalogueTypeFillsTheNumbersAndLocksThem();
    void ownTypeKeepsTheNumbersOfTheFormerOne();
    void catalogueIsNeverWrittenThroughAScript();
    void numbersAreWrittenToTheOwnType_data();
    void numbersAreWrittenToTheOwnType();
    void numbersThatMeanAnyAreGrey_data();
    void numbersThatMeanAnyAreGrey();
    void classNeverRestsBetweenFiveAndFourteen_data();
    void classNeverRestsBetweenFiveAndFourteen();
    void classStepsOverTheGap();
    void keyRepeatOnTheClassStaysInItsValues();
    void typedTypeChecksItsFeatures_data();
    void typedTypeChecksItsFeatures();
    void featuresWriteTheirBit_data();
    void featuresWriteTheirBit();
    void featuresOfACatalogueTypeAreLocked();

    void stateFollowsTheFilter_data();
    void stateFollowsTheFilter();
    void longPressSurvivesTheAdaptation();
    void switchingTheFilterOnAdaptsTheState();
    void anyClassNeverChangesTheState_data();
    void anyClassNeverChangesTheState();
    void filterThatIsOffNeverChangesTheState();
    void notActiveIsNeverAdapted();

private:
    std::unique_ptr<ShownEditor> shown;
};

void tst_TypeFilterSection::init()
{
    shown = std::make_unique<ShownEditor>();
    shown->edit();
}

void tst_TypeFilterSection::cleanup()
{
    shown.reset();
}

void tst_TypeFilterSection::typeFilterSwitchEnablesAndShades()
{
    QWidget* frame = shown->widget("F_Type");
    QVERIFY(!frame->isEnabled());
    QCOMPARE(frame->styleSheet(), QStringLiteral("background-color: rgba(187, 187, 187, 150)"));
    shown->button("checkBoxType")->click();
    QVERIFY(frame->isEnabled());
    QCOMPARE(frame->styleSheet(), QString());
    QVERIFY(shown->script()->activateFilter.at(0));
    QCOMPARE(int(shown->record().at(5)) & 0x0F, 0x08);
    shown->button("checkBoxType")->click();
    QVERIFY(!shown->script()->activateFilter.at(0));
    QCOMPARE(frame->styleSheet(), QStringLiteral("background-color: rgba(187, 187, 187, 150)"));
}

void tst_TypeFilterSection::listOfTypesIsPaintedInTheColourOfItsRow()
{
    QComboBox* list = shown->combo("comboBoxSelectType");
    const QString start = QStringLiteral("combobox-popup: 0; selection-color: black; selection-background-color: "
                                         "rgba(0,0,0,20);background-color: ");
    QCOMPARE(list->styleSheet(), start + QStringLiteral("rgba(187, 187, 187, 150);"));
    list->setToolTip(QStringLiteral("old"));
    shown->choose("comboBoxSelectType", QStringLiteral("PNB-NX (31 30 10)"));
    QCOMPARE(list->styleSheet(), start + QStringLiteral("rgba(240, 240, 240, 255);"));
    QVERIFY(list->toolTip().isEmpty());

    auto unknown = TerminalTypePtr::create();
    unknown->label = QStringLiteral("not in the catalogue");
    unknown->terminalClass = 1;
    shown->script()->terminalFilter = unknown;
    shown->edit();
    QCOMPARE(list->currentIndex(), -1);
    QCOMPARE(list->styleSheet(), start + QStringLiteral("red;"));
    QCOMPARE(shown->script()->terminalFilter, unknown);
    QCOMPARE(shown->spin("spinBoxClass")->value(), 1);
}

void tst_TypeFilterSection::catalogueTypeFillsTheNumbersAndLocksThem()
{
    shown->button("checkBoxType")->click();
    QVERIFY(shown->widget("F_ManualType")->isEnabled());
    const QComboBox* list = shown->combo("comboBoxSelectType");
    for (int row = 1; row < list->count(); ++row) {
        shown->choose("comboBoxSelectType", list->itemText(row));
        const TerminalTypePtr type = shown->model->terminalTypes().value(row);
        QCOMPARE(shown->script()->terminalFilter, type);
        QVERIFY(!shown->widget("F_ManualType")->isEnabled());
        QCOMPARE(shown->spin("spinBoxClass")->value(), int(type->terminalClass));
        QCOMPARE(shown->spin("spinBoxVersion")->value(), int(type->version));
        QCOMPARE(shown->spin("spinBoxType")->value(), int(type->type));
        QCOMPARE(shown->spin("spinBoxCharacteristic")->value(), int(type->characteristic));
    }
}

void tst_TypeFilterSection::ownTypeKeepsTheNumbersOfTheFormerOne()
{
    shown->button("checkBoxType")->click();
    shown->choose("comboBoxSelectType", QStringLiteral("Haldeon-NX (21 41 20)"));
    const QByteArray before = shown->record();
    shown->choose("comboBoxSelectType", texts::placeholderOtherType());
    QCOMPARE(shown->record(), before);
    QVERIFY(!shown->model->terminalTypes().contains(shown->script()->terminalFilter));
    QCOMPARE(shown->script()->terminalFilter->label, texts::placeholderOtherType());
    QVERIFY(shown->widget("F_ManualType")->isEnabled());
}

void tst_TypeFilterSection::catalogueIsNeverWrittenThroughAScript()
{
    const auto numbers = [this] {
        QStringList list;
        const TerminalTypes types = shown->model->terminalTypes();
        for (const TerminalTypePtr& type : types) {
            list.append(QStringLiteral("%1 %2 %3 %4")
                            .arg(type->terminalClass)
                            .arg(type->version)
                            .arg(type->type)
                            .arg(type->characteristic));
        }
        return list;
    };
    const QStringList before = numbers();
    // A script that was read from a unit shares the row for "any terminal" with all others.
    shown->model->readScriptRecords(shown->model->makeScriptRecords());
    QCOMPARE(shown->script(0)->terminalFilter, shown->script(1)->terminalFilter);
    shown->edit();
    shown->filterByClass(2, true);
    for (const char* name : {"spinBoxVersion", "spinBoxType", "spinBoxCharacteristic"}) {
        shown->spin(name)->setValue(7);
    }
    // Nor does a catalogue row take what a locked field is set to.
    shown->choose("comboBoxSelectType", QStringLiteral("PNB-NX (31 30 10)"));
    for (const char* name : {"spinBoxClass", "spinBoxVersion", "spinBoxType", "spinBoxCharacteristic"}) {
        shown->spin(name)->setValue(1);
    }
    QCOMPARE(numbers(), before);
    QCOMPARE(int(shown->script(1)->terminalFilter->terminalClass), 15);
}

void tst_TypeFilterSection::numbersAreWrittenToTheOwnType_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("class") << "spinBoxClass" << 15 << "2" << QByteArray::fromHex("200000");
    QTest::newRow("version") << "spinBoxVersion" << 15 << "a" << QByteArray::fromHex("fa0000");
    QTest::newRow("type") << "spinBoxType" << 255 << "4b" << QByteArray::fromHex("f04b00");
    QTest::newRow("characteristic") << "spinBoxCharacteristic" << 255 << "9f" << QByteArray::fromHex("f0009f");
}

void tst_TypeFilterSection::numbersAreWrittenToTheOwnType()
{
    QFETCH(const QString, name);
    QFETCH(const int, maximum);
    QFETCH(const QString, keys);
    QFETCH(const QByteArray, bytes);
    auto* field = shown->find<QSpinBox>(name);
    QCOMPARE(field->minimum(), 0);
    QCOMPARE(field->maximum(), maximum);
    QCOMPARE(field->displayIntegerBase(), 16);
    QVERIFY(!field->wrapping());
    shown->button("checkBoxType")->click();
    ShownEditor::type(field, qPrintable(keys));
    QCOMPARE(shown->record().mid(15, 3), bytes);
}

void tst_TypeFilterSection::numbersThatMeanAnyAreGrey_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("value");
    QTest::addColumn<bool>("grey");
    QTest::newRow("class 15") << "spinBoxClass" << 15 << true;
    QTest::newRow("class 0") << "spinBoxClass" << 0 << false;
    QTest::newRow("class 4") << "spinBoxClass" << 4 << false;
    QTest::newRow("version 0") << "spinBoxVersion" << 0 << true;
    QTest::newRow("version 1") << "spinBoxVersion" << 1 << false;
    QTest::newRow("type 0") << "spinBoxType" << 0 << true;
    QTest::newRow("type 15") << "spinBoxType" << 15 << true;
    QTest::newRow("type 16") << "spinBoxType" << 16 << false;
    QTest::newRow("characteristic 0") << "spinBoxCharacteristic" << 0 << true;
    QTest::newRow("characteristic 255") << "spinBoxCharacteristic" << 255 << false;
}

void tst_TypeFilterSection::numbersThatMeanAnyAreGrey()
{
    QFETCH(const QString, name);
    QFETCH(const int, value);
    QFETCH(const bool, grey);
    auto* field = shown->find<QSpinBox>(name);
    const QString expected =
        grey ? QStringLiteral("background-color: rgb(215,215,215)") : QStringLiteral("background-color: transparent");
    field->setValue(grey ? 3 : 0);
    field->setValue(value);
    QCOMPARE(field->styleSheet(), expected);

    // The same when a script is shown.
    shown->edit(1);
    shown->edit(0);
    QCOMPARE(field->value(), value);
    QCOMPARE(field->styleSheet(), expected);
}

void tst_TypeFilterSection::classNeverRestsBetweenFiveAndFourteen_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("rests");
    for (int value = 0; value <= 15; ++value) {
        const int rests = value < 5 ? value : value < 10 ? 15 : value < 15 ? 4 : 15;
        QTest::addRow("%d", value) << value << rests;
    }
}

void tst_TypeFilterSection::classNeverRestsBetweenFiveAndFourteen()
{
    QFETCH(const int, value);
    QFETCH(const int, rests);
    shown->spin("spinBoxClass")->setValue(value);
    QCOMPARE(shown->spin("spinBoxClass")->value(), rests);
    QCOMPARE(int(shown->script()->terminalFilter->terminalClass), rests);
}

void tst_TypeFilterSection::classStepsOverTheGap()
{
    shown->button("checkBoxType")->click();
    QSpinBox* field = shown->spin("spinBoxClass");
    field->setValue(4);
    QTest::keyClick(field, Qt::Key_Up);
    QCOMPARE(field->value(), 15);
    QTest::keyClick(field, Qt::Key_Down);
    QCOMPARE(field->value(), 4);
}

void tst_TypeFilterSection::keyRepeatOnTheClassStaysInItsValues()
{
    QSpinBox* field = shown->spin("spinBoxClass");
    shown->check("checkBoxType", true);
    for (int i = 0; i < 200; ++i) {
        QTest::keyClick(field, i / 7 % 2 == 0 ? Qt::Key_Down : Qt::Key_Up);
        QVERIFY(field->value() <= 4 || field->value() == 15);
        QCOMPARE(int(shown->script()->terminalFilter->terminalClass), field->value());
    }
}

void tst_TypeFilterSection::typedTypeChecksItsFeatures_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<int>("features");
    QTest::newRow("0c") << "0c" << 0x0C;
    QTest::newRow("upper half only") << "f0" << 0;
    QTest::newRow("all") << "1f" << 0x0F;
    QTest::newRow("battery") << "01" << 0x01;
    QTest::newRow("power and connection") << "0a" << 0x0A;
}

void tst_TypeFilterSection::typedTypeChecksItsFeatures()
{
    QFETCH(const QString, keys);
    QFETCH(const int, features);
    shown->button("checkBoxType")->click();
    ShownEditor::type(shown->spin("spinBoxType"), qPrintable(keys));
    const int type = keys.toInt(nullptr, 16);
    QCOMPARE(shown->spin("spinBoxType")->value(), type);
    QCOMPARE(int(shown->script()->terminalFilter->type), type);
    QCOMPARE(shown->spin("spinBoxType")->styleSheet(), type <= 15 ? QStringLiteral("background-color: rgb(215,215,215)")
                                                                  : QStringLiteral("background-color: transparent"));
    const std::pair<const char*, int> boxes[] = {
        {"checkBoxAlwaysConnect", 8}, {"checkBoxSound", 4}, {"checkBoxExternalPower", 2}, {"checkBoxBattery", 1}};
    for (const auto& [name, bit] : boxes) {
        const bool checked = (features & bit) != 0;
        QCOMPARE(shown->button(name)->isChecked(), checked);
        QCOMPARE(shown->button(name)->styleSheet(), checked ? QStringLiteral("background-color: transparent")
                                                            : QStringLiteral("background-color: rgb(215,215,215)"));
    }
}

void tst_TypeFilterSection::featuresWriteTheirBit_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("bit");
    QTest::newRow("always connected") << "checkBoxAlwaysConnect" << 8;
    QTest::newRow("sound") << "checkBoxSound" << 4;
    QTest::newRow("external power") << "checkBoxExternalPower" << 2;
    QTest::newRow("battery") << "checkBoxBattery" << 1;
}

void tst_TypeFilterSection::featuresWriteTheirBit()
{
    QFETCH(const QString, name);
    QFETCH(const int, bit);
    shown->button("checkBoxType")->click();
    QSpinBox* type = shown->spin("spinBoxType");
    for (const int rest : {0x00, 0xFF}) {
        type->setValue(rest & ~bit);
        shown->button(name)->click();
        QCOMPARE(type->value(), rest | bit);
        QCOMPARE(int(shown->script()->terminalFilter->type), rest | bit);
        QCOMPARE(shown->button(name)->styleSheet(), QStringLiteral("background-color: transparent"));
        shown->button(name)->click();
        QCOMPARE(type->value(), rest & ~bit & 0xFF);
        QCOMPARE(int(shown->script()->terminalFilter->type), rest & ~bit & 0xFF);
        QCOMPARE(shown->button(name)->styleSheet(), QStringLiteral("background-color: rgb(215,215,215)"));
    }
}

void tst_TypeFilterSection::featuresOfACatalogueTypeAreLocked()
{
    shown->button("checkBoxType")->click();
    shown->choose("comboBoxSelectType", QStringLiteral("PNB-NX (31 30 10)"));
    shown->button("checkBoxSound")->click();
    QCOMPARE(shown->spin("spinBoxType")->value(), 0x30);
}

void tst_TypeFilterSection::stateFollowsTheFilter_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("from");
    QTest::addColumn<int>("terminalClass");
    QTest::addColumn<QString>("to");
    QTest::addColumn<QString>("linked");
    const QString button = texts::statePanicButton();
    const QString analog = texts::stateAnalog();
    const QString other = texts::otherState();
    const QString none;
    QTest::newRow("class 3: plain 1 is button 1") << 1 << texts::channelAlarm() << 3 << button << texts::stateButton1();
    QTest::newRow("class 3: plain 0 is no button") << 0 << texts::channelNorm() << 3 << other << none;
    QTest::newRow("class 3: analog 4 is button 3") << 4 << analog << 3 << button << texts::stateButton3();
    QTest::newRow("class 3: other 82 is button 2") << 0x82 << other << 3 << button << texts::stateButton2();
    QTest::newRow("class 3: other 77 stays") << 0x77 << other << 3 << other << none;
    QTest::newRow("class 3: a button stays") << 2 << button << 3 << button << texts::stateButton2();
    QTest::newRow("class 4: plain 0 is norm") << 0 << texts::channelNorm() << 4 << analog << texts::analogNorm();
    QTest::newRow("class 4: button 3 is tamper") << 4 << button << 4 << analog << texts::analogTamper();
    QTest::newRow("class 4: long press is none") << 0x84 << button << 4 << other << none;
    QTest::newRow("class 4: other 11 is outside") << 11 << other << 4 << analog << texts::analogTemperatureOutside();
    QTest::newRow("class 4: analog stays") << 5 << analog << 4 << analog << texts::analogPowerFault();
    QTest::newRow("class 1: analog 3 is tamper") << 3 << analog << 1 << texts::channelTamper() << none;
    QTest::newRow("class 1: analog 9 is none") << 9 << analog << 1 << other << none;
    QTest::newRow("class 2: button 2 is short") << 2 << button << 2 << texts::channelShort() << none;
    QTest::newRow("class 0: long press is none") << 0x88 << button << 0 << other << none;
    QTest::newRow("class 0: other 1 is alarm") << 1 << other << 0 << texts::channelAlarm() << none;
    QTest::newRow("class 2: other 255 is not active") << 255 << other << 2 << texts::placeholderNotActive() << none;
    QTest::newRow("class 1: plain stays") << 3 << texts::channelTamper() << 1 << texts::channelTamper() << none;
}

void tst_TypeFilterSection::stateFollowsTheFilter()
{
    QFETCH(const int, code);
    QFETCH(const QString, from);
    QFETCH(const int, terminalClass);
    QFETCH(const QString, to);
    QFETCH(const QString, linked);
    ParamItemPtr state;
    const ParamItems rows = shown->model->stateChannels();
    for (const ParamItemPtr& row : rows) {
        if (row->name == from && row->effectiveCode() == code) {
            state = row;
        }
    }
    shown->script()->stateChannel = state ? state : scriptRules::makeOtherState(quint8(code));
    shown->script()->numberChannels = {true, false, false, false};
    shown->edit();
    QCOMPARE(shown->combo("comboStateChannel")->currentText(), from);
    shown->check("checkBoxType", true);

    shown->spin("spinBoxClass")->setValue(terminalClass);
    QCOMPARE(shown->combo("comboStateChannel")->currentText(), to);
    QCOMPARE(shown->script()->stateChannel->name, to);
    QCOMPARE(int(quint8(shown->record().at(3))), code);
    QCOMPARE(int(shown->spin("spinBoxOtherStateChannel")->value()), code);
    QVERIFY(shown->script()->activateFilter.at(0));
    QVERIFY(shown->button("checkBoxType")->isChecked());
    if (!linked.isEmpty()) {
        const char* list = to == texts::statePanicButton() ? "comboBoxPNB" : "comboBoxAnalog";
        QCOMPARE(shown->combo(list)->currentText(), linked);
        QCOMPARE(shown->script()->stateChannel->linked->name, linked);
    }
    QCOMPARE(shown->script()->notActive, code == 255);
}

void tst_TypeFilterSection::longPressSurvivesTheAdaptation()
{
    shown->chooseState(texts::otherState());
    ShownEditor::type(shown->spin("spinBoxOtherStateChannel"), "81");
    shown->filterByClass(3, true);
    QCOMPARE(shown->script()->stateChannel->linked->code, quint8(0x81));
    QVERIFY(shown->button("radioLongPress")->isChecked());
    QCOMPARE(shown->combo("comboBoxPNB")->currentText(), texts::stateButton1());
    QVERIFY(!shown->widget("F_PNB")->isHidden());
}

void tst_TypeFilterSection::switchingTheFilterOnAdaptsTheState()
{
    shown->chooseState(texts::channelAlarm());
    shown->filterByClass(4, false);
    QCOMPARE(shown->combo("comboStateChannel")->currentText(), texts::channelAlarm());
    shown->button("checkBoxType")->click();
    QCOMPARE(shown->combo("comboStateChannel")->currentText(), texts::stateAnalog());
    QCOMPARE(shown->combo("comboBoxAnalog")->currentText(), texts::analogHigh());
}

void tst_TypeFilterSection::anyClassNeverChangesTheState_data()
{
    QTest::addColumn<int>("row");
    const RelayInfo model;
    for (int row = 0; row < model.stateChannels().size(); ++row) {
        QTest::addRow("row %d", row) << row;
    }
}

void tst_TypeFilterSection::anyClassNeverChangesTheState()
{
    QFETCH(const int, row);
    shown->script()->stateChannel = shown->model->stateChannels().value(row);
    shown->edit();
    const ParamItemPtr before = shown->script()->stateChannel;
    shown->filterByClass(15, true);
    shown->spin("spinBoxVersion")->setValue(3);
    QCOMPARE(shown->script()->stateChannel, before);
    QVERIFY(shown->button("checkBoxType")->isChecked());
}

void tst_TypeFilterSection::filterThatIsOffNeverChangesTheState()
{
    shown->chooseState(texts::channelAlarm());
    for (const int terminalClass : {3, 4, 1}) {
        shown->filterByClass(terminalClass, false);
        QCOMPARE(shown->combo("comboStateChannel")->currentText(), texts::channelAlarm());
    }
}

void tst_TypeFilterSection::notActiveIsNeverAdapted()
{
    for (const int terminalClass : {3, 4, 1}) {
        shown->filterByClass(terminalClass, true);
        QCOMPARE(shown->script()->stateChannel, shown->model->stateChannels().value(0));
    }
}

QTEST_MAIN(tst_TypeFilterSection)
#include "tst_TypeFilterSection.moc"
