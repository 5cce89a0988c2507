#include "ui/scripts/TriggerSection.h"

#include "model/RelayInfo.h"
#include "texts/texts.h"
#include "ui_Setting_Script_Widget.h"
#include "widgets/Look.h"
#include "widgets/Spoken.h"
#include "widgets/StateButton.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QSignalBlocker>

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

TriggerSection::TriggerSection(const Ui::Setting_Script_Widget& form, const RelayInfo& model, QObject* parent)
    : ScriptSection(form, parent), allStates(model.stateChannels()), terminalStates(model.terminalStates()),
      states(
          fill(form.comboStateChannel, allStates + ParamItems{scriptRules::makeOtherState(ParamItem::notActiveCode)})),
      families{{StateKind::Button, form.comboBoxPNB, form.F_PNB},
               {StateKind::Analog, form.comboBoxAnalog, form.comboBoxAnalog}}
{
    setHeading(ui.titleStateChannel);
    setHeading(ui.titleStateDevice);
    setTexts({{ui.radioShortPress, texts::pressShort()},
              {ui.radioLongPress, texts::pressLong()},
              {ui.titleNumberChannel, texts::editorChannelNumbers()}});
    for (const FamilyControls& family : families) {
        fill(family.list, scriptRules::linkedStates(allStates, family.kind));
    }
    spoken::nameBy(ui.comboStateChannel, ui.titleStateChannel, texts::editorChannelState());
    spoken::nameBy(ui.listStateDevice, ui.titleStateDevice, texts::editorTerminalStatus());
    spoken::call(ui.comboBoxPNB, texts::statePanicButton());
    spoken::call(ui.comboBoxAnalog, texts::stateAnalog());
    ui.spinBoxOtherStateChannel->setAccessibleName(texts::spokenOtherState());
    makeChannelButtons();
    fillTerminalStates();
    showFurtherControls(StateKind::NotActive);
    showChannels();
}

void TriggerSection::makeChannelButtons()
{
    QWidget* before = ui.spinBoxOtherStateChannel;
    for (int channel = 1; channel <= 4; ++channel) {
        auto* button = new StateButton(QString::number(channel), ui.F_NumChannel);
        button->setObjectName(QStringLiteral("buttonChannel%1").arg(channel));
        button->setAccessibleName(texts::spokenChannel().arg(channel));
        button->setMeaning(this,
                           [button] { return button->isOn() ? texts::spokenChannelOn() : texts::spokenChannelOff(); });
        button->setFixedSize(44, 22);
        ui.layoutNumChannel->addWidget(button);
        QWidget::setTabOrder(before, button);
        before = button;
        channelWidgets.append(button);
    }
}

void TriggerSection::fillTerminalStates()
{
    for (const ParamItemPtr& state : terminalStates) {
        auto* item = new QListWidgetItem(QIcon(state->icon), state->name);
        item->setFlags(Qt::ItemIsUserCheckable | Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        item->setCheckState(Qt::Unchecked);
        item->setBackground(state->background);
        item->setForeground(state->foreground);
        ui.listStateDevice->addItem(item);
    }
    ui.listStateDevice->viewport()->installEventFilter(this);
    fitTerminalStates();
}

void TriggerSection::fitTerminalStates()
{
    QListWidget* list = ui.listStateDevice;
    list->setFixedHeight(list->sizeHintForRow(0) * list->count() + 2 * list->frameWidth());
}

void TriggerSection::showScript()
{
    const ParamItemPtr& state = script->stateChannel;
    if (state) {
        scriptRules::setStateChannel(*script, state, TypeFilter::Keep);
    }
    const StateKind kind = scriptRules::kindOf(state);
    ui.spinBoxOtherStateChannel->setValue(scriptRules::stateCode(state));
    choose(ui.comboStateChannel, state);
    showFurtherControls(kind);
    for (const FamilyControls& family : families) {
        choose(family.list, family.kind == kind && state->linked ? state->linked->name : QString());
    }
    if (kind == StateKind::Button) {
        (scriptRules::isLongPress(state) ? ui.radioLongPress : ui.radioShortPress)->setChecked(true);
    }
    showChannels();
    showTerminalStates();
}

void TriggerSection::showFurtherControls(StateKind kind)
{
    const auto setShown = [this, kind](bool visible) {
        for (const FamilyControls& family : families) {
            if ((family.kind == kind) == visible) {
                family.frame->setVisible(visible);
            }
        }
        if ((kind == StateKind::Other) == visible) {
            ui.spinBoxOtherStateChannel->setVisible(visible);
        }
    };
    // What goes makes room first: with two of them the whole panel would be laid out narrower, and back.
    setShown(false);
    setShown(true);
}

/// Before the first script the further controls follow the list of states all the same.
void TriggerSection::startFurtherControls(StateKind kind)
{
    for (const FamilyControls& family : families) {
        if (family.kind == kind) {
            family.list->setCurrentIndex(0);
        }
    }
    if (kind == StateKind::Button) {
        ui.radioShortPress->setChecked(true);
    }
}

/// A state that leads to a further list comes with the first row of that list, and a button with the short press.
void TriggerSection::stateChosen(int index)
{
    paint(ui.comboStateChannel);
    const ParamItemPtr state = states.value(index);
    const StateKind kind = scriptRules::kindOf(state);
    showFurtherControls(kind);
    if (!script) {
        startFurtherControls(kind);
    } else if (editing() && state) {
        const auto code = quint8(ui.spinBoxOtherStateChannel->value());
        setState(kind == StateKind::Other ? scriptRules::makeOtherState(code) : state, TypeFilter::SwitchOffIfUnfit);
    }
}

void TriggerSection::linkedStateChosen(QComboBox* list, int index)
{
    paint(list);
    if (!editing() || index < 0) {
        return;
    }
    for (const FamilyControls& family : families) {
        if (family.list == list && family.kind == scriptRules::kindOf(script->stateChannel)) {
            const bool longPress = family.kind == StateKind::Button && ui.radioLongPress->isChecked();
            setState(scriptRules::findLinkedState(allStates, family.kind, list->currentText(), longPress),
                     TypeFilter::Keep);
        }
    }
}

void TriggerSection::setPress(bool longPress)
{
    if (editing() && script->stateChannel && script->stateChannel->linked) {
        setState(scriptRules::withPress(allStates, script->stateChannel, longPress), TypeFilter::Keep);
    }
}

void TriggerSection::setState(const ParamItemPtr& state, TypeFilter typeFilter)
{
    if (!state) {
        return;
    }
    const bool filtered = script->activateFilter.value(ScriptInfo::ByType);
    scriptRules::setStateChannel(*script, state, typeFilter);
    show(script);
    if (filtered != script->activateFilter.value(ScriptInfo::ByType)) {
        emit typeFilterUnfit();
    }
    emit edited();
}

void TriggerSection::setOtherCode(int code)
{
    if (!editing()) {
        return;
    }
    if (scriptRules::kindOf(script->stateChannel) == StateKind::Other) {
        script->stateChannel->code = quint8(code);
    }
    scriptRules::updateTrigger(*script);
    emit edited();
}

void TriggerSection::showChannels()
{
    const bool available = script && scriptRules::kindOf(script->stateChannel) != StateKind::NotActive;
    ui.F_NumChannel->setEnabled(available);
    for (int channel = 0; channel < channelButtons.size(); ++channel) {
        channelButtons[channel] = !available                              ? channelNone
                                  : script->numberChannels.value(channel) ? channelOn
                                                                          : channelOff;
        look::applyStyleSheet(channelWidgets.at(channel), channelSheet(channelButtons.at(channel)));
        channelWidgets.at(channel)->setOn(channelButtons.at(channel) == channelOn);
        channelWidgets.at(channel)->meaningChanged();
    }
}

void TriggerSection::channelClicked(QObject* button)
{
    const int channel = channelWidgets.indexOf(qobject_cast<StateButton*>(button));
    if (editing() && scriptRules::toggleChannel(script->numberChannels, channel)) {
        showChannels();
    }
}

void TriggerSection::showTerminalStates()
{
    const QSignalBlocker blocker(ui.listStateDevice);
    QStringList names;
    for (const ParamItemPtr& row : std::as_const(script->stateTerminal)) {
        names.append(row->name);
    }
    for (int i = 0; i < terminalStates.size(); ++i) {
        const bool checked = names.contains(terminalStates.at(i)->name);
        ui.listStateDevice->item(i)->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
    }
}

void TriggerSection::terminalStatesChanged()
{
    if (!editing()) {
        return;
    }
    ParamItems chosen;
    for (int i = 0; i < terminalStates.size(); ++i) {
        if (ui.listStateDevice->item(i)->checkState() == Qt::Checked) {
            chosen.append(terminalStates.at(i));
        }
    }
    scriptRules::setTerminalStates(*script, chosen);
    emit edited();
}

/// Makes a click on the text do what a click on the box does. A click on the box has flipped the item by itself before
/// it comes here, and mustn't flip it back.
void TriggerSection::terminalStateClicked(QListWidgetItem* item)
{
    const bool flippedByBox = item == pressedItem && item->checkState() != pressedState;
    pressedItem = nullptr;
    if (!flippedByBox) {
        item->setCheckState(item->checkState() == Qt::Checked ? Qt::Unchecked : Qt::Checked);
    }
}

/// Keeps what a terminal state was when the mouse went down on it, since the list tells of a press on the text only. A
/// quick second click is a click of its own here, not half of a double click.
bool TriggerSection::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonPress) {
        pressedItem = ui.listStateDevice->itemAt(static_cast<QMouseEvent*>(event)->pos());
        pressedState = pressedItem != nullptr ? pressedItem->checkState() : Qt::Unchecked;
    } else if (event->type() == QEvent::MouseButtonDblClick) {
        const auto* second = static_cast<QMouseEvent*>(event);
        QMouseEvent press(QEvent::MouseButtonPress, second->localPos(), second->windowPos(), second->screenPos(),
                          second->button(), second->buttons(), second->modifiers(), second->source());
        QCoreApplication::sendEvent(watched, &press);
        return true;
    }
    return ScriptSection::eventFilter(watched, event);
}
