#include "ui/scripts/TypeFilterSection.h"

#include "model/RelayInfo.h"
#include "model/ScriptRules.h"
#include "texts/texts.h"
#include "ui/scripts/PlainPartsStyle.h"
#include "ui_Setting_Script_Widget.h"
#include "widgets/Look.h"
#include "widgets/Spoken.h"

#include <QScopedValueRollback>
#include <QSignalBlocker>

#include <algorithm>

namespace
{

/// A number that means any is grey.
QString numberSheet(bool any)
{
    return any ? QStringLiteral("background-color: rgb(215,215,215)") : QStringLiteral("background-color: transparent");
}

} // namespace

TypeFilterSection::TypeFilterSection(const Ui::Setting_Script_Widget& form, const RelayInfo& relayInfo, QObject* parent)
    : ScriptSection(form, parent),
      model(relayInfo), numbers{{form.spinBoxClass, &TerminalType::terminalClass, AnyClass, AnyClass},
                                {form.spinBoxVersion, &TerminalType::version, 0, 0},
                                {form.spinBoxType, &TerminalType::type, 0, 15},
                                {form.spinBoxCharacteristic, &TerminalType::characteristic, 0, 0}},
      features{{form.checkBoxAlwaysConnect, 8},
               {form.checkBoxSound, 4},
               {form.checkBoxExternalPower, 2},
               {form.checkBoxBattery, 1}}
{
    setHeading(ui.titleFilterTerminal);
    setTexts({{ui.titleFilterTerminal, texts::editorFilterOfTerminal()},
              {ui.checkBoxType, texts::editorFilterByType()},
              {ui.checkBoxAlwaysConnect, texts::featureAlwaysConnected()},
              {ui.checkBoxSound, texts::featureSound()},
              {ui.checkBoxExternalPower, texts::featureExternalPower()},
              {ui.checkBoxBattery, texts::featureReservePower()}});
    spoken::call(ui.comboBoxSelectType, texts::editorFilterByType());
    spoken::nameBy(ui.spinBoxClass, ui.titleClass, texts::editorClass());
    spoken::nameBy(ui.spinBoxVersion, ui.titleVersion, texts::editorVersion());
    spoken::nameBy(ui.spinBoxType, ui.titleType, texts::editorType());
    spoken::nameBy(ui.spinBoxCharacteristic, ui.titleDescription, texts::editorDescription());
    setUpNumbers();
    fillTypes();
    ui.F_ManualType->setEnabled(false);
    switched();
}

void TypeFilterSection::fillTypes()
{
    const QSignalBlocker blocker(ui.comboBoxSelectType);
    setUpList(ui.comboBoxSelectType);
    const TerminalTypes types = model.terminalTypes();
    for (const TerminalTypePtr& type : types) {
        addRow(ui.comboBoxSelectType, type->label, QString(), type->background, type->foreground);
    }
    ui.comboBoxSelectType->setCurrentIndex(-1);
}

void TypeFilterSection::setUpNumbers()
{
    for (QLabel* title : {ui.titleClass, ui.titleVersion, ui.titleType, ui.titleDescription}) {
        title->setStyleSheet(numberSheet(false));
        title->setAlignment(Qt::AlignCenter);
    }
    auto* style = new PlainPartsStyle;
    style->setParent(this);
    for (const Number& number : numbers) {
        number.field->setStyle(style);
        number.field->setAlignment(Qt::AlignCenter);
        number.field->setDisplayIntegerBase(16);
        setNumber(number.field, number.field->value());
    }
    for (const Feature& feature : features) {
        feature.box->setStyle(style);
        featureClicked(feature.box);
    }
}

/// A script that filters by numbers of its own gets them in a record of its own: the catalogue has a row of that label
/// as well, which scripts share.
void TypeFilterSection::showScript()
{
    showSwitch(ui.checkBoxType, ScriptInfo::ByType);
    switched();
    if (!script->terminalFilter || ownNumbers()) {
        scriptRules::makeTypeFilterPrivate(*script);
    }
    ui.comboBoxSelectType->setCurrentIndex(ui.comboBoxSelectType->findText(script->terminalFilter->label));
    paintList();
    showNumbers();
    adaptStateToFilter();
}

void TypeFilterSection::switched()
{
    switchFilter(ui.checkBoxType, ScriptInfo::ByType, {ui.F_Type});
    shade(ui.F_Type, ui.checkBoxType);
    if (editing()) {
        emit filterChanged();
    }
    adaptStateToFilter();
}

void TypeFilterSection::switchOff()
{
    ui.checkBoxType->setChecked(false);
    switched();
}

void TypeFilterSection::adaptStateToFilter()
{
    if (script && scriptRules::adaptStateToFilter(*script, model.stateChannels())) {
        emit stateAdapted();
        emit edited();
    }
}

/// A class or version that doesn't exist can't be shown; in a record of the script's own it becomes the one that is.
void TypeFilterSection::showNumbers()
{
    const QScopedValueRollback<bool> guard(showing, true);
    TerminalType& filter = *script->terminalFilter;
    ui.F_ManualType->setEnabled(ownNumbers());
    for (const Number& number : numbers) {
        number.field->setValue(filter.*number.number);
        if (ownNumbers()) {
            filter.*number.number = quint8(number.field->value());
        }
    }
}

bool TypeFilterSection::ownNumbers() const
{
    return script->terminalFilter && script->terminalFilter->label == texts::placeholderOtherType();
}

void TypeFilterSection::paintList()
{
    QComboBox* list = ui.comboBoxSelectType;
    look::applyStyleSheet(list, look::comboProperties(list, list->currentIndex()));
    list->setToolTip(QString());
}

void TypeFilterSection::typeChosen(int index)
{
    paintList();
    const TerminalTypePtr row = model.terminalTypes().value(index);
    if (!row) {
        return;
    }
    const bool own = row->label == texts::placeholderOtherType();
    ui.F_ManualType->setEnabled(own);
    if (!editing()) {
        return;
    }
    if (own) {
        scriptRules::makeTypeFilterPrivate(*script);
    } else {
        script->terminalFilter = row;
    }
    showNumbers();
    emit filterChanged();
    adaptStateToFilter();
}

void TypeFilterSection::setClass(int value)
{
    const int allowed = scriptRules::allowedClass(value);
    if (allowed != value) {
        ui.spinBoxClass->setValue(allowed);
        return;
    }
    setNumber(ui.spinBoxClass, value);
    if (editing()) {
        adaptStateToFilter();
    }
}

void TypeFilterSection::setType(int value)
{
    setNumber(ui.spinBoxType, value);
    // All boxes first: each one that is clicked writes its own bit back.
    for (const Feature& feature : features) {
        feature.box->setChecked((value & feature.bit) != 0);
    }
    for (const Feature& feature : features) {
        emit feature.box->clicked(feature.box->isChecked());
    }
}

/// Rows of the catalogue are shared by all scripts and never written.
void TypeFilterSection::setNumber(QSpinBox* field, int value)
{
    const auto number =
        *std::find_if(numbers.begin(), numbers.end(), [field](const Number& each) { return each.field == field; });
    look::applyStyleSheet(field, numberSheet(value >= number.firstAny && value <= number.lastAny));
    if (!editing()) {
        return;
    }
    if (ownNumbers()) {
        (*script->terminalFilter).*number.number = quint8(value);
    }
    emit filterChanged();
}

void TypeFilterSection::featureClicked(QCheckBox* box)
{
    const auto feature =
        *std::find_if(features.begin(), features.end(), [box](const Feature& each) { return each.box == box; });
    const bool checked = box->isChecked();
    const int type = ui.spinBoxType->value();
    look::applyStyleSheet(box, numberSheet(!checked));
    ui.spinBoxType->setValue(checked ? type | feature.bit : type & ~feature.bit);
}
