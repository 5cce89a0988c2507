// What the window costs its user: how long the event loop stands still while a unit is read, how fast views are
// rebuilt.

#include "benchmarks/Figures.h"
#include "benchmarks/StandstillWatch.h"
#include "benchmarks/Units.h"
#include "model/RelayInfo.h"
#include "simulator/UnitSimulator.h"
#include "ui/tree/Tree_Relay_Widget.h"
#include "ui/window/MainWindow.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTableWidget>
#include <QTimer>

namespace
{

Figure simple(const QString& what, double measured, const QString& reference, double bar)
{
    return {what, QStringLiteral("%1 ms").arg(measured, 0, 'f', 2), reference, measured, QStringLiteral("ms"), bar,
            false};
}

/// The automatic chain, from the first sight of the port to the log in its table.
Figure chain()
{
    UnitSimulator unit(units::installation(2000));
    MainWindow window({[&] { return QStringList{unit.portName()}; }, {}, nullptr});
    window.show();
    QApplication::processEvents();

    const auto* busy = window.findChild<QWidget*>(QStringLiteral("FormWaiting"));
    QEventLoop end;
    QElapsedTimer whole;
    whole.start();
    StandstillWatch watch;
    bool seen = false;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &end, [&] {
        seen = seen || busy->isVisible();
        if ((seen && !busy->isVisible()) || whole.elapsed() > 60000) {
            end.quit();
        }
    });
    poll.start(20);
    end.exec();
    return simple(QStringLiteral("longest standstill of the event loop in the chain"), watch.longest,
                  QStringLiteral("%1 ms, the whole chain").arg(whole.elapsed()), 50);
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
    return simple(QStringLiteral("tree of 32 terminals with 8 outputs each rebuilt"), median(rebuilt),
                  QStringLiteral("%1 ms, until painted").arg(median(painted), 0, 'f', 1), 60);
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
    return {QStringLiteral("a packet into the full packet logger"),
            QStringLiteral("%1 ms").arg(median(full2000), 0, 'f', 3),
            QStringLiteral("%1 ms, into an empty one").arg(median(empty), 0, 'f', 3),
            median(full2000),
            QStringLiteral("ms"),
            0.3,
            false};
}

const Benchmark windowBenchmark(QStringLiteral("window"), [] {
    return std::vector<Figure>{rebuilding(), logger(), chain()};
});

} // namespace
