#include "ui/scripts/ScriptLists.h"

#include "model/RelayInfo.h"
#include "model/tables.h"
#include "texts/texts.h"
#include "ui/scripts/ScriptLabel.h"
#include "ui/scripts/ScriptSummary.h"
#include "widgets/Look.h"

#include <QAbstractItemView>
#include <QEvent>
#include <QItemSelectionModel>
#include <QListWidget>
#include <QListWidgetItem>
#include <QPainter>
#include <QPalette>
#include <QSignalBlocker>
#include <QStyledItemDelegate>

#include <algorithm>
#include <utility>

namespace
{

constexpr int rowPadding = 3;

/// The number counts from one and takes the room of two digits, so that the names of all rows begin alike.
QString rowText(const ScriptInfo& script)
{
    return QStringLiteral("%1. %2").arg(QString::number(script.number + 1).rightJustified(2), script.name);
}

QString indentedRowText(const ScriptInfo& script)
{
    return QLatin1Char(' ') + rowText(script);
}

QString rowColor(const ScriptInfo& script)
{
    return look::rgba(script.notActive || !script.mode ? unsetColor() : script.mode->background);
}

/// What the colour tells, in words.
QString rowMeaning(const ScriptInfo& script)
{
    return script.notActive || !script.mode ? texts::placeholderNotActive() : script.mode->name;
}

/// The item itself shows nothing, but it is what a screen reader tells of.
void showRow(QListWidgetItem* item, ScriptLabel* label, const ScriptInfo& script, const QString& text)
{
    const QString sheet =
        QStringLiteral("QLabel{background-color: %1;} QToolTip {background-color: #F4F4F4}").arg(rowColor(script));
    label->setText(text);
    label->setMark(ScriptLabel::markOf(script));
    look::applyStyleSheet(label, sheet);
    item->setData(Qt::AccessibleTextRole, text.simplified());
    item->setData(Qt::AccessibleDescriptionRole, rowMeaning(script));
}

/// Lets a selected row be read: with the usual blue behind it, the black text of a red row had a contrast of 3.4.
void setSelectionColor(QWidget* list)
{
    QPalette colors = list->palette();
    colors.setColor(QPalette::Highlight, QColor(120, 190, 255));
    list->setPalette(colors);
}

/// Gives a row that is being dragged the look of its widget, which the list itself doesn't draw.
class DraggedRowDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::paint(painter, option, index);
        QWidget* const widget = static_cast<QListWidget*>(parent())->indexWidget(index);
        if (widget != nullptr && painter->device()->devType() == QInternal::Pixmap) {
            painter->drawPixmap(option.rect.topLeft(), widget->grab());
        }
    }
};

} // namespace

ScriptLists::ScriptLists(QSharedPointer<RelayInfo> info, QListWidget* allList, QListWidget* activeList, QObject* parent)
    : QObject(parent), relayInfo(std::move(info)), all(allList), active(activeList)
{
    all->setSelectionMode(QAbstractItemView::ExtendedSelection);
    active->setSelectionMode(QAbstractItemView::ExtendedSelection);
    active->setDragDropMode(QAbstractItemView::InternalMove);
    active->setItemDelegate(new DraggedRowDelegate(active));
    active->installEventFilter(this);
    setSelectionColor(all);
    setSelectionColor(active);
    connect(active->model(), &QAbstractItemModel::rowsAboutToBeRemoved, this,
            [this](const QModelIndex&, int firstRow, int lastRow) { dropEntries(firstRow, lastRow); });
    setUpKeys();
}

void ScriptLists::rebuildAll()
{
    allScriptEntries.clear();
    all->clear();
    const QList<ScriptInfoPtr> scripts = relayInfo->scripts();
    for (const ScriptInfoPtr& script : scripts) {
        allScriptEntries.append(makeEntry(all, script, rowText(*script)));
    }
}

void ScriptLists::rebuildActive(const QSharedPointer<RelayInformation>& output)
{
    currentRelay = output;
    rebuildActive();
}

void ScriptLists::rebuildActive()
{
    const QSignalBlocker allBlocker(all);
    {
        // The rows go all at once, which isn't a choice that the other list has to follow.
        const QSignalBlocker activeBlocker(active);
        activeScriptEntries.clear();
        active->clear();
    }
    if (!currentRelay) {
        return;
    }
    for (const ScriptInfoPtr& script : std::as_const(currentRelay->activatedScripts)) {
        activeScriptEntries.append(makeEntry(active, script, indentedRowText(*script)));
    }
    allCurrentChanged(all->currentItem());
    allSelectionChanged();
}

ScriptLists::ScriptEntry ScriptLists::makeEntry(QListWidget* list, const ScriptInfoPtr& script, const QString& text)
{
    auto* label = new ScriptLabel(list->viewport()); // given later, its parent would style it again
    label->setContentsMargins(rowPadding, rowPadding, rowPadding, rowPadding);
    label->installEventFilter(this);
    auto* item = new QListWidgetItem;
    showRow(item, label, *script, text);
    item->setSizeHint({0, label->minimumSizeHint().height()});
    list->addItem(item);
    list->setItemWidget(item, label);
    return {item, label, script};
}

void ScriptLists::selectFirstActive()
{
    if (!activeScriptEntries.isEmpty()) {
        active->setCurrentRow(0, QItemSelectionModel::ClearAndSelect);
    }
}

void ScriptLists::showNewScripts(const QSharedPointer<RelayInformation>& output, const ScriptInfoPtr& edited)
{
    rebuildAll();
    rebuildActive(output);
    const bool hasActive = !activeScriptEntries.isEmpty();
    const Entries& entries = hasActive ? activeScriptEntries : allScriptEntries;
    if (entries.isEmpty()) {
        return;
    }
    refreshStates(edited);
    (hasActive ? active : all)->setCurrentRow(0, QItemSelectionModel::ClearAndSelect);
    emit scriptChosen(entries.first().script);
}

void ScriptLists::refreshStates(const ScriptInfoPtr& edited)
{
    for (const Entries* entries : {&activeScriptEntries, &allScriptEntries}) {
        for (const ScriptEntry& entry : *entries) {
            if (!entry.script || !entry.script->mode) {
                continue;
            }
            showRow(entry.item, entry.label, *entry.script, indentedRowText(*entry.script));
            if (entries == &allScriptEntries && entry.script == edited) {
                emit editedColorChanged(rowColor(*entry.script));
            }
        }
    }
}

void ScriptLists::addSelected()
{
    bool added = false;
    for (const ScriptEntry& entry : std::as_const(allScriptEntries)) {
        const ScriptInfoPtr script = relayInfo->findScript(entry.script->number);
        if (currentRelay && entry.item->isSelected() && !currentRelay->activatedScripts.contains(script)) {
            currentRelay->activatedScripts.append(script);
            added = true;
        }
    }
    if (added) {
        rebuildActive();
    }
    emit outputChanged();
}

void ScriptLists::removeSelected()
{
    // By row, since a script may stand in the list twice.
    QList<ScriptInfoPtr> kept;
    for (const ScriptEntry& entry : std::as_const(activeScriptEntries)) {
        if (!entry.item->isSelected()) {
            kept.append(entry.script);
        }
    }
    if (currentRelay && kept.size() != activeScriptEntries.size()) {
        currentRelay->activatedScripts = kept;
        rebuildActive();
    }
    emit outputChanged();
}

void ScriptLists::allCurrentChanged(QListWidgetItem* current)
{
    mirrorCurrent(entryWith(&ScriptEntry::item, current, allScriptEntries), activeScriptEntries, active);
}

void ScriptLists::activeCurrentChanged(QListWidgetItem* current)
{
    mirrorCurrent(entryWith(&ScriptEntry::item, current, activeScriptEntries), allScriptEntries, all);
}

/// The entry whose item, label or script is the wanted one; null if there is none.
template <typename Part, typename Wanted>
const ScriptLists::ScriptEntry* ScriptLists::entryWith(Part ScriptEntry::*part, const Wanted& wanted,
                                                       const Entries& entries)
{
    const auto found =
        std::find_if(entries.cbegin(), entries.cend(), [&](const ScriptEntry& entry) { return entry.*part == wanted; });
    return found == entries.cend() ? nullptr : &*found;
}

void ScriptLists::mirrorCurrent(const ScriptEntry* entry, const Entries& others, QListWidget* otherList)
{
    if (entry == nullptr) {
        return;
    }
    const ScriptInfoPtr script = entry->script;
    const QSignalBlocker blocker(otherList);
    emit scriptChosen(script);
    // The selection is mirrored for itself. Without a partner nothing is current there.
    const ScriptEntry* partner = entryWith(&ScriptEntry::script, script, others);
    otherList->setCurrentItem(partner == nullptr ? nullptr : partner->item, QItemSelectionModel::NoUpdate);
}

void ScriptLists::allSelectionChanged()
{
    isActiveMirroring = true;
    mirrorSelection(allScriptEntries, all, activeScriptEntries, active);
}

void ScriptLists::activeSelectionChanged()
{
    isActiveMirroring = false;
    mirrorSelection(activeScriptEntries, active, allScriptEntries, all);
}

void ScriptLists::mirrorSelection(const Entries& entries, QListWidget* list, const Entries& others,
                                  QListWidget* otherList)
{
    const QSignalBlocker blocker(list);
    const QSignalBlocker otherBlocker(otherList);
    if (list->currentItem() != nullptr && list->selectedItems().isEmpty()) {
        list->currentItem()->setSelected(true);
    }
    for (const ScriptEntry& other : others) {
        const bool selected = std::any_of(entries.cbegin(), entries.cend(), [&other](const ScriptEntry& entry) {
            return entry.script == other.script && entry.item->isSelected();
        });
        other.item->setSelected(selected);
    }
}

bool ScriptLists::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonDblClick:
        return doubleClicked(watched);
    case QEvent::ChildRemoved:
        if (watched == active) {
            storeOrder();
        }
        break;
    case QEvent::ToolTip:
        updateToolTip(watched);
        break;
    default:
        break;
    }
    return false;
}

bool ScriptLists::doubleClicked(const QObject* label)
{
    if (entryWith(&ScriptEntry::label, label, allScriptEntries) != nullptr) {
        addSelected();
        return true;
    }
    if (entryWith(&ScriptEntry::label, label, activeScriptEntries) != nullptr) {
        removeSelected();
        return true; // or the list would take it for a press on the row that has moved up under the mouse
    }
    return false;
}

/// The end of a drag: Qt's drag object, a child of the list, is gone, and the rows stand in their new order.
void ScriptLists::storeOrder()
{
    if (!currentRelay) {
        return;
    }
    const int count = currentRelay->activatedScripts.size();
    if (activeScriptEntries.size() != count || active->count() != count) {
        // A row was lost on the way; the model still has its script.
        QMetaObject::invokeMethod(
            this, [this] { rebuildActive(); }, Qt::QueuedConnection);
        return;
    }
    bool swapped = false;
    for (int i = 0; i < activeScriptEntries.size();) {
        const int row = active->row(activeScriptEntries.at(i).item);
        if (row == i) {
            ++i;
        } else {
            activeScriptEntries.swapItemsAt(i, row);
            swapped = true;
        }
    }
    if (!swapped) {
        return;
    }
    currentRelay->activatedScripts.clear();
    for (const ScriptEntry& entry : std::as_const(activeScriptEntries)) {
        currentRelay->activatedScripts.append(relayInfo->findScript(entry.script->number));
    }
}

/// Rows are only removed by a drop that went wrong: no entry may outlive its row.
void ScriptLists::dropEntries(int firstRow, int lastRow)
{
    for (int row = firstRow; row <= lastRow; ++row) {
        const QListWidgetItem* item = active->item(row);
        const auto gone = std::remove_if(activeScriptEntries.begin(), activeScriptEntries.end(),
                                         [item](const ScriptEntry& entry) { return entry.item == item; });
        activeScriptEntries.erase(gone, activeScriptEntries.end());
    }
}

void ScriptLists::updateToolTip(const QObject* label)
{
    const ScriptEntry* asked = entryWith(&ScriptEntry::label, label, allScriptEntries);
    if (asked == nullptr) {
        asked = entryWith(&ScriptEntry::label, label, activeScriptEntries);
    }
    if (asked == nullptr) {
        return;
    }
    const QString summary = scriptSummary(asked->script);
    for (const Entries* entries : {&allScriptEntries, &activeScriptEntries}) {
        for (const ScriptEntry& entry : *entries) {
            if (entry.script == asked->script) {
                entry.label->setToolTip(summary);
            }
        }
    }
}
