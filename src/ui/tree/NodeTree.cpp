#include "ui/tree/NodeTree.h"

#include "ui/tree/NodeFrame.h"
#include "ui/tree/TreeNodes.h"
#include "widgets/Look.h"

#include <QApplication>
#include <QFrame>
#include <QHeaderView>
#include <QIcon>
#include <QPushButton>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include <algorithm>
#include <iterator>
#include <utility>

namespace
{

class GapDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option, const QModelIndex&) const override
    {
        editor->setGeometry(option.rect.adjusted(0, 0, 0, -NodeTree::gap));
    }
};

} // namespace

NodeTree::NodeTree(QWidget* parent) : QTreeWidget(parent)
{
    constexpr int wheelStep = 24; // pixels; the rows are too tall for Qt's own choice
    setVerticalScrollMode(ScrollPerPixel);
    verticalScrollBar()->setSingleStep(wheelStep);
    setItemDelegate(new GapDelegate(this));
}

void NodeTree::addNode(const GroupNode& node)
{
    addTopLevelItem(node.item);
    setItemWidget(node.item, 0, node.frame);
    for (const OutputNode& output : node.outputs) {
        setItemWidget(output.item, 0, output.frame);
    }
}

void NodeTree::levelRows(const QList<GroupNode>& nodes)
{
    QSize group(0, 0);
    QSize output(0, 0);
    for (const GroupNode& node : nodes) {
        if (group.isNull()) {
            group = treeNodes::rowSize(node);
        }
        node.frame->setRowHeight(group.height() + gap);
        for (const OutputNode& outputNode : node.outputs) {
            if (output.isNull()) {
                output = treeNodes::rowSize(outputNode);
            }
            outputNode.frame->setRowHeight(output.height() + gap);
        }
    }
    // In a dock that is too narrow the tree scrolls sideways rather than cut the rows.
    header()->setMinimumSectionSize(output.width() + 2 * indentation());
}

QPushButton* NodeTree::addButtonRow(const QString& text)
{
    auto* item = new QTreeWidgetItem(this);
    item->setFlags(Qt::ItemIsEnabled);
    auto* frame = new QFrame;
    auto* layout = new QVBoxLayout(frame);
    layout->setContentsMargins(0, 9, 0, 3);
    auto* button = new QPushButton(QIcon(QStringLiteral(":/icons/icons/add.png")), text);
    button->setObjectName(QStringLiteral("pushButtonAddGroup"));
    button->setFont(look::applicationFont());
    button->setMaximumWidth(140);
    button->setMinimumHeight(35);
    layout->addWidget(button);
    setItemWidget(item, 0, frame);
    rowButton = button;
    setTabStops();
    return button;
}

void NodeTree::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    QTreeWidget::currentChanged(current, previous);
    setTabStops();
}

void NodeTree::focusInEvent(QFocusEvent* event)
{
    if (hasStrayed) {
        setTabStops();
    }
    QTreeWidget::focusInEvent(event);
}

/// Asked for each Tab in the tree and in all that stands in its rows, before the focus moves.
bool NodeTree::focusNextPrevChild(bool next)
{
    NodeFrame* const frame = frameWithFocus();
    if (frame != nullptr && !tabStops.contains(QApplication::focusWidget())) {
        setTabStops({frame});
        hasStrayed = true;
    }
    revealCurrentRows();
    return QTreeWidget::focusNextPrevChild(next);
}

NodeFrame* NodeTree::frameWithFocus() const
{
    QWidget* part = QApplication::focusWidget();
    while (part != nullptr && part != this && qobject_cast<NodeFrame*>(part) == nullptr) {
        part = part->parentWidget();
    }
    return qobject_cast<NodeFrame*>(part);
}

NodeFrame* NodeTree::frameOf(QTreeWidgetItem* item) const
{
    return qobject_cast<NodeFrame*>(itemWidget(item, 0));
}

/// What isn't shown is no stop, and a row below the edge may not have been in view yet. One that is folded away has no
/// place.
void NodeTree::revealCurrentRows()
{
    const QList<QTreeWidgetItem*> rows = currentRows();
    for (QTreeWidgetItem* const row : rows) {
        if (NodeFrame* const frame = frameOf(row); frame != nullptr && !visualItemRect(row).isEmpty()) {
            frame->reveal();
        }
    }
}

/// The current row, and of a terminal the first output as well.
QList<QTreeWidgetItem*> NodeTree::currentRows() const
{
    QList<QTreeWidgetItem*> rows;
    if (QTreeWidgetItem* const current = currentItem()) {
        rows.append(current);
        if (current->childCount() > 0) {
            rows.append(current->child(0));
        }
    }
    return rows;
}

void NodeTree::setTabStops()
{
    QList<NodeFrame*> frames;
    const QList<QTreeWidgetItem*> rows = currentRows();
    for (QTreeWidgetItem* const row : rows) {
        if (NodeFrame* const frame = frameOf(row)) {
            frames.append(frame);
        }
    }
    setTabStops(frames);
    hasStrayed = false;
}

void NodeTree::setTabStops(const QList<NodeFrame*>& frames)
{
    for (const QPointer<QWidget>& stop : std::as_const(tabStops)) {
        if (stop) {
            stop->setFocusPolicy(Qt::ClickFocus);
        }
    }
    tabStops.clear();
    for (const NodeFrame* const frame : frames) {
        const QList<QWidget*> controls = frame->controls();
        std::copy(controls.cbegin(), controls.cend(), std::back_inserter(tabStops));
    }
    QWidget* before = this;
    for (const QPointer<QWidget>& stop : std::as_const(tabStops)) {
        stop->setFocusPolicy(Qt::StrongFocus);
        setTabOrder(before, stop);
        before = stop;
    }
    if (rowButton) {
        setTabOrder(before, rowButton);
    }
}

void NodeTree::updateEditorGeometries()
{
    QTreeWidget::updateEditorGeometries();
    revealFramesInView();
}

void NodeTree::scrollContentsBy(int dx, int dy)
{
    QTreeWidget::scrollContentsBy(dx, dy);
    revealFramesInView();
}

void NodeTree::revealFramesInView()
{
    for (QTreeWidgetItem* item = itemAt(0, 0); item != nullptr; item = itemBelow(item)) {
        if (visualItemRect(item).top() > viewport()->height()) {
            return;
        }
        if (NodeFrame* const frame = frameOf(item)) {
            frame->reveal();
        }
    }
}
