#pragma once

#include "link/CoordinatorSearch.h"
#include "tool/Configuration.h"
#include "tool/ExitCode.h"
#include "tool/UnitReading.h"

#include <QDateTime>

#include <optional>

class QCommandLineParser;

/// A configuration that a word of the command line names: that of a file, or, by the word "unit", that of the unit.
struct Source
{
    std::unique_ptr<Configuration> configuration; ///< null if it can't be had whole; the console has been told then
    ExitCode exitCode = ExitCode::Done;           ///< why it can't
    QString name;                                 ///< of the file, or "unit"
    QString port;                                 ///< of the unit; empty for a file
    std::optional<CoordinatorInfo> coordinator;   ///< of the unit
    UnitReading reading;                          ///< of the unit
    QDateTime time;                               ///< of the reading, or of the file's last change
};

Source sourceOf(const QString& word, const QCommandLineParser& commandLine, Console& console);
