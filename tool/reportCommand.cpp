#include "domain/saveWhole.h"
#include "tool/Console.h"
#include "tool/Interruption.h"
#include "tool/OutputFile.h"
#include "tool/SiteReport.h"
#include "tool/Source.h"
#include "tool/commandList.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

namespace
{

enum class Format
{
    Unknown,
    Html,
    Pdf
};

QString outputOption()
{
    return QStringLiteral("output");
}

Format formatOf(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("html") || suffix == QLatin1String("htm")) {
        return Format::Html;
    }
    return suffix == QLatin1String("pdf") ? Format::Pdf : Format::Unknown;
}

ExitCode interrupted(const QString& path, Console& console)
{
    console.error(QStringLiteral("interrupted; %1 was not written").arg(path));
    return ExitCode::Interrupted;
}

/// To the standard output, as nobody named a file.
ExitCode show(const ReportSource& source, Interruption& interruption, Console& console)
{
    const QString html = siteReport::html(source);
    if (interruption.isRequested()) {
        return interrupted(QStringLiteral("the report"), console);
    }
    if (console.isJson()) {
        console.result(QJsonDocument(QJsonObject{{QStringLiteral("html"), html}}));
    } else {
        console.result(html.trimmed());
    }
    return ExitCode::Done;
}

ExitCode save(const ReportSource& source, const QString& path, Interruption& interruption, Console& console)
{
    const QByteArray document =
        formatOf(path) == Format::Pdf ? siteReport::pdf(source) : siteReport::html(source).toUtf8();
    if (interruption.isRequested()) {
        return interrupted(path, console);
    }
    const QString fault = saveWhole(document, path);
    if (!fault.isEmpty()) {
        console.error(QStringLiteral("%1 can't be written: %2").arg(path, fault));
        return ExitCode::Refused;
    }
    if (console.isJson()) {
        console.result(QJsonDocument(QJsonObject{{QStringLiteral("file"), path}}));
    } else {
        console.note(QStringLiteral("%1 is written").arg(path));
    }
    return ExitCode::Done;
}

ExitCode report(const QCommandLineParser& commandLine, const QStringList& arguments, Console& console)
{
    const bool hasFile = commandLine.isSet(outputOption());
    const QString path = commandLine.value(outputOption());
    if (hasFile && formatOf(path) == Format::Unknown) {
        console.error(QStringLiteral("\"%1\" ends neither in .html nor in .pdf").arg(path));
        return ExitCode::BadInput;
    }
    if (hasFile && !mayWrite(path, commandLine, console)) {
        return ExitCode::Refused;
    }
    Interruption interruption;
    const Source source = sourceOf(arguments.at(0), commandLine, console);
    if (source.configuration == nullptr) {
        return source.exitCode;
    }
    const RelayInfo& model = source.configuration->model;
    const ReportSource reported =
        source.coordinator ? ReportSource{model, {}, source.time, ReportedUnit{source.port, *source.coordinator}}
                           : ReportSource{model, QFileInfo(source.name).fileName(), source.time};
    const ExitCode ended =
        hasFile ? save(reported, path, interruption, console) : show(reported, interruption, console);
    return ended == ExitCode::Done && source.configuration->faults != 0 ? ExitCode::WithErrors : ended;
}

} // namespace

Command reportCommand()
{
    Command command;
    command.name = QStringLiteral("report");
    command.arguments = QStringLiteral("FILE.cfg|unit");
    command.leastArguments = 1;
    command.mostArguments = 1;
    command.summary = QStringLiteral("Makes the document that stays on the site, with each script as a sentence");
    command.example = QStringLiteral("hubn-tool report unit -o site.pdf");
    command.options = {{{QStringLiteral("o"), outputOption()},
                        QStringLiteral("The document, .html or .pdf; without it HTML goes to the standard output."),
                        QStringLiteral("file")},
                       forceOption()};
    command.paints = true;
    command.run = report;
    return command;
}
