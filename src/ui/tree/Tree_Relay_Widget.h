#pragma once

#include "ui/tree/TreeNodes.h"

#include <QList>
#include <QSharedPointer>
#include <QStringList>
#include <QWidget>

#include <memory>

class QKeyEvent;
class QPoint;
class RelayInfo;

namespace Ui
{
class Tree_Relay_Widget;
}

/// The panel with the head unit, the executive terminals and their outputs: here the user selects the output to work
/// on, sets its initial state and its return to that state, renames, adds and hides terminals.
///
/// Owned by the dock it stands in; GUI thread only. The widgets of all nodes are made anew at each fullUpdateTree(),
/// which every change of the model's groups calls for; edits go straight into the records of the model. What doesn't
/// fit together is one debug line and nothing else.
class Tree_Relay_Widget : public QWidget
{
    Q_OBJECT

public:
    explicit Tree_Relay_Widget(QSharedPointer<RelayInfo> info, QWidget* parent = nullptr);
    ~Tree_Relay_Widget() override;
    Q_DISABLE_COPY_MOVE(Tree_Relay_Widget)

    /// Rebuilds everything from the model. Open nodes stay open. The current terminal stays selected, or the head unit
    /// is if asked for; where the current terminal is gone, the nearest one in front of it that is still there.
    void fullUpdateTree(bool focusHeadUnit);

    void setLeastWidth(int width); ///< of the tree, which scrolls where that is less than its rows take

    /// Takes away the nodes whose groups have gone from the model. All is then as after fullUpdateTree(false), at a
    /// small part of its cost: the other nodes keep their widgets, and the tree stays where it was scrolled to.
    void removeGoneNodes();

    /// @name Parts of fullUpdateTree().
    /// @{
    void updateStructTree();            ///< makes the nodes, without placing them in the tree
    void refreshTree();                 ///< paints all nodes
    void setFocusOnNode(bool headUnit); ///< selects the current terminal or the head unit
    /// @}

    /// Renaming; never keeps an event from its receiver.
    bool eventFilter(QObject* watched, QEvent* event) override;

public slots:
    void sl_refreshCurrentNodeTree(); ///< the scripts of the output that is worked on have changed
    void sl_CreateNewGroupAndRelays(const QString& nameGroup, short addressGroup, const QStringList& namesRelays);
    void on_treeWidget_itemSelectionChanged();
    void sl_pushButtonAddGroup_clicked();
    void sl_prepareMenu(const QPoint& pos); ///< shows the context menu and returns when it has gone
    void sl_RunRename();
    void sl_StartStateChanged(int index); ///< for the combo that sent it
    void sl_ReturnStateClicked();         ///< for the check box that sent it

signals:
    /// The output to work on. A selected terminal stands for its first output.
    void sig_changeRelay(const QSharedPointer<RelayInformation>& relay, const QSharedPointer<GroupRelay>& group);
    void sig_newGroupRelay();
    void sig_deleteGroupRelay(const QSharedPointer<GroupRelay>& group);
    void sig_deleteDisconnectedGroupRelays();
    void sig_changeNameDevOrOutput(); ///< with each key of a new name

private:
    NodePlace placeOfEdit(const QObject* edit) const;
    const OutputNode* senderOutput(const QObject* control) const;

    void renameCurrent();
    void storeExpanded();
    void passCurrentGroupOn();
    void endRename();
    void clearNodes();
    void fillTree();
    void connectOutput(const OutputNode& node);
    void addButtonRow();
    void scrollToCurrentGroup();
    static void repaintOutputs(const GroupNode& node);
    void keyReleased(const NodePlace& place, const QKeyEvent* event);
    void endRename(const NodePlace& place);
    void storeName(const NodePlace& place, const NodeName& name);

    std::unique_ptr<Ui::Tree_Relay_Widget> ui;
    QSharedPointer<RelayInfo> m_info;
    QList<GroupNode> nodes;                  ///< one for each group of the model, in its order
    QSharedPointer<GroupRelay> currentGroup; ///< group of the current selection
    QSharedPointer<GroupRelay> workGroup;    ///< group of the output that was told to be worked on
    QSharedPointer<GroupRelay> menuGroup;    ///< group under the last context menu
    int renameGroup = -1;                    ///< index of the node to rename
    int renameOutput = -1;                   ///< index of the output in that node, -1 for the terminal itself
    bool menuKeyHeld = false;                ///< the key that chose from the context menu is still to be released
};
