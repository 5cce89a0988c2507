// The keys of the lists.

#include "ui/scripts/ScriptLists.h"
#include "widgets/copyRows.h"

#include <QAction>
#include <QItemSelectionModel>
#include <QListWidget>
#include <QSignalBlocker>
#include <QVector>

#include <utility>

/// Of the lists alone: in a field of the editor the same keys edit.
void ScriptLists::setUpKeys()
{
    const auto add = [this](const QKeySequence& key, const QList<QListWidget*>& lists, auto slot) {
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
    add(Qt::ALT + Qt::Key_Up, {active}, [this] { moveSelected(-1); });
    add(Qt::ALT + Qt::Key_Down, {active}, [this] { moveSelected(1); });
    offerCopyOfRows(all);
    offerCopyOfRows(active);
}

/// By one row, among the active ones; those that stand at the end stay there. Each row that is chosen changes places
/// with its neighbour, beginning with those that go first.
void ScriptLists::moveSelected(int step)
{
    const int count = activeScriptEntries.size();
    if (!currentRelay || currentRelay->activatedScripts.size() != count) {
        return;
    }
    QVector<bool> chosen = rowsToMove();
    int current = active->currentRow();
    bool moved = false;
    for (int i = 1; i < count; ++i) {
        const int row = step < 0 ? i : count - 1 - i;
        const int neighbour = row + step;
        if (chosen.at(row) && !chosen.at(neighbour)) {
            std::swap(chosen[row], chosen[neighbour]);
            currentRelay->activatedScripts.swapItemsAt(row, neighbour);
            if (current == row || current == neighbour) {
                current = row + neighbour - current; // it goes with its row
            }
            moved = true;
        }
    }
    if (moved) {
        rebuildActive();
        selectRows(chosen, current);
    }
}

/// The selected ones. The list of all selects a script that stands here twice in both places; then the current row is
/// meant, or the first one.
QVector<bool> ScriptLists::rowsToMove() const
{
    const int count = activeScriptEntries.size();
    QVector<bool> rows(count);
    QList<ScriptInfoPtr> taken;
    const auto take = [&](int row) {
        const ScriptEntry& entry = activeScriptEntries.at(row);
        if (entry.item->isSelected() && !(isActiveMirroring && taken.contains(entry.script))) {
            rows[row] = true;
            taken.append(entry.script);
        }
    };
    if (active->currentRow() >= 0) {
        take(active->currentRow());
    }
    for (int row = 0; row < count; ++row) {
        take(row);
    }
    return rows;
}

/// Row by row, since a rebuilt list selects by scripts.
void ScriptLists::selectRows(const QVector<bool>& selected, int current)
{
    const QSignalBlocker blocker(active);
    isActiveMirroring = false;
    active->setCurrentRow(current, QItemSelectionModel::NoUpdate);
    for (int row = 0; row < selected.size(); ++row) {
        active->item(row)->setSelected(selected.at(row));
    }
}
