#include "widgets/DockTitle.h"

#include "widgets/Look.h"
#include "widgets/SheetAlone.h"

#include <QDockWidget>

namespace dockTitle
{

void setBackground(QDockWidget* dock, const QString& background)
{
    const QString sheet = look::dockTitleStyle(background);
    if (dock->styleSheet().isEmpty() || dock->widget() == nullptr) {
        look::applyStyleSheet(dock, sheet);
    } else if (dock->styleSheet() != sheet) {
        sheetAlone::set(dock, sheet);
        dock->update(0, 0, dock->width(), dock->widget()->y());
    }
}

} // namespace dockTitle
