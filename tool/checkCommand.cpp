#include "model/RelayInfo.h"
#include "tool/Configuration.h"
#include "tool/Console.h"
#include "tool/commandList.h"
#include "tool/faultInWords.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace
{

QString reasonOf(const ConfigurationError& error)
{
    QStringList reasons;
    for (const ConfigurationFault& fault : error.faults) {
        reasons.append(faultInWords(fault));
    }
    return reasons.join(QLatin1String("; "));
}

/// What stays on one line of a terminal and leaves it as it is, whatever the file has in it.
QString printable(QString text)
{
    for (QChar& character : text) {
        const bool endsLine = character == QChar::LineSeparator || character == QChar::ParagraphSeparator;
        if (endsLine || !character.isPrint()) {
            character = QLatin1Char(character == QLatin1Char('\t') ? ' ' : '?');
        }
    }
    return text;
}

QString shortened(const QString& line)
{
    constexpr int longest = 60;
    return line.size() <= longest ? line : line.left(longest) + QLatin1String("...");
}

QString counted(int count, const char* noun)
{
    return QStringLiteral("%1 %2%3").arg(count).arg(QLatin1String(noun), QLatin1String(count == 1 ? "" : "s"));
}

void tellLines(const ConfigurationErrors& errors, int count, Console& console)
{
    for (const ConfigurationError& error : errors) {
        const QString line = QStringLiteral("%1: %2: ").arg(error.line).arg(shortened(error.text)) + reasonOf(error);
        console.result(printable(line));
    }
    if (count > 0) {
        console.note(counted(count, "error") + QLatin1String(" on ") + counted(errors.size(), "line"));
    } else if (!errors.isEmpty()) {
        console.note(QStringLiteral("no line counts as an error, but the file isn't read as it stands"));
    } else {
        console.note(QStringLiteral("no line counts as an error"));
    }
}

void tellJson(const ConfigurationErrors& errors, int count, Console& console)
{
    QJsonArray list;
    for (const ConfigurationError& error : errors) {
        list.append(QJsonObject{{QStringLiteral("line"), error.line},
                                {QStringLiteral("text"), error.text},
                                {QStringLiteral("reason"), reasonOf(error)},
                                {QStringLiteral("count"), countOf(error.faults)}});
    }
    console.result(QJsonDocument(QJsonObject{{QStringLiteral("count"), count}, {QStringLiteral("errors"), list}}));
}

ExitCode check(const QCommandLineParser& /*commandLine*/, const QStringList& arguments, Console& console)
{
    const QString& path = arguments.at(0);
    RelayInfo model;
    ConfigurationErrors errors;
    const int result = model.loadFromFile(path, &errors);
    if (result != RelayInfo::FileOk) {
        console.error(whyUnread(path, result));
        return ExitCode::BadInput;
    }
    if (console.isJson()) {
        tellJson(errors, model.errorCount(), console);
    } else {
        tellLines(errors, model.errorCount(), console);
    }
    return errors.isEmpty() ? ExitCode::Done : ExitCode::WithErrors;
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
