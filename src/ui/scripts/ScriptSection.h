#pragma once

#include "model/ScriptInfo.h"

#include <QObject>
#include <QString>

#include <initializer_list>
#include <utility>

class QCheckBox;
class QComboBox;
class QLabel;
class QWidget;
class RelayInfo;

namespace Ui
{
class Setting_Script_Widget;
}

/// A part of the script editor: some controls of its form, which show some fields of a script and write each edit of
/// them straight back.
///
/// It guards itself: what its controls report while it shows a script is no edit, nor is anything before the first
/// script. It knows no other part; what they need to hear of is a signal. The editor owns it; GUI thread only.
class ScriptSection : public QObject
{
    Q_OBJECT

public:
    /// Shows a script, not null, and from now on edits it.
    void show(const ScriptInfoPtr& newScript);

signals:
    void edited(); ///< name, mode or trigger have changed, by which the lists show a script

protected:
    ScriptSection(const Ui::Setting_Script_Widget& form, QObject* parent);

    virtual void showScript() = 0;

    /// True while a change of a control is the user's edit of a script.
    bool editing() const
    {
        return script && !showing;
    }

    /// Shows the switch of a filter as the script has it. The caller then calls what its click does.
    void showSwitch(QCheckBox* box, ScriptInfo::Filter filter);

    /// Stores the switch of a filter, and lets what belongs to the filter follow it.
    void switchFilter(const QCheckBox* box, ScriptInfo::Filter filter, std::initializer_list<QWidget*> controls);

    /// A filter with a frame of its own lies in grey while it is off.
    static void shade(QWidget* frame, const QCheckBox* box);

    /// A list whose rows may be wider than the panel.
    static void setUpList(QComboBox* combo);

    /// Fills a combo with table rows, each name once, leaves it without a choice, and returns the rows that it has.
    static ParamItems fill(QComboBox* combo, const ParamItems& rows);
    static void addRow(QComboBox* combo, const QString& text, const QString& icon, const QColor& background,
                       const QColor& foreground);

    /// Shows the row of a name; a name that the list doesn't have leaves the combo without a choice.
    static void choose(QComboBox* combo, const QString& name);
    static void choose(QComboBox* combo, const ParamItemPtr& row);
    static void paint(QComboBox* combo);

    static void setHeading(QLabel* label);
    static void setTexts(std::initializer_list<std::pair<QWidget*, QString>> texts);

    const Ui::Setting_Script_Widget& ui;
    ScriptInfoPtr script; ///< on show; null until the first
    bool showing = false; ///< the controls are being set from the record
};
