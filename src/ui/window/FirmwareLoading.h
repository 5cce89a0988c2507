#pragma once

#include <QObject>
#include <QString>

class Dialogs;
class FormChoiceCoordinator;
class Loading;
class QAction;
class QWidget;
struct FirmwareFile;
struct FirmwarePort;

/// Both ways to load firmware: from the menu onto the current port, and from the coordinator form onto the port of a
/// row.
///
/// Each asks for the file and runs the loading dialog, joined to the port that is meant; both return when the dialog
/// has closed. The main window owns it; GUI thread.
class FirmwareLoading : public QObject
{
    Q_OBJECT

public:
    /// The form and the dialogs must outlive it.
    FirmwareLoading(FormChoiceCoordinator* form, Dialogs* fileDialogs, QWidget* mainWindow);

    /// An action for the user of the loading dialogs. It has to live as long as this.
    void offer(QAction* action);

public slots:
    void loadOnCurrentPort();
    void loadOnPort(const FirmwarePort& port);

signals:
    /// Around a load on the current port, during which its watch must rest.
    void runningOnCurrentPort(bool running);

    /// A line for the result line; from loads on the current port only.
    void result(const QString& text);

private:
    Loading* createDialog(quint8 address, int baudrate, const FirmwareFile& file);

    FormChoiceCoordinator* coordinator;
    Dialogs* dialogs;
    QWidget* window;
    QAction* offered = nullptr;
};
