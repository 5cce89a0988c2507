#include "firmware/FirmwareFile.h"

#include "firmware/protocol_boot.h"
#include "texts/texts.h"
#include "widgets/Dialogs.h"

#include <QDir>
#include <QFile>

// In no header: only a test has files of its own to be read.
std::optional<FirmwareFile> readFirmwareFile(QFile& file, QWidget* parent, Dialogs& dialogs)
{
    // These messages have always been in Russian, whatever the language of the rest.
    const auto fail = [&dialogs, parent](const QString& text) -> std::optional<FirmwareFile> {
        dialogs.critical(parent, QStringLiteral("Ошибка файла прошивки"), text);
        return {};
    };
    const QString path = file.fileName();
    if (file.isOpen()) {
        return fail(QStringLiteral("Файл %1 уже открыт!").arg(path));
    }
    if (!file.open(QIODevice::ReadOnly)) {
        return fail(QStringLiteral("Ошибка открытия файла %1").arg(path));
    }
    const QByteArray image = file.readAll();
    file.close();
    if (image.size() < protocol_boot::smallestImage) {
        // The current directory stands before the path even if that is a full one.
        return fail(QStringLiteral("Файл прошивки %1/%2 содержит недостаточное количество данных!")
                        .arg(QDir::currentPath(), path));
    }
    return FirmwareFile{path, image};
}

std::optional<FirmwareFile> chooseFirmwareFile(QWidget* parent, Dialogs& dialogs)
{
    const QString path = dialogs.openFileName(parent, texts::firmwareChooseFile(), QStringLiteral("*.crypt"));
    if (path.isEmpty()) {
        return {};
    }
    QFile file(path);
    return readFirmwareFile(file, parent, dialogs);
}
