#include "ui/log/LogView.h"

#include "domain/debugLine.h"
#include "eventlog/LogTable.h"
#include "widgets/WholeTextTips.h"

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
    view->setItemDelegate(new WholeTextTips(view));
    view->setTabKeyNavigation(false); // or Tab would never leave it
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
    beforeSearch.reset();
    frozen = false;
    view->setUpdatesEnabled(true);
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
}

/// The last column takes what the others leave, which is more while few rows need no scroll bar. A width that it took
/// so must not become one that it was given; one that the user gives it meanwhile counts.
void LogView::rememberPlace()
{
    const int room = view->viewport()->width();
    const int length = view->horizontalHeader()->length();
    const int others = length - columnWidths.last();
    const bool isStretched = length <= room;
    if (!beforeSearch) {
        beforeSearch = {columnWidths.last(), isStretched, view->verticalScrollBar()->value(), currentNumber()};
    } else if (!isStretched || (!beforeSearch->isStretched && others + beforeSearch->restWidth > room)) {
        beforeSearch->restWidth = columnWidths.last();
        beforeSearch->isStretched = isStretched;
    }
    columnWidths.last() = std::min(columnWidths.last(), beforeSearch->restWidth);
}

void LogView::attach()
{
    view->setModel(model);
    restoreColumns(true);
    debugLine(QStringLiteral(" (MainWindow): Model is Set"));
}

void LogView::detach()
{
    if (isAttached()) {
        rememberColumns();
        if (beforeSearch) {
            rememberPlace();
        }
    }
    beforeSearch.reset();
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
    rememberPlace();
    view->setUpdatesEnabled(false);
    drop();
    frozen = true;
}

void LogView::thaw(bool allRows)
{
    frozen = false;
    view->setModel(model);
    restoreColumns(!beforeSearch->isStretched);
    view->doItemsLayout(); // which knows how far there is to scroll
    const Place place = *beforeSearch;
    if (allRows) {
        view->verticalScrollBar()->setValue(place.position);
        beforeSearch.reset();
    }
    if (isAttached()) {
        restoreCurrentEvent(); // which brings it into sight
    }
    if (allRows && currentNumber() == place.event) {
        view->verticalScrollBar()->setValue(place.position);
    }
    view->horizontalScrollBar()->setValue(horizontalPosition);
}

bool LogView::isShown() const
{
    return isAttached() && !frozen && view->updatesEnabled();
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

/// Of the event that a search brings back; 0 if there is none.
int LogView::currentNumber() const
{
    return currentEvent ? currentEvent->number : 0;
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
        const bool isInSight = view->viewport()->rect().contains(view->visualRect(index).center());
        view->selectionModel()->setCurrentIndex(index, currentEvent->selected ? QItemSelectionModel::ClearAndSelect |
                                                                                    QItemSelectionModel::Rows
                                                                              : QItemSelectionModel::NoUpdate);
        // Among its neighbours, unless it is to be seen anyway.
        view->scrollTo(index, currentEvent->selected && !isInSight ? QAbstractItemView::PositionAtCenter
                                                                   : QAbstractItemView::EnsureVisible);
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
