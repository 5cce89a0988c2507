#include "ui/log/LogTools.h"

#include "texts/texts.h"
#include "ui/log/LogFindBar.h"

#include <QAction>
#include <QBoxLayout>
#include <QMenu>
#include <QTableView>

namespace
{

/// The day of an event; today if there is no such row.
QDate dayAt(const QAbstractItemModel* model, int row)
{
    constexpr int dateInDays = 2;
    const QVariant days = model->index(row, dateInDays).data();
    return days.isValid() ? QDate(2000, 1, 1).addDays(days.toInt()) : QDate::currentDate();
}

} // namespace

LogTools::LogTools(QWidget* window, QTableView* tableView, Dialogs& fileDialogs, QObject* parent)
    : QObject(parent), dialogParent(window), view(tableView), dialogs(fileDialogs)
{
    QWidget* const page = view->parentWidget();
    find = addAction(page, QStringLiteral("actionFind"), texts::findAction(), &LogTools::openFindBar);
    find->setShortcut(QKeySequence::Find);
    find->setShortcutContext(Qt::WindowShortcut); // while the page is in sight
    endFind = addAction(page, QStringLiteral("actionEndFind"), texts::findClose(), &LogTools::endFinding);
    endFind->setShortcut(Qt::Key_Escape);
    endFind->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    endFind->setEnabled(false);

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
    QMenu menu(view);
    menu.addAction(find);
    menu.exec(view->viewport()->mapToGlobal(position));
}

// ---- Finding -----------------------------------------------------------------------------------------------------

void LogTools::makeFindBar()
{
    QWidget* const page = view->parentWidget();
    bar = new LogFindBar(page);
    bar->hide();
    auto* const layout = qobject_cast<QBoxLayout*>(page->layout());
    layout->insertWidget(layout->indexOf(view), bar);
    QWidget::setTabOrder(bar, view);
    connect(bar, &LogFindBar::changed, this, [this] { setCondition(bar->filter().condition()); });
    connect(bar, &LogFindBar::closeWanted, this, &LogTools::endFinding);
}

void LogTools::openFindBar()
{
    if (!bar) {
        makeFindBar();
    }
    if (bar->isHidden()) {
        const QAbstractItemModel* const model = view->model();
        if (model == nullptr) {
            return; // there is nothing to find while a reading runs
        }
        bar->begin(dayAt(model, model->rowCount() - 1), dayAt(model, 0));
        bar->show();
        endFind->setEnabled(true);
    }
    bar->setFocus(Qt::ShortcutFocusReason);
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

void LogTools::endFinding()
{
    closeFindBar();
    setCondition({});
}

void LogTools::forgetFinding()
{
    closeFindBar();
    condition.clear();
}

void LogTools::setCondition(const QString& newCondition)
{
    if (newCondition != condition) {
        condition = newCondition;
        emit conditionChanged(condition);
    }
}
