#include "ui/log/LogView.h"

#include "domain/debugLine.h"
#include "eventlog/LogTable.h"

#include <QAbstractItemView>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QScrollBar>

#include <algorithm>

namespace
{

constexpr int rowHeight = 40;

void setUpHeaders(const QTableView& view)
{
    QHeaderView* const header = view.horizontalHeader();
    header->setStyleSheet(QStringLiteral("QHeaderView::section { background-color : rgb(244,244,244); }"));
    header->setStretchLastSection(true);
    header->setFixedHeight(rowHeight);
    // Headings wrap, which the header takes among the flags of its alignment.
    header->setDefaultAlignment(static_cast<Qt::Alignment>(Qt::AlignCenter + Qt::TextWordWrap));
    // In bold, as the selected row would have them, the headings wrap anew and the numbers don't fit.
    header->setHighlightSections(false);
    view.verticalHeader()->setHighlightSections(false);

    view.verticalHeader()->setDefaultSectionSize(rowHeight);
    view.verticalHeader()->setFixedWidth(40);
    view.verticalHeader()->setDefaultAlignment(Qt::AlignCenter);
}

} // namespace

LogView::LogView(QTableView* tableView) : view(tableView)
{
}

void LogView::setUp(SqlModel* newModel)
{
    drop();
    model = newModel;
    view->setModel(model);
    const QVector<logtable::Column>& columns = logtable::columns();
    for (int column = 0; column < columns.size(); ++column) {
        view->setColumnHidden(column, columns.at(column).width == logtable::hidden);
    }
    view->setStyleSheet(QStringLiteral("selection-background-color: rgb(230,230,230); selection-color: black; "
                                       "border: 1px solid rgb(187,187,187)"));
    view->setSelectionBehavior(QAbstractItemView::SelectRows);
    view->setSelectionMode(QAbstractItemView::SingleSelection);
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    setUpHeaders(*view);

    view->resizeColumnsToContents();
    restAtFreeze.reset();
    for (int column = 0; column < columns.size(); ++column) {
        if (columns.at(column).width > 0) {
            view->setColumnWidth(column, columns.at(column).width);
        }
    }
}

bool LogView::isAttached() const
{
    return view && view->model() != nullptr;
}

bool LogView::isFrozen() const
{
    return frozen;
}

void LogView::rememberColumns()
{
    columnWidths.clear();
    columnHidden.clear();
    for (int column = 0; column < view->model()->columnCount(); ++column) {
        columnWidths.append(view->columnWidth(column));
        columnHidden.append(view->isColumnHidden(column));
    }
}

void LogView::restoreColumns(bool withRest)
{
    const int columns = model ? model->columnCount() : 0;
    if (columnWidths.size() == columns && columnHidden.size() == columns) {
        for (int column = 0; column < columns; ++column) {
            if (withRest || column < columns - 1) {
                view->setColumnWidth(column, columnWidths.at(column));
            }
            view->setColumnHidden(column, columnHidden.at(column));
        }
    }
    debugLine(QStringLiteral(" (MainWindow): Model is Set"));
}

void LogView::attach()
{
    view->setModel(model);
    restoreColumns(true);
}

void LogView::detach()
{
    if (isAttached()) {
        rememberColumns();
    }
    if (restAtFreeze && !columnWidths.isEmpty()) {
        columnWidths.last() = frozen ? *restAtFreeze : std::min(columnWidths.last(), *restAtFreeze);
    }
    restAtFreeze.reset();
    currentEvent.reset();
    drop();
    frozen = false;
    view->setUpdatesEnabled(true);
    debugLine(QStringLiteral(" (MainWindow): Model is Reset"));
}

void LogView::freeze()
{
    rememberCurrentEvent();
    horizontalPosition = view->horizontalScrollBar()->value();
    rememberColumns();
    if (!restAtFreeze) {
        restAtFreeze = columnWidths.last();
        restIsStretched = view->horizontalHeader()->length() <= view->viewport()->width();
    }
    columnWidths.last() = *restAtFreeze;
    view->setUpdatesEnabled(false);
    drop();
    frozen = true;
}

void LogView::thaw()
{
    frozen = false;
    view->setModel(model);
    restoreColumns(!restIsStretched);
    view->doItemsLayout(); // which knows how far there is to scroll
    if (isAttached()) {
        restoreCurrentEvent();
    }
    view->horizontalScrollBar()->setValue(horizontalPosition);
}

void LogView::showThawed()
{
    if (view && !frozen && !view->updatesEnabled()) {
        view->setUpdatesEnabled(true);
        view->repaint();
    }
}

int LogView::numberAt(int row) const
{
    return model ? model->index(row, 0).data().toInt() : 0;
}

void LogView::rememberCurrentEvent()
{
    const QModelIndex current = view->currentIndex();
    if (current.isValid()) {
        currentEvent = {numberAt(current.row()), current.column(),
                        view->selectionModel()->isRowSelected(current.row(), {})};
    }
}

void LogView::restoreCurrentEvent()
{
    const int row = currentEvent ? rowOf(currentEvent->number) : -1;
    if (row >= 0) {
        const QModelIndex index = model->index(row, currentEvent->column);
        view->selectionModel()->setCurrentIndex(index, currentEvent->selected ? QItemSelectionModel::ClearAndSelect |
                                                                                    QItemSelectionModel::Rows
                                                                              : QItemSelectionModel::NoUpdate);
        view->scrollTo(index,
                       currentEvent->selected ? QAbstractItemView::PositionAtCenter : QAbstractItemView::EnsureVisible);
    }
}

/// The row of an event, -1 if it isn't there. The numbers of a log fall from its first row to its last, so that halving
/// finds one.
int LogView::rowOf(int number) const
{
    int row = 0;
    int end = model->rowCount();
    while (row < end) {
        const int middle = row + (end - row) / 2;
        if (numberAt(middle) > number) {
            row = middle + 1;
        } else {
            end = middle;
        }
    }
    return row < model->rowCount() && numberAt(row) == number ? row : -1;
}

void LogView::drop()
{
    if (!view) {
        return;
    }
    // Without a view on it the model has forgotten already, and may be the database's to change right now.
    const bool viewed = view->model() != nullptr;
    view->setModel(nullptr);
    const QList<QItemSelectionModel*> selections = view->findChildren<QItemSelectionModel*>();
    for (QItemSelectionModel* selection : selections) {
        if (selection != view->selectionModel()) {
            delete selection;
        }
    }
    if (viewed && model) {
        model->forgetViews();
    }
}
