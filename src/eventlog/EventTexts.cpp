#include "eventlog/EventTexts.h"

#include "domain/terminals.h"
#include "eventlog/EventInfo.h"
#include "texts/texts.h"

#include <algorithm>
#include <iterator>

namespace
{

using Text = QString (*)();

/// What to say when all bits of a mask are set.
struct BitText
{
    quint8 mask;
    Text text;
};

/// A state of a channel in both forms.
struct StateText
{
    Text longForm;
    Text shortForm;
};

// Both inputs share one text, which takes the place of the two below it.
constexpr BitText unitStatus[] = {
    {0x80, &texts::statusUnitRtr},    {0x40, &texts::statusUnitCase},   {0x08, &texts::statusUnitBinding},
    {0x06, &texts::statusUnitInputs}, {0x04, &texts::statusUnitInput2}, {0x02, &texts::statusUnitInput1},
};

constexpr BitText terminalStatus[] = {
    {0x40, &texts::statusTerminalCase},        {0x20, &texts::statusTerminalMainFault},
    {0x10, &texts::statusTerminalBackupFault}, {0x08, &texts::statusTerminalDisconnection},
    {0x04, &texts::statusTerminalDetectivity}, {0x02, &texts::statusTerminalFatal},
};

// Of the mode bits, encryption is the one that is worth a word when it is clear.
constexpr quint8 encryptionBit = 0x08;

constexpr BitText terminalMode[] = {
    {0x80, &texts::statusModeLight},
    {0x40, &texts::statusModeRecognition},
    {0x20, &texts::statusModeSoundIndication},
    {0x10, &texts::statusModeSound},
    {encryptionBit, &texts::statusModeEncryptionOff},
    {0x01, &texts::statusModeSecurity},
};

constexpr StateText loopStates[] = {
    {&texts::channelLongNorm, &texts::channelShortNorm},
    {&texts::channelLongAlarm, &texts::channelShortAlarm},
    {&texts::channelLongShort, &texts::channelShortShort},
    {&texts::channelLongTamper, &texts::channelShortTamper},
};

constexpr StateText outputStates[] = {
    {&texts::channelLongOff, &texts::channelShortOff},       {&texts::channelLongOn, &texts::channelShortOn},
    {&texts::channelLongHalfHz, &texts::channelShortHalfHz}, {&texts::channelLong1Hz, &texts::channelShort1Hz},
    {&texts::channelLong2Hz, &texts::channelShort2Hz},       {&texts::channelLong4Hz, &texts::channelShort4Hz},
};

constexpr StateText analogStates[] = {
    {&texts::channelLongAnalogNorm, &texts::channelShortAnalogNorm},
    {&texts::channelLongAnalogHigh, &texts::channelShortAnalogHigh},
    {&texts::channelLongAnalogLow, &texts::channelShortAnalogLow},
    {&texts::channelLongAnalogReset, &texts::channelShortAnalogReset},
    {&texts::channelLongAnalogTamper, &texts::channelShortAnalogTamper},
    {&texts::channelLongAnalogPowerFault, &texts::channelShortAnalogPowerFault},
    {&texts::channelLongAnalogGroundShort, &texts::channelShortAnalogGroundShort},
    {&texts::channelLongAnalogChannelShort, &texts::channelShortAnalogChannelShort},
    {&texts::channelLongAnalogDataCorrupted, &texts::channelShortAnalogDataCorrupted},
    {&texts::channelLongAnalogDataCorrupted, &texts::channelShortAnalogDataCorrupted},
    {&texts::channelLongAnalogDataCorrupted, &texts::channelShortAnalogDataCorrupted},
    {&texts::channelLongAnalogTemperature, &texts::channelShortAnalogTemperature},
};

template <typename Table>
QString textOfBits(quint8 bits, const Table& table)
{
    QString text;
    for (const BitText& row : table) {
        if ((bits & row.mask) == row.mask) {
            text += row.text() + QLatin1String("; ");
            bits &= quint8(~row.mask);
        }
    }
    return text;
}

template <typename Table>
QString textOfState(quint8 state, ChannelForm form, const Table& table)
{
    const std::size_t row = state & 0x0F;
    if (row >= std::size(table)) {
        return QStringLiteral(" %1(%2)").arg(texts::columnUnknown()).arg(state);
    }
    return form == ChannelForm::Long ? table[row].longForm() : table[row].shortForm();
}

/// The last two channels of a four-channel output terminal are loops.
bool isLoopOfOutputTerminal(const EventInfo& event, int channelNumber)
{
    return channelNumber >= 3 && event.version == 1 && (event.type == 0x21 || event.type == 0x13) &&
           event.characteristic == 0x40;
}

QString textOfCounter(quint8 state, ChannelForm form)
{
    if (form == ChannelForm::Long) {
        return {};
    }
    if ((state & 0x03) == 0x03) {
        return texts::channelShortCounterAboveBoth();
    }
    if ((state & 0x02) != 0) {
        return texts::channelShortCounterAbove2();
    }
    return (state & 0x01) != 0 ? texts::channelShortCounterAbove1() : QString();
}

/// The plural form of a count of buttons. Each last digit has a ten of its own in which its form doesn't apply.
QString buttonSuffix(int count, ChannelForm form)
{
    const bool longForm = form == ChannelForm::Long;
    const int digit = count % 10;
    const int ten = count / 10;
    if (digit == 1 && ten != 1) {
        return longForm ? texts::channelLongButtonOne() : texts::channelShortButtonOne();
    }
    if (digit >= 2 && digit <= 4 && ten != digit) {
        return longForm ? texts::channelLongButtonFew() : texts::channelShortButtonFew();
    }
    return longForm ? texts::channelLongButtonMany() : texts::channelShortButtonMany();
}

QString textOfButtons(const EventInfo& event, int count, ChannelForm form)
{
    if (isPanicButton(event)) {
        return {};
    }
    const bool longForm = form == ChannelForm::Long;
    if (count == 0) {
        return longForm ? texts::channelLongButtonsReset() : texts::channelShortButtonsNone();
    }
    const QString pressed = longForm ? texts::channelLongPressing() : texts::channelShortPressed();
    return pressed.arg(count) + buttonSuffix(count, form);
}

bool isSingleOrTwoChannel(const EventInfo& event)
{
    return event.characteristic == 0x11 || event.characteristic == 0x23;
}

} // namespace

bool isPanicButton(const EventInfo& event)
{
    return event.classTerminal == InterfaceClass && (event.version == 1 || event.version == 4) && event.type == 0x30 &&
           event.characteristic == 0x10;
}

bool isCounter(const EventInfo& event)
{
    return event.classTerminal == AnalogClass && event.version == 1 && event.type == 0x20 &&
           isSingleOrTwoChannel(event);
}

bool isTemperatureSensor(const EventInfo& event)
{
    return event.classTerminal == AnalogClass && event.version == 1 && event.type == 0x15 &&
           isSingleOrTwoChannel(event);
}

QString textStatusUnit(quint8 status)
{
    return textOfBits(status, unitStatus);
}

QString textStatusTerminal(quint8 status)
{
    return textOfBits(status, terminalStatus);
}

QString textModeTerminal(quint8 mode)
{
    return textOfBits(mode ^ encryptionBit, terminalMode);
}

QString textStateChannel(const EventInfo& event, int channelNumber, quint8 state, ChannelForm form)
{
    switch (event.classTerminal) {
    case SensorClass:
        return textOfState(state, form, loopStates);
    case ExecutiveClass:
        return isLoopOfOutputTerminal(event, channelNumber) ? textOfState(state, form, loopStates)
                                                            : textOfState(state, form, outputStates);
    case InterfaceClass:
        return textOfButtons(event, state, form);
    case AnalogClass:
        return isCounter(event) ? textOfCounter(state, form) : textOfState(state, form, analogStates);
    default:
        return QStringLiteral("%1(%2)").arg(texts::eventUnknownClass()).arg(event.classTerminal);
    }
}
