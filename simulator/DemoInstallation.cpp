#include "simulator/DemoInstallation.h"

#include "simulator/LogGenerator.h"

#include <array>

namespace
{
enum TerminalClass
{
    System,
    Sensor,
    Executive,
    Interface,
    Analog
};

struct Terminal
{
    quint8 address;
    TerminalClass terminalClass;
    int version;
    int type;
    int characteristic; // its high half is the number of channels
};

constexpr std::array<Terminal, 20> terminals{{
    {1, Sensor, 1, 0x41, 0x10},     // smoke, entrance hall
    {2, Sensor, 1, 0x51, 0x10},     // smoke, office
    {3, Executive, 1, 0x41, 0x20},  // sirens inside and outside
    {4, Sensor, 5, 0x21, 0x10},     // heat, kitchen
    {5, Executive, 1, 0x31, 0x10},  // fault lamp at the guard's desk
    {6, Sensor, 5, 0x11, 0x10},     // motion, office
    {7, Sensor, 5, 0x60, 0x20},     // motion and glass, warehouse
    {8, Executive, 1, 0x50, 0x20},  // ventilation and heating
    {9, Sensor, 3, 0x31, 0x10},     // glass, entrance hall
    {10, Sensor, 4, 0x31, 0x20},    // gates of the warehouse
    {11, Interface, 1, 0x30, 0x10}, // panic button of the guard
    {12, Executive, 2, 0x1A, 0x20}, // exit signs
    {13, Interface, 3, 0x34, 0x10}, // keypad
    {14, Sensor, 1, 0x10, 0x20},    // call points
    {15, Analog, 1, 0x15, 0x23},    // thermometers, cold store
    {16, Analog, 1, 0x20, 0x11},    // water meter
    {17, Executive, 1, 0x21, 0x40}, // gates: two outputs, two loops
    {21, Executive, 3, 0x11, 0x10}, // lock of the main door
    {24, Sensor, 6, 0x31, 0x10},    // smoke, warehouse
    {30, System, 7, 0x1A, 0x1F},    // the unit of the neighbouring building
}};

/// Codes of the scripts' fields.
enum Mode
{
    Off = 0,
    On = 1,
    SlowPulse = 2,
    FastPulse = 3,
    Block = 7
};
enum Duration
{
    Endless = 0,
    Seconds10 = 10,
    Seconds30 = 12,
    Seconds60 = 15,
    Minutes5 = 19,
    Minutes10 = 24
};
enum Delay
{
    NoDelay = 0,
    Delay10Seconds = 2,
    Delay30Seconds = 3
};
enum State
{
    Alarm = 1,
    Short = 2,
    LoopTamper = 3,
    TooHot = 1,
    TooCold = 2,
    ButtonAlarm = 0x01,
    ButtonArm = 0x02,
    ButtonDisarm = 0x04,
    NoState = 0xFF
};
enum TerminalState
{
    Tamper = 0x40,
    MainPower = 0x20,
    BackupPower = 0x10,
    LostContact = 0x08
};
enum Filter
{
    ByType = 0x08,
    ByAddress = 0x04,
    ByDate = 0x02,
    ByTime = 0x01
};

constexpr quint8 firstChannel = 0x10;
constexpr quint8 twoChannels = 0x30;
constexpr quint8 everyDay = 0x7F;
constexpr quint8 workdays = 0x3E;

struct Moment
{
    quint8 minute; // BCD, all four
    quint8 hour;
    quint8 day;
    quint8 month;
};

constexpr Moment none{0, 0, 1, 1};

struct Type
{
    quint8 classAndVersion;
    quint8 type;
    quint8 characteristic;
};

constexpr Type anyType{0xF0, 0, 0};
constexpr Type panicButton{0x31, 0x30, 0x10};
constexpr Type thermometer{0x41, 0x15, 0x23};

struct Script
{
    Mode mode;
    Duration duration;
    Delay delay;
    int state;
    int terminalStates;
    int channels;
    int filters;
    int days;
    Moment begin;
    Moment end;
    Type type;
    quint32 addresses; // bit 0 is address 1
};

constexpr quint32 at(int address)
{
    return 1U << (address - 1);
}

constexpr std::array<Script, 16> scripts{{
    // Fire: sirens, exit signs, doors, ventilation.
    {FastPulse, Minutes5, NoDelay, Alarm, 0, twoChannels, ByAddress, 0, none, none, anyType,
     at(1) | at(2) | at(4) | at(14) | at(24)},
    {On, Endless, NoDelay, Alarm, 0, twoChannels, ByAddress, 0, none, none, anyType,
     at(1) | at(2) | at(4) | at(14) | at(24)},
    {On, Minutes10, Delay10Seconds, Alarm, 0, twoChannels, ByAddress, 0, none, none, anyType, at(1) | at(2) | at(14)},
    {Block, Endless, NoDelay, Alarm, 0, twoChannels, ByAddress, 0, none, none, anyType, at(1) | at(2) | at(4) | at(24)},
    // Faults: the lamp at the guard's desk.
    {SlowPulse, Endless, NoDelay, NoState, MainPower | BackupPower | LostContact, firstChannel, 0, 0, none, none,
     anyType, 0},
    {FastPulse, Endless, NoDelay, Short, 0, twoChannels, 0, 0, none, none, anyType, 0},
    {FastPulse, Endless, NoDelay, LoopTamper, 0, twoChannels, 0, 0, none, none, anyType, 0},
    {On, Seconds30, NoDelay, NoState, Tamper, firstChannel, 0, 0, none, none, anyType, 0},
    // Buttons: panic, arm, disarm.
    {FastPulse, Seconds60, NoDelay, ButtonAlarm, 0, firstChannel, ByType, 0, none, none, panicButton, 0},
    {On, Endless, Delay30Seconds, ButtonArm, 0, firstChannel, ByType, 0, none, none, panicButton, 0},
    {Off, Endless, NoDelay, ButtonDisarm, 0, firstChannel, ByType, 0, none, none, panicButton, 0},
    // Intrusion, at night; the gates, outside the working hours.
    {FastPulse,
     Minutes5,
     Delay10Seconds,
     Alarm,
     0,
     twoChannels,
     ByAddress | ByTime,
     everyDay,
     {0x00, 0x20, 1, 1},
     {0x30, 0x06, 1, 1},
     anyType,
     at(6) | at(7) | at(9)},
    {On,
     Seconds10,
     NoDelay,
     Alarm,
     0,
     twoChannels,
     ByAddress | ByTime,
     workdays,
     {0x30, 0x17, 1, 1},
     {0x45, 0x07, 1, 1},
     anyType,
     at(10)},
    // Cold store: ventilation in summer, heating in winter.
    {On,
     Minutes10,
     NoDelay,
     TooHot,
     0,
     twoChannels,
     ByType | ByDate,
     0,
     {0, 0, 0x01, 0x05},
     {0, 0, 0x30, 0x09},
     thermometer,
     0},
    {On,
     Endless,
     Delay30Seconds,
     TooCold,
     0,
     twoChannels,
     ByType | ByDate,
     0,
     {0, 0, 0x01, 0x10},
     {0, 0, 0x30, 0x04},
     thermometer,
     0},
    {Off, Endless, NoDelay, 0, 0, twoChannels, ByType, 0, none, none, thermometer, 0},
}};

struct Output
{
    int address;
    int number;
    int stateBits;              // 1 on at power-up, 2 back to that state after a script
    std::array<int, 4> scripts; // -1 no more
};

constexpr std::array<Output, 14> outputs{{{0, 0, 2, {0, 8, -1, -1}},
                                          {0, 1, 0, {4, 5, 6, -1}},
                                          {0, 2, 0, {9, 10, -1, -1}},
                                          {0, 7, 1, {7, -1, -1, -1}},
                                          {3, 0, 2, {0, 8, 11, -1}},
                                          {3, 1, 2, {0, 11, -1, -1}},
                                          {5, 0, 0, {4, 5, 6, 7}},
                                          {8, 0, 3, {3, 13, 15, -1}},
                                          {8, 1, 0, {14, 15, -1, -1}},
                                          {12, 0, 1, {1, -1, -1, -1}},
                                          {12, 1, 1, {1, -1, -1, -1}},
                                          {17, 0, 2, {2, 12, -1, -1}},
                                          {17, 1, 2, {2, 12, -1, -1}},
                                          {21, 0, 3, {2, 10, -1, -1}}}};

void appendMoment(QByteArray& record, const Moment& moment)
{
    for (const quint8 byte : {moment.minute, moment.hour, moment.day, moment.month}) {
        record.append(char(byte));
    }
}

QByteArray recordOf(const Script& script)
{
    QByteArray record;
    for (const int byte : {int(script.mode), script.duration << 3 | script.delay, script.state, script.terminalStates,
                           script.channels | script.filters, script.days}) {
        record.append(char(byte));
    }
    appendMoment(record, script.begin);
    appendMoment(record, script.end);
    for (const quint8 byte : {script.type.classAndVersion, script.type.type, script.type.characteristic}) {
        record.append(char(byte));
    }
    for (int shift = 0; shift < 32; shift += 8) {
        record.append(char(script.addresses >> shift & 0xFF));
    }
    return record;
}

QByteArray recordOf(const Output& output)
{
    QByteArray record(1, char(output.stateBits));
    for (const int script : output.scripts) {
        if (script >= 0) {
            record.append(char(script));
        }
    }
    return record;
}

/// The length of an information record tells how many outputs the terminal has.
int recordLength(int channels)
{
    constexpr std::array<int, 5> lengths{7, 7, 8, 12, 16};
    return lengths.at(size_t(channels));
}

} // namespace

UnitState demoInstallation(quint32 seed, int events, const QDateTime& now)
{
    constexpr int maximumChannels = 4;
    constexpr int capacity = 4096;
    UnitState state;
    state.serialNumber = 20417;
    for (const Terminal& terminal : terminals) {
        const int channels = terminal.terminalClass == System ? 1 : qMin(terminal.characteristic >> 4, maximumChannels);
        state.terminals.append(UnitTerminal::make(terminal.address, terminal.terminalClass, terminal.version,
                                                  terminal.type, terminal.characteristic, recordLength(channels)));
    }
    for (size_t number = 0; number < scripts.size(); ++number) {
        state.scripts.at(number) = recordOf(scripts.at(number));
    }
    for (const Output& output : outputs) {
        state.outputs.at(size_t(output.address)).at(size_t(output.number)) = recordOf(output);
    }
    state.log = LogRing(qMax(capacity, events));
    state.log.append(LogGenerator(seed, LogGenerator::Plausible, state.terminals).history(events, now));
    return state;
}
