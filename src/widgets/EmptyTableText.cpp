#include "widgets/EmptyTableText.h"

#include "widgets/Look.h"

#include <QEvent>
#include <QPainter>
#include <QTableWidget>

#include <utility>

EmptyTableText::EmptyTableText(QTableWidget* emptyTable, QString line)
    : QObject(emptyTable), table(emptyTable), text(std::move(line))
{
    table->viewport()->installEventFilter(this);
}

bool EmptyTableText::eventFilter(QObject* watched, QEvent* event)
{
    // Events come also while the table is being destroyed; it is only asked when it is painted.
    if (event->type() == QEvent::Paint && table->rowCount() == 0) {
        constexpr int margin = 20;
        QWidget* const viewport = table->viewport();
        QPainter painter(viewport);
        painter.setFont(look::applicationFont());
        painter.setPen(viewport->palette().color(QPalette::Text));
        painter.drawText(viewport->rect().adjusted(margin, margin, -margin, -margin),
                         Qt::AlignCenter | Qt::TextWordWrap, text);
    }
    return QObject::eventFilter(watched, event);
}
