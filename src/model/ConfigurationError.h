#pragma once

#include <QString>
#include <QVector>

/// Something that is wrong with a line of a configuration file, as a kind with what it is about. It is made into words
/// where somebody reads them.
struct ConfigurationFault
{
    enum Kind
    {
        NoEqualsSign,    ///< neither a section nor a key with its value
        SectionNotAlone, ///< something stands beside the name of a section
        NoKey,           ///< nothing in front of the "="
        NoValue,         ///< nothing behind it
        UnknownKey,
        NoNumber,        ///< the value isn't one, or is -1, which counts as none
        OutOfRange,      ///< the value is below lowest or above highest
        NoTerminalNamed, ///< the key has no index of a terminal
        NoSuchTerminal,  ///< the key's index isn't from lowest to highest
        NoSuchOutput,
        NoSuchScript,
        TooManyTerminals,   ///< more than highest
        PartNoNumber,       ///< a part of a list isn't one
        PartOutOfRange,     ///< a part of a list isn't from lowest to highest
        NoScriptOfNumber,   ///< a part of a list is the number of no script
        TooManyScripts,     ///< more parts than highest
        LinesEndedByLfOnly, ///< several lines that are read as one; counts for nothing
        EndsAtNul,          ///< what stands behind it isn't read; counts for nothing
    };

    Kind kind = UnknownKey;
    int lowest = 0; ///< as the kind says; above highest if there is nothing to choose from
    int highest = 0;
    QString part;  ///< the value, index or part of a list that is wrong; of several parts the first
    int count = 1; ///< what it adds to the number of errors
};

/// All that is wrong with a line. Nothing, nearly always, which costs nothing.
using ConfigurationFaults = QVector<ConfigurationFault>;

/// A line of a configuration file with its faults.
struct ConfigurationError
{
    int line = 1; ///< as an editor counts, from 1 on
    QString text; ///< the line, up to a line feed
    ConfigurationFaults faults;
};

using ConfigurationErrors = QVector<ConfigurationError>;

/// What some faults add to the number of errors.
int countOf(const ConfigurationFaults& faults);
