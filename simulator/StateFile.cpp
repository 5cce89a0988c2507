#include "simulator/StateFile.h"

#include <QFile>
#include <QHash>
#include <QSaveFile>
#include <QStringList>

#include <functional>

namespace
{
constexpr int firmwareBytesOfLine = 64;
const char* const noBytes = "-";

const char* const preface = R"(# A simulated head unit HUBN-NX-Q.
#
# address, serial, version          as the coordinator names itself
# baud-rates                        the rates at which it answers
# time-refusal                      0: has a clock; 3 or 5: refuses time requests with that code
# clock-offset                      seconds by which its clock is ahead
# repeats-lost-log-block            yes: a log block whose answer was lost comes again; no: the next one comes
# log-capacity, log-overwritten     size of the log ring in records; how many have been overwritten so far
# terminal = CLASS ADDRESS RECORD   0 system, 1 sensor, 2 executive, 3 interface, 4 analog
# output = ADDRESS NUMBER RECORD    state byte and script numbers; outputs that aren't listed are off without scripts
# script = NUMBER RECORD            21 bytes; scripts that aren't listed have no trigger
# event = RECORD                    16 bytes, oldest first
# A record without bytes is written "-".
# in-bootloader, firmware-complete, firmware = BYTES    the image is the firmware lines put together
)";

/// A value that is being read: its words, and whether all of them made sense so far.
struct Words
{
    QStringList list;
    bool sound = true;

    qint64 number(int index, qint64 lowest, qint64 highest)
    {
        bool ok = false;
        const qint64 value = list.value(index).toLongLong(&ok);
        sound = sound && ok && value >= lowest && value <= highest;
        return sound ? value : lowest;
    }

    bool yes(int index)
    {
        const bool isYes = list.value(index) == QLatin1String("yes");
        sound = sound && (isYes || list.value(index) == QLatin1String("no"));
        return isYes;
    }

    QByteArray bytes(int index)
    {
        const QByteArray text =
            list.value(index) == QLatin1String(noBytes) ? "" : list.value(index).toLatin1().toLower();
        const QByteArray value = QByteArray::fromHex(text);
        sound = sound && value.toHex() == text;
        return value;
    }
};

/// What is collected until the last line has been read.
struct Draft
{
    UnitState state;
    qint64 logCapacity = UnitState().log.capacity();
    qint64 logOverwritten = 0;
    QByteArrayList events;
};

constexpr qint64 anyNumber = 0x7FFFFFFFFFFF;

struct Key
{
    int wordCount; // below 0: any number
    std::function<void(Draft&, Words&)> take;
};

void takeVersion(Draft& draft, Words& words)
{
    const QStringList parts = words.list.value(0).split(QLatin1Char('.'));
    Words version{parts};
    draft.state.versionMajor = quint8(version.number(0, 0, 255));
    draft.state.versionMinor = quint8(version.number(1, 0, 255));
    words.sound = version.sound && parts.size() == 2;
}

void takeBaudRates(Draft& draft, Words& words)
{
    draft.state.baudRates.clear();
    for (int index = 0; index < words.list.size(); ++index) {
        draft.state.baudRates.append(int(words.number(index, 1, 4000000)));
    }
}

void takeTerminal(Draft& draft, Words& words)
{
    UnitTerminal terminal;
    terminal.channelClass = int(words.number(0, 0, 4));
    terminal.address = quint8(words.number(1, 1, 128));
    terminal.infoRecord = words.bytes(2);
    draft.state.terminals.append(terminal);
}

void takeOutput(Draft& draft, Words& words)
{
    const auto address = size_t(words.number(0, 0, UnitState::addressCount - 1));
    const auto number = size_t(words.number(1, 0, UnitState::outputsPerAddress - 1));
    draft.state.outputs.at(address).at(number) = words.bytes(2);
}

void takeScript(Draft& draft, Words& words)
{
    const auto number = size_t(words.number(0, 0, UnitState::scriptCount - 1));
    draft.state.scripts.at(number) = words.bytes(1);
    words.sound = words.sound && draft.state.scripts.at(number).size() == UnitState::scriptLength;
}

const QHash<QString, Key>& keys()
{
    static const QHash<QString, Key> table{
        {QStringLiteral("address"),
         {1, [](Draft& draft, Words& words) { draft.state.address = quint8(words.number(0, 1, 254)); }}},
        {QStringLiteral("serial"),
         {1, [](Draft& draft, Words& words) { draft.state.serialNumber = quint16(words.number(0, 0, 0xFFFF)); }}},
        {QStringLiteral("version"), {1, takeVersion}},
        {QStringLiteral("baud-rates"), {-1, takeBaudRates}},
        {QStringLiteral("time-refusal"),
         {1, [](Draft& draft, Words& words) { draft.state.timeRefusal = quint8(words.number(0, 0, 255)); }}},
        {QStringLiteral("clock-offset"),
         {1, [](Draft& draft, Words& words) { draft.state.clockOffset = words.number(0, -anyNumber, anyNumber); }}},
        {QStringLiteral("repeats-lost-log-block"),
         {1, [](Draft& draft, Words& words) { draft.state.repeatsLostLogBlock = words.yes(0); }}},
        {QStringLiteral("log-capacity"),
         {1, [](Draft& draft, Words& words) { draft.logCapacity = words.number(0, 1, LogRing::maximumCapacity); }}},
        {QStringLiteral("log-overwritten"),
         {1, [](Draft& draft, Words& words) { draft.logOverwritten = words.number(0, 0, anyNumber); }}},
        {QStringLiteral("terminal"), {3, takeTerminal}},
        {QStringLiteral("output"), {3, takeOutput}},
        {QStringLiteral("script"), {2, takeScript}},
        {QStringLiteral("event"), {1, [](Draft& draft, Words& words) { draft.events.append(words.bytes(0)); }}},
        {QStringLiteral("in-bootloader"),
         {1, [](Draft& draft, Words& words) { draft.state.inBootloader = words.yes(0); }}},
        {QStringLiteral("firmware-complete"),
         {1, [](Draft& draft, Words& words) { draft.state.firmwareComplete = words.yes(0); }}},
        {QStringLiteral("firmware"), {1, [](Draft& draft, Words& words) { draft.state.firmware += words.bytes(0); }}},
    };
    return table;
}

bool takeLine(Draft& draft, const QString& line)
{
    const auto key = keys().constFind(line.section(QLatin1Char('='), 0, 0).trimmed());
    if (key == keys().constEnd()) {
        return false;
    }
    Words words{line.section(QLatin1Char('='), 1).split(QLatin1Char(' '), Qt::SkipEmptyParts)};
    if (key->wordCount >= 0 && words.list.size() != key->wordCount) {
        return false;
    }
    key->take(draft, words);
    return words.sound;
}

QByteArray yesOrNo(bool value)
{
    return value ? "yes" : "no";
}

QByteArray hexOf(const QByteArray& bytes)
{
    return bytes.isEmpty() ? QByteArray(noBytes) : bytes.toHex();
}

QByteArray identityLines(const UnitState& state)
{
    QByteArray text;
    const auto line = [&text](const char* key, const QByteArray& value) { text += key + (" = " + value) + '\n'; };
    QByteArrayList rates;
    for (const int rate : state.baudRates) {
        rates.append(QByteArray::number(rate));
    }
    line("address", QByteArray::number(state.address));
    line("serial", QByteArray::number(state.serialNumber));
    line("version",
         QByteArray::number(state.versionMajor) + '.' + QByteArray::number(state.versionMinor).rightJustified(2, '0'));
    line("baud-rates", rates.join(' '));
    line("time-refusal", QByteArray::number(state.timeRefusal));
    line("clock-offset", QByteArray::number(state.clockOffset));
    line("repeats-lost-log-block", yesOrNo(state.repeatsLostLogBlock));
    line("log-capacity", QByteArray::number(state.log.capacity()));
    line("log-overwritten", QByteArray::number(state.log.written() - state.log.size()));
    line("in-bootloader", yesOrNo(state.inBootloader));
    line("firmware-complete", yesOrNo(state.firmwareComplete));
    return text;
}

QByteArray configurationLines(const UnitState& state)
{
    QByteArray text;
    for (const UnitTerminal& terminal : state.terminals) {
        text += "terminal = " + QByteArray::number(terminal.channelClass) + ' ' + QByteArray::number(terminal.address) +
                ' ' + hexOf(terminal.infoRecord) + '\n';
    }
    for (size_t address = 0; address < state.outputs.size(); ++address) {
        for (size_t number = 0; number < state.outputs.at(address).size(); ++number) {
            const QByteArray& output = state.outputs.at(address).at(number);
            if (output != UnitState::emptyOutput()) {
                text += "output = " + QByteArray::number(int(address)) + ' ' + QByteArray::number(int(number)) + ' ' +
                        hexOf(output) + '\n';
            }
        }
    }
    for (size_t number = 0; number < state.scripts.size(); ++number) {
        if (state.scripts.at(number) != UnitState::emptyScript()) {
            text += "script = " + QByteArray::number(int(number)) + ' ' + hexOf(state.scripts.at(number)) + '\n';
        }
    }
    return text;
}

QByteArray bulkLines(const UnitState& state)
{
    QByteArray text;
    const QByteArrayList events = state.log.records();
    for (const QByteArray& event : events) {
        text += "event = " + hexOf(event) + '\n';
    }
    for (int begin = 0; begin < state.firmware.size(); begin += firmwareBytesOfLine) {
        text += "firmware = " + state.firmware.mid(begin, firmwareBytesOfLine).toHex() + '\n';
    }
    return text;
}

void report(const QString& text, QString* error)
{
    if (error != nullptr) {
        *error = text;
    }
}

} // namespace

QByteArray StateFile::write(const UnitState& state)
{
    return preface + identityLines(state) + configurationLines(state) + bulkLines(state);
}

std::optional<UnitState> StateFile::read(const QByteArray& text, QString* error)
{
    Draft draft;
    const QStringList lines = QString::fromUtf8(text).split(QLatin1Char('\n'));
    for (int index = 0; index < lines.size(); ++index) {
        const QString line = lines.at(index).trimmed();
        if (!line.isEmpty() && !line.startsWith(QLatin1Char('#')) && !takeLine(draft, line)) {
            report(QStringLiteral("line %1 makes no sense: %2").arg(index + 1).arg(line.left(80)), error);
            return std::nullopt;
        }
    }
    draft.state.log = LogRing(int(draft.logCapacity), draft.logOverwritten);
    draft.state.log.append(draft.events);
    return draft.state;
}

bool StateFile::save(const UnitState& state, const QString& fileName, QString* error)
{
    QSaveFile file(fileName);
    if (file.open(QIODevice::WriteOnly) && file.write(write(state)) >= 0 && file.flush() && file.commit()) {
        return true;
    }
    report(QStringLiteral("%1: %2").arg(fileName, file.errorString()), error);
    return false;
}

std::optional<UnitState> StateFile::load(const QString& fileName, QString* error)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        report(QStringLiteral("%1: %2").arg(fileName, file.errorString()), error);
        return std::nullopt;
    }
    QString reason;
    const std::optional<UnitState> state = read(file.readAll(), &reason);
    if (!state) {
        report(QStringLiteral("%1: %2").arg(fileName, reason), error);
    }
    return state;
}
