#include "ui/tree/NodeTree.h"

#include "ui/tree/NodeFrame.h"
#include "ui/tree/TreeNodes.h"
#include "widgets/Look.h"

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

constexpr int wheelStep = 24; // pixels; the rows are too tall for Qt's own choice

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
            group = treeNodes::rowSize(node.frame, node.label, node.edit);
        }
        node.frame->setRowHeight(group.height() + gap);
        for (const OutputNode& outputNode : node.outputs) {
            if (output.isNull()) {
                output = treeNodes::rowSize(outputNode.frame, outputNode.label, outputNode.edit);
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

void NodeTree::setTabStops()
{
    for (const QPointer<QWidget>& stop : std::as_const(tabStops)) {
        if (stop) {
            stop->setFocusPolicy(Qt::ClickFocus);
        }
    }
    tabStops.clear();
    QTreeWidgetItem* const current = currentItem();
    const bool isTerminal = current != nullptr && current->childCount() > 0;
    for (QTreeWidgetItem* const item : {current, isTerminal ? current->child(0) : nullptr}) {
        if (const auto* const frame = qobject_cast<NodeFrame*>(itemWidget(item, 0))) {
            const QList<QWidget*> controls = frame->controls();
            std::copy(controls.cbegin(), controls.cend(), std::back_inserter(tabStops));
        }
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
        if (auto* frame = qobject_cast<NodeFrame*>(itemWidget(item, 0))) {
            frame->reveal();
        }
    }
}
