#include "Operation.h"

#include "properties.h"
#include "support/RandomUnit.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace
{

// ---- What operations draw --------------------------------------------------------------------------------------

/// From the whole range: by itself rapidcheck stays near the lower end until the cases grow.
int below(int limit)
{
    RC_PRE(limit > 0);
    return *rc::gen::resize(rc::kNominalSize, rc::gen::inRange(0, limit));
}

QList<int> rowsOf(int count)
{
    std::set<int> chosen;
    for (int left = 1 + below(4); left > 0; --left) {
        chosen.insert(below(count));
    }
    return {chosen.cbegin(), chosen.cend()};
}

/// Something that can be typed, without blanks at its ends.
QString anyName()
{
    static const std::string letters = "aZ7-&(%1 .\"'/";
    std::string typed = *rc::gen::container<std::string>(rc::gen::elementOf(letters));
    typed.resize(std::min<std::size_t>(typed.size(), 8));
    return QLatin1Char('n') + QString::fromStdString(typed) + QLatin1Char('m');
}

void nothing(const UserModel& /*model*/, Drawn& /*drawn*/)
{
}

void aTerminal(const UserModel& model, Drawn& drawn)
{
    drawn.terminal = below(model.shown.terminals.size());
}

void anOutput(const UserModel& model, Drawn& drawn)
{
    aTerminal(model, drawn);
    drawn.output = below(model.shown.terminals.at(drawn.terminal).outputs.size());
    drawn.value = below(2);
}

void aName(const UserModel& /*model*/, Drawn& drawn)
{
    drawn.names.append(anyName());
}

template <void (*Draw)(const UserModel&, Drawn&)>
void withAName(const UserModel& model, Drawn& drawn)
{
    Draw(model, drawn);
    aName(model, drawn);
}

void activeRows(const UserModel& model, Drawn& drawn)
{
    drawn.rows = rowsOf(model.currentOutput().scripts.size());
    drawn.value = below(2);
}

template <int Limit>
void aNumber(const UserModel& /*model*/, Drawn& drawn)
{
    drawn.number = below(Limit);
}

bool always(const UserModel& /*model*/, const Drawn& /*drawn*/)
{
    return true;
}

/// For operations on a terminal alone as well: it has a first output at least.
bool isThere(const UserModel& model, const Drawn& drawn)
{
    return drawn.terminal < model.shown.terminals.size() &&
           drawn.output < model.shown.terminals.at(drawn.terminal).outputs.size();
}

bool areActive(const UserModel& model, const Drawn& drawn)
{
    return drawn.rows.last() < model.currentOutput().scripts.size();
}

UserModel::Output& outputOf(UserModel& model, const Drawn& drawn)
{
    return model.shown.terminals[drawn.terminal].outputs[drawn.output];
}

// ---- Units -----------------------------------------------------------------------------------------------------

constexpr int unitCount = 1000; ///< so many of those that RandomUnit draws

UnitState configuredUnit(quint32 seed)
{
    UnitState state = RandomUnit(seed, RandomUnit::OfFiles).draw();
    state.terminals = WindowUser::terminals();
    // More terminals that nobody reports would only take time.
    constexpr std::size_t addressesInUse = 12;
    for (std::size_t address = addressesInUse; address < state.outputs.size(); ++address) {
        state.outputs.at(address).fill(UnitState::emptyOutput());
    }
    return state;
}

// ---- What stands in the editor ---------------------------------------------------------------------------------

struct EditorList
{
    const char* combo;
    int rows;
};
constexpr EditorList editorLists[] = {
    {"comboModeWorkRelay", 5}, {"comboDelay", 8}, {"comboDuration", 32}, {"comboStateChannel", 5}};

void chooseInEditor(UserModel& model, const Drawn& drawn)
{
    const int row = drawn.value;
    switch (drawn.number) {
    case 0:
        model.setBits(scriptPlace::mode, 0xFF, row == 4 ? 7 : row);
        break;
    case 1:
        model.setBits(scriptPlace::duration, 0x07, row);
        break;
    case 2:
        model.setBits(scriptPlace::duration, 0xF8, row << 3);
        break;
    default:
        model.chooseState(row);
    }
}

struct EditorSwitch
{
    const char* button;
    int place;
    int mask;
};
constexpr EditorSwitch editorSwitches[] = {
    {"checkBoxMon", scriptPlace::days, 0x02},
    {"checkBoxTue", scriptPlace::days, 0x04},
    {"checkBoxWed", scriptPlace::days, 0x08},
    {"checkBoxThu", scriptPlace::days, 0x10},
    {"checkBoxFri", scriptPlace::days, 0x20},
    {"checkBoxSat", scriptPlace::days, 0x40},
    {"checkBoxSun", scriptPlace::days, 0x01},
    {"checkBoxAddress", scriptPlace::channels, scriptPlace::byAddress},
    {"checkBoxTime", scriptPlace::channels, scriptPlace::byTime},
    {"checkBoxDate", scriptPlace::channels, scriptPlace::byDate},
};
constexpr int editorSwitchCount = int(std::size(editorSwitches));

constexpr int addressCount = 32; ///< the head unit is the last

QString addressButton(int address)
{
    return address == addressCount - 1 ? QStringLiteral("ButtonAddressHUBN")
                                       : QStringLiteral("ButtonAddress%1").arg(address + 1);
}

/// A user can't reach what belongs to a filter that is off.
template <int Filter>
bool isFiltered(const UserModel& model, const Drawn& /*drawn*/)
{
    return (model.byteOfScript(model.script, scriptPlace::channels) & Filter) != 0;
}

// ---- All kinds -------------------------------------------------------------------------------------------------

constexpr OperationKind treeKinds[] = {
    {1, "select terminal", aTerminal, isThere, [](UserModel& m, const Drawn& d) { m.selectTerminal(d.terminal); },
     [](WindowUser& u, const Drawn& d) { u.selectTerminal(d.terminal); }, nullptr},
    {3, "select output", anOutput, isThere, [](UserModel& m, const Drawn& d) { m.selectOutput(d.terminal, d.output); },
     [](WindowUser& u, const Drawn& d) { u.selectOutput(d.terminal, d.output); }, nullptr},
    {1, "set the start state", anOutput, isThere,
     [](UserModel& m, const Drawn& d) { outputOf(m, d).startsOn = d.value != 0; },
     [](WindowUser& u, const Drawn& d) { u.setStartState(d.terminal, d.output, d.value != 0); }, nullptr},
    {1, "click the return", anOutput, isThere,
     [](UserModel& m, const Drawn& d) { outputOf(m, d).returns = !outputOf(m, d).returns; },
     [](WindowUser& u, const Drawn& d) { u.clickReturn(d.terminal, d.output); }, nullptr},
    {1, "rename output", withAName<anOutput>, isThere,
     [](UserModel& m, const Drawn& d) {
         m.selectOutput(d.terminal, d.output);
         outputOf(m, d).name = d.names.first();
     },
     [](WindowUser& u, const Drawn& d) { u.renameOutput(d.terminal, d.output, d.names.first()); }, nullptr},
    {1, "rename terminal", withAName<aTerminal>, isThere,
     [](UserModel& m, const Drawn& d) {
         m.selectTerminal(d.terminal);
         m.shown.terminals[d.terminal].name = d.names.first();
     },
     [](WindowUser& u, const Drawn& d) { u.renameTerminal(d.terminal, d.names.first()); }, nullptr},
    {1, "add terminal with outputs",
     [](const UserModel& m, Drawn& d) {
         d.number = 1 + below(UnitState::addressCount - 1);
         for (int left = 2 + below(2); left > 0; --left) {
             aName(m, d);
         }
     },
     [](const UserModel& m, const Drawn& d) { return !m.hasAddress(d.number); },
     [](UserModel& m, const Drawn& d) { m.addTerminal(d.number, d.names.first(), d.names.mid(1)); },
     [](WindowUser& u, const Drawn& d) { u.addTerminal(d.number, d.names.first(), d.names.mid(1)); }, nullptr},
    {1, "hide terminal", aTerminal, isThere, [](UserModel& m, const Drawn& d) { m.hideTerminal(d.terminal); },
     [](WindowUser& u, const Drawn& d) { u.hideTerminal(d.terminal); }, nullptr},
    {1, "hide disconnected terminals", nothing, always, [](UserModel& m, const Drawn&) { m.hideNotReported(); },
     [](WindowUser& u, const Drawn&) { u.hideNotReported(); }, nullptr},
};

constexpr OperationKind scriptKinds[] = {
    {2, "choose script", aNumber<UnitState::scriptCount>, always,
     [](UserModel& m, const Drawn& d) { m.chooseScript(d.number); },
     [](WindowUser& u, const Drawn& d) { u.chooseScript(d.number); }, nullptr},
    {3, "add scripts", [](const UserModel&, Drawn& d) { d.rows = rowsOf(UnitState::scriptCount); }, always,
     [](UserModel& m, const Drawn& d) { m.addScripts(d.rows); },
     [](WindowUser& u, const Drawn& d) { u.addScripts(d.rows); }, nullptr},
    {1, "remove scripts", activeRows, areActive, [](UserModel& m, const Drawn& d) { m.removeScripts(d.rows); },
     [](WindowUser& u, const Drawn& d) { u.removeScripts(d.rows); }, nullptr},
    {2, "move scripts", activeRows, areActive,
     [](UserModel& m, const Drawn& d) { m.moveScripts(d.rows, d.value == 0 ? -1 : 1); },
     [](WindowUser& u, const Drawn& d) { u.moveScripts(d.rows, d.value == 0 ? -1 : 1); }, nullptr},
    {1, "rename script", aName, always,
     [](UserModel& m, const Drawn& d) { m.shown.scripts[m.script].name = d.names.first(); },
     [](WindowUser& u, const Drawn& d) { u.typeNameOfScript(d.names.first()); }, nullptr},
    {2, "choose in the editor's list",
     [](const UserModel&, Drawn& d) {
         d.number = below(int(std::size(editorLists)));
         d.value = below(editorLists[d.number].rows);
     },
     always, chooseInEditor, [](WindowUser& u, const Drawn& d) { u.chooseRow(editorLists[d.number].combo, d.value); },
     nullptr},
    {1, "click channel", aNumber<4>, always, [](UserModel& m, const Drawn& d) { m.clickChannel(d.number); },
     [](WindowUser& u, const Drawn& d) { u.click(QStringLiteral("buttonChannel%1").arg(d.number + 1)); }, nullptr},
    {2, "click switch", aNumber<editorSwitchCount>, always,
     [](UserModel& m, const Drawn& d) { m.flipBits(editorSwitches[d.number].place, editorSwitches[d.number].mask); },
     [](WindowUser& u, const Drawn& d) { u.click(QLatin1String(editorSwitches[d.number].button)); }, nullptr},
    {1, "click address", aNumber<addressCount>, isFiltered<scriptPlace::byAddress>,
     [](UserModel& m, const Drawn& d) { m.flipBits(scriptPlace::addresses + d.number / 8, 1 << d.number % 8); },
     [](WindowUser& u, const Drawn& d) { u.click(addressButton(d.number)); }, nullptr},
    {1, "click fault", aNumber<6>, always,
     [](UserModel& m, const Drawn& d) { m.flipBits(scriptPlace::faults, 0x40 >> d.number); },
     [](WindowUser& u, const Drawn& d) { u.clickFault(d.number); }, nullptr},
    {1, "set the time's field",
     [](const UserModel&, Drawn& d) {
         d.number = below(4);
         d.value = below(d.number % 2 == 0 ? 60 : 24);
     },
     isFiltered<scriptPlace::byTime>,
     [](UserModel& m, const Drawn& d) {
         m.setBits(scriptPlace::minutesAndHours[d.number], 0xFF, d.value / 10 * 16 + d.value % 10);
     },
     [](WindowUser& u, const Drawn& d) {
         u.setTime(d.number < 2 ? "F_TimeBegin" : "F_TimeEnd", d.number % 2 == 0 ? "spinBoxMinute" : "spinBoxHour",
                   d.value);
     },
     nullptr},
};

constexpr OperationKind unitKinds[] = {
    {1, "write a comment",
     [](const UserModel& m, Drawn& d) {
         for (int left = 1 + below(3); left > 0; --left) {
             aName(m, d);
         }
     },
     always, [](UserModel& m, const Drawn& d) { m.shown.comment = d.names.join(QLatin1String("\n\n")); },
     [](WindowUser& u, const Drawn& d) { u.writeComment(d.names.join(QLatin1String("\n\n"))); }, nullptr},
    {1, "save", nothing, always, [](UserModel& m, const Drawn&) { m.file = m.shown; },
     [](WindowUser& u, const Drawn&) { u.save(); }, &WindowUser::faultOfFile},
    {1, "load", nothing, [](const UserModel& m, const Drawn&) { return m.file.has_value(); },
     [](UserModel& m, const Drawn&) { m.load(); }, [](WindowUser& u, const Drawn&) { u.load(); }, nullptr},
    {1, "read", nothing, always, [](UserModel& m, const Drawn&) { m.read(); },
     [](WindowUser& u, const Drawn&) { u.read(); }, nullptr},
    {1, "write", nothing, always, [](UserModel& m, const Drawn&) { m.write(); },
     [](WindowUser& u, const Drawn&) { u.write(); }, &WindowUser::faultOfUnit},
    {1, "somebody else configures the unit by seed", aNumber<unitCount>, always,
     [](UserModel& m, const Drawn& d) { m.takeUnit(configuredUnit(quint32(d.number))); },
     [](WindowUser& u, const Drawn& d) { u.changeUnit(configuredUnit(quint32(d.number))); }, nullptr},
};

/// Each kind as often as its weight says.
std::vector<const OperationKind*> weighedKinds()
{
    std::vector<const OperationKind*> all;
    const auto add = [&all](const auto& kinds) {
        for (const OperationKind& kind : kinds) {
            all.insert(all.end(), std::size_t(kind.weight), &kind);
        }
    };
    add(treeKinds);
    add(scriptKinds);
    add(unitKinds);
    return all;
}

} // namespace

Operation::Operation(const OperationKind& ofKind, const UserModel& model) : kind(ofKind)
{
    kind.draw(model, drawn);
}

void Operation::checkPreconditions(const UserModel& model) const
{
    RC_PRE(kind.isPossible(model, drawn));
}

void Operation::apply(UserModel& model) const
{
    kind.apply(model, drawn);
}

void Operation::run(const UserModel& before, WindowUser& user) const
{
    kind.perform(user, drawn);
    const UserModel after = nextState(before);
    properties::demandNone(user.faultOfWindow(after));
    if (kind.faultAfter != nullptr) {
        properties::demandNone((user.*kind.faultAfter)(after));
    }
}

/// Numbers that aren't told are 0.
void Operation::show(std::ostream& stream) const
{
    stream << kind.words;
    const auto tell = [&stream](const char* what, int number) {
        if (number != 0) {
            stream << ", " << what << ' ' << number;
        }
    };
    tell("terminal", drawn.terminal);
    tell("output", drawn.output);
    tell("number", drawn.number);
    tell("value", drawn.value);
    for (const int row : drawn.rows) {
        stream << ", row " << row;
    }
    for (const QString& name : drawn.names) {
        stream << ", '" << name.toStdString() << '\'';
    }
}

rc::Gen<std::shared_ptr<const Operation::CommandType>> anyOperation(const UserModel& model)
{
    static const std::vector<const OperationKind*> kinds = weighedKinds();
    return rc::gen::mapcat(rc::gen::elementOf(kinds), [model](const OperationKind* kind) {
        return rc::gen::exec([model, kind]() -> std::shared_ptr<const Operation::CommandType> {
            return std::make_shared<Operation>(*kind, model);
        });
    });
}

UnitState drawnUnit()
{
    return configuredUnit(quint32(below(unitCount)));
}
