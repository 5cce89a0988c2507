#pragma once

#include <QStyledItemDelegate>

class QListWidget;

/// The delegate of a list whose rows are widgets: gives a row that is being dragged the look of its widget, which the
/// list itself doesn't draw. Owned by the list; GUI thread only.
class DraggedRowDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    explicit DraggedRowDelegate(QListWidget* parentList);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    QListWidget* list;
};
