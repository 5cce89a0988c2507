#include "ui/scripts/ShownEditor.h"

#include <QLineEdit>
#include <QListView>
#include <QMetaMethod>
#include <QScrollArea>
#include <QScrollBar>
#include <QWheelEvent>
#include <QtTest/qtestspontaneevent.h>

/// The script editor as a form: its captions and lists, its state without a script, keyboard, wheel and size.
class tst_Setting_Script_Widget : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void captionsComeFromTheCatalogue_data();
    void captionsComeFromTheCatalogue();
    void listsHoldTheRowsOfTheirTable_data();
    void listsHoldTheRowsOfTheirTable();
    void listOfTerminalStatesIsCheckableAndWhole();
    void startsWithoutAScript();
    void controlsDoNothingWithoutAScript();
    void furtherControlsFollowTheListsWithoutAScript();
    void nullScriptIsIgnored();
    void slotsAreReachableByName_data();
    void slotsAreReachableByName();

    void wheelScrollsThePanelAndEditsNothing();
    void tabWalksFromTopToBottom();
    void panelFitsALowScreen();
    void rowsOfAListAreAlikeAndMeasuredOnce();

private:
    std::unique_ptr<ShownEditor> shown;
};

void tst_Setting_Script_Widget::init()
{
    shown = std::make_unique<ShownEditor>();
}

void tst_Setting_Script_Widget::cleanup()
{
    shown.reset();
}

void tst_Setting_Script_Widget::captionsComeFromTheCatalogue_data()
{
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, const char* text) { QTest::newRow(name) << QString::fromUtf8(text); };
    row("titleName", "Name of script:");
    row("titleMode", "Mode of operation:");
    row("labelTitleDelay", "Activation delay:");
    row("labelTitleDuration", "Duration:");
    row("titleStateChannel", "Activation by channel's state:");
    row("radioShortPress", "Short press");
    row("radioLongPress", "Long press");
    row("titleNumberChannel", "Numbers of channel:");
    row("titleStateDevice", "Activation by terminal's status:");
    row("titleFilterTerminal", "Filter of terminal");
    row("checkBoxType", "Filter by type of terminal");
    row("titleClass", "Class:");
    row("titleVersion", "Version:");
    row("titleType", "Type");
    row("titleDescription", "Description");
    row("checkBoxAlwaysConnect", "Always connected");
    row("checkBoxSound", "Sound");
    row("checkBoxExternalPower", "Ext. power");
    row("checkBoxBattery", "Res. power");
    row("checkBoxAddress", "Filter by addresses");
    row("titleFilterDateTime", "Filter by date and time");
    row("titleFilterDays", "Filter by days of week:");
    row("checkBoxMon", "MON");
    row("checkBoxTue", "TUE");
    row("checkBoxWed", "WED");
    row("checkBoxThu", "THU");
    row("checkBoxFri", "FRI");
    row("checkBoxSat", "SAT");
    row("checkBoxSun", "SUN");
    row("checkBoxTime", "Filter by time:");
    row("checkBoxDate", "Filter by date:");
    row("titleStart", "Start:");
    row("titleEnd", "End:");
    row("ButtonAddressHUBN", "HUBN");
}

void tst_Setting_Script_Widget::captionsComeFromTheCatalogue()
{
    QFETCH(const QString, text);
    QCOMPARE(shown->widget(QTest::currentDataTag())->property("text").toString(), text);
}

void tst_Setting_Script_Widget::listsHoldTheRowsOfTheirTable_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("comboModeWorkRelay") << 5;
    QTest::newRow("comboDelay") << 8;
    QTest::newRow("comboDuration") << 32;
    QTest::newRow("comboBoxPNB") << 4;
    QTest::newRow("comboBoxAnalog") << 10;
    QTest::newRow("comboStateChannel") << 8;
}

void tst_Setting_Script_Widget::listsHoldTheRowsOfTheirTable()
{
    QFETCH(const int, count);
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    const ParamItems table = name == QLatin1String("comboModeWorkRelay") ? shown->model->modes()
                             : name == QLatin1String("comboDelay")       ? shown->model->delays()
                             : name == QLatin1String("comboDuration")    ? shown->model->durations()
                             : name == QLatin1String("comboBoxPNB")      ? shown->model->buttonStates()
                             : name == QLatin1String("comboBoxAnalog")   ? shown->model->analogStates()
                                                                         : shown->model->stateChannels();
    const QComboBox* list = shown->combo(QTest::currentDataTag());
    QCOMPARE(list->count(), count);
    QCOMPARE(list->currentIndex(), -1);
    for (const ParamItemPtr& row : table) {
        const int index = list->findText(row->name);
        QVERIFY(index >= 0);
        QCOMPARE(list->itemData(index, Qt::BackgroundRole).value<QColor>(), row->background);
        QCOMPARE(list->itemData(index, Qt::ForegroundRole).value<QColor>(), row->foreground);
        QCOMPARE(list->itemIcon(index).isNull(), row->icon.isEmpty());
    }
}

void tst_Setting_Script_Widget::listOfTerminalStatesIsCheckableAndWhole()
{
    shown->open();
    const QListWidget* list = shown->states();
    const ParamItems table = shown->model->terminalStates();
    QCOMPARE(list->count(), table.size());
    for (int i = 0; i < list->count(); ++i) {
        const QListWidgetItem* item = list->item(i);
        QCOMPARE(item->text(), table.at(i)->name);
        QCOMPARE(item->background().color(), table.at(i)->background);
        QCOMPARE(item->foreground().color(), table.at(i)->foreground);
        QCOMPARE(item->checkState(), Qt::Unchecked);
        QVERIFY(item->flags().testFlag(Qt::ItemIsUserCheckable));
        QVERIFY(list->viewport()->rect().contains(list->visualItemRect(item)));
    }
}

void tst_Setting_Script_Widget::startsWithoutAScript()
{
    QVERIFY(!shown->editor->currentScript());
    for (const char* name : {"comboModeWorkRelay", "comboDelay", "comboDuration", "comboStateChannel", "comboBoxPNB",
                             "comboBoxAnalog", "comboBoxSelectType"}) {
        QCOMPARE(shown->combo(name)->currentIndex(), -1);
    }
    for (const char* name : {"F_PNB", "comboBoxAnalog", "spinBoxOtherStateChannel"}) {
        QVERIFY(shown->widget(name)->isHidden());
    }
    QVERIFY(!shown->widget("F_NumChannel")->isEnabled());
    QVERIFY(!shown->widget("F_ManualType")->isEnabled());
    QCOMPARE(shown->spin("spinBoxClass")->value(), 15);
    for (int channel = 1; channel <= 4; ++channel) {
        QCOMPARE(shown->button(QStringLiteral("buttonChannel%1").arg(channel))->styleSheet(),
                 QStringLiteral("background-color: rgb(187,187,187)"));
    }
}

void tst_Setting_Script_Widget::controlsDoNothingWithoutAScript()
{
    const QByteArrayList before = shown->model->makeScriptRecords();
    for (QComboBox* combo : shown->all<QComboBox>()) {
        for (int i = combo->count() - 1; i >= 0; --i) {
            combo->setCurrentIndex(i);
        }
    }
    for (QSpinBox* spin : shown->all<QSpinBox>()) {
        spin->setValue(spin->maximum());
        spin->setValue(spin->minimum());
    }
    for (QAbstractButton* button : shown->all<QAbstractButton>()) {
        button->setEnabled(true);
        button->click();
    }
    shown->find<QLineEdit>(QStringLiteral("lineEditNameScript"))->setText(QStringLiteral("x"));
    shown->states()->item(0)->setCheckState(Qt::Checked);
    shown->editor->sl_UpDateConnectList();
    QCOMPARE(shown->model->makeScriptRecords(), before);
    QVERIFY(shown->titles.isEmpty());
}

void tst_Setting_Script_Widget::furtherControlsFollowTheListsWithoutAScript()
{
    shown->chooseState(texts::statePanicButton());
    QVERIFY(!shown->widget("F_PNB")->isHidden());
    QCOMPARE(shown->combo("comboBoxPNB")->currentIndex(), 0);
    QVERIFY(shown->button("radioShortPress")->isChecked());
    shown->chooseState(texts::stateAnalog());
    QVERIFY(shown->widget("F_PNB")->isHidden());
    QCOMPARE(shown->combo("comboBoxAnalog")->currentIndex(), 0);
    shown->choose("comboBoxSelectType", texts::placeholderOtherType());
    QVERIFY(shown->find<QWidget>(QStringLiteral("spinBoxClass"))->isEnabledTo(shown->widget("F_Type")));
    shown->choose("comboBoxSelectType", QStringLiteral("PNB-NX (31 30 10)"));
    QVERIFY(!shown->widget("F_ManualType")->isEnabled());
}

void tst_Setting_Script_Widget::nullScriptIsIgnored()
{
    shown->edit(3);
    shown->editor->sl_SetNewScript({});
    QCOMPARE(shown->editor->currentScript(), shown->script(3));
    QCOMPARE(shown->refreshes, 0);
    QVERIFY(shown->titles.isEmpty());
}

void tst_Setting_Script_Widget::slotsAreReachableByName_data()
{
    QTest::addColumn<QString>("slot");
    for (const char* slot : {"sl_SetNewScript(QSharedPointer<ScriptInfo>)",
                             "sl_UpDateConnectList()",
                             "on_lineEditNameScript_textChanged(QString)",
                             "on_comboModeWorkRelay_currentIndexChanged(int)",
                             "on_comboDelay_currentIndexChanged(int)",
                             "on_comboDuration_currentIndexChanged(int)",
                             "on_comboStateChannel_currentIndexChanged(int)",
                             "on_comboBoxPNB_currentIndexChanged(int)",
                             "on_radioShortPress_clicked()",
                             "on_radioLongPress_clicked()",
                             "on_comboBoxAnalog_currentIndexChanged(int)",
                             "on_spinBoxOtherStateChannel_valueChanged(int)",
                             "sl_buttonChannel_clicked()",
                             "on_listStateDevice_itemChanged(QListWidgetItem*)",
                             "on_listStateDevice_itemClicked(QListWidgetItem*)",
                             "on_checkBoxType_clicked()",
                             "on_comboBoxSelectType_currentIndexChanged(int)",
                             "on_spinBoxClass_valueChanged(int)",
                             "on_spinBoxVersion_valueChanged(int)",
                             "on_spinBoxType_valueChanged(int)",
                             "on_spinBoxCharacteristic_valueChanged(int)",
                             "on_checkBoxAlwaysConnect_clicked()",
                             "on_checkBoxSound_clicked()",
                             "on_checkBoxExternalPower_clicked()",
                             "on_checkBoxBattery_clicked()",
                             "on_checkBoxAddress_clicked()",
                             "sl_addressButton_clicked()",
                             "sl_checkBoxDayOfWeek_clicked()",
                             "on_checkBoxTime_clicked()",
                             "on_checkBoxDate_clicked()",
                             "sl_spinBoxTimeMinute_changed()",
                             "sl_spinBoxTimeHour_changed()",
                             "sl_spinBoxDateDay_changed()",
                             "sl_comboBoxDateMonth_changed()"}) {
        QTest::newRow(slot) << QString::fromLatin1(slot);
    }
}

void tst_Setting_Script_Widget::slotsAreReachableByName()
{
    const QMetaObject* editor = shown->editor->metaObject();
    const QMetaMethod slot = editor->method(editor->indexOfSlot(QTest::currentDataTag()));
    QVERIFY(slot.isValid());
    if (slot.parameterCount() == 0) {
        // Nothing has been clicked, and those that ask who has sent find nobody.
        shown->edit();
        const QByteArray before = shown->record();
        QVERIFY(slot.invoke(shown->editor.get()));
        QCOMPARE(shown->record(), before);
    }
}

void tst_Setting_Script_Widget::wheelScrollsThePanelAndEditsNothing()
{
    shown->script()->activateFilter = {true, true, true, true};
    shown->edit();
    shown->open();
    shown->editor->resize(420, 300);
    const QByteArray before = shown->record();
    auto* area = shown->find<QScrollArea>(QStringLiteral("scrollArea"));
    QTRY_VERIFY(area->verticalScrollBar()->maximum() > 0);
    const auto turn = [](QWidget* field) {
        const QPointF place = field->rect().center();
        QWheelEvent event(place, field->mapToGlobal(place.toPoint()), {}, {0, -120}, Qt::NoButton, {},
                          Qt::NoScrollPhase, false);
        QSpontaneKeyEvent::setSpontaneous(&event); // only a wheel of the user's reaches the widgets around
        qApp->notify(field, &event);
    };
    for (QComboBox* combo : shown->all<QComboBox>()) {
        combo->clearFocus();
        area->verticalScrollBar()->setValue(0);
        turn(combo);
        QVERIFY2(area->verticalScrollBar()->value() > 0, qPrintable(combo->objectName()));
    }
    for (QSpinBox* spin : shown->all<QSpinBox>()) {
        spin->clearFocus();
        turn(spin);
    }
    QCOMPARE(shown->record(), before);

    // In a field that the user has gone to, the wheel is the user's.
    shown->combo("comboDuration")->setFocus();
    turn(shown->combo("comboDuration"));
    QCOMPARE(int(shown->record().at(2)), 8);
}

void tst_Setting_Script_Widget::tabWalksFromTopToBottom()
{
    shown->script()->activateFilter = {true, true, true, true};
    shown->script()->stateChannel = shown->model->stateChannels().value(18);
    shown->edit();
    shown->open();
    QWidget* first = shown->widget("lineEditNameScript");
    first->setFocus();
    QStringList walked;
    do {
        walked.append(QApplication::focusWidget()->objectName());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    } while (QApplication::focusWidget() != first && walked.size() < 200);

    QStringList expected = {QStringLiteral("lineEditNameScript"), QStringLiteral("comboModeWorkRelay"),
                            QStringLiteral("comboDelay"),         QStringLiteral("comboDuration"),
                            QStringLiteral("comboStateChannel"),  QStringLiteral("comboBoxPNB"),
                            QStringLiteral("radioShortPress")}; // the other one is reached by the arrow keys
    for (int channel = 1; channel <= 4; ++channel) {
        expected.append(QStringLiteral("buttonChannel%1").arg(channel));
    }
    expected += {QStringLiteral("listStateDevice"),       QStringLiteral("checkBoxType"),
                 QStringLiteral("comboBoxSelectType"),    QStringLiteral("spinBoxClass"),
                 QStringLiteral("spinBoxVersion"),        QStringLiteral("spinBoxType"),
                 QStringLiteral("spinBoxCharacteristic"), QStringLiteral("checkBoxAlwaysConnect"),
                 QStringLiteral("checkBoxSound"),         QStringLiteral("checkBoxExternalPower"),
                 QStringLiteral("checkBoxBattery"),       QStringLiteral("checkBoxAddress"),
                 QStringLiteral("ButtonAddressHUBN")};
    for (int address = 1; address <= 31; ++address) {
        expected.append(QStringLiteral("ButtonAddress%1").arg(address));
    }
    for (const char* day : {"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"}) {
        expected.append(QStringLiteral("checkBox") + QLatin1String(day));
    }
    expected += {QStringLiteral("checkBoxTime"), QStringLiteral("spinBoxHour"), QStringLiteral("spinBoxMinute"),
                 QStringLiteral("spinBoxHour"), QStringLiteral("spinBoxMinute")};
    expected += {QStringLiteral("checkBoxDate"), QStringLiteral("spinBoxDay"), QString(), QStringLiteral("spinBoxDay"),
                 QString()}; // the months have no names
    QCOMPARE(walked, expected);
}

void tst_Setting_Script_Widget::panelFitsALowScreen()
{
    QVERIFY(shown->editor->minimumSizeHint().height() < 400);
    QVERIFY(shown->editor->minimumSizeHint().width() < 420);
}

void tst_Setting_Script_Widget::rowsOfAListAreAlikeAndMeasuredOnce()
{
    shown->open();
    for (const QComboBox* combo : shown->all<QComboBox>()) {
        auto* const list = qobject_cast<QListView*>(combo->view());
        QVERIFY2(list->uniformItemSizes(), qPrintable(combo->objectName()));
        for (int row = 1; row < combo->count(); ++row) {
            QCOMPARE(list->sizeHintForRow(row), list->sizeHintForRow(0));
        }
    }
}

QTEST_MAIN(tst_Setting_Script_Widget)
#include "tst_Setting_Script_Widget.moc"
