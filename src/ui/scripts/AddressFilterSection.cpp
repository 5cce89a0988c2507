#include "ui/scripts/AddressFilterSection.h"

#include "model/RelayInfo.h"
#include "model/ScriptRules.h"
#include "texts/texts.h"
#include "ui/scripts/PicturedButton.h"
#include "ui_Setting_Script_Widget.h"
#include "widgets/Look.h"

namespace
{

constexpr int terminalCount = 31;
constexpr int headUnitIndex = 31;
constexpr int diameter = 22;
constexpr int columns = 11; // the head unit's button takes two places of the first row

} // namespace

AddressFilterSection::AddressFilterSection(const Ui::Setting_Script_Widget& form, const RelayInfo& relayInfo,
                                           QObject* parent)
    : ScriptSection(form, parent), model(relayInfo)
{
    setTexts({{ui.checkBoxAddress, texts::editorFilterByAddresses()}});
    addButton(texts::headUnitFamily(), 0, headUnitIndex);
    for (int address = 1; address <= terminalCount; ++address) {
        addButton(QString::number(address), address, address - 1);
    }
    switched();
}

void AddressFilterSection::addButton(const QString& text, int address, int index)
{
    AddressButton entry;
    entry.button = new PicturedButton(text, ui.F_Address);
    entry.address = quint8(address);
    entry.index = quint8(index);
    entry.button->setAccessibleName(address == 0 ? texts::spokenAddressHeadUnit()
                                                 : texts::spokenAddress().arg(address));
    entry.button->setMeaning(
        this, [this, place = addressButtons.size()] { return addressButtonMeaning(addressButtons.at(place)); });
    entry.button->setFixedHeight(diameter);
    if (address == 0) {
        entry.button->setObjectName(QStringLiteral("ButtonAddressHUBN"));
        ui.gridAddress->addWidget(entry.button, 0, 0, 1, 2);
    } else {
        entry.button->setObjectName(QStringLiteral("ButtonAddress%1").arg(address));
        entry.button->setFixedWidth(diameter);
        ui.gridAddress->addWidget(entry.button, (address + 1) / columns, (address + 1) % columns, Qt::AlignCenter);
    }
    QWidget* const before =
        addressButtons.isEmpty() ? static_cast<QWidget*>(ui.checkBoxAddress) : addressButtons.last().button;
    QWidget::setTabOrder(before, entry.button);
    addressButtons.append(entry);
}

void AddressFilterSection::showScript()
{
    showSwitch(ui.checkBoxAddress, ScriptInfo::ByAddress);
    for (AddressButton& entry : addressButtons) {
        entry.selected = script->addressFilter.value(entry.index);
    }
    switched();
}

void AddressFilterSection::switched()
{
    switchFilter(ui.checkBoxAddress, ScriptInfo::ByAddress, {ui.F_Address});
    shade(ui.F_Address, ui.checkBoxAddress);
    refresh();
}

void AddressFilterSection::addressClicked(const QObject* button)
{
    for (AddressButton& entry : addressButtons) {
        if (entry.button == button && editing()) {
            entry.selected = !entry.selected;
            paintButton(entry);
            script->addressFilter[entry.index] = entry.selected;
        }
    }
}

void AddressFilterSection::refresh()
{
    for (AddressButton& entry : addressButtons) {
        entry.filterOff = !ui.checkBoxAddress->isChecked();
        entry.terminal = model.findConnectedTerminal(entry.address);
        entry.compatible = !entry.terminal || !script || scriptRules::passesTypeFilter(*script, *entry.terminal);
        entry.button->setToolTip(entry.terminal ? addressButtonToolTip(*entry.terminal) : QString());
        paintButton(entry);
    }
}

void AddressFilterSection::paintButton(const AddressButton& entry)
{
    look::applyStyleSheet(entry.button, addressButtonStyle(entry));
    entry.button->setCrossed((entry.terminal || entry.address == 0) && !entry.compatible);
    entry.button->setOn(entry.selected);
    entry.button->meaningChanged();
}
