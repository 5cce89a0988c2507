#include "widgets/FocusInSight.h"

#include <QAbstractItemView>
#include <QGuiApplication>
#include <QScrollArea>

namespace focus
{

void bringIntoSight(QWidget* widget)
{
    if (QGuiApplication::mouseButtons() != Qt::NoButton) {
        return;
    }
    for (const QWidget* part = widget; part != nullptr && !part->isWindow(); part = part->parentWidget()) {
        QWidget* const viewport = part->parentWidget();
        QWidget* const around = viewport->parentWidget();
        if (auto* const area = qobject_cast<QScrollArea*>(around)) {
            area->ensureWidgetVisible(widget);
        } else if (auto* const view = qobject_cast<QAbstractItemView*>(around)) {
            if (view->viewport() == viewport) {
                view->scrollTo(view->indexAt(part->geometry().center()));
            }
        }
    }
}

} // namespace focus
