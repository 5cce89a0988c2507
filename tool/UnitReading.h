#pragma once

#include <QByteArrayList>
#include <QStringList>

#include <optional>

class Console;
class RelayInfo;
class UnitSession;

/// What a unit holds, as it gave it, and what it didn't give, in words.
struct UnitReading
{
    QByteArrayList terminals;
    QByteArrayList outputs;
    QByteArrayList scripts;
    QStringList failures;

    int terminalCount() const; ///< those of which something was told

    void fill(RelayInfo& model) const;

    /// Whether the unit was asked for an output and said something of it. Of a terminal it tells two outputs.
    bool hasOutput(int terminal, int number) const;

    bool hasScript(int number) const; ///< the same of a script

    // As the model would write them: without what a unit says differently and means the same.
    QByteArrayList outputRecords() const;
    QByteArrayList scriptRecords() const;
};

/// Reads terminals, outputs and scripts. With `confirmed` each record of an output or script counts only when two
/// readings in a row gave the same. Nothing if interrupted.
std::optional<UnitReading> readUnit(UnitSession& unit, bool confirmed);

/// Tells the console what a reading didn't give. Of a unit that was lost in the middle, no more than the first steps.
void tellFailures(const UnitReading& reading, Console& console);

/// Takes the outputs that the unit told nothing of out of a model, and names them.
QStringList takeUnread(RelayInfo& model, const UnitReading& reading);

/// What a configuration file of a model gives back differently when it is loaded, in words.
QStringList lostInAFile(const RelayInfo& read);

/// What a configuration file holds of a reading.
struct SavedReading
{
    int terminals = 0; ///< with outputs, the head unit left out
    int outputs = 0;
    QStringList untold; ///< outputs of which the unit told nothing: in the file as if nobody had set them
};

/// Saves a model that was filled from a reading as a configuration file that the window loads, and takes the untold
/// outputs out of it. Nothing if the file couldn't be written, which has been told then.
std::optional<SavedReading> saveReading(RelayInfo& read, const UnitReading& reading, const QString& path,
                                        Console& console);
