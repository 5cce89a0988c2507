#pragma once

#include "tool/Command.h"

#include <QStringList>
#include <QVector>

/// All commands, in the order of the help.
const QVector<Command>& commands();

/// Runs one command line, the program's name first. Needs a QCoreApplication.
ExitCode runTool(const QStringList& arguments, Console& console);
