#pragma once

#include "firmware/FirmwareLoad.h"

#include <QByteArray>
#include <QDialog>
#include <QString>

#include <memory>

QT_BEGIN_NAMESPACE
namespace Ui
{
class Loading;
}
QT_END_NAMESPACE

/// The dialog of a firmware load: it shows how far the load is.
///
/// A load begins when the dialog appears. One that went well closes the dialog; one that failed or was aborted leaves
/// it open, and the user may begin again from the start. Closing the dialog in the middle of a load is an abort; the
/// Escape key does nothing then.
///
/// Created on the GUI thread for one load, run with exec(), and deleted when it closes. It knows neither port nor
/// worker: requests leave by sig_SendMessage, and sl_receiveMessage takes the answers.
class Loading : public QDialog
{
    Q_OBJECT

public:
    explicit Loading(QWidget* parent = nullptr);
    ~Loading() override;
    Q_DISABLE_COPY_MOVE(Loading)

    /// To be called before the dialog is shown. The address 255 stands for none and is sent as 0; the baud rate is that
    /// of the request to enter the bootloader; the image has at least three bytes.
    void setParameters(quint8 newAddress, int newBaudrate, const QString& newFileName, const QByteArray& newFirmware);

public slots:
    void sl_receiveMessage(const message& mess);
    void on_ButtonAbort_clicked();
    void on_ButtonRepeat_clicked();
    void reject() override;

signals:
    void sig_SendMessage(const message& mess);

    /// A line for the user: the start and the end of a run.
    void sig_SendResultOperation(const QString& result);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void startRun();
    void showEnd(FirmwareLoad::End end);

    std::unique_ptr<Ui::Loading> ui;
    FirmwareLoad* load;
    QString fileName;
    quint8 address = 0;
    int baudrate = 0;
};
