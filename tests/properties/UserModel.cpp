#include "UserModel.h"

#include "texts/texts.h"

#include <algorithm>
#include <iterator>

namespace
{

constexpr int notActive = 255;
constexpr int firstChannel = 0x10;
constexpr int allChannels = 0xF0;
constexpr int headUnitOutputs = 8;
constexpr int outputsAsked = 2; ///< of each address

constexpr int executiveClass = 2;
constexpr int interfaceClass = 3;
constexpr int analogClass = 4;

QString listText(const QList<int>& numbers)
{
    QString text;
    for (const int number : numbers) {
        text += QStringLiteral("%1; ").arg(number);
    }
    return text.isEmpty() ? QStringLiteral("NONE") : text;
}

QList<int> channelsOf(quint8 bits)
{
    QList<int> channels;
    for (int channel = 0; channel < 4; ++channel) {
        if ((bits & (firstChannel << channel)) != 0) {
            channels.append(channel);
        }
    }
    return channels;
}

int outputsOfRecord(const QByteArray& record)
{
    return std::min(record.size() / 4, 4);
}

/// The state of these classes is a state of their own.
bool hasOwnStates(int terminalClass)
{
    return terminalClass == interfaceClass || terminalClass == analogClass;
}

quint8 byteOf(const QByteArray& bytes, int place)
{
    return quint8(bytes.at(place));
}

/// A script without channels, as one of "Not active" is kept, has its first one when it comes back.
QByteArray withAChannel(QByteArray record)
{
    if ((byteOf(record, scriptPlace::channels) & allChannels) == 0) {
        record[scriptPlace::channels] = char(byteOf(record, scriptPlace::channels) | firstChannel);
    }
    return record;
}

} // namespace

UserModel::UserModel(const UnitState& state) : reported(state.terminals)
{
    takeUnit(state);
}

void UserModel::takeUnit(const UnitState& state)
{
    unitOutputs = state.outputs;
    unitScripts = state.scripts;
}

bool UserModel::hasAddress(int address) const
{
    return std::any_of(shown.terminals.cbegin(), shown.terminals.cend(),
                       [address](const Terminal& each) { return each.address == address; });
}

quint8 UserModel::byteOfScript(int number, int place) const
{
    return byteOf(shown.scripts.at(number).record, place);
}

void UserModel::setBits(int place, int mask, int bits)
{
    QByteArray& record = shown.scripts[script].record;
    record[place] = char((byteOf(record, place) & ~mask) | (bits & mask));
}

void UserModel::flipBits(int place, int mask)
{
    setBits(place, mask, ~byteOfScript(script, place));
}

/// A script that comes into the editor loses its channels if its state is "Not active", and has one at least if not.
void UserModel::show(int number)
{
    script = number;
    if (shown.scripts.at(number).disabled) {
        setBits(scriptPlace::channels, allChannels, 0);
    } else if ((byteOfScript(number, scriptPlace::channels) & allChannels) == 0) {
        setBits(scriptPlace::channels, allChannels, firstChannel);
    }
}

/// The script that was in the editor comes there again, before the first one of the output does.
void UserModel::showOutput()
{
    if (script >= 0) {
        show(script);
    }
    if (!currentOutput().scripts.isEmpty()) {
        show(currentOutput().scripts.first());
    }
}

void UserModel::workOnFirstOutput(int ofTerminal)
{
    terminal = ofTerminal;
    output = 0;
    outputIsSelected = false;
    showOutput();
}

void UserModel::selectTerminal(int index)
{
    if (outputIsSelected || index != terminal) {
        workOnFirstOutput(index);
    }
}

void UserModel::selectOutput(int ofTerminal, int index)
{
    if (outputIsSelected && ofTerminal == terminal && index == output) {
        return;
    }
    terminal = ofTerminal;
    output = index;
    outputIsSelected = true;
    showOutput();
}

void UserModel::addTerminal(int address, const QString& name, const QStringList& outputs)
{
    Terminal added;
    added.address = address;
    added.name = name;
    for (const QString& nameOfOutput : outputs) {
        Output next;
        next.number = added.outputs.size();
        next.name = nameOfOutput;
        added.outputs.append(next);
    }
    int place = 0;
    while (place < shown.terminals.size() && shown.terminals.at(place).address < address) {
        ++place;
    }
    shown.terminals.insert(place, added);
    workOnFirstOutput(place);
}

void UserModel::hideTerminal(int index)
{
    if (index == 0) {
        return; // the head unit stays, and nothing happens
    }
    shown.terminals.removeAt(index);
    workOnFirstOutput(index <= terminal ? terminal - 1 : terminal);
}

void UserModel::hideNotReported()
{
    int kept = terminal;
    while (kept > 0 && !shown.terminals.at(kept).reported) {
        --kept;
    }
    const int address = shown.terminals.at(kept).address;
    QList<Terminal> left{shown.terminals.first()};
    std::copy_if(shown.terminals.cbegin() + 1, shown.terminals.cend(), std::back_inserter(left),
                 [](const Terminal& each) { return each.reported; });
    shown.terminals = left;
    const auto place =
        std::find_if(left.cbegin(), left.cend(), [address](const Terminal& each) { return each.address == address; });
    workOnFirstOutput(int(place - left.cbegin()));
}

void UserModel::addScripts(const QList<int>& numbers)
{
    show(numbers.first());
    for (const int number : numbers) {
        if (!currentScripts().contains(number)) {
            currentScripts().append(number);
        }
    }
}

void UserModel::removeScripts(const QList<int>& rows)
{
    show(currentScripts().at(rows.first()));
    for (int i = rows.size() - 1; i >= 0; --i) {
        currentScripts().removeAt(rows.at(i));
    }
}

/// Those that are to move go one place, one after the other, unless one of them is in the way.
void UserModel::moveScripts(const QList<int>& rows, int step)
{
    QList<int>& scripts = currentScripts();
    show(scripts.at(rows.first()));
    QList<int> settled;
    for (int i = 0; i < rows.size(); ++i) {
        const int row = step < 0 ? rows.at(i) : rows.at(rows.size() - 1 - i);
        const int goal = row + step;
        if (goal < 0 || goal >= scripts.size() || settled.contains(goal)) {
            settled.append(row);
        } else {
            scripts.swapItemsAt(row, goal);
            settled.append(goal);
        }
    }
}

void UserModel::chooseScript(int number)
{
    if (number != script) {
        show(number);
    }
}

void UserModel::chooseState(int row)
{
    Script& edited = shown.scripts[script];
    edited.disabled = row == 0;
    edited.record[scriptPlace::state] = char(row == 0 ? notActive : row - 1);
    const int filteredClass = byteOf(edited.record, scriptPlace::terminalClass) >> 4;
    if (row > 0 && hasOwnStates(filteredClass)) {
        setBits(scriptPlace::channels, scriptPlace::byType, 0); // that class never reports such a state
    }
    show(script);
}

void UserModel::clickChannel(int channel)
{
    const int changed = byteOfScript(script, scriptPlace::channels) ^ (firstChannel << channel);
    if (!shown.scripts.at(script).disabled && (changed & allChannels) != 0) {
        setBits(scriptPlace::channels, allChannels, changed);
    }
}

UserModel::Script UserModel::makeScript(const QByteArray& record)
{
    Script made;
    made.name = texts::defaultScriptName();
    made.record = withAChannel(record);
    const bool filtersByType = (byteOf(record, scriptPlace::channels) & scriptPlace::byType) != 0;
    made.disabled = byteOf(record, scriptPlace::state) == notActive &&
                    !(filtersByType && hasOwnStates(byteOf(record, scriptPlace::terminalClass) >> 4));
    return made;
}

/// The head unit and the executive terminals that the unit reports, with what they have before an output is read.
QList<UserModel::Terminal> UserModel::terminalsOfUnit() const
{
    const auto makeTerminal = [](int address, const QString& name, int outputs, const QString& nameOfOutput) {
        Terminal made;
        made.address = address;
        made.name = name;
        made.reported = true;
        for (int number = 0; number < outputs; ++number) {
            Output next;
            next.number = number;
            next.name = nameOfOutput;
            made.outputs.append(next);
        }
        return made;
    };
    QList<Terminal> made{makeTerminal(0, texts::headUnitName(), headUnitOutputs, texts::headUnitOutputName())};
    for (const UnitTerminal& each : reported) {
        if (each.channelClass == executiveClass) {
            const QString model = QString::fromLatin1(each.infoRecord.mid(1, 3).toHex(' '));
            const int outputs = std::max(outputsAsked, outputsOfRecord(each.infoRecord));
            made.append(makeTerminal(each.address, model, outputs, texts::defaultOutputName()));
        }
    }
    return made;
}

void UserModel::read()
{
    QList<Terminal> made;
    const QList<Terminal> known = terminalsOfUnit();
    for (int address = 0; address < UnitState::addressCount; ++address) {
        const auto found = std::find_if(known.cbegin(), known.cend(),
                                        [address](const Terminal& each) { return each.address == address; });
        Terminal next = found != known.cend() ? *found : Terminal();
        if (found == known.cend()) {
            next.address = address;
            next.name = texts::defaultTerminalName();
            next.outputs = {{0, texts::defaultOutputName(), false, false, {}},
                            {1, texts::defaultOutputName(), false, false, {}}};
        }
        bool isIdle = true;
        for (int number = 0; number < (address == 0 ? headUnitOutputs : outputsAsked); ++number) {
            const QByteArray& record = unitOutputs.at(std::size_t(address)).at(std::size_t(number));
            Output& read = next.outputs[number];
            read.startsOn = (byteOf(record, 0) & 1) != 0;
            read.returns = (byteOf(record, 0) & 2) != 0;
            for (int i = 1; i < record.size(); ++i) {
                read.scripts.append(byteOf(record, i));
            }
            isIdle = isIdle && read.scripts.isEmpty();
        }
        if (next.reported || !isIdle) {
            made.append(next);
        }
    }
    shown.terminals = made;
    terminal = 0;
    output = 0;
    outputIsSelected = false;
    shown.scripts.clear();
    for (const QByteArray& record : unitScripts) {
        shown.scripts.append(makeScript(record));
    }
    showNewScripts();
}

/// The first script of the output, or else of all, comes into the editor.
void UserModel::showNewScripts()
{
    show(currentOutput().scripts.isEmpty() ? 0 : currentOutput().scripts.first());
}

void UserModel::write()
{
    for (const Terminal& each : std::as_const(shown.terminals)) {
        for (const Output& written : each.outputs) {
            QByteArray record(1, char((written.startsOn ? 1 : 0) + (written.returns ? 2 : 0)));
            for (const int number : written.scripts) {
                record.append(char(number));
            }
            unitOutputs.at(std::size_t(each.address)).at(std::size_t(written.number)) = record;
        }
    }
    for (int number = 0; number < UnitState::scriptCount; ++number) {
        unitScripts.at(std::size_t(number)) = shown.scripts.at(number).record;
    }
}

void UserModel::load()
{
    shown = *file;
    for (Terminal& each : shown.terminals) {
        each.reported = false;
    }
    for (Script& each : shown.scripts) {
        each.record = withAChannel(each.record);
    }
    // Each line of the comment ends with a line feed from now on, and empty ones are gone.
    QString comment;
    const QStringList lines = shown.comment.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        comment += line + QLatin1Char('\n');
    }
    shown.comment = comment;
    workOnFirstOutput(0);
    showNewScripts();
}

QStringList UserModel::linesOfFile() const
{
    QStringList lines{QStringLiteral("NumberOfDevices=%1").arg(shown.terminals.size())};
    for (int i = 0; i < shown.terminals.size(); ++i) {
        const Terminal& each = shown.terminals.at(i);
        const QString prefix = QStringLiteral("ExecutiveTerminal[%1].").arg(i);
        lines.append(prefix + QLatin1String("Name=") + each.name);
        lines.append(prefix + QStringLiteral("Address=%1").arg(each.address));
        lines.append(prefix + QStringLiteral("NumberOfOutputs=%1").arg(each.outputs.size()));
        for (int j = 0; j < each.outputs.size(); ++j) {
            const Output& saved = each.outputs.at(j);
            const QString place = prefix + QStringLiteral("Output[%1].").arg(j);
            lines.append(place + QLatin1String("Name=") + saved.name);
            lines.append(place + QStringLiteral("Number=%1").arg(saved.number));
            lines.append(place + QStringLiteral("ReturnStartState=%1").arg(saved.returns ? 1 : 0));
            lines.append(place + QStringLiteral("StartState=%1").arg(saved.startsOn ? 1 : 0));
            lines.append(place + QLatin1String("ActivatedScripts=") + listText(saved.scripts));
        }
    }
    for (int i = 0; i < shown.scripts.size(); ++i) {
        const QString prefix = QStringLiteral("Script[%1].").arg(i);
        lines.append(prefix + QLatin1String("Name=") + shown.scripts.at(i).name);
        lines.append(prefix + QStringLiteral("Number=%1").arg(i));
        lines.append(prefix + QStringLiteral("StateChannelValue=%1").arg(byteOfScript(i, scriptPlace::state)));
        lines.append(prefix + QLatin1String("NumberChannels=") +
                     listText(channelsOf(byteOfScript(i, scriptPlace::channels))));
    }
    return lines;
}
