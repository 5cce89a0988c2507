#pragma once

#include "model/Device.h"
#include "model/RelayInfo.h"

#include <memory>

class Console;

/// A configuration with the catalogue of models that it names terminals by: the one in the working directory, or the
/// built-in one.
class Configuration
{
public:
    Configuration();

    const Device catalogue;
    RelayInfo model;
    int faults = 0; ///< of the file; more than the lines that the window counts
};

/// Reads a configuration file. Nothing if it can't be read, which the console has been told then. What is wrong with it
/// is told and left out, as the window does.
std::unique_ptr<Configuration> loadConfiguration(const QString& path, Console& console);

/// Why RelayInfo didn't read a file.
QString whyUnread(const QString& path, int fileResult);
