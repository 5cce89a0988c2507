#include "tool/Source.h"

#include "tool/Console.h"
#include "tool/UnitSession.h"

#include <QFileInfo>

namespace
{

void readUnitInto(Source& source, const QCommandLineParser& commandLine, Console& console)
{
    UnitSession unit(commandLine, console);
    source.exitCode = unit.open();
    if (source.exitCode != ExitCode::Done) {
        return;
    }
    const std::optional<UnitReading> reading = readUnit(unit, false);
    if (!reading) {
        console.error(QStringLiteral("interrupted while the unit was being read"));
        source.exitCode = ExitCode::Interrupted;
        return;
    }
    tellFailures(*reading, console);
    if (!reading->failures.isEmpty()) {
        console.error(QStringLiteral("the unit could not be read whole"));
        source.exitCode = ExitCode::Refused;
        return;
    }
    source.configuration = std::make_unique<Configuration>();
    reading->fill(source.configuration->model);
    source.reading = *reading;
    source.port = unit.port().name();
    source.coordinator = unit.port().info().coordinator;
    source.time = QDateTime::currentDateTime();
}

} // namespace

Source sourceOf(const QString& word, const QCommandLineParser& commandLine, Console& console)
{
    Source source;
    source.name = word;
    if (word == QLatin1String("unit")) {
        readUnitInto(source, commandLine, console);
        return source;
    }
    source.configuration = loadConfiguration(word, console);
    source.exitCode = source.configuration != nullptr ? ExitCode::Done : ExitCode::BadInput;
    source.time = QFileInfo(word).lastModified();
    return source;
}
