#include "ui/Setting_Script_Widget.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QScopedValueRollback>

#include "texts/texts.h"
#include "ui/SpecialDateFrame.h"
#include "ui/SpecialTimeFrame.h"
#include "ui_Setting_Script_Widget.h"
#include "widgets/Look.h"

namespace
{

/// Shows as much of a date as the picker can; the month first, since it decides which days there are.
void showDate(SpecialDateFrame* frame, int day, int month)
{
    frame->setMonth(qBound(1, month, 12));
    frame->setDay(qBound(1, day, frame->lastDay()));
}

void showTime(SpecialTimeFrame* frame, int minute, int hour)
{
    frame->setMinute(qBound(0, minute, 59));
    frame->setHour(qBound(0, hour, 23));
}

} // namespace

Setting_Script_Widget::Setting_Script_Widget(const QSharedPointer<RelayInfo>& info, QWidget* parent)
    : QWidget(parent), ui(std::make_unique<Ui::Setting_Script_Widget>()), m_info(info)
{
    ui->setupUi(this);
    setTexts();
    fillLists();
    makeAddressButtons();
    makePickers();
    connectControls();
    setTabStops();
    setLook();
    showEmpty();
}

Setting_Script_Widget::~Setting_Script_Widget() = default;

void Setting_Script_Widget::setStateColor(const QString& color)
{
    look::applyStyleSheet(ui->labelNumScript, QStringLiteral("background-color: %1;").arg(color));
}

/// Watches two things. What a terminal state was when the mouse went down on it, since the list tells of a press on the
/// text only; a quick second click is a click of its own here, not half of a double click. And the wheel: it scrolls
/// the panel, and changes a value only where the user has gone to the field before.
bool Setting_Script_Widget::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == ui->listStateDevice->viewport() && event->type() == QEvent::MouseButtonPress) {
        pressedItem = ui->listStateDevice->itemAt(static_cast<QMouseEvent*>(event)->pos());
        pressedState = pressedItem != nullptr ? pressedItem->checkState() : Qt::Unchecked;
    } else if (watched == ui->listStateDevice->viewport() && event->type() == QEvent::MouseButtonDblClick) {
        const auto* second = static_cast<QMouseEvent*>(event);
        QMouseEvent press(QEvent::MouseButtonPress, second->localPos(), second->windowPos(), second->screenPos(),
                          second->button(), second->buttons(), second->modifiers(), second->source());
        QCoreApplication::sendEvent(watched, &press);
        return true;
    } else if (event->type() == QEvent::Wheel) {
        const auto* field = qobject_cast<QWidget*>(watched);
        if (field != nullptr && (!field->hasFocus() || field->focusProxy() != nullptr)) {
            event->ignore();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void Setting_Script_Widget::sl_SetNewScript(const QSharedPointer<ScriptInfo>& newScript)
{
    if (!newScript) {
        return;
    }
    {
        const QScopedValueRollback<bool> guard(showing, true);
        script = newScript;
        announceTitle();
        showGeneral();
        if (script->stateChannel) {
            scriptRules::setStateChannel(*script, script->stateChannel, scriptRules::TypeFilter::Keep);
        }
        showTrigger();
        showTerminalStates();
        showDays();
        showTypeSwitch();
        showAddressSwitch();
        showTimeSwitch();
        showDateSwitch();
        showPeriods();
        showTypeFilter();
        showAddressFilter();
    }
    emit sig_RefreshStateScriptInList();
}

void Setting_Script_Widget::announceTitle()
{
    emit sig_changeTitle(texts::editorTitle() +
                         QStringLiteral(" №%1. %2").arg(QString::number(script->number + 1), script->name));
}

/// Paints a combo in the colour of its row; red says that the script holds a value which the list doesn't have.
void Setting_Script_Widget::paintCombo(QComboBox* combo)
{
    QString sheet = look::comboProperties(combo, combo->currentIndex());
    if (combo != ui->comboBoxSelectType) {
        sheet = QStringLiteral("QComboBox{%1}").arg(sheet);
    }
    look::applyStyleSheet(combo, sheet);
    combo->setToolTip(QString());
}

/// Shows the row of a name; a name that the list doesn't have leaves the combo without a choice.
void Setting_Script_Widget::showRow(QComboBox* combo, const QString& name)
{
    combo->setCurrentIndex(combo->findText(name));
    paintCombo(combo);
}

void Setting_Script_Widget::showRow(QComboBox* combo, const ParamItemPtr& row)
{
    showRow(combo, row ? row->name : texts::placeholderUnknown());
}

void Setting_Script_Widget::showGeneral()
{
    ui->lineEditNameScript->setText(script->name);
    ui->lineEditNameScript->setCursorPosition(0);
    ui->labelNumScript->setText(QStringLiteral("№%1").arg(script->number + 1));
    showRow(ui->comboModeWorkRelay, script->mode);
    showRow(ui->comboDuration, script->duration);
    showRow(ui->comboDelay, script->delay);
}

void Setting_Script_Widget::on_lineEditNameScript_textChanged(const QString& text)
{
    if (editing()) {
        script->name = text;
        announceTitle();
        emit sig_RefreshStateScriptInList();
    }
}

/// Stores the row that a combo was set to; null stands for no choice.
void Setting_Script_Widget::storeRow(ParamItemPtr ScriptInfo::*field, const ParamItemPtr& row)
{
    if (editing() && row) {
        (*script).*field = row;
        emit sig_RefreshStateScriptInList();
    }
}

void Setting_Script_Widget::on_comboModeWorkRelay_currentIndexChanged(int index)
{
    paintCombo(ui->comboModeWorkRelay);
    storeRow(&ScriptInfo::mode, m_info->modeAt(index));
}

void Setting_Script_Widget::on_comboDelay_currentIndexChanged(int index)
{
    paintCombo(ui->comboDelay);
    storeRow(&ScriptInfo::delay, m_info->delayAt(index));
}

void Setting_Script_Widget::on_comboDuration_currentIndexChanged(int index)
{
    paintCombo(ui->comboDuration);
    storeRow(&ScriptInfo::duration, m_info->durationAt(index));
}

void Setting_Script_Widget::showDays()
{
    for (int day = 0; day < dayBoxes.size(); ++day) {
        dayBoxes.at(day)->setChecked(script->daysOfWeek.value(day));
    }
}

void Setting_Script_Widget::sl_checkBoxDayOfWeek_clicked()
{
    const int day = dayBoxes.indexOf(qobject_cast<QCheckBox*>(sender()));
    if (editing() && day >= 0) {
        script->daysOfWeek[day] = dayBoxes.at(day)->isChecked();
    }
}

void Setting_Script_Widget::showTimeSwitch()
{
    ui->checkBoxTime->setChecked(script->activateFilter.value(ScriptInfo::ByTime));
    on_checkBoxTime_clicked();
}

void Setting_Script_Widget::on_checkBoxTime_clicked()
{
    const bool on = ui->checkBoxTime->isChecked();
    ui->F_TimeBegin->setEnabled(on);
    ui->F_TimeEnd->setEnabled(on);
    storeFilterSwitch(ScriptInfo::ByTime, on);
}

void Setting_Script_Widget::showDateSwitch()
{
    ui->checkBoxDate->setChecked(script->activateFilter.value(ScriptInfo::ByDate));
    on_checkBoxDate_clicked();
}

void Setting_Script_Widget::on_checkBoxDate_clicked()
{
    const bool on = ui->checkBoxDate->isChecked();
    ui->F_DateBegin->setEnabled(on);
    ui->F_DateEnd->setEnabled(on);
    storeFilterSwitch(ScriptInfo::ByDate, on);
}

void Setting_Script_Widget::storeFilterSwitch(int filter, bool on)
{
    if (editing()) {
        script->activateFilter[filter] = on;
    }
}

void Setting_Script_Widget::showPeriods()
{
    showTime(timeBegin, script->timeFilter.value(0), script->timeFilter.value(1));
    showTime(timeEnd, script->timeFilter.value(2), script->timeFilter.value(3));
    showDate(dateBegin, script->dateFilter.value(0), script->dateFilter.value(1));
    showDate(dateEnd, script->dateFilter.value(2), script->dateFilter.value(3));
}

void Setting_Script_Widget::sl_spinBoxTimeMinute_changed()
{
    const auto* frame = qobject_cast<SpecialTimeFrame*>(sender());
    if (editing() && frame != nullptr) {
        script->timeFilter[frame == timeBegin ? 0 : 2] = frame->minute();
    }
}

void Setting_Script_Widget::sl_spinBoxTimeHour_changed()
{
    const auto* frame = qobject_cast<SpecialTimeFrame*>(sender());
    if (editing() && frame != nullptr) {
        script->timeFilter[frame == timeBegin ? 1 : 3] = frame->hour();
    }
}

void Setting_Script_Widget::sl_spinBoxDateDay_changed()
{
    const auto* frame = qobject_cast<SpecialDateFrame*>(sender());
    if (editing() && frame != nullptr) {
        script->dateFilter[frame == dateBegin ? 0 : 2] = frame->day();
    }
}

/// Stores the day as well: where the record held one that its month doesn't have, the user has chosen the month for the
/// day on the screen.
void Setting_Script_Widget::sl_comboBoxDateMonth_changed()
{
    const auto* frame = qobject_cast<SpecialDateFrame*>(sender());
    if (editing() && frame != nullptr) {
        const int first = frame == dateBegin ? 0 : 2;
        script->dateFilter[first] = frame->day();
        script->dateFilter[first + 1] = frame->month();
    }
}
