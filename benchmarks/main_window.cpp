#include "benchmarks/FirstPaint.h"
#include "ui/window/MainWindow.h"
#include "widgets/scaledApplication.h"

/// The program's window without any serial port, for the time to its first paint.
int main(int argc, char* argv[])
{
    const auto application = scaledApplication(argc, argv);
    MainWindow window({[] { return QStringList(); }, {}, nullptr});
    const FirstPaint firstPaint(&window);
    window.showMaximized();
    return QApplication::exec();
}
