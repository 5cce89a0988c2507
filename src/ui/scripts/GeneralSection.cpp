#include "ui/scripts/GeneralSection.h"

#include "model/RelayInfo.h"
#include "texts/texts.h"
#include "ui_Setting_Script_Widget.h"
#include "widgets/Spoken.h"

GeneralSection::GeneralSection(const Ui::Setting_Script_Widget& form, const RelayInfo& model, QObject* parent)
    : ScriptSection(form, parent), lists{{form.comboModeWorkRelay, &ScriptInfo::mode,
                                          fill(form.comboModeWorkRelay, model.modes())},
                                         {form.comboDelay, &ScriptInfo::delay, fill(form.comboDelay, model.delays())},
                                         {form.comboDuration, &ScriptInfo::duration,
                                          fill(form.comboDuration, model.durations())}}
{
    spoken::nameBy(ui.lineEditNameScript, ui.titleName, texts::editorName());
    spoken::nameBy(ui.comboModeWorkRelay, ui.titleMode, texts::editorMode());
    spoken::nameBy(ui.comboDelay, ui.labelTitleDelay, texts::editorDelay());
    spoken::nameBy(ui.comboDuration, ui.labelTitleDuration, texts::editorDuration());
}

void GeneralSection::showScript()
{
    ui.lineEditNameScript->setText(script->name);
    ui.lineEditNameScript->setCursorPosition(0);
    ui.labelNumScript->setText(QStringLiteral("№%1").arg(script->number + 1));
    for (const RowList& list : std::as_const(lists)) {
        choose(list.combo, (*script).*list.field);
    }
}

void GeneralSection::setName(const QString& name)
{
    if (editing()) {
        script->name = name;
        emit renamed();
        emit edited();
    }
}

void GeneralSection::rowChosen(QComboBox* combo, int index)
{
    paint(combo);
    for (const RowList& list : std::as_const(lists)) {
        const ParamItemPtr row = list.rows.value(index);
        if (list.combo == combo && editing() && row) {
            (*script).*list.field = row;
            emit edited();
        }
    }
}
