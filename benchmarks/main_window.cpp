#include "benchmarks/FirstPaint.h"
#include "ui/window/MainWindow.h"

#include <QApplication>

/// The program's window without any serial port, for the time to its first paint.
int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    MainWindow window({[] { return QStringList(); }, {}, nullptr});
    const FirstPaint firstPaint(&window);
    window.showMaximized();
    return QApplication::exec();
}
