// Reads a whole log into the window and prints a line of three numbers: milliseconds from its last byte to its rows in
// the view, the longest standstill of the event loop from the search to that moment, and the peak memory of the process
// in KiB.

#include "benchmarks/PeakMemory.h"
#include "benchmarks/StandstillWatch.h"
#include "benchmarks/Units.h"
#include "simulator/UnitSimulator.h"
#include "ui/window/MainWindow.h"
#include "widgets/scaledApplication.h"

#include <QLabel>
#include <QTabWidget>
#include <QTableView>
#include <QTimer>
#include <QWindow>

#include <chrono>
#include <cstdio>

int main(int argc, char* argv[])
{
    const auto application = scaledApplication(argc, argv);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    UnitSimulator unit(units::installation(units::wholeLog));
    MainWindow window({[&] { return QStringList{unit.portName()}; }, {}, nullptr});
    window.showMaximized();
    while (!window.windowHandle()->isExposed()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    QCoreApplication::processEvents();

    const auto* view = window.findChild<QTableView*>(QStringLiteral("tableViewLogEvents"));
    const auto* busy = window.findChild<QWidget*>(QStringLiteral("FormWaiting"));
    std::chrono::steady_clock::time_point lastByte;
    QObject::connect(&unit, &UnitSimulator::requestReceived, &window, [&](const UnitRequest& request) {
        if (request.requestType == 3) {
            lastByte = request.received;
        }
    });
    StandstillWatch watch;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &window, [&] {
        if (view->model() == nullptr || view->model()->rowCount() < units::wholeLog || busy->isVisible()) {
            return;
        }
        const auto visible = std::chrono::steady_clock::now() - lastByte;
        std::printf("%f %f %lld\n", std::chrono::duration<double, std::milli>(visible).count(), watch.longest,
                    static_cast<long long>(peakMemory()));
        std::fflush(stdout);
        QCoreApplication::quit();
    });
    poll.start(1);
    QTimer::singleShot(120000, &window, &QCoreApplication::quit);
    window.findChild<QTabWidget*>(QStringLiteral("tabWidget"))->setCurrentIndex(1);
    return QApplication::exec();
}
