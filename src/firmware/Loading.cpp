#include "firmware/Loading.h"

#include "texts/texts.h"
#include "ui_Loading.h"
#include "widgets/Look.h"
#include "widgets/ScreenRoom.h"

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

struct EndTexts
{
    QString (*bar)();
    QString (*result)();
};

// By FirmwareLoad::End.
constexpr EndTexts endTexts[] = {
    {texts::firmwareCompleted, texts::resultFirmwareCompleted},
    {texts::firmwareAborted, texts::resultFirmwareAborted},
    {texts::firmwarePortError, texts::resultFirmwareError},
    {texts::firmwareNotResponding, texts::resultFirmwareError},
    {texts::firmwareWriteError, texts::resultFirmwareError},
    {texts::firmwareProgrammingError, texts::resultFirmwareError},
};

} // namespace

Loading::Loading(QWidget* parent)
    : QDialog(parent, Qt::Window | Qt::WindowTitleHint | Qt::MSWindowsFixedSizeDialogHint),
      ui(std::make_unique<Ui::Loading>()), load(new FirmwareLoad(this))
{
    ui->setupUi(this);
    screenRoom::keep(this);
    setWindowTitle(texts::firmwareTitle());
    ui->progressBar->setAccessibleName(texts::firmwareTitle());
    setAttribute(Qt::WA_DeleteOnClose);
    ui->labelFileName->setElideMode(Qt::ElideMiddle);
    connect(load, &FirmwareLoad::requestReady, this, &Loading::sig_SendMessage);
    connect(load, &FirmwareLoad::stepDone, this,
            [this] { ui->progressBar->setValue(qMin(ui->progressBar->value() + 1, ui->progressBar->maximum())); });
    connect(load, &FirmwareLoad::ended, this, &Loading::showEnd);
}

Loading::~Loading() = default;

void Loading::setParameters(quint8 newAddress, int newBaudrate, const QString& newFileName,
                            const QByteArray& newFirmware)
{
    address = newAddress;
    baudrate = newBaudrate;
    fileName = newFileName;
    load->setImage(newFirmware);
}

void Loading::sl_receiveMessage(const message& mess)
{
    load->takeAnswer(mess);
}

void Loading::on_ButtonAbort_clicked()
{
    if (ui->ButtonAbort->text() == texts::buttonClose()) {
        close();
    } else {
        load->abort();
    }
}

void Loading::on_ButtonRepeat_clicked()
{
    startRun();
}

void Loading::reject()
{
    load->abort();
    QDialog::reject();
}

void Loading::keyPressEvent(QKeyEvent* event)
{
    // A key that slips in must not leave the unit with half an image.
    if (!load->isRunning() || !event->matches(QKeySequence::Cancel)) {
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
    ui->labelFileName->setText(fileName);
    ui->ButtonAbort->setText(texts::buttonAbort());
    ui->ButtonRepeat->hide();
    ui->progressBar->setAlignment(Qt::AlignCenter);
    ui->progressBar->setStyleSheet(QStringLiteral("color: black"));
    ui->progressBar->setFormat(texts::firmwareProgramming() + QStringLiteral(" %p%"));
    ui->progressBar->setMaximum(load->stepCount());
    ui->progressBar->setValue(0);
    load->start(address, baudrate);
    emit sig_SendResultOperation(texts::resultFirmwareStarted());
}

void Loading::showEnd(FirmwareLoad::End end)
{
    const bool isCompleted = end == FirmwareLoad::End::Completed;
    const EndTexts& told = endTexts[static_cast<int>(end)];
    ui->progressBar->setFormat(told.bar());
    ui->progressBar->setValue(ui->progressBar->maximum());
    ui->progressBar->setStyleSheet(isCompleted ? QStringLiteral("color: black; font-weight:bold;") : failedBarStyle());
    emit sig_SendResultOperation(told.result() + QLatin1Char('\n') + fileName);
    ui->ButtonAbort->setText(texts::buttonClose());
    if (isCompleted) {
        on_ButtonAbort_clicked();
    } else {
        ui->ButtonRepeat->show();
    }
}
