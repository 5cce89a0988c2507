// A configuration of 32 terminals and 32 scripts, to a file and back, without the disk's own time: the files lie where
// the system keeps its temporary ones, and the reference is the same bytes written or read in one go there.

#include "benchmarks/Figures.h"
#include "benchmarks/Units.h"
#include "model/RelayInfo.h"

#include <QFile>
#include <QSaveFile>

namespace
{

constexpr int runs = 21;

double medianOf(const std::function<void()>& call)
{
    std::vector<double> times;
    times.reserve(runs);
    for (int i = 0; i < runs; ++i) {
        times.push_back(milliseconds(call));
    }
    return median(times);
}

Figure figure(const QString& what, double measured, double plain)
{
    return {what,
            QStringLiteral("%1 ms").arg(measured, 0, 'f', 2),
            QStringLiteral("%1 ms, the same bytes in one go").arg(plain, 0, 'f', 2),
            measured - plain,
            QStringLiteral("ms more"),
            20,
            Figure::Milliseconds};
}

std::vector<Figure> run()
{
    const auto model = units::fullModel(8);
    const QString path = QStringLiteral("full.cfg");
    bool good = true;
    const double save = medianOf([&] { good = model->saveToFile(path) == RelayInfo::FileOk && good; });

    RelayInfo loaded;
    const double load = medianOf([&] { good = loaded.loadFromFile(path) == RelayInfo::FileOk && good; });

    QByteArray bytes;
    const double plainRead = medianOf([&] {
        QFile file(path);
        bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    });
    const double plainWrite = medianOf([&] {
        QSaveFile file(QStringLiteral("plain.cfg"));
        if (file.open(QIODevice::WriteOnly)) {
            file.write(bytes);
            file.commit();
        }
    });
    if (!good) {
        return {
            failure(QStringLiteral("configuration saved and loaded"), QStringLiteral("the file could not be used"))};
    }
    const QString size = QStringLiteral("32 terminals, 32 scripts, %1 KiB").arg(bytes.size() / 1024);
    return {figure(QStringLiteral("configuration saved: ") + size, save, plainWrite),
            figure(QStringLiteral("configuration loaded: ") + size, load, plainRead)};
}

const Benchmark filesBenchmark(QStringLiteral("files"), run);

} // namespace
