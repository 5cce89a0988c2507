#pragma once

#include <QString>

class Console;
class QCommandLineParser;

/// Whether a file can and may be written: its folder takes it, and it doesn't exist, or --force is given. If not, the
/// console has been told. To be asked before anything else is done.
bool mayWrite(const QString& path, const QCommandLineParser& commandLine, Console& console);
