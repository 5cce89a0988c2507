#pragma once

#include "model/ConfigurationKeys.h"

#include <QString>

/// Reads the text of a configuration file into a model whose groups, the head unit alone, and scripts were reset
/// before. Returns the number of errors. With `told` it appends each line that is wrong, with what is wrong with it.
///
/// It never stops at a bad line: it counts an error and leaves what the line would have changed. It takes time in
/// proportion to the length of the text, and bounds what a few bytes can make of it: no more than 4096 groups, and 256
/// outputs to a group and scripts to an output, as their numbers have eight bits.
int readConfiguration(const QString& text, ConfigurationModel& model, ConfigurationErrors* told = nullptr);
