#include "simulator/LogGenerator.h"

#include "simulator/bcd.h"

#include <algorithm>
#include <array>

namespace
{
constexpr int dataBytes = 5;
constexpr int channelLimit = 4;
constexpr quint8 normalMode = 0x08;
constexpr int byteValues = 0x100;

/// The status bits that a log tells of: of the head unit and of a terminal; the mode bits of a terminal.
constexpr std::array<quint8, 5> unitStatusBits{0x80, 0x40, 0x08, 0x04, 0x02};
constexpr std::array<quint8, 6> terminalStatusBits{0x40, 0x20, 0x10, 0x08, 0x04, 0x02};
constexpr std::array<quint8, 6> modeBits{0x80, 0x40, 0x20, 0x10, 0x08, 0x01};

/// What a channel of each class reports when it leaves its normal state, as often as it stands here.
constexpr std::array<std::array<quint8, 6>, 5> disturbedStates{
    {{1, 1, 1, 1, 1, 1}, {1, 1, 1, 2, 3, 3}, {1, 1, 2, 3, 4, 5}, {1, 1, 1, 1, 1, 1}, {1, 1, 2, 4, 5, 11}}};

template <size_t Size>
quint8 pick(const std::array<quint8, Size>& values, QRandomGenerator& random)
{
    return values.at(random.bounded(quint32(Size)));
}

/// Class, version, type and characteristic of every kind of terminal with a way of its own to report.
struct Kind
{
    int terminalClass;
    int version;
    int type;
    int characteristic;
};

constexpr std::array<Kind, 29> kinds{{
    {0, 6, 0x1A, 0x1F},                                                                  // another head unit
    {1, 1, 0x41, 0x10},  {1, 6, 0x25, 0x20},                                             // sensors
    {2, 1, 0x41, 0x20},  {2, 1, 0x21, 0x40},  {2, 1, 0x13, 0x40},   {2, 3, 0x11, 0x10},  // executive, two with loops
    {3, 1, 0x30, 0x10},  {3, 4, 0x30, 0x10},  {3, 3, 0x34, 0x10},                        // panic buttons, keypad
    {4, 1, 0x15, 0x11},  {4, 1, 0x15, 0x23},  {4, 1, 0x20, 0x11},   {4, 1, 0x20, 0x23},  // temperature, counters
    {4, 2, 0x77, 0x20},                                                                  // another analog one
    {1, 9, 0x99, 0x40},  {2, 9, 0x99, 0x00},  {3, 9, 0x99, 0x10},                        // in no catalogue
    {5, 1, 0x10, 0x10},  {6, 1, 0x10, 0x10},  {7, 1, 0x10, 0x10},   {8, 1, 0x10, 0x10},  // of unknown classes
    {9, 1, 0x10, 0x10},  {10, 1, 0x10, 0x10}, {11, 1, 0x10, 0x10},  {12, 1, 0x10, 0x10}, //
    {13, 1, 0x10, 0x10}, {14, 1, 0x10, 0x10}, {15, 15, 0xFF, 0xFF},                      //
}};

/// The four time bytes: minute, hour, day, month, with the bits of the year in their upper ends.
QByteArray timeBytes(const QDateTime& time)
{
    const int year = toBcd(time.date().year() % 100);
    QByteArray bytes;
    bytes.append(char(toBcd(time.time().minute()) | (year & 0x80)));
    bytes.append(char(toBcd(time.time().hour()) | (year << 1 & 0xC0)));
    bytes.append(char(toBcd(time.date().day()) | (year << 3 & 0xC0)));
    bytes.append(char(toBcd(time.date().month()) | (year << 5 & 0xE0)));
    return bytes;
}

QByteArray event(int code, const QByteArray& data)
{
    return QByteArray(1, char(code)) + data.leftJustified(dataBytes, '\0', true);
}

} // namespace

int LogGenerator::Source::channelCount() const
{
    return qMin(characteristic >> 4, channelLimit);
}

LogGenerator::LogGenerator(quint32 seed, Variety logVariety, const QVector<UnitTerminal>& terminals)
    : random(seed), variety(logVariety)
{
    addSource(0, 0, 6, 0x1A, 0x1F);
    if (variety == Everything) {
        quint8 address = 1;
        for (const Kind& kind : kinds) {
            addSource(address++, kind.terminalClass, kind.version, kind.type, kind.characteristic);
        }
    } else {
        for (const UnitTerminal& terminal : terminals) {
            const QByteArray record = terminal.infoRecord.leftJustified(4, '\0');
            addSource(terminal.address, terminal.channelClass, record.at(1) & 0x0F, record.at(2), record.at(3));
        }
    }
    buildDeck();
}

QByteArray LogGenerator::next(const QDateTime& time)
{
    const Card card = draw();
    Source& source = sources[card.source];
    const QByteArray what = (this->*card.event)(source);

    constexpr int impossibleOneIn = 40;
    const bool impossible = variety == Everything && random.bounded(impossibleOneIn) == 0;
    QByteArray record = impossible ? randomBytes(4) : timeBytes(time);
    record.append(char(source.terminalClass << 4 | source.version));
    record.append(char(source.type));
    record.append(char(source.characteristic));
    record.append(char(source.address == 0 ? 0 : random.bounded(20, 96)));
    record.append(char(source.address == 0 ? 0 : random.bounded(4, 18)));
    record.append(what.at(0));
    record.append(char(source.address));
    record.append(what.mid(1));
    return record;
}

QByteArrayList LogGenerator::history(int count, const QDateTime& end)
{
    QVector<int> minutesBefore(count, 0); // of the end, oldest first
    for (int index = count - 2; index >= 0; --index) {
        const bool quiet = random.bounded(5) == 0;
        minutesBefore[index] = minutesBefore.at(index + 1) + (quiet ? random.bounded(30, 600) : random.bounded(0, 12));
    }
    QByteArrayList records;
    records.reserve(count);
    for (const int minutes : std::as_const(minutesBefore)) {
        records.append(next(end.addSecs(-60LL * minutes)));
    }
    return records;
}

int LogGenerator::cycleLength() const
{
    return deck.size();
}

void LogGenerator::addSource(quint8 address, int terminalClass, int version, int type, int characteristic)
{
    sources.append({address, quint8(terminalClass), quint8(version), quint8(type), quint8(characteristic), 0,
                    normalMode, QByteArray(channelLimit, '\0')});
}

/// Each source with each of its events once; in a plausible log with those more often that happen more often.
void LogGenerator::buildDeck()
{
    struct Share
    {
        EventMaker event;
        int ofTerminal;
        int ofUnit;
    };
    static constexpr std::array<Share, 4> shares{{{&LogGenerator::powerUp, 1, 1},
                                                  {&LogGenerator::channelState, 14, 0},
                                                  {&LogGenerator::statusChange, 4, 6},
                                                  {&LogGenerator::modeChange, 1, 0}}};
    for (int source = 0; source < sources.size(); ++source) {
        for (const Share& share : shares) {
            int copies = 1;
            if (variety == Plausible) {
                copies = sources.at(source).address == 0 ? share.ofUnit : share.ofTerminal;
            }
            deck.insert(deck.size(), copies, {source, share.event});
        }
        if (variety == Everything) {
            deck.append({source, &LogGenerator::unknownEvent});
        }
    }
    nextCard = deck.size();
}

LogGenerator::Card LogGenerator::draw()
{
    if (nextCard == deck.size()) {
        nextCard = 0;
        for (int last = deck.size() - 1; last > 0; --last) {
            std::swap(deck[last], deck[random.bounded(last + 1)]);
        }
    }
    return deck.at(nextCard++);
}

QByteArray LogGenerator::powerUp(Source& source)
{
    if (source.address == 0) {
        return event(0, QByteArray(1, '\0') + char(variety == Everything ? random.bounded(byteValues) : source.status));
    }
    if (variety == Everything) {
        return event(0, randomBytes(dataBytes));
    }
    const auto pair = [&source](int first) {
        return char(source.channels.at(first) | source.channels.at(first + 1) << 4);
    };
    QByteArray data;
    for (const char byte : {char(source.status), char(source.mode), pair(0), pair(2)}) {
        data.append(byte);
    }
    return event(0, data);
}

QByteArray LogGenerator::statusChange(Source& source)
{
    constexpr int nothingOneIn = 12;
    if (variety == Everything && random.bounded(nothingOneIn) == 0) {
        return noChange(source);
    }
    const auto bit = [&] {
        return source.address == 0 ? pick(unitStatusBits, random) : pick(terminalStatusBits, random);
    };
    const quint8 before = source.status;
    // What was disturbed last is mended first; several bits at once are for the varied log.
    source.status = before != 0 && variety == Plausible ? quint8(0) : quint8(before ^ bit());
    if (variety == Everything) {
        source.status ^= bit();
    }
    return event(2, QByteArray(1, char(before)) + char(source.status));
}

QByteArray LogGenerator::noChange(Source& source)
{
    return event(2, QByteArray(2, char(source.status)));
}

QByteArray LogGenerator::modeChange(Source& source)
{
    const quint8 before = source.mode;
    source.mode = before != normalMode && variety == Plausible ? normalMode : quint8(before ^ pick(modeBits, random));
    return event(3, QByteArray(1, char(before)) + char(source.mode));
}

QByteArray LogGenerator::unknownEvent(Source& /*source*/)
{
    constexpr int knownCodes = 4;
    return event(random.bounded(knownCodes, byteValues), randomBytes(dataBytes));
}

QByteArray LogGenerator::channelState(Source& source)
{
    const int channel = source.channelCount() == 0 ? 0 : random.bounded(source.channelCount());
    return event(1, channelData(source, channel));
}

/// The data of a channel event: its first byte is the channel in the bits 4 and 5 and the state below, except for what
/// the classes 3 and 4 make of it.
QByteArray LogGenerator::channelData(Source& source, int channel)
{
    constexpr int maximumState = 16;

    const int before = source.channels.at(channel);
    int now = 0;
    if (variety == Everything) {
        now = random.bounded(maximumState);
    } else if (before == 0) {
        now = pick(disturbedStates.at(source.terminalClass % disturbedStates.size()), random);
    }
    source.channels[channel] = char(now);
    QByteArray data(1, char(channel << 4 | now));

    const bool panicButton = source.terminalClass == 3 && source.type == 0x30;
    const bool temperature = source.terminalClass == 4 && source.type == 0x15;
    if (panicButton) {
        constexpr int longPressOneIn = 3;
        const int longPress = random.bounded(longPressOneIn) == 0 ? 0x80 : 0;
        data.append(char(longPress |
                         (variety == Everything ? random.bounded(maximumState) : 1 << random.bounded(channelLimit))));
    } else if (source.terminalClass == 3) {
        data[0] = char(now == 0 ? 0 : random.bounded(1, 10));
        data += randomBytes(4);
    } else if (temperature) {
        for (int sensor = 0; sensor < 2; ++sensor) {
            data.append(char(random.bounded(4) == 0 ? 0x80 : 0));
            data.append(char(toBcd(random.bounded(now == 1 ? 60 : 15, now == 1 ? 90 : 30))));
        }
    } else if (source.terminalClass == 4) {
        data[0] = char(channel << 4 | (before & 3) << 2 | (now & 3));
        const auto count = random.bounded(2000000U);
        for (int shift = 0; shift < 32; shift += 8) {
            data.append(char(count >> shift & 0xFF));
        }
    } else if (source.terminalClass > 4) {
        data = randomBytes(dataBytes);
    }
    return data;
}

QByteArray LogGenerator::randomBytes(int count)
{
    QByteArray bytes(count, '\0');
    for (char& byte : bytes) {
        byte = char(random.bounded(byteValues));
    }
    return bytes;
}
