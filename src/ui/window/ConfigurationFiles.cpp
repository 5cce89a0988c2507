#include "ui/window/ConfigurationFiles.h"

#include "model/RelayInfo.h"
#include "texts/texts.h"
#include "widgets/Dialogs.h"

#include <QWidget>

namespace
{

QString fileFilter()
{
    return QStringLiteral("*.cfg");
}

QString defaultSettings()
{
    return QStringLiteral("DefaultSetting_EN.cfg");
}

/// What the result line says of a load, without the file's name.
QString loadText(int loadResult, int errorCount)
{
    if (loadResult != RelayInfo::FileOk) {
        return texts::resultLoadError();
    }
    if (errorCount != 0) {
        return texts::resultLoadWithErrors() + texts::resultErrorCount() + QString::number(errorCount) +
               QLatin1Char(')');
    }
    return texts::resultLoadOk();
}

} // namespace

ConfigurationFiles::ConfigurationFiles(QSharedPointer<RelayInfo> model, Dialogs* fileDialogs, QWidget* mainWindow)
    : QObject(mainWindow), relayInfo(std::move(model)), dialogs(fileDialogs), window(mainWindow)
{
}

void ConfigurationFiles::save()
{
    const QString path = dialogs->saveFileName(window, texts::fileSaveConfiguration(), fileFilter());
    if (path.isEmpty()) {
        return;
    }
    emit result(texts::resultSaveStarted());
    const bool saved = relayInfo->saveToFile(path) == RelayInfo::FileOk;
    emit result((saved ? texts::resultSaveOk() : texts::resultSaveError()) + QLatin1Char('\n') + path);
}

void ConfigurationFiles::load()
{
    const QString path = dialogs->openFileName(window, texts::fileLoadConfiguration(), fileFilter());
    if (path.isEmpty()) {
        return;
    }
    emit result(texts::resultLoadStarted());
    const int loaded = relayInfo->loadFromFile(path);
    emit modelReplaced();
    emit commentReplaced(relayInfo->comment());
    emit result(loadText(loaded, relayInfo->errorCount()) + QLatin1Char('\n') + path);
}

void ConfigurationFiles::setDefaults()
{
    emit result(texts::resultDefaultsStarted());
    const QString comment = relayInfo->comment();
    const int loaded = relayInfo->loadFromFile(defaultSettings());
    if (loaded == RelayInfo::FileNotFound) {
        dialogs->critical(window, texts::fileNotFound(),
                          texts::fileNoDefaultSettings() + QStringLiteral(" (%1)").arg(defaultSettings()));
    }
    if (loaded != RelayInfo::FileOk) {
        // What is in the model now are no default settings: they must not reach the device in their name.
        emit result(texts::resultDefaultsError());
        return;
    }
    // The user's comment stays in its box, so it has to stay in the model.
    relayInfo->setComment(comment);
    emit modelReplaced();
    emit writeRequested();
}
