#pragma once

#include "link/CoordinatorLink.h"
#include "link/StatePort.h"
#include "link/message.h"
#include "widgets/Form.h"

#include <QByteArrayList>
#include <QDateTime>
#include <QVector>

#include <memory>

class FormWaiting;
class Transmitter;
struct PortRow;

QT_BEGIN_NAMESPACE
namespace Ui
{
class FormChoiceCoordinator;
}
QT_END_NAMESPACE

/// The form "Coordinator selection": shows what a CoordinatorLink knows of the serial ports and their coordinators, and
/// passes on to it what the user does.
///
/// It owns the link and begins it, keeps one row for every port, and shows the busy form as the link says. Its slots
/// and signals are those of the link by the names that the rest of the program knows; the link tells what they do.
///
/// Lives on the GUI thread, from the window's start to its end; all signals are emitted there. Give the main window
/// as parent, so that this form and the busy form stay above it. The link ends with the form, and with it the ports.
class FormChoiceCoordinator : public Form
{
    Q_OBJECT

public:
    explicit FormChoiceCoordinator(CoordinatorSeams seams = {}, Transmitter::BootParser parseBootAnswer = {},
                                   QWidget* parent = nullptr);
    ~FormChoiceCoordinator() override;
    Q_DISABLE_COPY_MOVE(FormChoiceCoordinator)

    /// Coordinator address of the current port, noCoordinator if there is no current port or it was chosen without an
    /// address.
    quint8 currentAddress() const
    {
        return link.currentAddress();
    }

    /// Baud rate at which the current port was chosen, 1200 if there is no current port.
    int currentBaudrate() const
    {
        return link.currentBaudrate();
    }

    /// The link that the form shows, for what the form has nothing to add to. A row's firmware button calls the link's
    /// firmware runner.
    CoordinatorLink& coordinatorLink()
    {
        return link;
    }

public slots:
    // Ports and their coordinators.
    void sl_updatePortList()
    {
        link.updatePortList();
    }
    void sl_setStatePort(Transmitter* sender, StatePort state);
    void sl_setBaudratePort(Transmitter* sender, int baudrate);
    void sl_receiveAnswer(Transmitter* sender, const message& answer);
    void sl_buttonConnectPress();
    void sl_buttonFirmwarePress();
    void sl_checkBoxCheckCoordinatorPress();
    void sl_periodicCheckCoordinator();
    void sl_tryFirstConnectCoordinator();
    void on_buttonChoicePort_clicked();

    // Operations of the current port.

    /// The busy form stays up for the receiver of the scripts to end.
    void sl_PreOperationReadConfigAndScript()
    {
        link.readConfiguration();
    }
    void sl_SendRequestReadConfig(uchar address, uchar number)
    {
        link.readOutput(address, number);
    }
    void sl_SendRequestReadScript(uchar number)
    {
        link.readScript(number);
    }
    void sl_PreOperationWriteConfigAndScript(const QByteArrayList& listConfig, const QByteArrayList& listScript)
    {
        link.writeConfiguration(listConfig, listScript);
    }
    void sl_SendRequestSyncTime()
    {
        link.setDeviceTime();
    }
    void sl_SendRequestBeginReadLog()
    {
        link.readLog();
    }
    void sl_SendRequestOnCurrentPort(const message& request)
    {
        link.send(request);
    }
    void sl_CurrentLoadingFirmwareIsRunning(bool running)
    {
        link.setFirmwareRunning(running);
    }
    void sl_HideFormWaiting();

signals:
    // What a port has told its Transmitter, the first argument, for those who look on; null where a request found no
    // current port.
    void sig_initTransmitter(Transmitter* receiver, const QString& portName);
    void sig_CheckingPort(Transmitter* receiver, const QString& portName);
    void sig_closePort(Transmitter* receiver);
    void sig_sendMessageInPort(Transmitter* receiver, const message& request);

    /// Status of the current port. statePort: 0 watched without a connection, 1 watched and connected, 2 not watched.
    void sig_sendStatusSelectPortOnForm(uchar statePort, const QString& namePort, const QString& baudrate,
                                        uchar addressCoordinator, const QString& serNum, const QString& version);

    /// Whether device operations are allowed.
    void sig_sendEnableOperationOnForm(bool enable);

    // Packets of the current port; periodic marks those of the watch.
    void sig_sendRequestOnForm(const QDateTime& time, const QByteArray& request, bool periodic);
    void sig_sendAnswerOnForm(const QDateTime& time, const QByteArray& answer, bool periodic);

    /// Address byte, number byte and record of each output that could be read, at most 70.
    void sig_sendReadConfigOnForm(const QByteArrayList& config);

    /// Number byte and record of each script that could be read, at most 32.
    void sig_sendReadScriptOnForm(const QByteArrayList& script);

    /// Log records of 16 bytes each, one block at a time; end marks the last block, also that of a failed reading.
    void sig_sendReadLogOnForm(const QByteArrayList& data, bool end);

    /// The reading of the log ends with an error. Comes before the last sig_sendReadLogOnForm.
    void logIncomplete();

    /// No log was read: the unit's log is the one that was read before, or there is no port to read it from.
    void sig_ReadLogNotNeccessary();

    /// The distinct terminal records that the search found.
    void sig_sendListTerminalsOnForm(const QByteArrayList& listTerminal);

    /// The unit's clock as text; correct only if the whole time could be read.
    void sig_sendDeviceTimeOnForm(const QString& time, bool correct);

    /// One text for the status line about the start or the end of an operation.
    void sig_sendResultOperation(const QString& result);

    /// Answer to a request of a firmware load.
    void sig_sendAnswerFirmWare(const message& answer);

protected:
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void setUpTable();
    void setUpKeys();
    void connectLink();
    void connectOperations();
    void addRow(Port* port);
    void setTabOrderOfRow(int index);
    void fitTable();
    void copyRow() const;
    void selectRow(const Port* port);
    void checkTrouble();
    void sendStatus(PortStatus status);

    Port* portOfTimer() const; ///< the port whose timer calls a slot
    template <typename Field, typename Object>
    PortRow* findRow(Field PortRow::*field, const Object* object) const;

    CoordinatorLink link;
    std::unique_ptr<Ui::FormChoiceCoordinator> ui;
    QVector<PortRow*> portRows; ///< in order of discovery
    FormWaiting* formWaiting;
    int checkedRow = -1;          ///< whose trouble was looked at last
    bool isStateSqueezed = false; ///< the state's column has given way to a narrow form
};
