// The keys of the lists.

#include "ui/scripts/ScriptLabel.h"
#include "ui/scripts/ScriptLists.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QItemSelectionModel>
#include <QListWidget>
#include <QSignalBlocker>
#include <QStringList>
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
    add(Qt::ALT + Qt::Key_Up, {active}, &ScriptLists::moveSelectedUp);
    add(Qt::ALT + Qt::Key_Down, {active}, &ScriptLists::moveSelectedDown);
    add(QKeySequence::Copy, {all}, [this] { copySelected(all); });
    add(QKeySequence::Copy, {active}, [this] { copySelected(active); });
}

void ScriptLists::moveSelectedUp()
{
    moveSelected(-1);
}

void ScriptLists::moveSelectedDown()
{
    moveSelected(1);
}

/// Each row that is chosen changes places with its neighbour, beginning with those that go first.
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

/// The selected ones. A script that stands in the list twice is selected twice by the list of all; then the current row
/// is meant, or the first one.
QVector<bool> ScriptLists::rowsToMove() const
{
    const int count = activeScriptEntries.size();
    const int current = active->currentRow();
    QVector<bool> rows(count);
    const auto isTaken = [&](const ScriptInfoPtr& script) {
        for (int row = 0; row < count; ++row) {
            if (rows.at(row) && activeScriptEntries.at(row).script == script) {
                return true;
            }
        }
        return false;
    };
    const auto take = [&](int row) {
        const ScriptEntry& entry = activeScriptEntries.at(row);
        rows[row] = rows.at(row) || (entry.item->isSelected() && !isTaken(entry.script));
    };
    if (current >= 0 && current < count) {
        take(current);
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
    active->setCurrentRow(current, QItemSelectionModel::NoUpdate);
    for (int row = 0; row < selected.size(); ++row) {
        active->item(row)->setSelected(selected.at(row));
    }
}

/// What the selected rows say, a line each.
void ScriptLists::copySelected(const QListWidget* list)
{
    QStringList lines;
    for (int row = 0; row < list->count(); ++row) {
        if (list->item(row)->isSelected()) {
            lines.append(list->item(row)->data(Qt::AccessibleTextRole).toString());
        }
    }
    if (!lines.isEmpty()) {
        QGuiApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
    }
}
