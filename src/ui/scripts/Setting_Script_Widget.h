#pragma once

#include "model/RelayInfo.h"
#include "model/ScriptInfo.h"

#include <QList>
#include <QSharedPointer>
#include <QString>
#include <QWidget>

#include <memory>

class AddressFilterSection;
class GeneralSection;
class PeriodsSection;
class QListWidgetItem;
class ScriptSection;
class TriggerSection;
class TypeFilterSection;

namespace Ui
{
class Setting_Script_Widget;
}

/// The script editor: shows the script that came last through sl_SetNewScript() and writes each edit straight into that
/// shared record. There is no step of applying. The work is done by the sections, each for some controls of the form;
/// the slots of the controls pass on to them.
///
/// Showing a script edits nothing but what belongs to the rules of a record: the state "Not active" empties the list of
/// channels, any other state has at least channel 1, a class of 5 to 14 in the script's own type filter becomes 15 or
/// 4, and under a filter by type the state is named by the filter's class, with the same code. A value that its control
/// can't show stays in the record until the user edits that very value; a day also until the user chooses a month for
/// the day that stands there instead.
///
/// The main window owns it, in the right dock, and shares the model with it. GUI thread only.
class Setting_Script_Widget : public QWidget
{
    Q_OBJECT

public:
    explicit Setting_Script_Widget(const QSharedPointer<RelayInfo>& info, QWidget* parent = nullptr);
    ~Setting_Script_Widget() override;
    Q_DISABLE_COPY_MOVE(Setting_Script_Widget)

    /// The script on show; null until the first sl_SetNewScript().
    ScriptInfoPtr currentScript() const
    {
        return script;
    }

    void enterName(); ///< gives the name the keys, with all of its text selected

    /// Paints the number of the script in the colour of its row in the lists, a text such as "rgba(0, 255, 17, 150)".
    void setStateColor(const QString& color);

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void changeEvent(QEvent* event) override;

signals:
    void sig_changeTitle(const QString& title); ///< a script is shown, or the one on show was renamed
    void sig_RefreshStateScriptInList();        ///< name, mode or trigger have changed, or another script is shown

public slots:
    void sl_SetNewScript(const QSharedPointer<ScriptInfo>& newScript); ///< shows a script; null is ignored
    void sl_UpDateConnectList(); ///< the model's list of connected terminals has changed

private slots:
    void on_lineEditNameScript_textChanged(const QString& text);
    void on_comboModeWorkRelay_currentIndexChanged(int index);
    void on_comboDelay_currentIndexChanged(int index);
    void on_comboDuration_currentIndexChanged(int index);

    void on_comboStateChannel_currentIndexChanged(int index);
    void on_comboBoxPNB_currentIndexChanged(int index);
    void on_radioShortPress_clicked();
    void on_radioLongPress_clicked();
    void on_comboBoxAnalog_currentIndexChanged(int index);
    void on_spinBoxOtherStateChannel_valueChanged(int value);
    void sl_buttonChannel_clicked();
    void on_listStateDevice_itemChanged(QListWidgetItem* item);
    void on_listStateDevice_itemClicked(QListWidgetItem* item);

    void on_checkBoxType_clicked();
    void on_comboBoxSelectType_currentIndexChanged(int index);
    void on_spinBoxClass_valueChanged(int value);
    void on_spinBoxVersion_valueChanged(int value);
    void on_spinBoxType_valueChanged(int value);
    void on_spinBoxCharacteristic_valueChanged(int value);
    void on_checkBoxAlwaysConnect_clicked();
    void on_checkBoxSound_clicked();
    void on_checkBoxExternalPower_clicked();
    void on_checkBoxBattery_clicked();
    void on_checkBoxAddress_clicked();
    void sl_addressButton_clicked();

    void sl_checkBoxDayOfWeek_clicked();
    void on_checkBoxTime_clicked();
    void on_checkBoxDate_clicked();
    void sl_spinBoxTimeMinute_changed();
    void sl_spinBoxTimeHour_changed();
    void sl_spinBoxDateDay_changed();
    void sl_comboBoxDateMonth_changed();

private:
    void connectSections();
    void connectControls();
    void setUpFields();
    void announceTitle();

    std::unique_ptr<Ui::Setting_Script_Widget> ui;
    const QSharedPointer<RelayInfo> m_info; ///< the sections use it as long as the panel lives
    ScriptInfoPtr script;
    GeneralSection* const general;
    TriggerSection* const trigger;
    TypeFilterSection* const typeFilter;
    AddressFilterSection* const addressFilter;
    PeriodsSection* const periods;
    const QList<ScriptSection*> sections; ///< all of them, in the order in which a script is shown
};
