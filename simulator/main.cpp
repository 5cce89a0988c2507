#include "simulator/SimulatorProgram.h"

#include <QCoreApplication>

int main(int argc, char* argv[])
{
    SimulatorProgram::blockSignals();
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("hubn-unit-simulator"));
    QCoreApplication::setApplicationVersion(QStringLiteral("2.1"));
    SimulatorProgram program;
    return program.start(QCoreApplication::arguments()) ? QCoreApplication::exec() : 1;
}
