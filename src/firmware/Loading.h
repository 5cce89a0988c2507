#pragma once

#include "link/message.h"

#include <QByteArray>
#include <QDialog>
#include <QString>

#include <memory>

class protocol_boot;

QT_BEGIN_NAMESPACE
namespace Ui
{
class Loading;
}
QT_END_NAMESPACE

/// The dialog that sends a firmware image to the head unit's bootloader and shows how far it is.
///
/// A run begins when the dialog appears and asks the unit to enter its bootloader first; then the bootloader's requests
/// follow, each after the answer to the one before and each at most four times. A run that went well closes the dialog;
/// one that failed or was aborted leaves it open, and the user may begin again from the start. Closing the dialog in
/// the middle of a run is an abort; the Escape key does nothing then.
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
    void send(const message& mess);
    void finishStep();
    void endWithError(const QString& text);
    void endWell();

    std::unique_ptr<Ui::Loading> ui;
    QByteArray firmware;
    QString fileName;
    protocol_boot* protocol;
    quint8 address = 0;
    int baudrate = 0;
    bool finished = true; ///< no run is on; answers that come then change nothing
    int awaitedRequestType = 0;
    int awaitedBootType = 0;
};
