#include "tool/Console.h"
#include "tool/UnitSession.h"
#include "tool/commandList.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace
{

QJsonObject described(const Port& port)
{
    const PortInfo& info = port.info();
    QJsonObject object{{QStringLiteral("port"), port.name()}, {QStringLiteral("state"), UnitSession::stateOf(port)}};
    if (info.trouble) {
        object.insert(QStringLiteral("trouble"), info.trouble->whatIsWrong());
        object.insert(QStringLiteral("whatToDo"), info.trouble->whatToDo());
    }
    if (info.coordinator) {
        object.insert(QStringLiteral("address"), info.coordinator->address);
        object.insert(QStringLiteral("baudRate"), info.baudrate);
        object.insert(QStringLiteral("serialNumber"), info.coordinator->serial);
        object.insert(QStringLiteral("version"), info.coordinator->versionText());
    }
    return object;
}

QString line(const Port& port)
{
    const PortInfo& info = port.info();
    const QString state = port.name() + QStringLiteral(": ") + UnitSession::stateWithTroubleOf(port);
    if (!info.coordinator) {
        return state;
    }
    return state + QStringLiteral(", address %1, %2 baud, serial number %3, version %4")
                       .arg(info.coordinator->address)
                       .arg(info.baudrate)
                       .arg(info.coordinator->serial)
                       .arg(info.coordinator->versionText());
}

ExitCode ports(const QCommandLineParser& commandLine, const QStringList& /*arguments*/, Console& console)
{
    UnitSession session(commandLine, console);
    if (!session.isSimulationPossible()) {
        return ExitCode::Refused;
    }
    const bool isWhole = session.searchAllPorts();
    const QVector<Port*>& list = session.link().ports();
    QJsonArray array;
    for (const Port* const port : list) {
        if (console.isJson()) {
            array.append(described(*port));
        } else {
            console.result(line(*port));
        }
    }
    if (console.isJson()) {
        console.result(QJsonDocument(array));
    }
    if (!isWhole) {
        console.error(QStringLiteral("interrupted; some ports were still being asked"));
        return ExitCode::Interrupted;
    }
    const bool isFound =
        std::any_of(list.cbegin(), list.cend(), [](const Port* port) { return port->info().coordinator.has_value(); });
    if (list.isEmpty()) {
        console.error(QStringLiteral("there is no serial port"));
    }
    return isFound ? ExitCode::Done : ExitCode::NothingFound;
}

} // namespace

Command portsCommand()
{
    Command command;
    command.name = QStringLiteral("ports");
    command.summary = QStringLiteral("Lists the serial ports and what is found on them");
    command.example = QStringLiteral("hubn-tool ports");
    command.run = ports;
    return command;
}
