#pragma once

#include "domain/terminals.h"
#include "link/DeviceOperation.h"

#include <QByteArrayList>

#include <array>

/// Asks which terminals the unit knows: the addresses in use of each of the five channel classes, then a record of
/// each terminal.
///
/// The answers come over the radio, so each counts only when a second reading in a row gives the same payload; an
/// answer that differs is read again, as often as it takes unless a limit is set. A step without an answer counts as
/// one with no data, and so does one that the limit ends.
class TerminalSearch : public DeviceOperation
{
    Q_OBJECT

public:
    using DeviceOperation::DeviceOperation;

    /// The addresses, from 1 on, whose bits are set in the answer of a class.
    static QByteArray addressesInUse(const QByteArray& bitmap);

    /// With so many readings of one step at the most; 0 for as many as it takes.
    void start(int mostReadingsOfStep = 0);

    bool handles(int requestType) const override;
    bool endsStep(const message& answer) const override;
    void takeAnswer(const message& answer, bool failed) override;

signals:
    /// The records of all terminals, no two alike.
    void terminalsFound(const QByteArrayList& terminals);

    /// The limit has ended a step although its last answer was good: no two in a row agreed.
    void unconfirmed(const message& answer);

private:
    void answerBusyChannel(const message& answer);
    void answerTerminalInfo(const message& answer);
    bool isOver(const message& answer);
    void askNextTerminal();

    std::array<QByteArray, terminalClasses> channelLists; ///< addresses that are still to be asked, by class
    QByteArrayList terminalInfos;
    int mostReadings = 0;
    int readings = 0; ///< of the present step that are over
};
