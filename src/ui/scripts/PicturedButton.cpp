#include "ui/scripts/PicturedButton.h"

#include <QImage>
#include <QPainter>
#include <QPixmapCache>
#include <QStyleOptionButton>

#include <cmath>

namespace
{

/// All that the picture of a button depends on.
QString lookOf(const QPushButton& button, const QStyleOptionButton& option)
{
    const QColor text = option.palette.color(QPalette::ButtonText);
    return QStringLiteral("%1|%2|%3|%4|%5x%6|%7|%8|")
               .arg(option.state)
               .arg(option.features)
               .arg(int(option.direction))
               .arg(text.rgba())
               .arg(button.width())
               .arg(button.height())
               .arg(button.devicePixelRatioF())
               .arg(option.text) +
           button.font().key() + (button.isWindow() ? QString() : button.parentWidget()->styleSheet()) +
           button.styleSheet();
}

} // namespace

PicturedButton::PicturedButton(const QString& text, QWidget* parent) : QPushButton(text, parent)
{
    setIconSize(QSize(1, 1)); // it has no icon, and asking the style sheet for the size costs more than all else
}

void PicturedButton::paintEvent(QPaintEvent* event)
{
    const qreal ratio = devicePixelRatioF();
    if (ratio != std::floor(ratio)) { // a picture would lie between the pixels of the screen
        QPushButton::paintEvent(event);
        return;
    }
    QStyleOptionButton option;
    initStyleOption(&option);
    const QString look = lookOf(*this, option);
    QPixmap picture;
    if (!QPixmapCache::find(look, &picture)) {
        picture = draw(option);
        QPixmapCache::insert(look, picture);
    }
    QPainter(this).drawPixmap(0, 0, picture);
}

/// On an image of the screen's own resolution: a font measured in points would come out in another size on a pixmap.
QPixmap PicturedButton::draw(const QStyleOptionButton& option)
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
    style()->drawControl(QStyle::CE_PushButton, &option, &painter, this);
    painter.end();
    return QPixmap::fromImage(image);
}
