#pragma once

#include "fuzz/fuzz.h"
#include "tool/Console.h"
#include "tool/ToolProgram.h"

#include <QBuffer>
#include <QByteArray>
#include <QCoreApplication>
#include <QStringList>

namespace fuzz
{

/// For LLVMFuzzerInitialize(): commands need an application.
inline int startTool(int* count, char*** arguments)
{
    static const QCoreApplication application(*count, *arguments);
    silenceDebugLines();
    return 0;
}

struct ToolOutput
{
    ExitCode exitCode = ExitCode::Done;
    QByteArray results;
    QByteArray errors;
};

/// Runs a command of the tool within the process.
inline ToolOutput runTool(const QStringList& arguments)
{
    ToolOutput output;
    QBuffer results(&output.results);
    QBuffer errors(&output.errors);
    demand(results.open(QIODevice::WriteOnly) && errors.open(QIODevice::WriteOnly), QStringLiteral("the buffers"));
    {
        Console console(results, errors, false);
        output.exitCode = ::runTool(QStringList{QStringLiteral("hubn-tool")} + arguments, console);
    }
    return output;
}

} // namespace fuzz
