#include "Pictures.h"

#include "ChainWatch.h"
#include "link/FormChoiceCoordinator.h"
#include "link/FormWaiting.h"
#include "texts/texts.h"
#include "ui/tree/FormAddingTerminal.h"
#include "ui/window/MainWindow.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDockWidget>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QToolTip>
#include <QTreeWidget>

#include <algorithm>

namespace
{
constexpr int busyInterval = 60;  // often enough to meet each text of the busy form with its bar on the way
constexpr int stepInterval = 400; // for a window to be shown and painted
constexpr int longestWait = 150;  // intervals that a step may take to get ready

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
    addLogSteps();
    addFormSteps();
    steps.emplace_back([this] { showSummary(); });
    steps.emplace_back([this] { saveSummary(); });
    addFirmwareSteps();
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

/// The bar that finds, what it has found, and an event opened.
void Pictures::addLogSteps()
{
    const auto trigger = [this](const char* action) { window.findChild<QAction*>(QLatin1String(action))->trigger(); };
    const auto openedEvent = [this] { return window.findChild<QDialog*>(QStringLiteral("eventView")); };
    auto* const tabs = window.findChild<QTabWidget*>(QStringLiteral("tabWidget"));
    auto* const countRows = window.findChild<QLabel*>(QStringLiteral("labelCountRows"));
    auto* const log = window.findChild<QTableView*>(QStringLiteral("tableViewLogEvents"));
    steps.emplace_back([tabs] { tabs->setCurrentIndex(1); });
    steps.emplace_back([countRows] { return !countRows->text().isEmpty(); }, [trigger] { trigger("actionFind"); });
    steps.emplace_back([this] {
        save(&window, QStringLiteral("log-find-bar"));
        window.findChild<QLineEdit*>(QStringLiteral("lineEditFind"))->setText(texts::channelLongAlarm());
    });
    const QString foundSome = texts::findCount().section(QStringLiteral("%1"), 1).section(QStringLiteral("%2"), 0, 0);
    steps.emplace_back([countRows, foundSome] { return countRows->text().contains(foundSome); },
                       [this, log] {
                           save(&window, QStringLiteral("log-found"));
                           log->selectRow(0);
                       });
    steps.emplace_back([trigger] { trigger("actionOpenRow"); });
    steps.emplace_back([openedEvent] { return openedEvent() != nullptr; },
                       [this, trigger, tabs, openedEvent] {
                           save(openedEvent(), QStringLiteral("log-event"));
                           openedEvent()->close();
                           trigger("actionEndFind");
                           tabs->setCurrentIndex(0);
                       });
}

/// A load of firmware on its way, and aborted. It comes last: the unit stays in its bootloader.
void Pictures::addFirmwareSteps()
{
    const auto dialog = []() -> QWidget* {
        const QWidgetList widgets = QApplication::topLevelWidgets();
        const auto found = std::find_if(widgets.begin(), widgets.end(), [](const QWidget* widget) {
            return widget->isVisible() && widget->inherits("Loading");
        });
        return found != widgets.end() ? *found : nullptr;
    };
    const auto button = [dialog](const char* name) {
        return dialog() != nullptr ? dialog()->findChild<QPushButton*>(QLatin1String(name)) : nullptr;
    };
    const auto picture = [this, dialog, button](const QString& name) {
        save(dialog(), name);
        button("ButtonAbort")->click(); // aborts, and closes once aborted
    };
    // From the event loop: the dialog has one of its own, in which the further steps are done.
    auto* const load = window.findChild<QAction*>(QStringLiteral("actionFirmware"));
    steps.emplace_back([load] { QTimer::singleShot(0, load, &QAction::trigger); });
    steps.emplace_back([dialog] { return dialog() != nullptr; }, [picture] { picture(QStringLiteral("firmware")); });
    steps.emplace_back([button] { return button("ButtonRepeat") != nullptr && button("ButtonRepeat")->isVisible(); },
                       [picture] { picture(QStringLiteral("firmware-aborted")); });
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
        const Step& step = steps.at(done);
        if (step.isReady && !step.isReady() && ++waits < longestWait) {
            return;
        }
        if (waits < longestWait) {
            ++done;
            waits = 0;
            step.act();
            return;
        }
        fault = QStringLiteral("step %1 waits for something that doesn't come").arg(done);
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
