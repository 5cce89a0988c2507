#include "ui/scripts/PicturedButton.h"

#include <QImage>
#include <QPainter>
#include <QPixmapCache>
#include <QStyleOptionButton>

#include <cmath>

namespace
{

/// All that the picture of a button depends on.
QString lookOf(const PicturedButton& button, const QStyleOptionButton& option)
{
    const QColor text = option.palette.color(QPalette::ButtonText);
    return QStringLiteral("%1|%2|%3|%4|%5x%6|%7|%8|%9|")
               .arg(option.state)
               .arg(option.features)
               .arg(int(option.direction))
               .arg(text.rgba())
               .arg(button.width())
               .arg(button.height())
               .arg(button.devicePixelRatioF())
               .arg(button.isCrossed())
               .arg(option.text) +
           button.font().key() + (button.isWindow() ? QString() : button.parentWidget()->styleSheet()) +
           button.styleSheet();
}

void drawCross(QPainter& painter, const QRect& place)
{
    painter.setRenderHint(QPainter::Antialiasing);
    // White around the dark lines keeps them apart from the ring.
    for (const QPen& pen : {QPen(Qt::white, 3.5), QPen(QColor(120, 0, 0), 1.5)}) {
        painter.setPen(pen);
        painter.drawLine(place.topLeft(), place.bottomRight());
        painter.drawLine(place.bottomLeft(), place.topRight());
    }
}

} // namespace

PicturedButton::PicturedButton(const QString& text, QWidget* parent) : StateButton(text, parent)
{
    setIconSize(QSize(1, 1)); // it has no icon, and asking the style sheet for the size costs more than all else
}

void PicturedButton::setCrossed(bool on)
{
    if (crossed != on) {
        crossed = on;
        update();
    }
}

void PicturedButton::paintEvent(QPaintEvent* /*event*/)
{
    QStyleOptionButton option;
    initStyleOption(&option);
    QPainter painter(this);
    const qreal ratio = devicePixelRatioF();
    if (ratio != std::floor(ratio)) { // a picture would lie between the pixels of the screen
        draw(painter, option);
        return;
    }
    const QString look = lookOf(*this, option);
    QPixmap picture;
    if (!QPixmapCache::find(look, &picture)) {
        picture = makePicture(option);
        QPixmapCache::insert(look, picture);
    }
    painter.drawPixmap(0, 0, picture);
}

void PicturedButton::draw(QPainter& painter, const QStyleOptionButton& option) const
{
    style()->drawControl(QStyle::CE_PushButton, &option, &painter, this);
    if (crossed) {
        constexpr int crossSize = 6;
        drawCross(painter, {width() - crossSize - 1, height() - crossSize - 1, crossSize, crossSize});
    }
}

/// On an image of the screen's own resolution: a font measured in points would come out in another size on a pixmap.
QPixmap PicturedButton::makePicture(const QStyleOptionButton& option) const
{
    constexpr double metresInAnInch = 0.0254;
    QImage image(size() * devicePixelRatioF(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(devicePixelRatioF());
    image.setDotsPerMeterX(qRound(logicalDpiX() / metresInAnInch));
    image.setDotsPerMeterY(qRound(logicalDpiY() / metresInAnInch));
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setFont(font());
    painter.setLayoutDirection(layoutDirection());
    draw(painter, option);
    painter.end();
    return QPixmap::fromImage(image);
}
