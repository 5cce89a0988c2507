// The command line tool as a script sees it: the whole process, from its start to its exit, beside the time that the
// bytes of its requests and their answers take on the wire.

#include "benchmarks/Figures.h"
#include "benchmarks/Units.h"
#include "benchmarks/WireTime.h"
#include "simulator/UnitSimulator.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>

namespace
{

Figure read(UnitSimulator& unit)
{
    const QString what = QStringLiteral("hubn-tool read at 57600, from start to exit");
    unit.clearRequests();
    QProcess tool;
    const double measured = milliseconds([&] {
        tool.start(QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("hubn-tool")),
                   {QStringLiteral("read"), QStringLiteral("bench.cfg"), QStringLiteral("--force"),
                    QStringLiteral("--port"), unit.portName()});
        tool.waitForFinished();
    });
    const bool done = tool.exitStatus() == QProcess::NormalExit && tool.exitCode() == 0;
    if (!done) {
        return failure(what, QString::fromLocal8Bit(tool.readAllStandardError()).simplified());
    }
    const double onTheWire = wire::timeOf(unit.requests());
    return {what,
            QStringLiteral("%1 ms").arg(measured, 0, 'f', 0),
            QStringLiteral("%1 ms, the wire's own time").arg(onTheWire, 0, 'f', 0),
            onTheWire / measured,
            QStringLiteral("wire / measured"),
            0.90,
            Figure::AtLeast};
}

std::vector<Figure> run()
{
    const wire::ProcessorsAwake awake;
    UnitSimulator unit(units::installation(2000));
    unit.setPace(UnitSimulator::OfTheWire);
    return {read(unit)};
}

const Benchmark benchmark(QStringLiteral("tool"), run);

} // namespace
