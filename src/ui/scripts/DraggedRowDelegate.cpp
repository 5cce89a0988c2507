#include "ui/scripts/DraggedRowDelegate.h"

#include <QListWidget>
#include <QPainter>

DraggedRowDelegate::DraggedRowDelegate(QListWidget* parentList) : QStyledItemDelegate(parentList), list(parentList)
{
}

void DraggedRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QStyledItemDelegate::paint(painter, option, index);
    QWidget* const widget = list->indexWidget(index);
    if (widget != nullptr && painter->device()->devType() == QInternal::Pixmap) {
        painter->drawPixmap(option.rect.topLeft(), widget->grab());
    }
}
