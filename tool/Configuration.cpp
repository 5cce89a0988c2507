#include "tool/Configuration.h"

#include "tool/Console.h"

Configuration::Configuration() : catalogue({}, nullptr, Device::Files::ReadOnly)
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
    ConfigurationErrors faults;
    if (const int result = configuration->model.loadFromFile(path, &faults); result != RelayInfo::FileOk) {
        console.error(whyUnread(path, result));
        return nullptr;
    }
    configuration->faults = faults.size();
    if (!faults.isEmpty()) {
        console.error(QStringLiteral("%1 has %2; \"check\" tells what counts for nothing")
                          .arg(path, faults.size() == 1 ? QStringLiteral("1 fault")
                                                        : QStringLiteral("%1 faults").arg(faults.size())));
    }
    return configuration;
}
