#include "widgets/copyRows.h"

#include <QAbstractItemView>
#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QItemSelectionModel>
#include <QStringList>

#include <algorithm>
#include <utility>

namespace
{

void copySelected(const QAbstractItemView* view)
{
    QModelIndexList rows = view->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    QStringList lines;
    for (const QModelIndex& row : std::as_const(rows)) {
        lines.append(row.data(Qt::AccessibleTextRole).toString());
    }
    if (!lines.isEmpty()) {
        QGuiApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
    }
}

} // namespace

void offerCopyOfRows(QAbstractItemView* view)
{
    auto* const copy = new QAction(view);
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetShortcut); // in a field of a row it copies what is selected there
    QObject::connect(copy, &QAction::triggered, view, [view] { copySelected(view); });
    view->addAction(copy);
}
