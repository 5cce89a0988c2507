// The context menu of the nodes, and the renaming that begins there or with a double click.

#include "texts/texts.h"
#include "ui/tree/NodeTree.h"
#include "ui/tree/Tree_Relay_Widget.h"
#include "ui_Tree_Relay_Widget.h"

#include <QEvent>
#include <QFocusEvent>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>

namespace
{

bool isEnter(int key)
{
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

} // namespace

void Tree_Relay_Widget::sl_prepareMenu(const QPoint& pos)
{
    const QTreeWidgetItem* item = ui->treeWidget->itemAt(pos);
    if (item == nullptr) {
        return;
    }
    const NodePlace place = treeNodes::find(nodes, [item](const auto& node) { return node.item == item; });
    if (place.node < 0) {
        return;
    }
    menuGroup = nodes.at(place.node).group;
    renameGroup = place.node;
    renameOutput = place.output;
    menuKeyHeld = false;

    QMenu menu(this);
    menu.setStyleSheet(QStringLiteral("selection-background-color: rgba(0, 0, 255, 30); selection-color: black;"));
    menu.installEventFilter(this);
    const QIcon deleteIcon(QStringLiteral(":/icons/icons/delete.png"));
    menu.addAction(deleteIcon, texts::treeHideTerminal(), this, [this] { emit sig_deleteGroupRelay(menuGroup); });
    menu.addAction(deleteIcon, texts::treeHideDisconnected(), this,
                   &Tree_Relay_Widget::sig_deleteDisconnectedGroupRelays);
    menu.addAction(QIcon(QStringLiteral(":/icons/icons/rename.png")),
                   place.output < 0 ? texts::treeRenameTerminal() : texts::treeRenameOutput(), this,
                   &Tree_Relay_Widget::sl_RunRename);
    menu.exec(ui->treeWidget->viewport()->mapToGlobal(pos));
}

void Tree_Relay_Widget::renameCurrent()
{
    const QTreeWidgetItem* const item = ui->treeWidget->currentItem();
    const NodePlace place = treeNodes::find(nodes, [item](const auto& node) { return node.item == item; });
    renameGroup = place.node;
    renameOutput = place.output;
    menuKeyHeld = false;
    ui->treeWidget->scrollToItem(item); // its frame may not have been shown yet
    sl_RunRename();
}

void Tree_Relay_Widget::sl_RunRename()
{
    const NodeName name = treeNodes::nameAt(nodes, {renameGroup, renameOutput});
    if (name.text == nullptr) {
        return;
    }
    name.label->hide();
    name.edit->setText(*name.text);
    name.edit->show();
    name.edit->setFocus(Qt::OtherFocusReason);
}

bool Tree_Relay_Widget::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonDblClick: {
        const NodePlace place = treeNodes::find(nodes, [watched](const auto& node) { return node.label == watched; });
        if (place.output >= 0) {
            renameGroup = place.node;
            renameOutput = place.output;
            sl_RunRename();
        }
        break;
    }
    case QEvent::FocusOut:
        // The edit's own menu, for a paste, must not take the edit away.
        if (static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason) {
            endRename(placeOfEdit(watched));
        }
        break;
    case QEvent::KeyPress: {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (!key->isAutoRepeat()) {
            menuKeyHeld = isEnter(key->key()) && qobject_cast<QMenu*>(watched) != nullptr;
        }
        break;
    }
    case QEvent::KeyRelease:
        keyReleased(placeOfEdit(watched), static_cast<QKeyEvent*>(event));
        break;
    default:
        break;
    }
    return false;
}

NodePlace Tree_Relay_Widget::placeOfEdit(const QObject* edit) const
{
    return treeNodes::find(nodes, [edit](const auto& node) { return node.edit == edit; });
}

void Tree_Relay_Widget::keyReleased(const NodePlace& place, const QKeyEvent* event)
{
    const NodeName name = treeNodes::nameAt(nodes, place);
    if (name.text == nullptr) {
        return;
    }
    if (!isEnter(event->key())) {
        storeName(place, name);
    } else if (!menuKeyHeld) {
        ui->treeWidget->setFocus(Qt::OtherFocusReason);
    } else if (!event->isAutoRepeat()) {
        menuKeyHeld = false;
    }
}

/// A name that is being edited when the nodes change, whichever it is.
void Tree_Relay_Widget::endRename()
{
    endRename(treeNodes::find(nodes, [](const auto& node) { return !node.edit->isHidden(); }));
    renameGroup = -1;
    renameOutput = -1;
}

void Tree_Relay_Widget::endRename(const NodePlace& place)
{
    const NodeName name = treeNodes::nameAt(nodes, place);
    if (name.text == nullptr) {
        return;
    }
    // What came in without a key of its own, by the mouse or an input method, counts as well.
    if (name.edit->isVisibleTo(this) && name.edit->text() != *name.text) {
        storeName(place, name);
    }
    name.edit->hide();
    name.label->show();
}

void Tree_Relay_Widget::storeName(const NodePlace& place, const NodeName& name)
{
    *name.text = name.edit->text();
    name.label->setText(treeNodes::titleAt(nodes, place));
    const GroupNode& node = nodes.at(place.node);
    place.output < 0 ? treeNodes::paintGroup(node) : treeNodes::paintOutput(node.outputs.at(place.output));
    emit sig_changeNameDevOrOutput();
}
