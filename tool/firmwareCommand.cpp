#include "firmware/FirmwareLoad.h"
#include "firmware/protocol_boot.h"
#include "texts/texts.h"
#include "tool/Console.h"
#include "tool/UnitSession.h"
#include "tool/commandList.h"

#include <QCommandLineParser>
#include <QEventLoop>
#include <QFile>
#include <QJsonDocument>

namespace
{

/// Of a unit whose coordinator didn't answer.
constexpr int usualBaudrate = 57600;

std::optional<QByteArray> readImage(const QString& path, Console& console)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        console.error(QStringLiteral("%1 can't be read: %2").arg(path, file.errorString()));
        return {};
    }
    const QByteArray image = file.readAll();
    if (image.size() < protocol_boot::smallestImage) {
        console.error(QStringLiteral("%1 has too few bytes for a firmware").arg(path));
        return {};
    }
    return image;
}

/// Whether the user wants it; where nobody can be asked only --yes says so.
bool isWanted(const QCommandLineParser& commandLine, Console& console)
{
    if (commandLine.isSet(confirmedOption())) {
        return true;
    }
    if (!console.isInputTyped()) {
        console.error(QStringLiteral("nobody can be asked here; --yes loads without a question"));
        return false;
    }
    console.error(QStringLiteral("load new firmware into this unit? Type yes or no."));
    const QString reply = console.readLine().value_or(QString()).trimmed().toLower();
    if (reply == QLatin1String("y") || reply == QLatin1String("yes")) {
        return true;
    }
    console.error(QStringLiteral("nothing was loaded"));
    return false;
}

QString textOf(FirmwareLoad::End end)
{
    switch (end) {
    case FirmwareLoad::End::Completed:
        return QStringLiteral("loaded");
    case FirmwareLoad::End::Aborted:
        return QStringLiteral("interrupted");
    case FirmwareLoad::End::PortError:
        return QStringLiteral("the port failed");
    case FirmwareLoad::End::NotResponding:
        return QStringLiteral("the unit does not answer");
    case FirmwareLoad::End::WriteError:
        return QStringLiteral("the unit could not store it");
    default:
        return QStringLiteral("the unit did not take it");
    }
}

/// How the load ended; nothing if interrupted.
std::optional<FirmwareLoad::End> loadImage(const QByteArray& image, UnitSession& unit, Console& console, int& steps)
{
    FirmwareLoad load;
    FirmwareLoad::End result = FirmwareLoad::End::Aborted;
    QEventLoop loop;
    load.setImage(image);
    QObject::connect(&load, &FirmwareLoad::requestReady, &unit.link(), &CoordinatorLink::send);
    QObject::connect(&unit.link(), &CoordinatorLink::firmwareAnswered, &load, &FirmwareLoad::takeAnswer);
    QObject::connect(&load, &FirmwareLoad::stepDone, &loop, [&] {
        ++steps;
        console.progress(QStringLiteral("Loading firmware"), steps, load.stepCount());
    });
    QObject::connect(&load, &FirmwareLoad::ended, &loop, [&](FirmwareLoad::End end) {
        result = end;
        loop.quit();
    });
    unit.link().setFirmwareRunning(true);
    const int baudrate = unit.port().info().baudrate;
    load.start(unit.link().currentAddress(), baudrate > 0 ? baudrate : usualBaudrate);
    const bool isOver = unit.wait(loop, [&load] { load.abort(); });
    unit.link().setFirmwareRunning(false);
    return isOver ? std::make_optional(result) : std::nullopt;
}

ExitCode firmware(const QCommandLineParser& commandLine, const QStringList& arguments, Console& console)
{
    const QString& path = arguments.at(0);
    const std::optional<QByteArray> image = readImage(path, console);
    if (!image) {
        return ExitCode::BadInput;
    }
    UnitSession unit(commandLine, console);
    // One that waits in its bootloader since a load was broken off answers no search.
    if (const ExitCode found = unit.open(true); found != ExitCode::Done) {
        return found;
    }
    if (!isWanted(commandLine, console)) {
        return unit.isInterrupted() ? ExitCode::Interrupted : ExitCode::Refused;
    }
    if (unit.isInterrupted()) {
        console.error(QStringLiteral("interrupted; nothing was loaded"));
        return ExitCode::Interrupted;
    }
    int steps = 0;
    const std::optional<FirmwareLoad::End> end = loadImage(*image, unit, console, steps);
    if (!end) {
        console.noteSoFar({{QStringLiteral("steps"), steps}});
        console.error(QStringLiteral("interrupted after %1 steps; the unit waits in its bootloader for a whole image: "
                                     "load again")
                          .arg(steps));
        return ExitCode::Interrupted;
    }
    if (console.isJson()) {
        QJsonObject object = unit.identity();
        object.insert(QStringLiteral("file"), path);
        object.insert(QStringLiteral("bytes"), image->size());
        object.insert(QStringLiteral("result"), textOf(*end));
        console.result(QJsonDocument(object));
    } else if (*end == FirmwareLoad::End::Completed) {
        console.result(QStringLiteral("%1: %2, %3 bytes").arg(path, textOf(*end), QString::number(image->size())));
    }
    if (*end == FirmwareLoad::End::Completed) {
        return ExitCode::Done;
    }
    console.error(QStringLiteral("%1: %2; begin again, the unit takes it from the beginning").arg(path, textOf(*end)));
    return ExitCode::WithErrors;
}

} // namespace

Command firmwareCommand()
{
    Command command;
    command.name = QStringLiteral("firmware");
    command.arguments = QStringLiteral("FILE.crypt");
    command.leastArguments = 1;
    command.mostArguments = 1;
    command.summary = QStringLiteral("Loads new firmware into the unit");
    command.example = QStringLiteral("hubn-tool firmware unit-6.03.crypt --yes");
    command.options = {confirmedOption()};
    command.run = firmware;
    return command;
}
