#include "ui/scripts/CrossedButton.h"

#include <QPainter>

void CrossedButton::setCrossed(bool on)
{
    if (crossed != on) {
        crossed = on;
        update();
    }
}

void CrossedButton::paintEvent(QPaintEvent* event)
{
    PicturedButton::paintEvent(event);
    if (!crossed) {
        return;
    }
    constexpr int crossSize = 6;
    const QRect corner(width() - crossSize - 1, height() - crossSize - 1, crossSize, crossSize);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    // White around the dark lines keeps them apart from the ring.
    for (const QPen& pen : {QPen(Qt::white, 3.5), QPen(QColor(120, 0, 0), 1.5)}) {
        painter.setPen(pen);
        painter.drawLine(corner.topLeft(), corner.bottomRight());
        painter.drawLine(corner.bottomLeft(), corner.topRight());
    }
}
