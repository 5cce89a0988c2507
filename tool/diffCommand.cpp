#include "tool/ConfigurationDifference.h"
#include "tool/Console.h"
#include "tool/Interruption.h"
#include "tool/Source.h"
#include "tool/commandList.h"

#include <QCommandLineParser>
#include <QJsonDocument>
#include <QJsonObject>

namespace
{

void tellJson(const QVector<ConfigurationDifference>& differences, Console& console)
{
    console.result(QJsonDocument(QJsonObject{{QStringLiteral("equal"), differences.isEmpty()},
                                             {QStringLiteral("differences"), jsonOf(differences)}}));
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

ExitCode diff(const QCommandLineParser& commandLine, const QStringList& arguments, Console& console)
{
    // Shared by the readings of both sides.
    Interruption interruption;
    const Source before = sourceOf(arguments.at(0), commandLine, console);
    if (before.configuration == nullptr) {
        return before.exitCode;
    }
    const Source after = sourceOf(arguments.at(1), commandLine, console);
    if (after.configuration == nullptr) {
        return after.exitCode;
    }
    if (interruption.isRequested()) {
        console.error(QStringLiteral("interrupted; nothing was compared"));
        return ExitCode::Interrupted;
    }
    const int faults = before.configuration->faults + after.configuration->faults;
    for (const Source* const side : {&before, &after}) {
        if (side->coordinator) {
            QStringList unread = takeUnread(before.configuration->model, side->reading);
            unread += takeUnread(after.configuration->model, side->reading);
            unread.removeDuplicates();
            if (!unread.isEmpty()) {
                console.note(QStringLiteral("not told by the unit, so not compared: ") +
                             unread.join(QLatin1String(", ")));
            }
        }
    }
    const bool isUnit = before.coordinator || after.coordinator;
    const auto differences = configurationDifferences(before.configuration->model, after.configuration->model,
                                                      isUnit ? Names::Ignored : Names::Compared);
    if (console.isJson()) {
        tellJson(differences, console);
    } else {
        tellLines(differences, arguments, console);
    }
    return differences.isEmpty() && faults == 0 ? ExitCode::Done : ExitCode::WithErrors;
}

} // namespace

Command diffCommand()
{
    Command command;
    command.name = QStringLiteral("diff");
    command.arguments = QStringLiteral("A.cfg|unit B.cfg|unit");
    command.leastArguments = 2;
    command.mostArguments = 2;
    command.summary = QStringLiteral("Tells in words in what two configurations differ");
    command.example = QStringLiteral("hubn-tool diff before.cfg unit");
    command.run = diff;
    return command;
}
