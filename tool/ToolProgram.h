#pragma once

#include "tool/Command.h"

#include <QStringList>
#include <QVector>

/// All commands, in the order of the help.
const QVector<Command>& commands();

/// Whether a command line names a command that paints. Needs no application: its answer tells which to have.
bool paints(const QStringList& arguments);

/// Runs one command line, the program's name first. Needs a QCoreApplication, or a QGuiApplication if it paints().
ExitCode runTool(const QStringList& arguments, Console& console);
