#pragma once

#include "domain/terminals.h"
#include "link/StatePort.h"
#include "link/message.h"
#include "widgets/Form.h"

#include <QByteArrayList>
#include <QDateTime>
#include <QStringList>
#include <QVector>

#include <array>
#include <functional>
#include <memory>

class ConfigurationReading;
class ConfigurationWriting;
class DeviceOperation;
class FormWaiting;
class LogReading;
class QTimer;
class TerminalSearch;
class Transmitter;
struct CoordinatorInfo;
struct PortRow;

QT_BEGIN_NAMESPACE
namespace Ui
{
class FormChoiceCoordinator;
}
QT_END_NAMESPACE

/// What the coordinator form takes from outside; an empty function means the real thing.
struct CoordinatorSeams
{
    std::function<QStringList()> portNames;                 ///< names of the serial ports; QSerialPortInfo
    std::function<QDateTime()> now;                         ///< local date and time; QDateTime::currentDateTime
    std::function<message(const message&)> parseBootAnswer; ///< runs on the ports' threads; none: no boot answers
};

/// One port as a firmware load sees it.
struct FirmwarePort
{
    quint8 address = noCoordinator; ///< coordinator address of the row
    int baudrate = 0;               ///< rate at which a coordinator answered, 0 if none ever did
    std::function<void(const message&)> send;
    std::function<void(bool)> setRunning; ///< while true the port's watch rests and boot answers come back
};

/// Runs a firmware load on a port and returns when it is over. Answers arrive by
/// FormChoiceCoordinator::sig_sendAnswerFirmWare.
using FirmwareRunner = std::function<void(const FirmwarePort&)>;

/// The form "Coordinator selection": finds the coordinators on all serial ports, and runs the operations of the one
/// that was chosen.
///
/// It keeps one row for every port that was seen in this run, each with a Transmitter on a thread of its own, searches
/// new ports by itself, watches found coordinators once a second, and makes the first one the current port. All device
/// operations go to the current port, one at a time; each is a DeviceOperation, and the form gives them their answers,
/// resends failed steps, moves the busy form and passes their results on.
///
/// Lives on the GUI thread, from the window's start to its end; all signals are emitted there. Give the main window
/// as parent, so that this form and the busy form stay above it. The ports' threads are never stopped: they end with
/// the process. Their ports are closed with the form, which waits for that no longer than 300 ms in all.
class FormChoiceCoordinator : public Form
{
    Q_OBJECT

public:
    explicit FormChoiceCoordinator(CoordinatorSeams seams = {}, QWidget* parent = nullptr);
    ~FormChoiceCoordinator() override;
    Q_DISABLE_COPY_MOVE(FormChoiceCoordinator)

    /// Coordinator address of the current port, noCoordinator if there is no current port or it was chosen without an
    /// address.
    quint8 currentAddress() const;

    /// Baud rate at which the current port was chosen, 1200 if there is no current port.
    int currentBaudrate() const;

    /// Makes the next log reading read the log even if its counter hasn't changed.
    void forceLogReading();

    /// What a row's firmware button calls. Without one the button does nothing.
    void setFirmwareRunner(FirmwareRunner runner);

public slots:
    // Ports and their coordinators.
    void sl_updatePortList();
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

    /// Reads all outputs, then all scripts. The busy form stays up for the receiver of the scripts to end.
    void sl_PreOperationReadConfigAndScript();
    void sl_SendRequestReadConfig(uchar address, uchar number);
    void sl_SendRequestReadScript(uchar number);

    /// Writes output records and script records, and hides the busy form after the last script.
    void sl_PreOperationWriteConfigAndScript(const QByteArrayList& listConfig, const QByteArrayList& listScript);

    /// Sets the unit's clock to the PC's.
    void sl_SendRequestSyncTime();

    /// Reads the log from its beginning if its counter has changed since the last reading.
    void sl_SendRequestBeginReadLog();

    /// Sends a request of a firmware load, as it is, to the current port.
    void sl_SendRequestOnCurrentPort(const message& request);

    /// A firmware load begins or ends on the current port.
    void sl_CurrentLoadingFirmwareIsRunning(bool running);

    void sl_HideFormWaiting();

signals:
    // To every Transmitter, each of which acts only if it is the first argument.
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

private:
    void setUpTable();
    void setUpOperations();
    QStringList portNames() const;
    void addPort(const QString& portName);
    void showNewRows();
    void fitTable();

    template <typename Field>
    PortRow* findRow(Field PortRow::*field, const QObject* object) const;
    PortRow* currentRow() const;                               ///< row of the current port, null without one
    bool isDisconnected(const Transmitter* transmitter) const; ///< by the user or for want of a coordinator

    void answerSearch(Transmitter* sender, const message& answer);
    void answerCheck(Transmitter* sender, const message& answer);
    void answerDeviceTime(const message& answer);
    void answerTimeWritten(const message& answer);
    void answerOperation(const message& answer);
    void updateCoordinatorInfo(Transmitter* transmitter, const CoordinatorInfo& info);
    void choosePort(PortRow* row);
    void sendStatus(uchar statePort, const PortRow& row);

    void sendOnCurrentPort(message request);
    void resend(message answer);

    const CoordinatorSeams seams;
    std::unique_ptr<Ui::FormChoiceCoordinator> ui;
    QVector<PortRow*> portRows; ///< in order of discovery
    QTimer* timerPortList;
    Transmitter* currentTransmitter = nullptr; ///< the port for device operations; a disconnect doesn't clear it
    quint8 chosenAddress = noCoordinator;
    int chosenBaudrate = 1200;
    Transmitter* firmwareTransmitter = nullptr; ///< the port on which a firmware load runs
    FirmwareRunner firmwareRunner;
    bool isFirmwareAtHand = false; ///< the dialogs of a row's firmware load are open, that of its file among them
    FormWaiting* formWaiting;
    QTimer* timerNothingSent; ///< takes the busy form away again where there is nothing to wait for
    TerminalSearch* terminalSearch;
    ConfigurationReading* configurationReading;
    ConfigurationWriting* configurationWriting;
    LogReading* logReading;
    const std::array<DeviceOperation*, 4> operations;
};
