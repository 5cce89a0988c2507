// What a step of the user costs in the whole window, over a unit of full size: from the click until all of it is on the
// screen. A part of the window alone would be faster, since all parts share one layout and one style.

#include "benchmarks/Figures.h"
#include "benchmarks/FullWindow.h"
#include "model/GroupRelay.h"
#include "ui/tree/Tree_Relay_Widget.h"

#include <QApplication>
#include <QListWidget>
#include <QMouseEvent>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTableWidget>
#include <QTreeWidget>

#include <memory>
#include <vector>

namespace
{

void click(QWidget* widget, const QPoint& place)
{
    const QPointF global = widget->mapToGlobal(place);
    QMouseEvent press(QEvent::MouseButtonPress, place, global, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(widget, &press);
    QMouseEvent release(QEvent::MouseButtonRelease, place, global, Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(widget, &release);
}

/// The median time from a step until the window has come to rest, of many; prepare() goes before each, unmeasured.
template <typename Step, typename Prepare>
Figure untilPainted(const QString& what, int steps, double bar, Step step, Prepare prepare)
{
    std::vector<double> times;
    times.reserve(std::size_t(steps));
    for (int i = 0; i < steps; ++i) {
        prepare(i);
        FullWindow::settle();
        times.push_back(milliseconds([&] {
            step(i);
            FullWindow::settle();
        }));
    }
    return timeFigure(what, median(times),
                      bar < 20 ? QStringLiteral("a frame at 60 Hz") : QStringLiteral("two frames at 60 Hz"), bar);
}

template <typename Step>
Figure untilPainted(const QString& what, int steps, double bar, Step step)
{
    return untilPainted(what, steps, bar, step, [](int) {});
}

/// Alternates between two rows in view, since a row that is chosen already would be no step.
Figure scriptChosen(const FullWindow& full)
{
    QList<QWidget*> labels;
    for (int row = 0; row < full.scripts->count(); ++row) {
        QListWidgetItem* const item = full.scripts->item(row);
        if (full.scripts->viewport()->rect().contains(full.scripts->visualItemRect(item).center())) {
            labels.append(full.scripts->itemWidget(item));
        }
    }
    return untilPainted(QStringLiteral("a script chosen in the list, until painted"), 60, 16, [&](int i) {
        QWidget* const label = labels.at(i % labels.size());
        click(label, label->rect().center());
    });
}

Figure outputChosen(const FullWindow& full)
{
    full.tree->scrollToItem(full.tree->topLevelItem(FullWindow::terminalCount / 2), QAbstractItemView::PositionAtTop);
    FullWindow::settle();
    QList<QWidget*> frames;
    for (QTreeWidgetItem* item = full.tree->itemAt(0, 0); item != nullptr; item = full.tree->itemBelow(item)) {
        if (item->parent() != nullptr && full.tree->viewport()->rect().contains(full.tree->visualItemRect(item))) {
            frames.append(full.tree->itemWidget(item, 0));
        }
    }
    return untilPainted(QStringLiteral("an output chosen in the tree, until painted"), 60, 16,
                        [&](int i) { click(frames.at(i % frames.size()), QPoint(2, 2)); });
}

/// Hides the chosen terminal by the signal of its menu's entry, and adds it again for the next time.
Figure terminalHidden(FullWindow& full)
{
    Tree_Relay_Widget* const panel = full.panel;
    short address = 0;
    const auto chosen = std::make_shared<QSharedPointer<GroupRelay>>();
    const QObject listener;
    QObject::connect(panel, &Tree_Relay_Widget::sig_changeRelay, &listener,
                     [chosen](const QSharedPointer<RelayInformation>&, const QSharedPointer<GroupRelay>& group) {
                         *chosen = group;
                     });
    return untilPainted(
        QStringLiteral("a terminal of 31 open ones hidden, until painted"), 10, 33,
        [&](int) { emit panel->sig_deleteGroupRelay(*chosen); },
        [&](int i) {
            if (i > 0) {
                panel->sl_CreateNewGroupAndRelays(QStringLiteral("Terminal"), address,
                                                  {QStringLiteral("Output"), QStringLiteral("Output")});
                full.tree->expandAll();
            }
            QTreeWidgetItem* const item = full.tree->topLevelItem(FullWindow::terminalCount / 2);
            full.tree->setCurrentItem(item);
            address = short((*chosen)->address);
        });
}

Figure tabShown(const QString& what, const FullWindow& full, const QWidget* table)
{
    QTabBar* const bar = full.tabs->tabBar();
    int tab = 0;
    while (!full.tabs->widget(tab)->isAncestorOf(table)) {
        ++tab;
    }
    const auto show = [bar](int index) { click(bar, bar->tabRect(index).center()); };
    return untilPainted(
        what, 20, 33, [&](int) { show(tab); }, [&](int) { show(0); });
}

/// Between two sizes that the screen has room for, or the window manager would resize it once more.
Figure windowResized(FullWindow& full)
{
    constexpr QSize large(1020, 680);
    constexpr QSize small(1000, 660);
    full.window.showNormal();
    full.window.resize(large);
    return untilPainted(QStringLiteral("the window resized, until painted"), 20, 33,
                        [&](int i) { full.window.resize(i % 2 == 0 ? small : large); });
}

const Benchmark stepsBenchmark(QStringLiteral("steps"), [] {
    FullWindow full;
    std::vector<Figure> figures{
        scriptChosen(full),
        outputChosen(full),
        terminalHidden(full),
        tabShown(QStringLiteral("the tab with 2,000 events shown, until painted"), full, full.log),
        tabShown(QStringLiteral("the tab with 2,000 packets shown, until painted"), full, full.packets),
        windowResized(full),
    };
    return figures;
});

} // namespace
