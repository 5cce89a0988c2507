// The keys of the lists.

#include "ui/scripts/ScriptLabel.h"
#include "ui/scripts/ScriptLists.h"

#include <QAction>
#include <QListWidget>
#include <QVector>

#include <utility>

/// Of the lists alone: in a field of the editor the same keys edit.
void ScriptLists::setUpKeys()
{
    const auto add = [this](const QKeySequence& key, const QList<QListWidget*>& lists, void (ScriptLists::*slot)()) {
        auto* const action = new QAction(this);
        action->setShortcut(key);
        action->setShortcutContext(Qt::WidgetShortcut);
        connect(action, &QAction::triggered, this, slot);
        for (QListWidget* const list : lists) {
            list->addAction(action);
        }
    };
    add(Qt::Key_Insert, {all, active}, &ScriptLists::addSelected);
    add(QKeySequence::Delete, {all, active}, &ScriptLists::removeSelected);
    add(Qt::Key_F2, {all, active}, &ScriptLists::renameWanted);
    add(Qt::ALT + Qt::Key_Up, {active}, &ScriptLists::moveSelectedUp);
    add(Qt::ALT + Qt::Key_Down, {active}, &ScriptLists::moveSelectedDown);
}

void ScriptLists::moveSelectedUp()
{
    moveSelected(-1);
}

void ScriptLists::moveSelectedDown()
{
    moveSelected(1);
}

/// Each row that is selected changes places with its neighbour, beginning with those that go first.
void ScriptLists::moveSelected(int step)
{
    const int count = activeScriptEntries.size();
    if (!currentRelay || currentRelay->activatedScripts.size() != count) {
        return;
    }
    QVector<bool> selected(count);
    for (int row = 0; row < count; ++row) {
        selected[row] = activeScriptEntries.at(row).item->isSelected();
    }
    bool moved = false;
    for (int i = 1; i < count; ++i) {
        const int row = step < 0 ? i : count - 1 - i;
        if (selected.at(row) && !selected.at(row + step)) {
            std::swap(selected[row], selected[row + step]);
            currentRelay->activatedScripts.swapItemsAt(row, row + step);
            moved = true;
        }
    }
    if (moved) {
        rebuildActive();
    }
}
