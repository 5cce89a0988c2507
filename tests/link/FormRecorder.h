#pragma once

#include "link/EventRecorder.h"
#include "link/FormChoiceCoordinator.h"
#include "link/FormWaiting.h"
#include "link/InventedPorts.h"
#include "link/Transmitter.h"

#include <QCheckBox>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>
#include <QVector>

/// A coordinator form over ports that the test names, with everything that it emits, in order, one line each, and with
/// the parts of its table at hand.
///
/// As long as the event loop doesn't run, nothing that a worker does reaches the form: a test that stays out of the
/// event loop is alone with it.
class FormRecorder : public EventRecorder
{
public:
    struct Sent
    {
        Transmitter* receiver;
        message request;
    };

    explicit FormRecorder(QStringList portNames = {}, CoordinatorSeams seams = {},
                          Transmitter::BootParser parseBootAnswer = {})
        : names(std::move(portNames)), form(withPorts(std::move(seams)), std::move(parseBootAnswer))
    {
        using Choice = FormChoiceCoordinator;
        connect(&form, &Choice::sig_initTransmitter, this, [this](Transmitter* receiver, const QString& name) {
            transmitters.append(receiver);
            events.append(QStringLiteral("init ") + name);
        });
        connect(&form, &Choice::sig_CheckingPort, this,
                [this](Transmitter*, const QString& name) { events.append(QStringLiteral("open ") + name); });
        connect(&form, &Choice::sig_closePort, this, [this] { events.append(QStringLiteral("close")); });
        connect(&form, &Choice::sig_sendMessageInPort, this, [this](Transmitter* receiver, const message& request) {
            sent.append({receiver, request});
            events.append(QStringLiteral("send %1 at %2").arg(request.requestType()).arg(request.baudrate()));
        });
        connect(&form, &Choice::sig_sendStatusSelectPortOnForm, this,
                [this](uchar state, const QString& name, const QString& baudrate, uchar address, const QString& serial,
                       const QString& version) {
                    events.append(QStringLiteral("status %1 %2 %3 %4 %5 %6")
                                      .arg(state)
                                      .arg(name, baudrate)
                                      .arg(address)
                                      .arg(serial, version));
                });
        connect(&form, &Choice::sig_sendEnableOperationOnForm, this, &FormRecorder::recordEnabling);
        connect(&form, &Choice::sig_sendReadConfigOnForm, this, &FormRecorder::recordOutputs);
        connect(&form, &Choice::sig_sendReadScriptOnForm, this, &FormRecorder::recordScripts);
        connect(&form, &Choice::sig_sendReadLogOnForm, this, &FormRecorder::recordLog);
        connect(&form, &Choice::sig_ReadLogNotNeccessary, this, &FormRecorder::recordLogNotNecessary);
        connect(&form, &Choice::sig_sendListTerminalsOnForm, this, &FormRecorder::recordTerminals);
        connect(&form, &Choice::sig_sendDeviceTimeOnForm, this, &FormRecorder::recordTime);
        connect(&form, &Choice::sig_sendResultOperation, this, &FormRecorder::recordResult);
        connect(&form, &Choice::sig_sendAnswerFirmWare, this, &FormRecorder::recordFirmware);
        listening = true;
        form.sl_updatePortList();
    }

    /// Answers the search of a row, so that its coordinator is found at this address.
    void find(int row = 0, quint8 address = 1, int baudrate = 57600)
    {
        Transmitter* const transmitter = transmitters.at(row);
        message broadcast = CoordinatorSearch::begin();
        broadcast.setBaudrate(baudrate);
        form.sl_setStatePort(transmitter, StateSearching);
        form.sl_receiveAnswer(transmitter, answers::good(broadcast));
        form.sl_receiveAnswer(transmitter, searchAnswer(address, baudrate));
    }

    /// Answers everything that was asked since the last call, with data that suit.
    void answerAll()
    {
        while (!sent.isEmpty()) {
            const Sent asked = sent.takeFirst();
            form.sl_receiveAnswer(asked.receiver, suitableAnswer(asked.request));
        }
    }

    QTableWidget* table() const
    {
        return form.findChild<QTableWidget*>(QStringLiteral("tableWidget"));
    }
    QPushButton* select() const
    {
        return form.findChild<QPushButton*>(QStringLiteral("buttonChoicePort"));
    }
    FormWaiting* busy() const
    {
        return form.findChild<FormWaiting*>();
    }
    QProgressBar* bar() const
    {
        return busy()->findChild<QProgressBar*>();
    }

    QString text(int row, int column) const
    {
        return table()->item(row, column)->text();
    }
    QString state(int row = 0) const
    {
        return text(row, 5);
    }
    QCheckBox* check(int row = 0) const
    {
        return table()->cellWidget(row, 6)->findChild<QCheckBox*>();
    }
    QPushButton* connectButton(int row = 0) const
    {
        return button(row, 0);
    }
    QPushButton* firmwareButton(int row = 0) const
    {
        return button(row, 1);
    }
    bool showsControls(int row = 0) const
    {
        return !check(row)->parentWidget()->isHidden();
    }

    /// Columns 1 to 4 of a row.
    QStringList info(int row = 0) const
    {
        return {text(row, 1), text(row, 2), text(row, 3), text(row, 4)};
    }

    QStringList names; ///< may change at any time
    QVector<Transmitter*> transmitters;
    QVector<Sent> sent;

private:
    CoordinatorSeams withPorts(CoordinatorSeams seams)
    {
        // None before the signals are connected, so that none of them is missed.
        seams.portNames = [this] { return listening ? names : QStringList(); };
        return seams;
    }

    QPushButton* button(int row, int index) const
    {
        return table()->cellWidget(row, 6)->findChildren<QPushButton*>().at(index);
    }

    bool listening = false;

public:
    FormChoiceCoordinator form;
};
