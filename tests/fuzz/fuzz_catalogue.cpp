// Any bytes as the catalogue of models: bad lines cost themselves, and what is read can be offered as terminal types.

#include "fuzz/fuzz.h"
#include "model/Device.h"
#include "model/RelayInfo.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace
{

/// A working directory of its own for as long as it lives, as the catalogue lies in it. The fuzzer reads and writes its
/// inputs in the former one.
class OwnDirectory
{
public:
    OwnDirectory() : former(QDir::currentPath())
    {
        static const QTemporaryDir directory;
        fuzz::demand(QDir::setCurrent(directory.path()), QStringLiteral("the working directory"));
    }
    ~OwnDirectory()
    {
        QDir::setCurrent(former);
    }
    Q_DISABLE_COPY_MOVE(OwnDirectory)

private:
    QString former;
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool silent = fuzz::silenceDebugLines();
    Q_UNUSED(silent)

    const OwnDirectory directory;
    {
        QFile file(QStringLiteral("Devices_EN.csv"));
        fuzz::demand(file.open(QIODevice::WriteOnly) && file.write(fuzz::bytesOf(data, size)) == qint64(size),
                     QStringLiteral("the file"));
    }
    const Device device([](const QString& title, const QString&) { fuzz::demand(false, title); });
    RelayInfo model;
    for (int i = 0; i < device.deviceCount(); ++i) {
        const QVariantList row = device.deviceRow(i);
        fuzz::demand(row.size() == 6, QStringLiteral("a row of another length"));
        model.addTerminalType(i == 0, row.at(0).toString(), row.at(1).value<uchar>(), row.at(2).value<uchar>(),
                              row.at(3).value<uchar>(), row.at(4).value<uchar>(), row.at(5).toStringList());
    }
    fuzz::demand(model.terminalTypes().size() == 1 + device.deviceCount(), QStringLiteral("types are missing"));
    return 0;
}
