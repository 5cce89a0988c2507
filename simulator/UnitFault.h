#pragma once

#include <QByteArray>
#include <QMetaType>
#include <QString>
#include <QStringList>

#include <optional>

/// One rule by which a simulated unit misbehaves. A plain value, written as a sentence:
///
///     UnitFault(UnitFault::LoseAnswer).onRequest(7).from(3).times(1)          the third reading of an output, once
///     UnitFault(UnitFault::DamageAnswer).withChance(0.05)                     one answer in twenty
///     UnitFault(UnitFault::Unplug).onBoot(5).from(10).value(1500).amount(4)   after four bytes of an answer, for 1.5 s
///
/// Each rule counts the requests that it matches, from the moment it was set. A rule draws its chances and its random
/// bytes from a generator of its own, so the same rules with the same seed and the same requests misbehave alike.
/// Several rules may hit one request; their effects add up.
struct UnitFault
{
    enum Kind
    {
        LoseRequest,   // not heard: nothing is done, nothing is answered
        LoseAnswer,    // done, but not answered
        DelayAnswer,   // the answer begins value() ms late
        SplitAnswer,   // the answer comes in amount() pieces (2), value() ms apart (20), cut at random places
        NoiseBefore,   // bytes() stand right before the answer, or amount() random ones (8)
        NoiseAfter,    // the same right behind it
        NoiseLater,    // the same, value() ms behind it
        BadChecksum,   // the checksum of the answer is wrong
        DamageAnswer,  // one bit of the answer is wrong, anywhere in it; or bit value() of byte amount(), from 0
        Refuse,        // not done; answered with the code value() (1), from the bootloader with this result byte
        ChangeAnswer,  // one data byte of the answer, if it has any, has another value; the checksum is right
        ReplaceAnswer, // the data of the answer are bytes(); the checksum is right
        Unplug,        // the cable is pulled after amount() bytes of the answer, for value() ms, 0 being for ever;
                       // amount() below 0: before the request is heard
        LosePower,     // dead for value() ms (300), the request unheard; comes back in its bootloader if it was there
        BreakOff,      // the answer ends after amount() bytes (1); the rest comes value() ms later, below 0 never
        RepeatAnswer,  // the answer comes amount() times (2), one right behind the other
        FormerAnswer,  // the answer before it comes again: right before the answer, with value(1) instead of it
        KindCount
    };

    explicit UnitFault(Kind faultKind = LoseRequest) : kind(faultKind)
    {
    }

    /// Only requests of this type; numbers as in UnitRequest. Without either of the two: every request.
    UnitFault& onRequest(int type);
    UnitFault& onBoot(int type);
    /// From the nth of them, counted from 1.
    UnitFault& from(int nth);
    /// For that many of them in a row; without it for all that follow.
    UnitFault& times(int number);
    /// Each of those with this chance, 0 to 1.
    UnitFault& withChance(double probability);
    UnitFault& value(int number);
    UnitFault& amount(int number);
    UnitFault& bytes(const QByteArray& content);

    /// A rule from text, for command lines: the kind's name and the parts of the sentence that are wanted, as in
    /// "unplug:boot=5,from=10,times=1,value=1500,amount=4" or "noise-before:chance=0.1,bytes=c2ff". Empty if the text
    /// is no rule; `error` then says why.
    static std::optional<UnitFault> fromText(const QString& text, QString* error);
    /// The names that fromText() takes for the kinds, in their order.
    static QStringList kindNames();

    Kind kind;
    int requestType = 0;
    int bootType = 0;
    int first = 1;
    int count = -1;
    double chance = 1;
    int faultValue = -1; // below 0: the default of the kind
    int faultAmount = -1;
    QByteArray faultBytes;
};
Q_DECLARE_METATYPE(UnitFault)
