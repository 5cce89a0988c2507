#include "Pictures.h"

#include "ChainWatch.h"
#include "link/FormChoiceCoordinator.h"
#include "link/FormWaiting.h"
#include "ui/tree/FormAddingTerminal.h"
#include "ui/window/MainWindow.h"

#include <QApplication>
#include <QDockWidget>
#include <QHelpEvent>
#include <QLabel>
#include <QListWidget>
#include <QTabWidget>
#include <QToolTip>
#include <QTreeWidget>

namespace
{
constexpr int busyInterval = 60;  // often enough to meet each text of the busy form with its bar on the way
constexpr int stepInterval = 400; // for a window to be shown and painted

/// A script of the installation with filters and dates, for a summary that has something to say.
constexpr int summarizedScript = 11;

constexpr int expandedTerminals = 3;

QString fileName(const QString& objectName)
{
    return objectName.isEmpty() ? QStringLiteral("widget") : objectName;
}

} // namespace

Pictures::Pictures(MainWindow& mainWindow, const ChainWatch& chainWatch, const QDir& target)
    : window(mainWindow), watch(chainWatch), directory(target)
{
    connect(&timer, &QTimer::timeout, this, &Pictures::lookAtBusyForm);
    timer.start(busyInterval);
}

void Pictures::takeAll()
{
    timer.disconnect(this);
    connect(&timer, &QTimer::timeout, this, &Pictures::nextStep);
    addSteps();
    timer.start(stepInterval);
}

void Pictures::addSteps()
{
    auto* const coordinators = window.findChild<FormChoiceCoordinator*>();
    steps.emplace_back([coordinators] { coordinators->show(); });
    steps.emplace_back([this, coordinators] {
        save(coordinators, QStringLiteral("coordinators"));
        coordinators->hide();
    });
    addTabSteps();
    addFormSteps();
    steps.emplace_back([this] { showSummary(); });
    steps.emplace_back([this] { saveSummary(); });
}

/// The tab of the log asks the unit whether it has changed, which the busy form accompanies.
void Pictures::addTabSteps()
{
    auto* const tabs = window.findChild<QTabWidget*>(QStringLiteral("tabWidget"));
    for (int index = 0; index < tabs->count(); ++index) {
        steps.emplace_back([tabs, index] { tabs->setCurrentIndex(index); });
        steps.emplace_back([this, tabs] { save(&window, fileName(tabs->currentWidget()->objectName())); });
    }
    steps.emplace_back([tabs] { tabs->setCurrentIndex(0); });
}

void Pictures::addFormSteps()
{
    const QList<QDockWidget*> docks = window.findChildren<QDockWidget*>();
    for (QDockWidget* const dock : docks) {
        steps.emplace_back([this, dock] { save(dock, fileName(dock->objectName())); });
    }
    addTreeSteps();
    auto* const addingTerminal = window.findChild<FormAddingTerminal*>();
    steps.emplace_back([addingTerminal] { addingTerminal->show(); });
    steps.emplace_back([this, addingTerminal] {
        save(addingTerminal, QStringLiteral("adding-terminal"));
        addingTerminal->hide();
    });
}

/// The executive terminals behind the head unit, which takes all the room at first.
void Pictures::addTreeSteps()
{
    auto* const tree = window.findChild<QTreeWidget*>(QStringLiteral("treeWidget"));
    steps.emplace_back([tree] {
        tree->topLevelItem(0)->setExpanded(false);
        for (int index = 1; index < qMin(expandedTerminals + 1, tree->topLevelItemCount()); ++index) {
            tree->topLevelItem(index)->setExpanded(true);
        }
    });
    steps.emplace_back([this, tree] { save(tree, QStringLiteral("terminals")); });
}

void Pictures::nextStep()
{
    if (watch.isBusy()) {
        return;
    }
    if (done < steps.size()) {
        steps.at(done++)();
        return;
    }
    timer.stop();
    emit taken(fault);
}

void Pictures::lookAtBusyForm()
{
    auto* const form = window.findChild<FormWaiting*>();
    const QString text = form->findChild<QLabel*>(QStringLiteral("label"))->text();
    if (form->isVisible() && text != busyText && !text.isEmpty()) {
        busyText = text;
        save(form, QStringLiteral("busy"));
    }
}

/// As if the mouse rested on the script's row.
void Pictures::showSummary()
{
    auto* const list = window.findChild<QListWidget*>(QStringLiteral("listWidgetAllScript"));
    list->scrollToItem(list->item(summarizedScript));
    QWidget* const row = list->itemWidget(list->item(summarizedScript));
    const QPoint centre = row->rect().center();
    QHelpEvent rest(QEvent::ToolTip, centre, row->mapToGlobal(centre));
    QApplication::sendEvent(row, &rest);
}

void Pictures::saveSummary()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* const widget : windows) {
        if (widget->inherits("QTipLabel") && widget->isVisible()) {
            save(widget, QStringLiteral("summary"));
            QToolTip::hideText();
            return;
        }
    }
    fault = QStringLiteral("no summary of a script was shown");
}

void Pictures::save(QWidget* widget, const QString& name)
{
    const QString file =
        directory.filePath(QStringLiteral("%1-%2.png").arg(++count, 2, 10, QLatin1Char('0')).arg(name));
    if (!widget->grab().save(file)) {
        fault = QStringLiteral("can't save %1").arg(file);
    }
}
