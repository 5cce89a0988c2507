// What the window costs its user: how long the event loop stands still while a unit is read, how fast views are
// rebuilt.

#include "benchmarks/Figures.h"
#include "benchmarks/StandstillWatch.h"
#include "benchmarks/Units.h"
#include "model/RelayInfo.h"
#include "simulator/UnitSimulator.h"
#include "ui/tree/Tree_Relay_Widget.h"
#include "ui/window/MainWindow.h"

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTableWidget>
#include <QTimer>

namespace
{

/// How long the event loop stands still at most until the busy form, which may be there already, has come and gone.
Figure standstillOf(const QString& operation, const MainWindow& window)
{
    const QString what = QStringLiteral("longest standstill of the event loop in the %1").arg(operation);
    const auto* busy = window.findChild<QWidget*>(QStringLiteral("FormWaiting"));
    QEventLoop end;
    QElapsedTimer whole;
    whole.start();
    StandstillWatch watch;
    bool seen = busy->isVisible();
    bool isOver = false;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &end, [&] {
        seen = seen || busy->isVisible();
        isOver = seen && !busy->isVisible();
        if (isOver || whole.elapsed() > 60000) {
            end.quit();
        }
    });
    poll.start(1);
    end.exec();
    return isOver ? timeFigure(what, watch.longest, QStringLiteral("%1 ms in all").arg(whole.elapsed()), 16)
                  : failure(what, QStringLiteral("it came to no end"));
}

/// The automatic chain, from the first sight of the port to its end, and all of it written back.
std::vector<Figure> exchanges()
{
    UnitSimulator unit(units::installation(2000));
    MainWindow window({[&] { return QStringList{unit.portName()}; }, {}, nullptr});
    window.show();
    QApplication::processEvents();
    const Figure chain = standstillOf(QStringLiteral("chain"), window);
    window.findChild<QAction*>(QStringLiteral("actionWrite"))->trigger();
    return {chain, standstillOf(QStringLiteral("writing"), window)};
}

Figure rebuilding()
{
    Tree_Relay_Widget tree(units::fullModel(8));
    tree.resize(260, 700);
    tree.show();
    std::vector<double> rebuilt;
    rebuilt.reserve(9);
    std::vector<double> painted;
    painted.reserve(9);
    for (int i = 0; i < 9; ++i) {
        QElapsedTimer timer;
        timer.start();
        tree.fullUpdateTree(true);
        rebuilt.push_back(double(timer.nsecsElapsed()) / 1e6);
        QApplication::processEvents();
        painted.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    return timeFigure(QStringLiteral("tree of 32 terminals with 8 outputs each rebuilt, until painted"),
                      median(painted), QStringLiteral("%1 ms without the painting").arg(median(rebuilt), 0, 'f', 1),
                      40);
}

Figure logger()
{
    MainWindow window({[] { return QStringList(); }, {}, nullptr});
    window.show();
    QApplication::processEvents();
    window.findChild<QTabWidget*>(QStringLiteral("tabWidget"))->setCurrentIndex(2);
    const auto* table = window.findChild<QTableWidget*>(QStringLiteral("tableLogger"));
    const QByteArray request = QByteArray::fromHex("c18601000301070035aa");
    const QByteArray answer(70, '\x55');
    const auto packet = [&] {
        window.sl_RequestInLog(QDateTime::currentDateTime(), request, false);
        window.sl_AnswerInLog(QDateTime::currentDateTime(), answer, false);
    };
    std::vector<double> empty;
    std::vector<double> full2000;
    full2000.reserve(500);
    while (table->rowCount() < 2000) {
        const double time = milliseconds(packet) / 2;
        if (table->rowCount() < 100) {
            empty.push_back(time);
        }
    }
    for (int i = 0; i < 500; ++i) {
        full2000.push_back(milliseconds(packet) / 2);
    }
    return timeFigure(QStringLiteral("a packet into the full packet logger"), median(full2000),
                      QStringLiteral("%1 ms, into an empty one").arg(median(empty), 0, 'f', 3), 0.3);
}

const Benchmark windowBenchmark(QStringLiteral("window"), [] {
    std::vector<Figure> figures = exchanges();
    figures.insert(figures.begin(), {rebuilding(), logger()});
    return figures;
});

} // namespace
