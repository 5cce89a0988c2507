#pragma once

#include "domain/terminals.h"
#include "link/DeviceOperation.h"

#include <QByteArrayList>

#include <array>

/// Asks which terminals the unit knows: the addresses in use of each of the five channel classes, then a record of
/// each terminal.
///
/// The answers come over the radio, so each counts only when a second reading in a row gives the same payload; an
/// answer that differs is read again, as often as it takes. A step without an answer counts as one with no data.
class TerminalSearch : public DeviceOperation
{
    Q_OBJECT

public:
    using DeviceOperation::DeviceOperation;

    void start();

    bool handles(int requestType) const override;
    void takeAnswer(const message& answer, bool failed) override;

signals:
    /// The records of all terminals, no two alike.
    void terminalsFound(const QByteArrayList& terminals);

private:
    void answerBusyChannel(const message& answer);
    void answerTerminalInfo(const message& answer);
    bool isConfirmed(const message& answer);
    void askNextTerminal();

    std::array<QByteArray, terminalClasses> channelLists; ///< addresses that are still to be asked, by class
    QByteArrayList terminalInfos;
};
