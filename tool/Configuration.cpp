#include "tool/Configuration.h"

#include "tool/Console.h"

Configuration::Configuration() : catalogue(Device::Files::ReadOnly)
{
    model.setCatalogue(catalogue);
}

QString whyUnread(const QString& path, int fileResult)
{
    return (fileResult == RelayInfo::FileNotFound ? QStringLiteral("there is no file %1")
                                                  : QStringLiteral("%1 can't be read"))
        .arg(path);
}

std::unique_ptr<Configuration> loadConfiguration(const QString& path, Console& console)
{
    auto configuration = std::make_unique<Configuration>();
    if (const int result = configuration->model.loadFromFile(path); result != RelayInfo::FileOk) {
        console.error(whyUnread(path, result));
        return nullptr;
    }
    if (const int errors = configuration->model.errorCount(); errors != 0) {
        console.note(
            QStringLiteral("%1: %2 lines are wrong and count for nothing; \"check\" names them").arg(path).arg(errors));
    }
    return configuration;
}
