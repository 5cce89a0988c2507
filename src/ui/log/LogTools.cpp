#include "ui/log/LogTools.h"

#include "eventlog/DelimitedText.h"
#include "eventlog/LogTable.h"
#include "eventlog/dayZero.h"
#include "texts/texts.h"
#include "ui/log/EventView.h"
#include "ui/log/LogFindBar.h"
#include "widgets/Dialogs.h"

#include <QAction>
#include <QApplication>
#include <QBoxLayout>
#include <QClipboard>
#include <QItemSelectionModel>
#include <QMenu>
#include <QTableView>

#include <numeric>

namespace
{

/// What the table shows of an event, beginning with its number from the head of its row.
QVector<int> columnsOfTheTable()
{
    QVector<int> shown = {0};
    const QVector<logtable::Column>& columns = logtable::columns();
    for (int column = 1; column < columns.size(); ++column) {
        if (columns.at(column).width != logtable::hidden) {
            shown.append(column);
        }
    }
    return shown;
}

QVector<int> allRows(const QAbstractItemModel& model)
{
    QVector<int> rows(model.rowCount());
    std::iota(rows.begin(), rows.end(), 0);
    return rows;
}

/// The day of an event; today if there is no such row.
QDate dayAt(const QAbstractItemModel& model, int row)
{
    constexpr int dateInDays = 2;
    const QVariant days = model.index(row, dateInDays).data();
    return days.isValid() ? dayZero().addDays(days.toInt()) : QDate::currentDate();
}

} // namespace

LogTools::LogTools(QWidget* window, QTableView* tableView, Dialogs& fileDialogs, QObject* parent)
    : QObject(parent), dialogParent(window), view(tableView), dialogs(fileDialogs)
{
    QWidget* const page = view->parentWidget();
    find = addAction(page, QStringLiteral("actionFind"), texts::findAction(), &LogTools::openFindBar);
    find->setShortcut(QKeySequence::Find);
    find->setShortcutContext(Qt::WindowShortcut); // while the page is in sight
    endFind = addAction(page, QStringLiteral("actionEndFind"), texts::findClose(), &LogTools::escape);
    endFind->setShortcut(Qt::Key_Escape);
    endFind->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    endFind->setEnabled(false);

    makeRowActions();
    view->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(view, &QWidget::customContextMenuRequested, this, &LogTools::showMenu);
}

QAction* LogTools::addAction(QWidget* widget, const QString& name, const QString& text, void (LogTools::*slot)())
{
    auto* const action = new QAction(text, widget);
    action->setObjectName(name);
    connect(action, &QAction::triggered, this, slot);
    widget->addAction(action);
    return action;
}

void LogTools::showMenu(const QPoint& position)
{
    const bool hasRows = view->model() != nullptr && view->model()->rowCount() > 0;
    find->setEnabled(canFind());
    open->setEnabled(currentRow() >= 0);
    copy->setEnabled(currentRow() >= 0);
    copyAll->setEnabled(hasRows);
    save->setEnabled(hasRows);
    QMenu menu(view);
    menu.addAction(find);
    menu.addSeparator();
    menu.addActions({open, copy, copyAll, save});
    menu.exec(view->viewport()->mapToGlobal(position));
    // The keys find out for themselves.
    find->setEnabled(true);
    open->setEnabled(true);
    copy->setEnabled(true);
}

// ---- Rows --------------------------------------------------------------------------------------------------------

void LogTools::makeRowActions()
{
    open = addAction(view, QStringLiteral("actionOpenRow"), texts::rowsOpen(), &LogTools::openRow);
    open->setShortcuts({Qt::Key_Return, Qt::Key_Enter});
    open->setShortcutContext(Qt::WidgetShortcut);
    open->setAutoRepeat(false); // a key held down would open window after window
    connect(view, &QTableView::doubleClicked, this, &LogTools::openRow);
    copy = addAction(view, QStringLiteral("actionCopyRow"), texts::rowsCopy(), &LogTools::copyRow);
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetShortcut);
    copyAll = addAction(view, QStringLiteral("actionCopyAllRows"), texts::rowsCopyAll(), &LogTools::copyAllRows);
    save = addAction(view, QStringLiteral("actionSaveRows"), texts::rowsSave(), &LogTools::saveRows);
}

/// The selected row, -1 if there is none.
int LogTools::currentRow() const
{
    const QItemSelectionModel* const selection = view->selectionModel();
    const QModelIndexList rows = selection != nullptr ? selection->selectedRows() : QModelIndexList();
    return rows.isEmpty() ? -1 : rows.first().row();
}

void LogTools::openRow()
{
    if (currentRow() >= 0) {
        (new EventView(*view->model(), currentRow(), dialogParent))->show();
    }
}

void LogTools::copyRow()
{
    if (currentRow() >= 0) {
        QApplication::clipboard()->setText(
            delimited::text(*view->model(), {currentRow()}, columnsOfTheTable(), delimited::Form::Tabs));
    }
}

void LogTools::copyAllRows()
{
    const QAbstractItemModel* const model = view->model();
    if (model != nullptr) {
        QApplication::clipboard()->setText(
            delimited::text(*model, allRows(*model), columnsOfTheTable(), delimited::Form::Tabs));
    }
}

void LogTools::saveRows()
{
    const QString fileName = dialogs.saveFileName(dialogParent, texts::rowsSaveCaption(), QStringLiteral("*.csv"));
    const QAbstractItemModel* const model = view->model(); // as it stands when the user has answered
    if (fileName.isEmpty()) {
        return;
    }
    const QString fault =
        model == nullptr
            ? texts::rowsNotShown()
            : delimited::save(delimited::text(*model, allRows(*model), columnsOfTheTable(), delimited::Form::Commas),
                              fileName);
    emit newResult(fault.isEmpty() ? texts::rowsSaveOk().arg(fileName) : texts::rowsSaveError().arg(fileName, fault));
}

// ---- Finding -----------------------------------------------------------------------------------------------------

void LogTools::makeFindBar()
{
    QWidget* const page = view->parentWidget();
    bar = new LogFindBar(page);
    bar->hide();
    auto* const layout = qobject_cast<QBoxLayout*>(page->layout());
    layout->insertWidget(layout->indexOf(view), bar);
    bar->setTabOrderBefore(view);
    connect(bar, &LogFindBar::changed, this, [this] { setCondition(bar->filter().condition()); });
    connect(bar, &LogFindBar::closeWanted, this, &LogTools::endFinding);
}

/// While a reading runs there is nothing to find. A search that the database is at, say for the one before, is no
/// reason to wait.
bool LogTools::canFind() const
{
    return days || view->model() != nullptr;
}

void LogTools::openFindBar()
{
    if (!canFind()) {
        return;
    }
    if (!bar) {
        makeFindBar();
    }
    if (bar->isHidden()) {
        if (!days) {
            const QAbstractItemModel& model = *view->model();
            days = {dayAt(model, model.rowCount() - 1), dayAt(model, 0)};
        }
        bar->begin(days->first, days->second);
        bar->show();
        setCondition({});
        endFind->setEnabled(true);
    }
    bar->enterField();
}

void LogTools::closeFindBar()
{
    if (bar && !bar->isHidden()) {
        const bool hadFocus = bar->isAncestorOf(view->window()->focusWidget());
        bar->hide();
        endFind->setEnabled(false);
        if (hadFocus) {
            view->setFocus();
        }
    }
}

/// A date's calendar lies within the page too, and the key is meant for what is on top.
void LogTools::escape()
{
    QWidget* const popup = QApplication::activePopupWidget();
    if (popup != nullptr) {
        popup->close();
    } else {
        endFinding();
    }
}

void LogTools::endFinding()
{
    closeFindBar();
    setCondition({});
}

void LogTools::forgetFinding()
{
    closeFindBar();
    condition.clear();
    days.reset();
}

void LogTools::setCondition(const QString& newCondition)
{
    if (newCondition != condition) {
        condition = newCondition;
        emit conditionChanged(condition);
    }
}
