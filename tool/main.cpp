#include "link/endProcess.h"
#include "tool/Console.h"
#include "tool/ToolProgram.h"

#include <QCoreApplication>
#include <QFile>
#include <QLoggingCategory>

#include <cstdio>

#include <unistd.h>

int main(int argc, char* argv[])
{
    ExitCode exitCode = ExitCode::Done;
    {
        const QCoreApplication application(argc, argv);
        QCoreApplication::setApplicationName(QStringLiteral("hubn-tool"));
        QCoreApplication::setApplicationVersion(QStringLiteral("2.1"));
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));

        QFile results;
        QFile errors;
        if (!results.open(stdout, QIODevice::WriteOnly) || !errors.open(stderr, QIODevice::WriteOnly)) {
            return int(ExitCode::Refused);
        }
        Console console(results, errors, isatty(STDERR_FILENO) != 0);
        QFile input;
        if (input.open(stdin, QIODevice::ReadOnly)) {
            console.setInput(input, isatty(STDIN_FILENO) != 0);
        }
        exitCode = runTool(QCoreApplication::arguments(), console);
    }
    endProcess(int(exitCode));
}
