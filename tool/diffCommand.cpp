#include "tool/Configuration.h"
#include "tool/ConfigurationDifference.h"
#include "tool/Console.h"
#include "tool/commandList.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace
{

/// The configuration that a word of the command line names. Nothing if it can't be had, which the console has been
/// told then.
std::unique_ptr<Configuration> configurationOf(const QString& file, Console& console)
{
    return loadConfiguration(file, console);
}

void tellJson(const QVector<ConfigurationDifference>& differences, Console& console)
{
    QJsonArray list;
    for (const ConfigurationDifference& difference : differences) {
        list.append(QJsonObject{{QStringLiteral("where"), difference.where},
                                {QStringLiteral("what"), difference.what},
                                {QStringLiteral("before"), difference.before},
                                {QStringLiteral("after"), difference.after}});
    }
    console.result(QJsonDocument(
        QJsonObject{{QStringLiteral("equal"), differences.isEmpty()}, {QStringLiteral("differences"), list}}));
}

void tellLines(const QVector<ConfigurationDifference>& differences, const QStringList& sides, Console& console)
{
    for (const ConfigurationDifference& difference : differences) {
        console.result(inWords(difference));
    }
    if (differences.isEmpty()) {
        console.note(QStringLiteral("%1 and %2 are equal").arg(sides.at(0), sides.at(1)));
    }
}

ExitCode diff(const QCommandLineParser& /*commandLine*/, const QStringList& arguments, Console& console)
{
    const auto before = configurationOf(arguments.at(0), console);
    const auto after = before ? configurationOf(arguments.at(1), console) : nullptr;
    if (after == nullptr) {
        return ExitCode::BadInput;
    }
    const auto differences = configurationDifferences(before->model, after->model, Names::Compared);
    if (console.isJson()) {
        tellJson(differences, console);
    } else {
        tellLines(differences, arguments, console);
    }
    return differences.isEmpty() ? ExitCode::Done : ExitCode::WithErrors;
}

} // namespace

Command diffCommand()
{
    Command command;
    command.name = QStringLiteral("diff");
    command.arguments = QStringLiteral("A.cfg B.cfg");
    command.leastArguments = 2;
    command.mostArguments = 2;
    command.summary = QStringLiteral("Tells in words in what two configurations differ");
    command.example = QStringLiteral("hubn-tool diff before.cfg after.cfg");
    command.run = diff;
    return command;
}
