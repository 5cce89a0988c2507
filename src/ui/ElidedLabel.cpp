#include "ui/ElidedLabel.h"

#include <QFontMetrics>
#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

#include "widgets/Look.h"

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
}

QSize ElidedLabel::minimumSizeHint() const
{
    const QMargins margins = contentsMargins();
    return {0, fontMetrics().height() + margins.top() + margins.bottom()};
}

QSize ElidedLabel::sizeHint() const
{
    const QMargins margins = contentsMargins();
    return {fontMetrics().horizontalAdvance(text()) + margins.left() + margins.right(), minimumSizeHint().height()};
}

bool ElidedLabel::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty() && shownText() != text()) {
        // The tag is there so that Qt doesn't take the text for plain.
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                           QStringLiteral("<span>%1</span>").arg(look::richText(text())), this);
        return true;
    }
    return QLabel::event(event);
}

void ElidedLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    drawFrame(&painter);
    style()->drawItemText(&painter, contentsRect(), static_cast<int>(alignment() | Qt::TextSingleLine), palette(),
                          isEnabled(), shownText(), foregroundRole());
}

QString ElidedLabel::shownText() const
{
    return fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width());
}
