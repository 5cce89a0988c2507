#pragma once

#include "ui/scripts/ScriptSection.h"

/// Name, mode, delay and duration of a script.
class GeneralSection : public ScriptSection
{
    Q_OBJECT

public:
    GeneralSection(const Ui::Setting_Script_Widget& form, const RelayInfo& model, QObject* parent);

    void setName(const QString& name);
    void rowChosen(QComboBox* combo, int index); ///< in the list of modes, delays or durations

signals:
    void renamed();

protected:
    void showScript() override;

private:
    /// A list of table rows and what it edits.
    struct RowList
    {
        QComboBox* combo;
        ParamItemPtr ScriptInfo::*field;
        ParamItems rows;
    };

    QList<RowList> lists;
};
