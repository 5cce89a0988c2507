#include "benchmarks/FirstPaint.h"
#include "benchmarks/PeakMemory.h"
#include "widgets/scaledApplication.h"

#include <QMainWindow>
#include <QStyleFactory>

#include <cstdio>

/// An empty window of the program's style: the reference for the time to the first paint and for memory.
int main(int argc, char* argv[])
{
    const auto application = scaledApplication(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QMainWindow window;
    const FirstPaint firstPaint(&window);
    window.showMaximized();
    const int code = QApplication::exec();
    std::printf("%lld\n", static_cast<long long>(peakMemory()));
    return code;
}
