#include "ui/tree/NodeFrame.h"

NodeFrame::NodeFrame(QWidget* parent) : QFrame(parent)
{
    setObjectName(QStringLiteral("frame"));
}

void NodeFrame::setRowHeight(int height)
{
    rowHeight = height;
}

QSize NodeFrame::naturalSize() const
{
    return {QFrame::minimumSizeHint().width(), QFrame::sizeHint().height()};
}

void NodeFrame::reveal()
{
    if (!revealed) {
        revealed = true;
        setVisible(true);
    }
}

void NodeFrame::setVisible(bool visible)
{
    if (revealed || !visible) {
        QFrame::setVisible(visible);
    }
}

QSize NodeFrame::sizeHint() const
{
    return {0, rowHeight};
}

QSize NodeFrame::minimumSizeHint() const
{
    return sizeHint();
}
