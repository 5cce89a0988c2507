#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

class Dialogs;
class QWidget;

/// A firmware image as the user chose it.
struct FirmwareFile
{
    QString name;     ///< the path as chosen
    QByteArray image; ///< opaque, at least three bytes
};

/// Asks the user for a firmware file and reads it. Nothing if the user cancelled, or if the file can't be used, which a
/// message box has told by then. GUI thread; blocks in the dialogs.
std::optional<FirmwareFile> chooseFirmwareFile(QWidget* parent, Dialogs& dialogs);
