// How the script editor is built: texts, lists, the parts that the designer form leaves room for, and tab order.

#include <utility>

#include <QAbstractItemView>
#include <QSignalBlocker>

#include "texts/texts.h"
#include "ui/PlainPartsStyle.h"
#include "ui/Setting_Script_Widget.h"
#include "ui/SpecialDateFrame.h"
#include "ui/SpecialTimeFrame.h"
#include "ui_Setting_Script_Widget.h"

namespace
{

constexpr int terminalCount = 31;
constexpr int headUnitIndex = 31;
constexpr int addressDiameter = 22;
constexpr int addressColumns = 11; // the head unit's button takes two places of the first row

void addRow(QComboBox* combo, const QString& text, const QString& icon, const QColor& background,
            const QColor& foreground)
{
    combo->addItem(QIcon(icon), text);
    combo->setItemData(combo->count() - 1, background, Qt::BackgroundRole);
    combo->setItemData(combo->count() - 1, foreground, Qt::ForegroundRole);
}

/// Fills a combo with table rows, each name once, and leaves it without a choice.
void fillCombo(QComboBox* combo, const ParamItems& rows)
{
    const QSignalBlocker blocker(combo);
    for (const ParamItemPtr& row : rows) {
        if (combo->findText(row->name) < 0) {
            addRow(combo, row->name, row->icon, row->background, row->foreground);
        }
    }
    combo->setCurrentIndex(-1);
}

template <typename Frame, typename... Arguments>
Frame* buildInto(QFrame* place, Arguments... arguments)
{
    auto* frame = new Frame(place, arguments...);
    place->layout()->addWidget(frame);
    return frame;
}

} // namespace

void Setting_Script_Widget::setTexts()
{
    const std::pair<QObject*, QString> captions[] = {
        {ui->titleName, texts::editorName()},
        {ui->titleMode, texts::editorMode()},
        {ui->labelTitleDelay, texts::editorDelay()},
        {ui->labelTitleDuration, texts::editorDuration()},
        {ui->titleStateChannel, texts::editorChannelState()},
        {ui->radioShortPress, texts::pressShort()},
        {ui->radioLongPress, texts::pressLong()},
        {ui->titleNumberChannel, texts::editorChannelNumbers()},
        {ui->titleStateDevice, texts::editorTerminalStatus()},
        {ui->titleFilterTerminal, texts::editorFilterOfTerminal()},
        {ui->checkBoxType, texts::editorFilterByType()},
        {ui->titleClass, texts::editorClass()},
        {ui->titleVersion, texts::editorVersion()},
        {ui->titleType, texts::editorType()},
        {ui->titleDescription, texts::editorDescription()},
        {ui->checkBoxAlwaysConnect, texts::featureAlwaysConnected()},
        {ui->checkBoxSound, texts::featureSound()},
        {ui->checkBoxExternalPower, texts::featureExternalPower()},
        {ui->checkBoxBattery, texts::featureReservePower()},
        {ui->checkBoxAddress, texts::editorFilterByAddresses()},
        {ui->titleFilterDateTime, texts::editorFilterByDateAndTime()},
        {ui->titleFilterDays, texts::editorFilterByDays()},
        {ui->checkBoxMon, texts::dayMonday()},
        {ui->checkBoxTue, texts::dayTuesday()},
        {ui->checkBoxWed, texts::dayWednesday()},
        {ui->checkBoxThu, texts::dayThursday()},
        {ui->checkBoxFri, texts::dayFriday()},
        {ui->checkBoxSat, texts::daySaturday()},
        {ui->checkBoxSun, texts::daySunday()},
        {ui->titleStart, texts::editorStart()},
        {ui->titleEnd, texts::editorEnd()},
        {ui->checkBoxTime, texts::editorFilterByTime()},
        {ui->checkBoxDate, texts::editorFilterByDate()},
    };
    for (const auto& [control, text] : captions) {
        control->setProperty("text", text);
    }
}

void Setting_Script_Widget::fillLists()
{
    fillCombo(ui->comboModeWorkRelay, m_info->modes());
    fillCombo(ui->comboDelay, m_info->delays());
    fillCombo(ui->comboDuration, m_info->durations());
    fillCombo(ui->comboStateChannel,
              m_info->stateChannels() + ParamItems{scriptRules::makeOtherState(ParamItem::NotActive)});
    fillCombo(ui->comboBoxPNB, m_info->buttonStates());
    fillCombo(ui->comboBoxAnalog, m_info->analogStates());
    const QSignalBlocker blocker(ui->comboBoxSelectType);
    const TerminalTypes types = m_info->terminalTypes();
    for (const TerminalTypePtr& type : types) {
        addRow(ui->comboBoxSelectType, type->label, QString(), type->background, type->foreground);
    }
    ui->comboBoxSelectType->setCurrentIndex(-1);

    const ParamItems states = m_info->terminalStates();
    for (const ParamItemPtr& state : states) {
        auto* item = new QListWidgetItem(QIcon(state->icon), state->name, ui->listStateDevice);
        item->setFlags(Qt::ItemIsUserCheckable | Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        item->setCheckState(Qt::Unchecked);
        item->setBackground(state->background);
        item->setForeground(state->foreground);
    }
}

void Setting_Script_Widget::makeAddressButtons()
{
    const auto add = [this](const QString& name, const QString& text, int address, int index) {
        auto* button = new QPushButton(text, ui->F_Address);
        button->setObjectName(name);
        button->setFixedHeight(addressDiameter);
        AddressButton entry;
        entry.button = button;
        entry.address = static_cast<quint8>(address);
        entry.index = static_cast<quint8>(index);
        addressButtons.append(entry);
        connect(button, &QPushButton::clicked, this, &Setting_Script_Widget::sl_addressButton_clicked);
        return button;
    };
    QGridLayout* grid = ui->gridAddress;
    grid->addWidget(add(QStringLiteral("ButtonAddressHUBN"), texts::headUnitFamily(), 0, headUnitIndex), 0, 0, 1, 2);
    for (int address = 1; address <= terminalCount; ++address) {
        QPushButton* button =
            add(QStringLiteral("ButtonAddress%1").arg(address), QString::number(address), address, address - 1);
        button->setFixedWidth(addressDiameter);
        grid->addWidget(button, (address + 1) / addressColumns, (address + 1) % addressColumns, Qt::AlignCenter);
    }
}

void Setting_Script_Widget::makePickers()
{
    timeBegin = buildInto<SpecialTimeFrame>(ui->F_TimeBegin);
    timeEnd = buildInto<SpecialTimeFrame>(ui->F_TimeEnd);
    dateBegin = buildInto<SpecialDateFrame>(ui->F_DateBegin, true);
    dateEnd = buildInto<SpecialDateFrame>(ui->F_DateEnd, true);
    for (const SpecialTimeFrame* frame : {timeBegin, timeEnd}) {
        connect(frame, &SpecialTimeFrame::sig_changedIndexMinute, this,
                &Setting_Script_Widget::sl_spinBoxTimeMinute_changed);
        connect(frame, &SpecialTimeFrame::sig_changedIndexHour, this,
                &Setting_Script_Widget::sl_spinBoxTimeHour_changed);
    }
    for (const SpecialDateFrame* frame : {dateBegin, dateEnd}) {
        connect(frame, &SpecialDateFrame::sig_changedValueDay, this, &Setting_Script_Widget::sl_spinBoxDateDay_changed);
        connect(frame, &SpecialDateFrame::sig_changedValueMonth, this,
                &Setting_Script_Widget::sl_comboBoxDateMonth_changed);
    }
}

void Setting_Script_Widget::connectControls()
{
    channelWidgets = {ui->buttonChannel1, ui->buttonChannel2, ui->buttonChannel3, ui->buttonChannel4};
    for (const QPushButton* button : std::as_const(channelWidgets)) {
        connect(button, &QPushButton::clicked, this, &Setting_Script_Widget::sl_buttonChannel_clicked);
    }
    dayBoxes = {ui->checkBoxMon, ui->checkBoxTue, ui->checkBoxWed, ui->checkBoxThu,
                ui->checkBoxFri, ui->checkBoxSat, ui->checkBoxSun};
    for (const QCheckBox* box : std::as_const(dayBoxes)) {
        connect(box, &QCheckBox::clicked, this, &Setting_Script_Widget::sl_checkBoxDayOfWeek_clicked);
    }
    ui->listStateDevice->viewport()->installEventFilter(this);

    const QList<QWidget*> fields = findChildren<QWidget*>();
    for (QWidget* field : fields) {
        const auto* combo = qobject_cast<QComboBox*>(field);
        if (combo == nullptr && qobject_cast<QAbstractSpinBox*>(field) == nullptr) {
            continue;
        }
        if (combo != nullptr) {
            // The style took them for menus before their sheets made them lists, and menus have no scroll bar.
            combo->view()->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
        }
        field->installEventFilter(this);
        if (field->focusProxy() == nullptr) {
            field->setFocusPolicy(Qt::StrongFocus);
        }
    }
}

void Setting_Script_Widget::setLook()
{
    auto* style = new PlainPartsStyle;
    style->setParent(this);
    const QList<QWidget*> coloured = {ui->spinBoxClass,          ui->spinBoxVersion,        ui->spinBoxType,
                                      ui->spinBoxCharacteristic, ui->checkBoxAlwaysConnect, ui->checkBoxSound,
                                      ui->checkBoxExternalPower, ui->checkBoxBattery};
    for (QWidget* control : coloured) {
        control->setStyle(style);
    }
    fitStateList();
}

/// The list of terminal states is short and shows all its rows.
void Setting_Script_Widget::fitStateList()
{
    const QListWidget* list = ui->listStateDevice;
    ui->listStateDevice->setFixedHeight(list->sizeHintForRow(0) * list->count() + 2 * list->frameWidth());
}

void Setting_Script_Widget::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        fitStateList();
    }
}

/// From top to bottom, as the panel is read.
void Setting_Script_Widget::setTabStops()
{
    QList<QWidget*> stops = {ui->lineEditNameScript,      ui->comboModeWorkRelay, ui->comboDelay,
                             ui->comboDuration,           ui->comboStateChannel,  ui->comboBoxPNB,
                             ui->radioShortPress,         ui->radioLongPress,     ui->comboBoxAnalog,
                             ui->spinBoxOtherStateChannel};
    for (QPushButton* button : std::as_const(channelWidgets)) {
        stops.append(button);
    }
    stops += {ui->listStateDevice, ui->checkBoxType,          ui->comboBoxSelectType,    ui->spinBoxClass,
              ui->spinBoxVersion,  ui->spinBoxType,           ui->spinBoxCharacteristic, ui->checkBoxAlwaysConnect,
              ui->checkBoxSound,   ui->checkBoxExternalPower, ui->checkBoxBattery,       ui->checkBoxAddress};
    for (const AddressButton& entry : std::as_const(addressButtons)) {
        stops.append(entry.button);
    }
    for (QCheckBox* box : std::as_const(dayBoxes)) {
        stops.append(box);
    }
    stops += QList<QWidget*>{ui->checkBoxTime} + timeBegin->fields() + timeEnd->fields();
    stops += QList<QWidget*>{ui->checkBoxDate} + dateBegin->fields() + dateEnd->fields();
    for (int i = 1; i < stops.size(); ++i) {
        setTabOrder(stops.at(i - 1), stops.at(i));
    }
}

/// What stands on the screen until the first script is shown.
void Setting_Script_Widget::showEmpty()
{
    showStateControls();
    showChannels();
    ui->F_ManualType->setEnabled(false);
    on_checkBoxType_clicked();
    on_spinBoxClass_valueChanged(ui->spinBoxClass->value());
    on_spinBoxVersion_valueChanged(ui->spinBoxVersion->value());
    on_spinBoxType_valueChanged(ui->spinBoxType->value());
    on_spinBoxCharacteristic_valueChanged(ui->spinBoxCharacteristic->value());
    on_checkBoxAddress_clicked();
    on_checkBoxTime_clicked();
    on_checkBoxDate_clicked();
    refreshAddressButtons();
}
