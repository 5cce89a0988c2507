// The part of the script editor that shows and edits which terminals a script listens to: their type and address.

#include <algorithm>

#include <QScopedValueRollback>

#include "texts/texts.h"
#include "ui/Setting_Script_Widget.h"
#include "ui_Setting_Script_Widget.h"
#include "widgets/Look.h"

namespace
{

// Feature flags in the low half of a terminal's type.
constexpr int alwaysConnected = 8;
constexpr int sound = 4;
constexpr int externalPower = 2;
constexpr int battery = 1;

/// A filter that is switched off lies in grey.
QString switchedSheet(bool on)
{
    return on ? QString() : QStringLiteral("background-color: %1").arg(QStringLiteral("rgba(187, 187, 187, 150)"));
}

/// A number that means any is grey.
QString numberSheet(bool wildcard)
{
    return wildcard ? QStringLiteral("background-color: rgb(215,215,215)")
                    : QStringLiteral("background-color: transparent");
}

} // namespace

void Setting_Script_Widget::showTypeSwitch()
{
    const QScopedValueRollback<bool> guard(showing, true);
    ui->checkBoxType->setChecked(script->activateFilter.value(ScriptInfo::ByType));
    on_checkBoxType_clicked();
}

void Setting_Script_Widget::on_checkBoxType_clicked()
{
    const bool on = ui->checkBoxType->isChecked();
    ui->F_Type->setEnabled(on);
    look::applyStyleSheet(ui->F_Type, switchedSheet(on));
    if (editing()) {
        storeFilterSwitch(ScriptInfo::ByType, on);
        refreshAddressButtons();
    }
    adaptStateToFilter();
}

/// Keeps the trigger one that terminals of the filter's class can report.
void Setting_Script_Widget::adaptStateToFilter()
{
    if (script && scriptRules::adaptStateToFilter(*script, m_info->stateChannels())) {
        showTrigger();
        emit sig_RefreshStateScriptInList();
    }
}

/// A script that filters by numbers of its own gets them in a record of its own: the catalogue has a row of that label
/// as well, which scripts share.
void Setting_Script_Widget::showTypeFilter()
{
    if (!script->terminalFilter || script->terminalFilter->label == texts::placeholderOtherType()) {
        scriptRules::makeTypeFilterPrivate(*script);
    }
    showRow(ui->comboBoxSelectType, script->terminalFilter->label);
    showTypeNumbers();
    adaptStateToFilter();
}

/// A class or version that doesn't exist can't be shown; in a record of the script's own it becomes the one that is.
void Setting_Script_Widget::showTypeNumbers()
{
    const QScopedValueRollback<bool> guard(showing, true);
    TerminalType& filter = *script->terminalFilter;
    const bool own = filter.label == texts::placeholderOtherType();
    ui->F_ManualType->setEnabled(own);
    ui->spinBoxClass->setValue(filter.terminalClass);
    ui->spinBoxVersion->setValue(filter.version);
    ui->spinBoxType->setValue(filter.type);
    ui->spinBoxCharacteristic->setValue(filter.characteristic);
    if (own) {
        filter.terminalClass = static_cast<quint8>(ui->spinBoxClass->value());
        filter.version = static_cast<quint8>(ui->spinBoxVersion->value());
    }
}

void Setting_Script_Widget::on_comboBoxSelectType_currentIndexChanged(int index)
{
    paintCombo(ui->comboBoxSelectType);
    const TerminalTypePtr row = m_info->terminalTypeAt(index);
    if (!row) {
        return;
    }
    const bool own = row->label == texts::placeholderOtherType();
    ui->F_ManualType->setEnabled(own);
    if (!editing()) {
        return;
    }
    if (own) {
        scriptRules::makeTypeFilterPrivate(*script);
    } else {
        script->terminalFilter = row;
    }
    showTypeNumbers();
    refreshAddressButtons();
    adaptStateToFilter();
}

void Setting_Script_Widget::on_spinBoxClass_valueChanged(int value)
{
    const int allowed = scriptRules::allowedClass(value);
    if (allowed != value) {
        ui->spinBoxClass->setValue(allowed);
        return;
    }
    look::applyStyleSheet(ui->spinBoxClass, numberSheet(value == AnyClass));
    storeTypeNumber(&TerminalType::terminalClass, value);
    if (editing()) {
        adaptStateToFilter();
    }
}

void Setting_Script_Widget::on_spinBoxVersion_valueChanged(int value)
{
    look::applyStyleSheet(ui->spinBoxVersion, numberSheet(value == 0));
    storeTypeNumber(&TerminalType::version, value);
}

void Setting_Script_Widget::on_spinBoxType_valueChanged(int value)
{
    look::applyStyleSheet(ui->spinBoxType, numberSheet(value <= 15));
    // All boxes first: each one that is clicked writes its own bit back.
    ui->checkBoxAlwaysConnect->setChecked((value & alwaysConnected) != 0);
    ui->checkBoxSound->setChecked((value & sound) != 0);
    ui->checkBoxExternalPower->setChecked((value & externalPower) != 0);
    ui->checkBoxBattery->setChecked((value & battery) != 0);
    for (QCheckBox* box :
         {ui->checkBoxAlwaysConnect, ui->checkBoxSound, ui->checkBoxExternalPower, ui->checkBoxBattery}) {
        emit box->clicked(box->isChecked());
    }
    storeTypeNumber(&TerminalType::type, value);
}

void Setting_Script_Widget::on_spinBoxCharacteristic_valueChanged(int value)
{
    look::applyStyleSheet(ui->spinBoxCharacteristic, numberSheet(value == 0));
    storeTypeNumber(&TerminalType::characteristic, value);
}

/// Rows of the catalogue are shared by all scripts and never written.
void Setting_Script_Widget::storeTypeNumber(quint8 TerminalType::*field, int value)
{
    if (!editing()) {
        return;
    }
    if (script->terminalFilter && script->terminalFilter->label == texts::placeholderOtherType()) {
        (*script->terminalFilter).*field = static_cast<quint8>(value);
    }
    refreshAddressButtons();
}

void Setting_Script_Widget::on_checkBoxAlwaysConnect_clicked()
{
    featureClicked(ui->checkBoxAlwaysConnect, alwaysConnected);
}

void Setting_Script_Widget::on_checkBoxSound_clicked()
{
    featureClicked(ui->checkBoxSound, sound);
}

void Setting_Script_Widget::on_checkBoxExternalPower_clicked()
{
    featureClicked(ui->checkBoxExternalPower, externalPower);
}

void Setting_Script_Widget::on_checkBoxBattery_clicked()
{
    featureClicked(ui->checkBoxBattery, battery);
}

void Setting_Script_Widget::featureClicked(QCheckBox* box, int bit)
{
    const bool checked = box->isChecked();
    const int type = ui->spinBoxType->value();
    look::applyStyleSheet(box, numberSheet(!checked));
    ui->spinBoxType->setValue(checked ? type | bit : type & ~bit);
}

void Setting_Script_Widget::showAddressSwitch()
{
    ui->checkBoxAddress->setChecked(script->activateFilter.value(ScriptInfo::ByAddress));
    on_checkBoxAddress_clicked();
}

void Setting_Script_Widget::on_checkBoxAddress_clicked()
{
    const bool on = ui->checkBoxAddress->isChecked();
    ui->F_Address->setEnabled(on);
    look::applyStyleSheet(ui->F_Address, switchedSheet(on));
    for (AddressButton& entry : addressButtons) {
        entry.filterOff = !on;
    }
    storeFilterSwitch(ScriptInfo::ByAddress, on);
    paintAddressButtons();
}

void Setting_Script_Widget::showAddressFilter()
{
    for (AddressButton& entry : addressButtons) {
        entry.selected = script->addressFilter.value(entry.index);
    }
    refreshAddressButtons();
}

void Setting_Script_Widget::sl_addressButton_clicked()
{
    const auto found = std::find_if(addressButtons.begin(), addressButtons.end(),
                                    [this](const AddressButton& entry) { return entry.button == sender(); });
    if (editing() && found != addressButtons.end()) {
        found->selected = !found->selected;
        look::applyStyleSheet(found->button, addressButtonStyle(*found));
        script->addressFilter[found->index] = found->selected;
    }
}

void Setting_Script_Widget::sl_UpDateConnectList()
{
    refreshAddressButtons();
}

void Setting_Script_Widget::refreshAddressButtons()
{
    for (AddressButton& entry : addressButtons) {
        entry.terminal = m_info->findConnectedTerminal(entry.address);
        entry.compatible = !entry.terminal || !script || scriptRules::passesTypeFilter(*script, *entry.terminal);
        entry.button->setToolTip(entry.terminal ? addressButtonToolTip(*entry.terminal) : QString());
    }
    paintAddressButtons();
}

void Setting_Script_Widget::paintAddressButtons()
{
    for (const AddressButton& entry : std::as_const(addressButtons)) {
        look::applyStyleSheet(entry.button, addressButtonStyle(entry));
    }
}
