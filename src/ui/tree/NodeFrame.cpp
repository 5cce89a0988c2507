#include "ui/tree/NodeFrame.h"

#include <algorithm>

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

QList<QWidget*> NodeFrame::controls() const
{
    QList<QWidget*> controls = findChildren<QWidget*>();
    const auto takesNoKeys = [this](const QWidget* child) {
        return child->focusPolicy() == Qt::NoFocus || child->window() != window(); // a combo's list has its own window
    };
    controls.erase(std::remove_if(controls.begin(), controls.end(), takesNoKeys), controls.end());
    return controls;
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
