#include "widgets/ElidedLabel.h"

#include "widgets/Look.h"

#include <QFontMetrics>
#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QTextDocument>
#include <QTextDocumentFragment>
#include <QToolTip>

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
}

void ElidedLabel::setElideMode(Qt::TextElideMode mode)
{
    elideMode = mode;
    update();
}

QSize ElidedLabel::minimumSizeHint() const
{
    const QMargins margins = contentsMargins();
    return {0, fontMetrics().height() + margins.top() + margins.bottom()};
}

QSize ElidedLabel::sizeHint() const
{
    const QMargins margins = contentsMargins();
    return {fontMetrics().horizontalAdvance(wholeText()) + margins.left() + margins.right(),
            minimumSizeHint().height()};
}

bool ElidedLabel::hasHeightForWidth() const
{
    return false;
}

bool ElidedLabel::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty() && shown().text != wholeText()) {
        // The tag is there so that Qt doesn't take the text for plain.
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                           QStringLiteral("<span>%1</span>").arg(look::richText(wholeText())), this);
        return true;
    }
    return QLabel::event(event);
}

void ElidedLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    drawFrame(&painter);
    const Shown now = shown();
    style()->drawItemText(&painter, contentsRect(), int(alignment()) | now.flags, palette(), isEnabled(), now.text,
                          foregroundRole());
}

QString ElidedLabel::wholeText() const
{
    const bool formatted =
        textFormat() == Qt::RichText || (textFormat() == Qt::AutoText && Qt::mightBeRichText(text()));
    return formatted ? QTextDocumentFragment::fromHtml(text()).toPlainText() : text();
}

ElidedLabel::Shown ElidedLabel::shown() const
{
    const QString whole = wholeText();
    const QFontMetrics metrics = fontMetrics();
    const QSize room = contentsRect().size();
    if (!wordWrap()) {
        return {metrics.elidedText(whole, elideMode, room.width()), Qt::TextSingleLine};
    }
    for (const int wrap : {Qt::TextWordWrap, Qt::TextWrapAnywhere}) {
        if (fits({whole, wrap})) {
            return {whole, wrap};
        }
    }
    // A line that is broken may stay shorter than the label, so what fits takes some trying.
    int length = room.width() * (room.height() / metrics.lineSpacing());
    Shown part{whole, Qt::TextWrapAnywhere};
    do {
        part.text = metrics.elidedText(whole, elideMode, length);
        length -= metrics.averageCharWidth();
    } while (length > 0 && !fits(part));
    return part;
}

bool ElidedLabel::fits(const Shown& candidate) const
{
    const QRect room = contentsRect();
    return room.contains(fontMetrics().boundingRect(room, int(alignment()) | candidate.flags, candidate.text));
}
