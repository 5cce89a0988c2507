#include "eventlog/EventDecoder.h"

#include "domain/bcd.h"
#include "domain/byteAt.h"
#include "domain/terminals.h"
#include "eventlog/EventTexts.h"
#include "model/Device.h"
#include "texts/texts.h"

#include <QStringList>
#include <QVariantList>

#include <algorithm>

namespace
{

using Text = QString (*)();

/// What to say of a bit of a status or mode byte that has changed.
struct ChangeText
{
    quint8 bit;
    Text becameSet;
    Text becameClear;
};

constexpr ChangeText unitStatusChanges[] = {
    {0x80, &texts::eventUnitRtrOn, &texts::eventUnitRtrOff},
    {0x40, &texts::eventUnitCaseOpened, &texts::eventUnitCaseClosed},
    {0x08, &texts::eventUnitBindingOn, &texts::eventUnitBindingOff},
    {0x04, &texts::eventUnitInput2Opened, &texts::eventUnitInput2Closed},
    {0x02, &texts::eventUnitInput1Opened, &texts::eventUnitInput1Closed},
};

// A fatal error that is over reads like restored detectivity: the device means it so.
constexpr ChangeText terminalStatusChanges[] = {
    {0x40, &texts::eventTerminalCaseOpened, &texts::eventTerminalCaseClosed},
    {0x20, &texts::eventTerminalMainFault, &texts::eventTerminalMainRestored},
    {0x10, &texts::eventTerminalBackupFault, &texts::eventTerminalBackupRestored},
    {0x08, &texts::eventTerminalDisconnection, &texts::eventTerminalConnection},
    {0x04, &texts::eventTerminalDetectivityFault, &texts::eventTerminalDetectivityRestored},
    {0x02, &texts::eventTerminalFatal, &texts::eventTerminalDetectivityRestored},
};

constexpr ChangeText terminalModeChanges[] = {
    {0x80, &texts::eventModeLightOn, &texts::eventModeLightOff},
    {0x40, &texts::eventModeRecognitionOn, &texts::eventModeRecognitionOff},
    {0x20, &texts::eventModeSoundIndicationOn, &texts::eventModeSoundIndicationOff},
    {0x10, &texts::eventModeSoundOn, &texts::eventModeSoundOff},
    {0x08, &texts::eventModeEncryptionOn, &texts::eventModeEncryptionOff},
    {0x01, &texts::eventModeSecurityOn, &texts::eventModeSecurityOff},
};

constexpr ChangeText counterChanges[] = {
    {0x01, &texts::counterAbove1, &texts::counterBelow1},
    {0x02, &texts::counterAbove2, &texts::counterBelow2},
};

struct ButtonText
{
    quint8 bit;
    Text text;
};

constexpr ButtonText panicButtons[] = {
    {0x01, &texts::panicButton1},
    {0x02, &texts::panicButton2},
    {0x04, &texts::panicButton3},
    {0x08, &texts::panicButton4},
};

QString hexByte(quint8 value)
{
    return QStringLiteral("%1").arg(value, 2, 16, QLatin1Char('0'));
}

QString hexBytes(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.toHex(' '));
}

/// The value in groups of three digits.
QString groupedNumber(quint32 value)
{
    QString text = QString::number(value);
    for (int position = text.size() - 3; position > 0; position -= 3) {
        text.insert(position, QLatin1Char(' '));
    }
    return text;
}

// ---- Head of the record ----------------------------------------------------------------------------------------

void decodeTime(const QByteArray& record, EventInfo& event)
{
    const int year = (byteAt(record, 0) & 0x80) | (byteAt(record, 1) & 0xC0) >> 1 | (byteAt(record, 2) & 0xC0) >> 3 |
                     (byteAt(record, 3) & 0xE0) >> 5;
    event.time.setHMS(fromBcd(byteAt(record, 1) & 0x3F), fromBcd(byteAt(record, 0) & 0x7F), 0, 0);
    event.date.setDate(2000 + fromBcd(year), fromBcd(byteAt(record, 3) & 0x1F), fromBcd(byteAt(record, 2) & 0x3F));
}

QString terminalName(const EventInfo& event, const Device* catalogue)
{
    const int rows = catalogue != nullptr ? catalogue->deviceCount() : 0;
    for (int index = 0; index < rows; ++index) {
        const QVariantList row = catalogue->deviceRow(index);
        if (row.at(1).toUInt() == event.classTerminal && row.at(2).toUInt() == event.version &&
            row.at(3).toUInt() == event.type && row.at(4).toUInt() == event.characteristic) {
            const QString name = row.at(0).toString();
            return name.left(name.indexOf(QLatin1Char('(')));
        }
    }
    return QStringLiteral("%1%2 %3 %4")
        .arg(event.classTerminal, 1, 16, QLatin1Char(' '))
        .arg(event.version, 1, 16, QLatin1Char(' '))
        .arg(event.type, 2, 16, QLatin1Char('0'))
        .arg(event.characteristic, 2, 16, QLatin1Char('0'));
}

/// The source without its end: which function closes the bracket depends on the code of event.
QString openSource(const EventInfo& event, const Device* catalogue)
{
    if (event.address == 0) {
        return texts::headUnitName();
    }
    return QStringLiteral("%1 (№%2").arg(terminalName(event, catalogue), QString::number(event.address));
}

void closeSourceOfTerminal(EventInfo& event)
{
    if (event.address != 0) {
        event.source += QLatin1Char(')');
    }
}

// ---- Rows ------------------------------------------------------------------------------------------------------

/// One row for each bit that differs, in the order of the table, or a row that says that none does.
template <typename Table>
void addChanges(EventInfo event, quint8 before, quint8 now, const Table& table, QList<EventInfo>& rows)
{
    bool changed = false;
    for (const ChangeText& row : table) {
        if (((before ^ now) & row.bit) != 0) {
            changed = true;
            event.event = (now & row.bit) != 0 ? row.becameSet() : row.becameClear();
            rows.append(event);
        }
    }
    if (!changed) {
        event.event = texts::eventNoChanges();
        rows.append(event);
    }
}

QString textOfChannelsAtPowerUp(const EventInfo& event)
{
    QString text;
    const int channels = std::min(event.characteristic >> 4, 4);
    for (int channel = 0; channel < channels; ++channel) {
        const quint8 states = byteAt(event.data, 2 + channel / 2);
        const auto state = quint8(channel % 2 == 0 ? states & 0x0F : states >> 4);
        const QString words = textStateChannel(event, channel + 1, state, ChannelForm::Short);
        if (!words.isEmpty()) {
            text += channel == 0 ? QString() : QStringLiteral("; ");
            text += texts::detailChannelCapital() + QStringLiteral(" %1: ").arg(channel + 1) + words;
        }
    }
    return text;
}

void decodeTerminalOn(EventInfo& event, QList<EventInfo>& rows)
{
    event.event = texts::eventTerminalTurnedOn();
    event.details = textStatusTerminal(byteAt(event.data, 0)) + textModeTerminal(byteAt(event.data, 1)) +
                    textOfChannelsAtPowerUp(event);
    rows.append(event);
}

void decodePowerUp(EventInfo& event, QList<EventInfo>& rows)
{
    closeSourceOfTerminal(event);
    if (event.address != 0) {
        decodeTerminalOn(event, rows);
        return;
    }
    event.event = texts::eventUnitTurnedOn();
    event.details = textStatusUnit(byteAt(event.data, 1));
    rows.append(event);
}

void decodePanicButton(EventInfo& event, QList<EventInfo>& rows)
{
    const quint8 buttons = byteAt(event.data, 1);
    event.event = (buttons & 0x80) != 0 ? texts::panicLongPressing() : texts::panicShortPressing();
    for (const ButtonText& button : panicButtons) {
        if ((buttons & button.bit) != 0) {
            event.event += button.text() + QLatin1String("; ");
        }
    }
    rows.append(event);
}

void decodeButtons(EventInfo& event, QList<EventInfo>& rows)
{
    constexpr int numbersInRecord = 8;
    const int count = byteAt(event.data, 0);
    if (count != 0) {
        QString numbers;
        for (int i = 0; i < std::min(count, numbersInRecord); ++i) {
            const quint8 pair = byteAt(event.data, 1 + i / 2);
            numbers += hexByte(quint8(i % 2 == 0 ? pair & 0x0F : pair >> 4)) + QLatin1Char(' ');
        }
        event.details = texts::channelShortPressed().arg(numbers);
    }
    rows.append(event);
}

int temperature(quint8 high, quint8 low)
{
    const int degrees = fromBcd(high & 0x7F) * 100 + fromBcd(low);
    return (high & 0x80) != 0 ? -degrees : degrees;
}

void decodeTemperature(EventInfo& event, QList<EventInfo>& rows)
{
    const auto reading = [&event](int offset) {
        return temperature(byteAt(event.data, offset), byteAt(event.data, offset + 1));
    };
    event.details = QStringLiteral("%1°C (%2 1)").arg(QString::number(reading(1)), texts::detailChannel());
    if (event.characteristic == 0x23) {
        event.details += QStringLiteral("\n%1°C (%2 2)").arg(QString::number(reading(3)), texts::detailChannel());
    }
    rows.append(event);
}

void decodeCounter(EventInfo& event, QList<EventInfo>& rows)
{
    quint32 value = 0;
    for (int offset = 4; offset >= 1; --offset) {
        value = value << 8 | byteAt(event.data, offset);
    }
    event.details = groupedNumber(value);
    const quint8 states = byteAt(event.data, 0);
    addChanges(event, (states >> 2) & 0x03, states & 0x03, counterChanges, rows);
}

void decodeChannelState(EventInfo& event, QList<EventInfo>& rows)
{
    const quint8 state = byteAt(event.data, 0);
    event.channel = event.classTerminal == InterfaceClass ? 0 : (state >> 4) & 0x03;
    const int channelNumber = event.channel + 1;
    event.source += QStringLiteral(", %1 %2)").arg(texts::detailChannel()).arg(channelNumber);
    event.event = textStateChannel(event, channelNumber, state, ChannelForm::Long);

    if (isPanicButton(event)) {
        decodePanicButton(event, rows);
    } else if (event.classTerminal == InterfaceClass) {
        decodeButtons(event, rows);
    } else if (isTemperatureSensor(event)) {
        decodeTemperature(event, rows);
    } else if (event.classTerminal == AnalogClass) {
        decodeCounter(event, rows);
    } else {
        if (event.classTerminal != SensorClass && event.classTerminal != ExecutiveClass) {
            event.details = hexBytes(event.data);
        }
        rows.append(event);
    }
}

/// Of the two bytes of an event that something has changed, the first is from before.
template <typename Table>
void decodeChange(EventInfo& event, QString (*details)(quint8), const Table& changes, QList<EventInfo>& rows)
{
    const quint8 now = byteAt(event.data, 1);
    event.details = details(now);
    addChanges(event, byteAt(event.data, 0), now, changes, rows);
}

void decodeUnitStatus(EventInfo& event, QList<EventInfo>& rows)
{
    decodeChange(event, textStatusUnit, unitStatusChanges, rows);
}

void decodeTerminalStatus(EventInfo& event, QList<EventInfo>& rows)
{
    decodeChange(event, textStatusTerminal, terminalStatusChanges, rows);
}

void decodeStatusChange(EventInfo& event, QList<EventInfo>& rows)
{
    closeSourceOfTerminal(event);
    if (event.address == 0) {
        decodeUnitStatus(event, rows);
    } else {
        decodeTerminalStatus(event, rows);
    }
}

void decodeTerminalMode(EventInfo& event, QList<EventInfo>& rows)
{
    event.source += QLatin1Char(')');
    decodeChange(event, textModeTerminal, terminalModeChanges, rows);
}

void decodeUnknown(EventInfo& event, QList<EventInfo>& rows)
{
    event.source += QLatin1Char(')');
    event.event = texts::eventUnknown() + QStringLiteral(" (%1)").arg(event.code);
    event.details = hexBytes(event.data);
    rows.append(event);
}

} // namespace

void decodeRecord(const QByteArray& record, const Device* catalogue, QList<EventInfo>& rows)
{
    EventInfo event;
    decodeTime(record, event);
    // The class keeps the sign of its byte: from nibble 8 on it is a number that only a damaged record holds.
    event.classTerminal = quint8(qint8(record.at(4)) >> 4);
    event.version = byteAt(record, 4) & 0x0F;
    event.type = byteAt(record, 5);
    event.characteristic = byteAt(record, 6);
    event.address = byteAt(record, 10);
    event.source = openSource(event, catalogue);
    event.signal = byteAt(record, 7);
    event.noise = byteAt(record, 8);
    event.code = qint8(record.at(9));
    event.data = record.mid(11, 5);

    switch (event.code) {
    case 0:
        decodePowerUp(event, rows);
        break;
    case 1:
        decodeChannelState(event, rows);
        break;
    case 2:
        decodeStatusChange(event, rows);
        break;
    case 3:
        decodeTerminalMode(event, rows);
        break;
    default:
        decodeUnknown(event, rows);
    }
}
