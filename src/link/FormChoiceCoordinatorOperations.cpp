#include "link/ConfigurationReading.h"
#include "link/ConfigurationWriting.h"
#include "link/DeviceTime.h"
#include "link/FormChoiceCoordinator.h"
#include "link/FormWaiting.h"
#include "link/LogReading.h"
#include "link/PortRow.h"
#include "link/StepOutcome.h"
#include "link/TerminalSearch.h"
#include "link/protocol_HUBN_NX_Q.h"

#include <QDebug>
#include <QTimer>

#include <algorithm>
#include <chrono>

namespace
{

// Baud rate of a request when the current port has no row.
constexpr int DefaultBaudrate = 1200;

// How long the busy form is seen if nothing was sent.
constexpr std::chrono::seconds NothingSentTime{1};

} // namespace

void FormChoiceCoordinator::setUpOperations()
{
    for (DeviceOperation* const operation : operations) {
        connect(operation, &DeviceOperation::requestReady, this, &FormChoiceCoordinator::sendOnCurrentPort);
        connect(operation, &DeviceOperation::begun, timerNothingSent, &QTimer::stop);
        connect(operation, &DeviceOperation::begun, formWaiting, &FormWaiting::setOperation);
        connect(operation, &DeviceOperation::textChanged, formWaiting, &FormWaiting::setOperationText);
        connect(operation, &DeviceOperation::maximumChanged, formWaiting, &FormWaiting::setProgressMaximum);
        connect(operation, &DeviceOperation::stepDone, formWaiting, &FormWaiting::stepProgress);
        connect(operation, &DeviceOperation::shown, formWaiting, &FormWaiting::show);
        connect(operation, &DeviceOperation::hidden, formWaiting, &FormWaiting::hide);
        connect(operation, &DeviceOperation::nothingSent, timerNothingSent, qOverload<>(&QTimer::start));
        connect(operation, &DeviceOperation::resultReady, this, &FormChoiceCoordinator::sig_sendResultOperation);
    }
    timerNothingSent->setSingleShot(true);
    timerNothingSent->setInterval(NothingSentTime);
    connect(timerNothingSent, &QTimer::timeout, formWaiting, &FormWaiting::hide);
    connect(terminalSearch, &TerminalSearch::terminalsFound, this, &FormChoiceCoordinator::sig_sendListTerminalsOnForm);
    connect(configurationReading, &ConfigurationReading::outputsRead, this,
            &FormChoiceCoordinator::sig_sendReadConfigOnForm);
    connect(configurationReading, &ConfigurationReading::scriptsRead, this,
            &FormChoiceCoordinator::sig_sendReadScriptOnForm);
    connect(logReading, &LogReading::recordsRead, this, &FormChoiceCoordinator::sig_sendReadLogOnForm);
    connect(logReading, &LogReading::incomplete, this, &FormChoiceCoordinator::logIncomplete);
    connect(logReading, &LogReading::notNecessary, this, &FormChoiceCoordinator::sig_ReadLogNotNeccessary);
}

void FormChoiceCoordinator::sl_receiveAnswer(Transmitter* sender, const message& answer)
{
    const int type = answer.requestType();
    const bool isOfCurrentPort = currentTransmitter != nullptr && sender == currentTransmitter;
    const bool isOfLoadingPort = firmwareTransmitter != nullptr && sender == firmwareTransmitter;
    if (type == protocol_HUBN_NX_Q::Search_Address || type == protocol_HUBN_NX_Q::Search_Broadcast) {
        answerSearch(sender, answer);
    } else if (type == protocol_HUBN_NX_Q::Check_Coordinator) {
        answerCheck(sender, answer);
    } else if (answer.bootType() != 0 || type == protocol_HUBN_NX_Q::Switch_To_Boot) {
        if (isOfLoadingPort || isOfCurrentPort) {
            emit sig_sendAnswerFirmWare(answer);
        }
    } else if (!isOfCurrentPort) {
        return;
    } else if (type == protocol_HUBN_NX_Q::Read_Time) {
        answerDeviceTime(answer);
    } else if (type == protocol_HUBN_NX_Q::Sync_Time) {
        answerTimeWritten(answer);
    } else {
        answerOperation(answer);
    }
}

void FormChoiceCoordinator::answerDeviceTime(const message& answer)
{
    // The last time stays in view, also if the question was still on its way when the port was disconnected.
    if (isDisconnected(currentTransmitter)) {
        return;
    }
    const devicetime::Shown shown = devicetime::fromAnswer(answer);
    emit sig_sendDeviceTimeOnForm(shown.text, shown.correct);
}

void FormChoiceCoordinator::answerTimeWritten(const message& answer)
{
    // Whether the unit has taken the time isn't asked: the watch shows its clock anyway.
    const bool arrived = !answer.timedOut() && !answer.portFailed() && answer.isValid();
    if (!arrived && answer.hasAttempts()) {
        resend(answer);
    }
}

void FormChoiceCoordinator::answerOperation(const message& answer)
{
    const bool failed = step::isErrorAnswer(answer);
    if (failed) {
        const QDateTime time = seams.now ? seams.now() : QDateTime::currentDateTime();
        qDebug() << time.toString(QStringLiteral("hh:mm:ss:zzz"))
                 << " (FormChoiceCoordinator): " << step::failureLabel(answer.requestType())
                 << " (attempts remained = " << answer.attempts() << ")";
        if (answer.hasAttempts()) {
            resend(answer);
            return;
        }
    }
    const auto* const operation =
        std::find_if(operations.begin(), operations.end(),
                     [&answer](const DeviceOperation* candidate) { return candidate->handles(answer.requestType()); });
    if (operation != operations.end()) {
        (*operation)->takeAnswer(answer, failed);
    }
}

void FormChoiceCoordinator::resend(message answer)
{
    answer.prepareRetry();
    sendOnCurrentPort(answer);
}

void FormChoiceCoordinator::sendOnCurrentPort(message request)
{
    const PortRow* const row = currentRow();
    request.setBaudrate(row != nullptr ? row->baudrate : DefaultBaudrate);
    emit sig_sendMessageInPort(currentTransmitter, request);
}

void FormChoiceCoordinator::sl_PreOperationReadConfigAndScript()
{
    configurationReading->start();
}

void FormChoiceCoordinator::sl_SendRequestReadConfig(uchar address, uchar number)
{
    configurationReading->readOutput(address, number);
}

void FormChoiceCoordinator::sl_SendRequestReadScript(uchar number)
{
    configurationReading->readScript(number);
}

void FormChoiceCoordinator::sl_PreOperationWriteConfigAndScript(const QByteArrayList& listConfig,
                                                                const QByteArrayList& listScript)
{
    configurationWriting->start(listConfig, listScript);
}

void FormChoiceCoordinator::sl_SendRequestSyncTime()
{
    if (currentTransmitter == nullptr) {
        return;
    }
    const QDateTime time = seams.now ? seams.now() : QDateTime::currentDateTime();
    sendOnCurrentPort(protocol_HUBN_NX_Q::requestSyncTime(chosenAddress, devicetime::toBytes(time)));
}

void FormChoiceCoordinator::sl_SendRequestBeginReadLog()
{
    logReading->start();
}

void FormChoiceCoordinator::sl_SendRequestOnCurrentPort(const message& request)
{
    emit sig_sendMessageInPort(currentTransmitter, request);
}

void FormChoiceCoordinator::sl_CurrentLoadingFirmwareIsRunning(bool running)
{
    firmwareTransmitter = running ? currentTransmitter : nullptr;
}

void FormChoiceCoordinator::sl_HideFormWaiting()
{
    formWaiting->hide();
}
