#include "link/endProcess.h"
#include "ui/window/MainWindow.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    int exitCode = 0;
    {
        QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
        const QApplication application(argc, argv);
        MainWindow window;
        window.showMaximized();
        exitCode = QApplication::exec();
    }
    endProcess(exitCode);
}
