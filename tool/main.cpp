#include "link/endProcess.h"
#include "tool/Console.h"
#include "tool/StandardInput.h"
#include "tool/ToolProgram.h"

#include <QFile>
#include <QGuiApplication>
#include <QLoggingCategory>

#include <cstdio>
#include <memory>

#include <unistd.h>

namespace
{

/// One with fonts, but without a display, for commands that paint; for all others one that starts faster.
std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments.append(QString::fromLocal8Bit(argv[i]));
    }
    if (!paints(arguments)) {
        return std::make_unique<QCoreApplication>(argc, argv);
    }
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qunsetenv("QT_QPA_PLATFORMTHEME"); // a desktop's theme may want a display
    }
    return std::make_unique<QGuiApplication>(argc, argv);
}

} // namespace

int main(int argc, char* argv[])
{
    ExitCode exitCode = ExitCode::Done;
    {
        // What Qt has to say of missing surroundings (no runtime folder, no theme) helps nobody here.
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false\ndefault.warning=false"));
        const auto application = makeApplication(argc, argv);
        QCoreApplication::setApplicationName(QStringLiteral("hubn-tool"));
        QCoreApplication::setApplicationVersion(QStringLiteral("2.1"));

        QFile results;
        QFile errors;
        if (!results.open(stdout, QIODevice::WriteOnly) || !errors.open(stderr, QIODevice::WriteOnly)) {
            return int(ExitCode::Refused);
        }
        Console console(results, errors, isatty(STDERR_FILENO) != 0);
        StandardInput input;
        console.setInput(input, isatty(STDIN_FILENO) != 0);
        exitCode = runTool(QCoreApplication::arguments(), console);
        if (!console.isWhole() || !results.flush()) {
            console.error(QStringLiteral("the results could not be written"));
            exitCode = exitCode == ExitCode::Done ? ExitCode::WithErrors : exitCode;
        }
    }
    endProcess(int(exitCode));
}
