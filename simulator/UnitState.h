#pragma once

#include "simulator/LogRing.h"

#include <QByteArray>
#include <QVector>

#include <array>

/// One terminal of the radio network, as the unit reports it.
struct UnitTerminal
{
    int channelClass = 0;  // 0 system, 1 sensor, 2 executive, 3 interface, 4 analog: the list in which it stands
    quint8 address = 0;    // its bit in that list, 1 to 128
    QByteArray infoRecord; // the whole answer to the question for it

    /// A terminal with a proper record of `recordLength` bytes (7 and more; the length tells the number of outputs:
    /// 7 one, 8 to 11 two, 12 to 15 three, 16 and more four).
    static UnitTerminal make(quint8 address, int channelClass, int version, int type, int characteristic,
                             int recordLength = 7);

    bool operator==(const UnitTerminal& other) const;
};

/// All that a simulated unit remembers: identity, terminals, outputs, scripts, log, clock, firmware. A plain value; the
/// default is a unit fresh from the factory at address 1, without terminals, scripts and events.
///
/// Output and script records are kept as they follow the number in an answer: an output as its state byte and script
/// numbers, a script as 21 bytes.
struct UnitState
{
    static constexpr int addressCount = 32; // 0 is the head unit itself
    static constexpr int outputsPerAddress = 8;
    static constexpr int scriptCount = 32;
    static constexpr int scriptLength = 21;

    quint8 address = 1;
    quint16 serialNumber = 4711;
    quint8 versionMajor = 6;
    quint8 versionMinor = 2;

    /// The rates at which it hears and answers. At any other it stays silent. Its bootloader knows 57600 only.
    QVector<int> baudRates{57600};

    QVector<UnitTerminal> terminals;
    std::array<std::array<QByteArray, outputsPerAddress>, addressCount> outputs = emptyOutputs();
    std::array<QByteArray, scriptCount> scripts = emptyScripts();

    LogRing log;
    /// What a repeated request for the next block gives after an answer that the other side can't have received: true
    /// the same block again, false the one after it.
    bool repeatsLostLogBlock = true;

    /// Code with which both time requests are refused; 0 if the unit has a clock. Units without one say 3 or 5.
    quint8 timeRefusal = 0;
    /// Seconds by which the unit's clock is ahead of this machine's.
    qint64 clockOffset = 0;

    bool inBootloader = false;
    /// The image as far as the bootloader has received it, and whether it has been closed by a short block.
    QByteArray firmware;
    bool firmwareComplete = false;

    bool operator==(const UnitState& other) const;
    bool operator!=(const UnitState& other) const;

    static QByteArray emptyOutput();
    static QByteArray emptyScript();
    static std::array<std::array<QByteArray, outputsPerAddress>, addressCount> emptyOutputs();
    static std::array<QByteArray, scriptCount> emptyScripts();
};
