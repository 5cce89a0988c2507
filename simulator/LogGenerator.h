#pragma once

#include "simulator/UnitState.h"

#include <QByteArray>
#include <QByteArrayList>
#include <QDateTime>
#include <QRandomGenerator>
#include <QVector>

/// Invents log records. The same seed, variety, terminals and times give the same records. A plain value.
///
/// Plausible tells the story of an installation: its own terminals, each change following on the state before it.
/// Everything walks through every code of event, every class of terminal and every special kind of terminal, known and
/// unknown, with values of any sort, impossible times included; all kinds of event have come after cycleLength()
/// records.
class LogGenerator
{
public:
    enum Variety
    {
        Plausible,
        Everything
    };

    /// The terminals matter for Plausible only, which without any tells of the head unit alone.
    explicit LogGenerator(quint32 seed, Variety logVariety, const QVector<UnitTerminal>& terminals = {});

    QByteArray next(const QDateTime& time);

    /// `count` records, oldest first, with irregular times of which the last is `end`.
    QByteArrayList history(int count, const QDateTime& end);

    int cycleLength() const;

private:
    /// A terminal with the state that its next event departs from.
    struct Source
    {
        quint8 address;
        quint8 terminalClass;
        quint8 version;
        quint8 type;
        quint8 characteristic;
        quint8 status;
        quint8 mode;
        QByteArray channels; // four states

        int channelCount() const;
    };

    using EventMaker = QByteArray (LogGenerator::*)(Source&); // code and five data bytes
    struct Card
    {
        int source;
        EventMaker event;
    };

    void addSource(quint8 address, int terminalClass, int version, int type, int characteristic);
    void buildDeck();
    Card draw();

    QByteArray powerUp(Source& source);
    QByteArray channelState(Source& source);
    QByteArray statusChange(Source& source);
    QByteArray modeChange(Source& source);
    QByteArray unknownEvent(Source& source);
    QByteArray channelData(Source& source, int channel);
    QByteArray noChange(Source& source);

    QByteArray randomBytes(int count);

    QRandomGenerator random;
    Variety variety;
    QVector<Source> sources;
    QVector<Card> deck;
    int nextCard = 0;
};
