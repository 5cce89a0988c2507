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
    const QWidget* const viewport = table->viewport();
    if (event->type() == QEvent::Paint && watched == viewport && table->rowCount() == 0) {
        constexpr int margin = 20;
        QPainter painter(table->viewport());
        painter.setFont(look::applicationFont());
        painter.setPen(viewport->palette().color(QPalette::Text));
        painter.drawText(viewport->rect().adjusted(margin, margin, -margin, -margin),
                         Qt::AlignCenter | Qt::TextWordWrap, text);
    }
    return QObject::eventFilter(watched, event);
}
