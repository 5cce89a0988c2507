#include "ui/window/SteadyTabWidget.h"

#include <QEvent>
#include <QTabBar>

bool SteadyTabWidget::event(QEvent* event)
{
    if (event->type() != QEvent::LayoutRequest || !updatesEnabled()) {
        return QTabWidget::event(event);
    }
    const QRect bar = tabBar()->geometry();
    // setUpdatesEnabled() would ask for painting itself.
    setAttribute(Qt::WA_UpdatesDisabled);
    const bool recognized = QTabWidget::event(event);
    setAttribute(Qt::WA_UpdatesDisabled, false);
    if (tabBar()->geometry() != bar) {
        update();
    }
    return recognized;
}
