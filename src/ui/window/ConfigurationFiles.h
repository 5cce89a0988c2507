#pragma once

#include <QObject>
#include <QSharedPointer>
#include <QString>

class Dialogs;
class QWidget;
class RelayInfo;

/// Saves and loads the configuration, and brings the default settings: what stands behind the three actions of the
/// menu "Configuration" that work on files.
///
/// The main window owns it; GUI thread. It asks for file names, changes the model and tells by signals what the window
/// has to show. Loading blocks until the file is read.
class ConfigurationFiles : public QObject
{
    Q_OBJECT

public:
    /// The dialogs must outlive it.
    ConfigurationFiles(QSharedPointer<RelayInfo> model, Dialogs* fileDialogs, QWidget* mainWindow);

public slots:
    void save();
    void load();

    /// Reads "DefaultSetting_EN.cfg" from the working directory and asks for it to be written to the device. A file
    /// that is missing or can't be opened leaves the model as it was.
    void setDefaults();

signals:
    void result(const QString& text);          ///< the text for the result line; several in an operation
    void modelReplaced();                      ///< tree and lists must be built anew
    void commentReplaced(const QString& text); ///< after modelReplaced(), not with default settings
    void writeRequested();                     ///< the default settings are in the model and wait for the device

private:
    QSharedPointer<RelayInfo> relayInfo;
    Dialogs* dialogs;
    QWidget* window;
};
