#include "ui/scripts/ScriptSection.h"

#include "texts/texts.h"
#include "widgets/ColoredComboStyle.h"
#include "widgets/Look.h"
#include "widgets/SheetAlone.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QScopedValueRollback>
#include <QSignalBlocker>

ScriptSection::ScriptSection(const Ui::Setting_Script_Widget& form, QObject* parent) : QObject(parent), ui(form)
{
}

void ScriptSection::show(const ScriptInfoPtr& newScript)
{
    const QScopedValueRollback<bool> guard(showing, true);
    script = newScript;
    showScript();
}

void ScriptSection::showSwitch(QCheckBox* box, ScriptInfo::Filter filter)
{
    box->setChecked(script->activateFilter.value(filter));
}

void ScriptSection::switchFilter(const QCheckBox* box, ScriptInfo::Filter filter,
                                 std::initializer_list<QWidget*> controls)
{
    for (QWidget* control : controls) {
        control->setEnabled(box->isChecked());
    }
    if (editing()) {
        script->activateFilter[filter] = box->isChecked();
    }
}

void ScriptSection::shade(QWidget* frame, const QCheckBox* box)
{
    look::applyStyleSheet(frame,
                          box->isChecked() ? QString() : QStringLiteral("background-color: rgba(187, 187, 187, 150)"));
}

void ScriptSection::setUpList(QComboBox* combo)
{
    combo->setStyle(ColoredComboStyle::shared());
    combo->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    combo->setMaxVisibleItems(20);
    combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    combo->setMinimumContentsLength(12);
}

ParamItems ScriptSection::fill(QComboBox* combo, const ParamItems& rows)
{
    setUpList(combo);
    const QSignalBlocker blocker(combo);
    ParamItems shown;
    for (const ParamItemPtr& row : rows) {
        if (combo->findText(row->name) < 0) {
            addRow(combo, row->name, row->icon, row->background, row->foreground);
            shown.append(row);
        }
    }
    combo->setCurrentIndex(-1);
    return shown;
}

void ScriptSection::addRow(QComboBox* combo, const QString& text, const QString& icon, const QColor& background,
                           const QColor& foreground)
{
    combo->addItem(QIcon(icon), text);
    combo->setItemData(combo->count() - 1, background, Qt::BackgroundRole);
    combo->setItemData(combo->count() - 1, foreground, Qt::ForegroundRole);
}

void ScriptSection::choose(QComboBox* combo, const QString& name)
{
    combo->setCurrentIndex(combo->findText(name));
    paint(combo);
}

void ScriptSection::choose(QComboBox* combo, const ParamItemPtr& row)
{
    choose(combo, row ? row->name : texts::placeholderUnknown());
}

void ScriptSection::paint(QComboBox* combo)
{
    sheetAlone::apply(combo, QStringLiteral("QComboBox{%1}").arg(look::comboProperties(combo, combo->currentIndex())));
    combo->setToolTip(QString());
}

void ScriptSection::setHeading(QLabel* label)
{
    QFont font;
    font.setBold(true);
    label->setFont(font);
    label->setStyleSheet(QStringLiteral("background: rgb(220,220,220); padding: 3px;"));
    label->setAlignment(Qt::AlignCenter);
}

void ScriptSection::setTexts(std::initializer_list<std::pair<QWidget*, QString>> texts)
{
    for (const auto& [control, text] : texts) {
        control->setProperty("text", text);
    }
}
