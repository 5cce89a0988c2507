#include "tool/Configuration.h"

#include "tool/Console.h"

Configuration::Configuration() : catalogue(Device::Files::ReadOnly)
{
    model.setCatalogue(catalogue);
}

std::unique_ptr<Configuration> loadConfiguration(const QString& path, Console& console)
{
    auto configuration = std::make_unique<Configuration>();
    switch (configuration->model.loadFromFile(path)) {
    case RelayInfo::FileNotFound:
        console.error(QStringLiteral("there is no file %1").arg(path));
        return nullptr;
    case RelayInfo::FileOk:
        break;
    default:
        console.error(QStringLiteral("%1 can't be read").arg(path));
        return nullptr;
    }
    if (const int errors = configuration->model.errorCount(); errors != 0) {
        console.note(
            QStringLiteral("%1: %2 lines are wrong and count for nothing; \"check\" names them").arg(path).arg(errors));
    }
    return configuration;
}
