#pragma once

#include <QStyledItemDelegate>

/// The delegate of a table whose cells may be too small for their texts: the tool tip of such a cell is its whole text.
/// A cell whose model has a tool tip for it keeps that. GUI thread only.
class WholeTextTips : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;
};
