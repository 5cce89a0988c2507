#include "ui/window/FirmwareLoading.h"

#include "firmware/FirmwareFile.h"
#include "firmware/Loading.h"
#include "link/FormChoiceCoordinator.h"

#include <QIcon>

FirmwareLoading::FirmwareLoading(FormChoiceCoordinator* form, Dialogs* fileDialogs, QWidget* mainWindow)
    : QObject(mainWindow), coordinator(form), dialogs(fileDialogs), window(mainWindow)
{
}

void FirmwareLoading::offer(QAction* action)
{
    offered = action;
}

void FirmwareLoading::loadOnCurrentPort()
{
    const std::optional<FirmwareFile> file = chooseFirmwareFile(window, *dialogs);
    if (!file) {
        return;
    }
    Loading* const loading = createDialog(coordinator->currentAddress(), coordinator->currentBaudrate(), *file);
    connect(loading, &Loading::sig_SendMessage, coordinator, &FormChoiceCoordinator::sl_SendRequestOnCurrentPort);
    connect(loading, &Loading::sig_SendResultOperation, this, &FirmwareLoading::result);
    emit runningOnCurrentPort(true);
    loading->exec();
    emit runningOnCurrentPort(false);
}

void FirmwareLoading::loadOnPort(const FirmwarePort& port)
{
    const std::optional<FirmwareFile> file = chooseFirmwareFile(coordinator, *dialogs);
    if (!file) {
        return;
    }
    Loading* const loading = createDialog(port.address, port.baudrate, *file);
    connect(loading, &Loading::sig_SendMessage, this, port.send);
    port.setRunning(true);
    loading->exec();
    port.setRunning(false);
}

/// The dialog deletes itself when it has closed.
Loading* FirmwareLoading::createDialog(quint8 address, int baudrate, const FirmwareFile& file)
{
    constexpr int usualBaudrate = 57600; // for a port on which no coordinator has ever answered
    auto* const loading = new Loading;
    loading->setWindowIcon(window->windowIcon());
    // The main window's closing ends the application also in the middle of a load.
    loading->setAttribute(Qt::WA_QuitOnClose, false);
    if (offered != nullptr) {
        loading->addAction(offered);
    }
    loading->setParameters(address, baudrate > 0 ? baudrate : usualBaudrate, file.name, file.image);
    connect(coordinator, &FormChoiceCoordinator::sig_sendAnswerFirmWare, loading, &Loading::sl_receiveMessage);
    return loading;
}
