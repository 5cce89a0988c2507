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

    void fill(RelayInfo& model) const;

    // As the model would write them: without what a unit says differently and means the same.
    QByteArrayList outputRecords() const;
    QByteArrayList scriptRecords() const;
};

/// Reads terminals, outputs and scripts. With `confirmed` each record of an output or script counts only when two
/// readings in a row gave the same. Nothing if interrupted.
std::optional<UnitReading> readUnit(UnitSession& unit, bool confirmed);

/// Saves it as a configuration file that the window loads. Returns what the file gives back differently when it is
/// loaded, in words; nothing if it couldn't be written, which has been told then.
std::optional<QStringList> saveReading(const UnitReading& reading, const QString& path, Console& console);
