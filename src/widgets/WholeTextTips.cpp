#include "widgets/WholeTextTips.h"

#include "widgets/Look.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QToolTip>

bool WholeTextTips::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                              const QModelIndex& index)
{
    const QString text = displayText(index.data(), option.locale);
    if (event->type() != QEvent::ToolTip || text.isEmpty() || !index.data(Qt::ToolTipRole).toString().isEmpty()) {
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    }
    const QRect inSight = option.rect & view->viewport()->rect();
    const QSize whole = sizeHint(option, index);
    if (whole.width() <= inSight.width() && whole.height() <= inSight.height()) {
        QToolTip::hideText();
        return true;
    }
    // The tag is there so that Qt breaks the lines and doesn't take markup in the text for its own.
    const QString rich = look::richText(text).replace(QChar::LineSeparator, QLatin1String("<br>"));
    QToolTip::showText(event->globalPos(), QStringLiteral("<span>%1</span>").arg(rich), view->viewport(), option.rect);
    return true;
}
