#include "ui/scripts/Setting_Script_Widget.h"

#include "texts/texts.h"
#include "ui/pickers/SpecialDateFrame.h"
#include "ui/pickers/SpecialTimeFrame.h"
#include "ui/scripts/AddressFilterSection.h"
#include "ui/scripts/GeneralSection.h"
#include "ui/scripts/PeriodsSection.h"
#include "ui/scripts/PicturedButton.h"
#include "ui/scripts/TriggerSection.h"
#include "ui/scripts/TypeFilterSection.h"
#include "ui_Setting_Script_Widget.h"
#include "widgets/Look.h"

#include <QListView>
#include <QPushButton>

namespace
{

/// Builds the controls before the sections that take them over.
std::unique_ptr<Ui::Setting_Script_Widget> buildForm(QWidget* panel)
{
    auto form = std::make_unique<Ui::Setting_Script_Widget>();
    form->setupUi(panel);
    return form;
}

} // namespace

Setting_Script_Widget::Setting_Script_Widget(const QSharedPointer<RelayInfo>& info, QWidget* parent)
    : QWidget(parent), ui(buildForm(this)), m_info(info), general(new GeneralSection(*ui, *info, this)),
      trigger(new TriggerSection(*ui, *info, this)), typeFilter(new TypeFilterSection(*ui, *info, this)),
      addressFilter(new AddressFilterSection(*ui, *info, this)),
      periods(new PeriodsSection(*ui, this)), sections{general, trigger, typeFilter, addressFilter, periods}
{
    connectSections();
    connectControls();
    setUpFields();
    setAutoFillBackground(true); // opaque, it isn't painted anew whenever the dock around it is
    // A script that needs more height or less leaves what is above it as it was.
    ui->contents->setAttribute(Qt::WA_StaticContents);
}

Setting_Script_Widget::~Setting_Script_Widget() = default;

void Setting_Script_Widget::connectSections()
{
    for (const ScriptSection* section : sections) {
        connect(section, &ScriptSection::edited, this, &Setting_Script_Widget::sig_RefreshStateScriptInList);
    }
    connect(general, &GeneralSection::renamed, this, &Setting_Script_Widget::announceTitle);
    connect(trigger, &TriggerSection::typeFilterUnfit, typeFilter, &TypeFilterSection::switchOff);
    connect(typeFilter, &TypeFilterSection::stateAdapted, trigger, [this] { trigger->show(script); });
    connect(typeFilter, &TypeFilterSection::filterChanged, addressFilter, &AddressFilterSection::refresh);
}

void Setting_Script_Widget::connectControls()
{
    for (const QPushButton* button : trigger->channels()) {
        connect(button, &QPushButton::clicked, this, &Setting_Script_Widget::sl_buttonChannel_clicked);
    }
    for (const AddressButton& entry : addressFilter->buttons()) {
        connect(entry.button, &QPushButton::clicked, this, &Setting_Script_Widget::sl_addressButton_clicked);
    }
    for (const QCheckBox* box : periods->days()) {
        connect(box, &QCheckBox::clicked, this, &Setting_Script_Widget::sl_checkBoxDayOfWeek_clicked);
    }
    const auto times = periods->times();
    for (const SpecialTimeFrame* frame : times) {
        connect(frame, &SpecialTimeFrame::sig_changedIndexMinute, this,
                &Setting_Script_Widget::sl_spinBoxTimeMinute_changed);
        connect(frame, &SpecialTimeFrame::sig_changedIndexHour, this,
                &Setting_Script_Widget::sl_spinBoxTimeHour_changed);
    }
    const auto dates = periods->dates();
    for (const SpecialDateFrame* frame : dates) {
        connect(frame, &SpecialDateFrame::sig_changedValueDay, this, &Setting_Script_Widget::sl_spinBoxDateDay_changed);
        connect(frame, &SpecialDateFrame::sig_changedValueMonth, this,
                &Setting_Script_Widget::sl_comboBoxDateMonth_changed);
    }
}

/// The wheel neither gives a field the focus nor, without it, turns its value: eventFilter().
void Setting_Script_Widget::setUpFields()
{
    const QList<QWidget*> fields = findChildren<QWidget*>();
    for (QWidget* field : fields) {
        const auto* combo = qobject_cast<QComboBox*>(field);
        if (combo == nullptr && qobject_cast<QAbstractSpinBox*>(field) == nullptr) {
            continue;
        }
        if (combo != nullptr) {
            // The style took them for menus before their sheets made them lists, and menus have no scroll bar.
            combo->view()->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
            // Where a combo is styled with its list, all rows are measured unless they are told to be alike.
            qobject_cast<QListView*>(combo->view())->setUniformItemSizes(true);
        }
        field->installEventFilter(this);
        if (field->focusProxy() == nullptr) {
            field->setFocusPolicy(Qt::StrongFocus);
        }
    }
}

void Setting_Script_Widget::enterName()
{
    ui->lineEditNameScript->setFocus(Qt::ShortcutFocusReason);
    ui->lineEditNameScript->selectAll();
}

void Setting_Script_Widget::setStateColor(const QString& color)
{
    look::applyStyleSheet(ui->labelNumScript, QStringLiteral("background-color: %1;").arg(color));
}

/// The wheel scrolls the panel, and changes a value only where the user has gone to the field before.
bool Setting_Script_Widget::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Wheel) {
        const auto* field = qobject_cast<QWidget*>(watched);
        if (field != nullptr && (!field->hasFocus() || field->focusProxy() != nullptr)) {
            event->ignore();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void Setting_Script_Widget::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        trigger->fitTerminalStates();
    }
}

void Setting_Script_Widget::sl_SetNewScript(const QSharedPointer<ScriptInfo>& newScript)
{
    if (!newScript) {
        return;
    }
    script = newScript;
    announceTitle();
    for (ScriptSection* section : sections) {
        section->show(script);
    }
    emit sig_RefreshStateScriptInList();
    look::settleLayouts();
}

void Setting_Script_Widget::sl_UpDateConnectList()
{
    addressFilter->refresh();
}

void Setting_Script_Widget::announceTitle()
{
    emit sig_changeTitle(texts::editorTitle() +
                         QStringLiteral(" №%1. %2").arg(QString::number(script->number + 1), script->name));
}

void Setting_Script_Widget::on_lineEditNameScript_textChanged(const QString& text)
{
    general->setName(text);
}

void Setting_Script_Widget::on_comboModeWorkRelay_currentIndexChanged(int index)
{
    general->rowChosen(ui->comboModeWorkRelay, index);
}

void Setting_Script_Widget::on_comboDelay_currentIndexChanged(int index)
{
    general->rowChosen(ui->comboDelay, index);
}

void Setting_Script_Widget::on_comboDuration_currentIndexChanged(int index)
{
    general->rowChosen(ui->comboDuration, index);
}

void Setting_Script_Widget::on_comboStateChannel_currentIndexChanged(int index)
{
    trigger->stateChosen(index);
}

void Setting_Script_Widget::on_comboBoxPNB_currentIndexChanged(int index)
{
    trigger->linkedStateChosen(ui->comboBoxPNB, index);
}

void Setting_Script_Widget::on_radioShortPress_clicked()
{
    trigger->setPress(false);
}

void Setting_Script_Widget::on_radioLongPress_clicked()
{
    trigger->setPress(true);
}

void Setting_Script_Widget::on_comboBoxAnalog_currentIndexChanged(int index)
{
    trigger->linkedStateChosen(ui->comboBoxAnalog, index);
}

void Setting_Script_Widget::on_spinBoxOtherStateChannel_valueChanged(int value)
{
    trigger->setOtherCode(value);
}

void Setting_Script_Widget::sl_buttonChannel_clicked()
{
    trigger->channelClicked(sender());
}

void Setting_Script_Widget::on_listStateDevice_itemChanged(QListWidgetItem* /*item*/)
{
    trigger->terminalStatesChanged();
}

void Setting_Script_Widget::on_listStateDevice_itemClicked(QListWidgetItem* item)
{
    trigger->terminalStateClicked(item);
}

void Setting_Script_Widget::on_checkBoxType_clicked()
{
    typeFilter->switched();
}

void Setting_Script_Widget::on_comboBoxSelectType_currentIndexChanged(int index)
{
    typeFilter->typeChosen(index);
}

void Setting_Script_Widget::on_spinBoxClass_valueChanged(int value)
{
    typeFilter->setClass(value);
}

void Setting_Script_Widget::on_spinBoxVersion_valueChanged(int value)
{
    typeFilter->setNumber(ui->spinBoxVersion, value);
}

void Setting_Script_Widget::on_spinBoxType_valueChanged(int value)
{
    typeFilter->setType(value);
}

void Setting_Script_Widget::on_spinBoxCharacteristic_valueChanged(int value)
{
    typeFilter->setNumber(ui->spinBoxCharacteristic, value);
}

void Setting_Script_Widget::on_checkBoxAlwaysConnect_clicked()
{
    typeFilter->featureClicked(ui->checkBoxAlwaysConnect);
}

void Setting_Script_Widget::on_checkBoxSound_clicked()
{
    typeFilter->featureClicked(ui->checkBoxSound);
}

void Setting_Script_Widget::on_checkBoxExternalPower_clicked()
{
    typeFilter->featureClicked(ui->checkBoxExternalPower);
}

void Setting_Script_Widget::on_checkBoxBattery_clicked()
{
    typeFilter->featureClicked(ui->checkBoxBattery);
}

void Setting_Script_Widget::on_checkBoxAddress_clicked()
{
    addressFilter->switched();
}

void Setting_Script_Widget::sl_addressButton_clicked()
{
    addressFilter->addressClicked(sender());
}

void Setting_Script_Widget::sl_checkBoxDayOfWeek_clicked()
{
    periods->dayClicked(sender());
}

void Setting_Script_Widget::on_checkBoxTime_clicked()
{
    periods->timeSwitched();
}

void Setting_Script_Widget::on_checkBoxDate_clicked()
{
    periods->dateSwitched();
}

void Setting_Script_Widget::sl_spinBoxTimeMinute_changed()
{
    periods->minuteChanged(sender());
}

void Setting_Script_Widget::sl_spinBoxTimeHour_changed()
{
    periods->hourChanged(sender());
}

void Setting_Script_Widget::sl_spinBoxDateDay_changed()
{
    periods->dayChanged(sender());
}

void Setting_Script_Widget::sl_comboBoxDateMonth_changed()
{
    periods->monthChanged(sender());
}
