#include "ui/NodeTree.h"

#include <QScrollBar>
#include <QStyledItemDelegate>

#include "ui/NodeFrame.h"

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
