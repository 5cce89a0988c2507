#pragma once

#include <QString>

struct ConfigurationFault;

/// What is wrong with a line of a configuration file, for a person who mends it in an editor.
QString faultInWords(const ConfigurationFault& fault);
