// The part of the script editor that shows and edits what triggers a script: channel state, channels, terminal states.

#include <algorithm>
#include <iterator>

#include <QScopedValueRollback>
#include <QSignalBlocker>

#include "texts/texts.h"
#include "ui/Setting_Script_Widget.h"
#include "ui_Setting_Script_Widget.h"
#include "widgets/Look.h"

using scriptRules::StateKind;
using scriptRules::TypeFilter;

namespace
{

constexpr unsigned char channelOff = 0;
constexpr unsigned char channelOn = 1;
constexpr unsigned char channelNone = 255;

QString channelSheet(unsigned char state)
{
    switch (state) {
    case channelOff:
        return {};
    case channelOn:
        return QStringLiteral("background-color: rgb(0, 255, 17);");
    default:
        return QStringLiteral("background-color: rgb(187,187,187)");
    }
}

} // namespace

void Setting_Script_Widget::showTrigger()
{
    const QScopedValueRollback<bool> guard(showing, true);
    const ParamItemPtr& state = script->stateChannel;
    ui->spinBoxOtherStateChannel->setValue(scriptRules::stateCode(state));
    showRow(ui->comboStateChannel, state);
    showStateControls();
    const StateKind kind = scriptRules::kindOf(state);
    const QString linkedName = state && state->linked ? state->linked->name : QString();
    showRow(ui->comboBoxPNB, kind == StateKind::Button ? linkedName : QString());
    showRow(ui->comboBoxAnalog, kind == StateKind::Analog ? linkedName : QString());
    if (kind == StateKind::Button) {
        (scriptRules::isLongPress(state) ? ui->radioLongPress : ui->radioShortPress)->setChecked(true);
    }
    showChannels();
}

/// Which further controls the choice of a channel state needs.
void Setting_Script_Widget::showStateControls()
{
    const QString text = ui->comboStateChannel->currentText();
    ui->F_PNB->setVisible(text == texts::statePanicButton());
    ui->comboBoxAnalog->setVisible(text == texts::stateAnalog());
    ui->spinBoxOtherStateChannel->setVisible(text == texts::otherState());
}

void Setting_Script_Widget::on_comboStateChannel_currentIndexChanged(int index)
{
    paintCombo(ui->comboStateChannel);
    showStateControls();
    if (editing() && index >= 0) {
        setStateChannel(chosenState(ui->comboStateChannel->currentText()), TypeFilter::SwitchOffIfUnfit);
    }
    if (!script && ui->comboStateChannel->currentText() == texts::statePanicButton()) {
        ui->comboBoxPNB->setCurrentIndex(0);
        ui->radioShortPress->setChecked(true);
    } else if (!script && ui->comboStateChannel->currentText() == texts::stateAnalog()) {
        ui->comboBoxAnalog->setCurrentIndex(0);
    }
}

/// The state for a choice of the user; where it leads to a further list, with that list's first row.
ParamItemPtr Setting_Script_Widget::chosenState(const QString& name) const
{
    if (name == texts::otherState()) {
        return scriptRules::makeOtherState(static_cast<quint8>(ui->spinBoxOtherStateChannel->value()));
    }
    if (name == texts::statePanicButton()) {
        return scriptRules::findButtonState(m_info->stateChannels(), ui->comboBoxPNB->itemText(0), false);
    }
    return scriptRules::findState(m_info->stateChannels(), name);
}

void Setting_Script_Widget::setStateChannel(const ParamItemPtr& state, TypeFilter typeFilter)
{
    if (!state) {
        return;
    }
    scriptRules::setStateChannel(*script, state, typeFilter);
    showTrigger();
    if (ui->checkBoxType->isChecked() != script->activateFilter.value(ScriptInfo::ByType)) {
        showTypeSwitch();
        refreshAddressButtons();
    }
    emit sig_RefreshStateScriptInList();
}

void Setting_Script_Widget::on_comboBoxPNB_currentIndexChanged(int index)
{
    paintCombo(ui->comboBoxPNB);
    if (editing() && index >= 0 && scriptRules::kindOf(script->stateChannel) == StateKind::Button) {
        setStateChannel(scriptRules::findButtonState(m_info->stateChannels(), ui->comboBoxPNB->currentText(),
                                                     ui->radioLongPress->isChecked()),
                        TypeFilter::Keep);
    }
}

void Setting_Script_Widget::on_comboBoxAnalog_currentIndexChanged(int index)
{
    paintCombo(ui->comboBoxAnalog);
    if (editing() && index >= 0 && scriptRules::kindOf(script->stateChannel) == StateKind::Analog) {
        setStateChannel(scriptRules::findAnalogState(m_info->stateChannels(), ui->comboBoxAnalog->currentText()),
                        TypeFilter::Keep);
    }
}

void Setting_Script_Widget::on_radioShortPress_clicked()
{
    setPress(false);
}

void Setting_Script_Widget::on_radioLongPress_clicked()
{
    setPress(true);
}

void Setting_Script_Widget::setPress(bool longPress)
{
    if (editing() && script->stateChannel && script->stateChannel->linked) {
        setStateChannel(scriptRules::withPress(m_info->stateChannels(), script->stateChannel, longPress),
                        TypeFilter::Keep);
    }
}

void Setting_Script_Widget::on_spinBoxOtherStateChannel_valueChanged(int value)
{
    if (!editing()) {
        return;
    }
    if (scriptRules::kindOf(script->stateChannel) == StateKind::Other) {
        script->stateChannel->code = static_cast<quint8>(value);
    }
    scriptRules::updateTrigger(*script);
    emit sig_RefreshStateScriptInList();
}

void Setting_Script_Widget::showChannels()
{
    const bool available = script && scriptRules::kindOf(script->stateChannel) != StateKind::NotActive;
    ui->F_NumChannel->setEnabled(available);
    for (int channel = 0; channel < channelButtons.size(); ++channel) {
        channelButtons[channel] = !available                              ? channelNone
                                  : script->numberChannels.value(channel) ? channelOn
                                                                          : channelOff;
        look::applyStyleSheet(channelWidgets.at(channel), channelSheet(channelButtons.at(channel)));
    }
}

void Setting_Script_Widget::sl_buttonChannel_clicked()
{
    const int channel = channelWidgets.indexOf(qobject_cast<QPushButton*>(sender()));
    if (editing() && scriptRules::toggleChannel(script->numberChannels, channel)) {
        showChannels();
    }
}

void Setting_Script_Widget::showTerminalStates()
{
    const QSignalBlocker blocker(ui->listStateDevice);
    QStringList names;
    for (const ParamItemPtr& row : std::as_const(script->stateTerminal)) {
        names.append(row->name);
    }
    for (int i = 0; i < ui->listStateDevice->count(); ++i) {
        QListWidgetItem* item = ui->listStateDevice->item(i);
        item->setCheckState(names.contains(item->text()) ? Qt::Checked : Qt::Unchecked);
    }
}

void Setting_Script_Widget::on_listStateDevice_itemChanged(QListWidgetItem* /*item*/)
{
    if (!editing()) {
        return;
    }
    const ParamItems rows = m_info->terminalStates();
    ParamItems chosen;
    for (int i = 0; i < ui->listStateDevice->count(); ++i) {
        const QListWidgetItem* item = ui->listStateDevice->item(i);
        if (item->checkState() == Qt::Checked) {
            std::copy_if(rows.begin(), rows.end(), std::back_inserter(chosen),
                         [item](const ParamItemPtr& row) { return row->name == item->text(); });
        }
    }
    scriptRules::setTerminalStates(*script, chosen);
    emit sig_RefreshStateScriptInList();
}

/// Makes a click on the text do what a click on the box does. A click on the box has flipped the item by itself before
/// it comes here, and mustn't flip it back.
void Setting_Script_Widget::on_listStateDevice_itemClicked(QListWidgetItem* item)
{
    const bool flippedByBox = item == pressedItem && item->checkState() != pressedState;
    pressedItem = nullptr;
    if (!flippedByBox) {
        item->setCheckState(item->checkState() == Qt::Checked ? Qt::Unchecked : Qt::Checked);
    }
}
