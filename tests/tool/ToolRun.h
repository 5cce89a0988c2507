#pragma once

#include "tool/Console.h"
#include "tool/ToolProgram.h"

#include <QBuffer>
#include <QJsonDocument>

/// One command line of the tool, run in this process, and what came of it.
struct ToolRun
{
    explicit ToolRun(const QStringList& arguments, bool live = false, QByteArray input = {}, bool isTyped = false)
    {
        QBuffer inputBuffer(&input);
        inputBuffer.open(QIODevice::ReadOnly);
        QBuffer resultBuffer;
        QBuffer errorBuffer;
        resultBuffer.open(QIODevice::WriteOnly);
        errorBuffer.open(QIODevice::WriteOnly);
        {
            Console console(resultBuffer, errorBuffer, live);
            console.setInput(inputBuffer, isTyped);
            exitCode = runTool(QStringList{QStringLiteral("hubn-tool")} + arguments, console);
        }
        results = QString::fromUtf8(resultBuffer.data());
        errors = QString::fromUtf8(errorBuffer.data());
    }

    QJsonDocument json() const
    {
        return QJsonDocument::fromJson(results.toUtf8());
    }

    ExitCode exitCode = ExitCode::Done;
    QString results; ///< standard output
    QString errors;  ///< standard error
};
