#include "ui/window/PanelWidths.h"

#include "texts/texts.h"
#include "widgets/Look.h"

#include <QAction>
#include <QApplication>
#include <QDockWidget>
#include <QHelpEvent>
#include <QMainWindow>
#include <QToolTip>

#include <algorithm>
#include <utility>

PanelWidths::PanelWidths(QMainWindow* mainWindow, const QList<QDockWidget*>& panels)
    : QObject(mainWindow), window(mainWindow), docks(panels)
{
    constexpr int oneStep = 20;
    addAction(QStringLiteral("actionNarrowPanels"), texts::panelsNarrow(), Qt::Key_F8, -oneStep);
    addAction(QStringLiteral("actionWidenPanels"), texts::panelsWiden(), Qt::SHIFT + Qt::Key_F8, oneStep);
    for (QDockWidget* const dock : panels) {
        dock->installEventFilter(this);
    }
}

void PanelWidths::addAction(const QString& name, const QString& text, const QKeySequence& key, int step)
{
    auto* const action = new QAction(text, window);
    action->setObjectName(name);
    action->setShortcut(key);
    connect(action, &QAction::triggered, this, [this, step] { change(step); });
    window->addAction(action);
}

/// Above or below the tabs a panel is as wide as the window.
bool PanelWidths::isBeside(QDockWidget* dock) const
{
    const Qt::DockWidgetArea area = window->dockWidgetArea(dock);
    return area == Qt::LeftDockWidgetArea || area == Qt::RightDockWidgetArea;
}

void PanelWidths::change(int step)
{
    const auto hasFocus = [](const QDockWidget* dock) { return dock->isAncestorOf(QApplication::focusWidget()); };
    const bool hasAny = std::any_of(docks.cbegin(), docks.cend(), hasFocus);
    QList<QDockWidget*> changed;
    QList<int> widths;
    for (QDockWidget* const dock : std::as_const(docks)) {
        if (isBeside(dock) && (hasFocus(dock) || !hasAny)) {
            changed.append(dock);
            widths.append(dock->width() + step);
        }
    }
    window->resizeDocks(changed, widths, Qt::Horizontal);
}

/// The title is the dock itself; what stands in the dock has tool tips of its own.
bool PanelWidths::eventFilter(QObject* watched, QEvent* event)
{
    auto* const dock = qobject_cast<QDockWidget*>(watched);
    if (event->type() != QEvent::ToolTip || dock == nullptr) {
        return QObject::eventFilter(watched, event);
    }
    const auto* const help = static_cast<QHelpEvent*>(event);
    if (dock->widget() == nullptr || help->pos().y() < dock->widget()->y()) {
        QToolTip::showText(help->globalPos(),
                           QStringLiteral("<b>%1</b><br>%2")
                               .arg(look::richText(dock->windowTitle()), look::richText(texts::panelsHint())),
                           dock);
        return true;
    }
    return QObject::eventFilter(watched, event);
}
