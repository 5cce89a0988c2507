#include "tool/Configuration.h"
#include "tool/Console.h"
#include "tool/commandList.h"

#include <QCommandLineParser>

namespace
{

ExitCode check(const QCommandLineParser& /*commandLine*/, const QStringList& arguments, Console& console)
{
    const auto configuration = loadConfiguration(arguments.at(0), console);
    if (configuration == nullptr) {
        return ExitCode::BadInput;
    }
    return configuration->model.errorCount() == 0 ? ExitCode::Done : ExitCode::WithErrors;
}

} // namespace

Command checkCommand()
{
    Command command;
    command.name = QStringLiteral("check");
    command.arguments = QStringLiteral("FILE.cfg");
    command.leastArguments = 1;
    command.mostArguments = 1;
    command.summary = QStringLiteral("Tells each line of a configuration file that counts as an error");
    command.example = QStringLiteral("hubn-tool check site.cfg");
    command.run = check;
    return command;
}
