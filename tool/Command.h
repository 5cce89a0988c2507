#pragma once

#include "tool/ExitCode.h"

#include <QCommandLineOption>
#include <QList>
#include <QString>
#include <QVector>

class Console;

class QCommandLineParser;

/// One command of the tool. Each has a file of its own; commands() in ToolProgram.cpp lists them all.
struct Command
{
    QString name;
    QString arguments; ///< as the help shows them: "FILE.cfg"
    int leastArguments = 0;
    int mostArguments = 0;
    QString summary;                   ///< one line
    QString example;                   ///< a command line
    QList<QCommandLineOption> options; ///< beside those that all commands have
    bool paints = false;               ///< needs fonts, and so a QGuiApplication

    /// The parser has read the command line; its positional arguments begin behind the command's name.
    ExitCode (*run)(const QCommandLineParser& commandLine, const QStringList& arguments, Console& console) = nullptr;
};

// Options that several commands have.
QCommandLineOption forceOption();     ///< --force: files that exist may be overwritten
QCommandLineOption confirmedOption(); ///< --yes: nobody is asked
