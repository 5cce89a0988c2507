#pragma once

#include "model/ScriptRules.h"
#include "ui/scripts/ScriptSection.h"

class QListWidgetItem;
class StateButton;

/// What triggers a script: a channel's state, with the channels that it counts for, and states of terminals.
///
/// The channel's state is one code, and up to three controls show it: the list of states, the list of the states of
/// its family, and for buttons the press; or the code itself.
class TriggerSection : public ScriptSection
{
    Q_OBJECT

public:
    TriggerSection(const Ui::Setting_Script_Widget& form, const RelayInfo& model, QObject* parent);

    const QList<StateButton*>& channels() const ///< the buttons of channels 1 to 4
    {
        return channelWidgets;
    }

    void stateChosen(int index);
    void linkedStateChosen(QComboBox* list, int index); ///< in the list of a family
    void setPress(bool longPress);
    void setOtherCode(int code);
    void channelClicked(QObject* button);
    void terminalStatesChanged();
    void terminalStateClicked(QListWidgetItem* item);
    void fitTerminalStates(); ///< the list is short and shows all its rows

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    void typeFilterUnfit(); ///< the user chose a state that the class of the filter by type can't report

protected:
    void showScript() override;

private:
    /// The further controls of a state that has a family.
    struct FamilyControls
    {
        scriptRules::StateKind kind;
        QComboBox* list;
        QWidget* frame; ///< the list alone, or with more
    };

    void makeChannelButtons();
    void fillTerminalStates();
    void showFurtherControls(scriptRules::StateKind kind);
    void startFurtherControls(scriptRules::StateKind kind);
    void showChannels();
    void showTerminalStates();
    void setState(const ParamItemPtr& state, scriptRules::TypeFilter typeFilter);

    const ParamItems allStates; ///< the table
    const ParamItems terminalStates;
    const ParamItems states; ///< those in the list, each name once, "<Other>" at the end
    const QList<FamilyControls> families;
    QList<unsigned char> channelButtons = {255, 255, 255, 255}; ///< 0 off, 1 on, 255 not available
    QList<StateButton*> channelWidgets;
    QListWidgetItem* pressedItem = nullptr;      ///< the terminal state that the mouse went down on,
    Qt::CheckState pressedState = Qt::Unchecked; ///< and whether it was checked then
};
