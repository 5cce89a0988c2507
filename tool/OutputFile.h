#pragma once

#include <QString>

class Console;
class QCommandLineParser;

/// Whether a file may be written: it doesn't exist, or --force is given. If not, the console has been told. To be asked
/// before anything else is done.
bool mayWrite(const QString& path, const QCommandLineParser& commandLine, Console& console);
