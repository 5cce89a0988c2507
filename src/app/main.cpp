#include "link/endProcess.h"
#include "ui/window/MainWindow.h"
#include "widgets/scaledApplication.h"

int main(int argc, char* argv[])
{
    int exitCode = 0;
    {
        const auto application = scaledApplication(argc, argv);
        MainWindow window;
        window.showMaximized();
        exitCode = QApplication::exec();
    }
    endProcess(exitCode);
}
