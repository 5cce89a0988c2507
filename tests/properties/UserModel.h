#pragma once

#include "simulator/UnitState.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <array>
#include <optional>

/// A small account of its own of what a user has in the window, in the file and in the unit: no more than what follows
/// from the user's operations, without anything of the program's model, readers and writers. A plain value.
class UserModel
{
public:
    struct Output
    {
        int number = 0;
        QString name;
        bool startsOn = false;
        bool returns = false;
        QList<int> scripts;
    };

    struct Terminal
    {
        int address = 0;
        QString name;
        bool reported = false; ///< by the unit, at the last reading
        QList<Output> outputs;
    };

    struct Script
    {
        QString name;
        QByteArray record;     ///< as the unit keeps it
        bool disabled = false; ///< its state is "Not active", which isn't the code alone
    };

    struct Configuration
    {
        QList<Terminal> terminals; ///< the head unit first
        QList<Script> scripts;
        QString comment;
    };

    /// What the user has before anything was read, over a unit of which only terminals, outputs and scripts matter.
    explicit UserModel(const UnitState& state);

    // What the window shows.
    Configuration shown;
    std::optional<Configuration> file; ///< as it was saved
    int terminal = 0;                  ///< that is worked on, with its output
    int output = 0;
    bool outputIsSelected = false; ///< and not its terminal, which stands for its first output
    int script = -1;               ///< in the editor, and current in the list of all

    // What the unit remembers.
    QVector<UnitTerminal> reported;
    decltype(UnitState::outputs) unitOutputs;
    decltype(UnitState::scripts) unitScripts;

    const Output& currentOutput() const
    {
        return shown.terminals.at(terminal).outputs.at(output);
    }
    QList<int>& currentScripts()
    {
        return shown.terminals[terminal].outputs[output].scripts;
    }
    bool hasOutput(int ofTerminal, int index) const
    {
        return ofTerminal < shown.terminals.size() && index < shown.terminals.at(ofTerminal).outputs.size();
    }
    bool hasAddress(int address) const;

    /// @name The user's operations
    /// @{
    void selectTerminal(int index);
    void selectOutput(int ofTerminal, int index);
    void addTerminal(int address, const QString& name, const QStringList& outputs);
    void hideTerminal(int index);
    void hideNotReported();
    void addScripts(const QList<int>& numbers);
    void removeScripts(const QList<int>& rows);
    void moveScripts(const QList<int>& rows, int step);
    void chooseScript(int number);
    void chooseState(int row); ///< of the five that no class of terminals has for itself
    void clickChannel(int channel);
    void read();
    void write();
    void load();
    void takeUnit(const UnitState& state); ///< somebody else has configured it
    /// @}

    quint8 byteOfScript(int number, int place) const;
    void setBits(int place, int mask, int bits); ///< of the script in the editor
    void flipBits(int place, int mask);

    /// What a saved file has to say, line by line.
    QStringList linesOfFile() const;

private:
    void show(int number);
    void workOnFirstOutput(int ofTerminal);
    void showOutput();
    void showNewScripts();
    QList<Terminal> terminalsOfUnit() const;

    static Script makeScript(const QByteArray& record);
};

/// Where the fields of a script stand in what the unit keeps of it.
namespace scriptPlace
{
constexpr int mode = 0;
constexpr int duration = 1; ///< above the delay's three bits
constexpr int state = 2;
constexpr int faults = 3;
constexpr int channels = 4; ///< the upper half; below them the switches of the filters
constexpr int days = 5;
constexpr int minutesAndHours[] = {6, 7, 10, 11}; ///< begin, then end
constexpr int daysAndMonths[] = {8, 9, 12, 13};
constexpr int terminalClass = 14; ///< the upper half
constexpr int addresses = 17;

constexpr int byType = 8;
constexpr int byAddress = 4;
constexpr int byDate = 2;
constexpr int byTime = 1;
} // namespace scriptPlace
