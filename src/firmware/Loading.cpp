#include "firmware/Loading.h"

#include "domain/terminals.h"
#include "firmware/protocol_boot.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "texts/texts.h"
#include "ui_Loading.h"
#include "widgets/Look.h"

#include <QColor>
#include <QKeyEvent>
#include <QShowEvent>

namespace
{

QString failedBarStyle()
{
    return QStringLiteral("QProgressBar { color: white; font-weight: bold; text-align: center;"
                          " border: 1px solid gray; border-radius: 3px; }"
                          "QProgressBar::chunk { border-radius: 2px;"
                          " background-color: qlineargradient(x1: 0, y1: 0, x2: 0, y2: 1, stop: 0 %1, stop: 1 %2); }")
        .arg(look::rgba(QColor(255, 200, 0)), look::rgba(QColor(255, 0, 0)));
}

bool hasSucceeded(const message& mess)
{
    const bool accepted =
        mess.answerCode() == protocol_boot::Accepted || mess.answerCode() == protocol_boot::AcceptedToo;
    return mess.isValid() && !mess.timedOut() && !mess.portFailed() && accepted;
}

bool carriesImage(const message& mess)
{
    return mess.bootType() == protocol_boot::ImageHead || mess.bootType() == protocol_boot::FullBlock ||
           mess.bootType() == protocol_boot::LastBlock;
}

QString failureText(const message& mess)
{
    if (mess.portFailed()) {
        return texts::firmwarePortError();
    }
    if (mess.timedOut()) {
        return texts::firmwareNotResponding();
    }
    return mess.answerCode() == protocol_boot::WriteError ? texts::firmwareWriteError()
                                                          : texts::firmwareProgrammingError();
}

} // namespace

Loading::Loading(QWidget* parent)
    : QDialog(parent, Qt::Window | Qt::WindowTitleHint | Qt::MSWindowsFixedSizeDialogHint),
      ui(std::make_unique<Ui::Loading>()), protocol(new protocol_boot(this))
{
    ui->setupUi(this);
    setWindowTitle(texts::firmwareTitle());
    setAttribute(Qt::WA_DeleteOnClose);
    ui->labelFileName->setElideMode(Qt::ElideMiddle);
}

Loading::~Loading() = default;

void Loading::setParameters(quint8 newAddress, int newBaudrate, const QString& newFileName,
                            const QByteArray& newFirmware)
{
    address = newAddress == noCoordinator ? 0 : newAddress;
    baudrate = newBaudrate;
    fileName = newFileName;
    firmware = newFirmware;
}

void Loading::sl_receiveMessage(const message& mess)
{
    // After an abort and a repeat the answer to a request of the former run may still be under way.
    if (finished || mess.requestType() != awaitedRequestType || mess.bootType() != awaitedBootType) {
        return;
    }
    if (mess.requestType() == protocol_HUBN_NX_Q::Switch_To_Boot) {
        // Whatever the answer: a unit that keeps silent may be in its bootloader already.
        send(protocol->takeNextRequest());
        return;
    }
    const bool succeeded = hasSucceeded(mess);
    if (!succeeded && mess.hasAttempts()) {
        message again = mess;
        again.prepareRetry();
        send(again);
    } else if (succeeded || !carriesImage(mess)) {
        // The commands around the image may go unanswered.
        finishStep();
    } else {
        endWithError(failureText(mess));
    }
}

void Loading::on_ButtonAbort_clicked()
{
    if (ui->ButtonAbort->text() == texts::buttonClose()) {
        close();
    } else {
        endWithError(texts::firmwareAborted());
    }
}

void Loading::on_ButtonRepeat_clicked()
{
    startRun();
}

void Loading::reject()
{
    if (!finished) {
        endWithError(texts::firmwareAborted());
    }
    QDialog::reject();
}

void Loading::keyPressEvent(QKeyEvent* event)
{
    // A key that slips in must not leave the unit with half an image.
    if (finished || !event->matches(QKeySequence::Cancel)) {
        QDialog::keyPressEvent(event);
    }
}

void Loading::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    // Coming back from an icon is no new start.
    if (!event->spontaneous()) {
        startRun();
    }
}

void Loading::startRun()
{
    protocol->setFirmware(firmware);
    ui->labelFileName->setText(fileName);
    ui->ButtonAbort->setText(texts::buttonAbort());
    ui->ButtonRepeat->hide();
    ui->progressBar->setAlignment(Qt::AlignCenter);
    ui->progressBar->setStyleSheet(QStringLiteral("color: black"));
    ui->progressBar->setFormat(texts::firmwareProgramming() + QStringLiteral(" %p%"));
    ui->progressBar->setMaximum(protocol->requestCount());
    ui->progressBar->setValue(0);
    finished = false;

    message enterBoot = protocol_HUBN_NX_Q::requestSwitchToBoot(address);
    enterBoot.setBaudrate(baudrate);
    send(enterBoot);
    emit sig_SendResultOperation(texts::resultFirmwareStarted());
}

void Loading::send(const message& mess)
{
    awaitedRequestType = mess.requestType();
    awaitedBootType = mess.bootType();
    emit sig_SendMessage(mess);
}

void Loading::finishStep()
{
    ui->progressBar->setValue(qMin(ui->progressBar->value() + 1, ui->progressBar->maximum()));
    if (protocol->hasRequests()) {
        send(protocol->takeNextRequest());
    } else {
        endWell();
    }
}

void Loading::endWithError(const QString& text)
{
    ui->progressBar->setFormat(text);
    ui->progressBar->setValue(ui->progressBar->maximum());
    ui->progressBar->setStyleSheet(failedBarStyle());
    const bool aborted = text == texts::firmwareAborted();
    const QString result = aborted ? texts::resultFirmwareAborted() : texts::resultFirmwareError();
    emit sig_SendResultOperation(result + QLatin1Char('\n') + fileName);
    ui->ButtonAbort->setText(texts::buttonClose());
    ui->ButtonRepeat->show();
    finished = true;
}

void Loading::endWell()
{
    ui->progressBar->setFormat(texts::firmwareCompleted());
    ui->progressBar->setValue(ui->progressBar->maximum());
    ui->progressBar->setStyleSheet(QStringLiteral("color: black; font-weight:bold;"));
    emit sig_SendResultOperation(texts::resultFirmwareCompleted() + QLatin1Char('\n') + fileName);
    ui->ButtonAbort->setText(texts::buttonClose());
    finished = true;
    on_ButtonAbort_clicked();
}
