#include "ui/window/Manual.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace manual
{

QStringList places(const QString& binaryDirectory)
{
    const QDir directory(binaryDirectory);
    QStringList files;
    for (const QString& file : {QStringLiteral(HUBN_INSTALLED_MANUAL), QStringLiteral(HUBN_MANUAL_OF_SOURCES)}) {
        files.append(QDir::cleanPath(directory.absoluteFilePath(file)));
    }
    return files;
}

QString firstOf(const QStringList& files)
{
    const auto found = std::find_if(files.begin(), files.end(), [](const QString& file) {
        const QFileInfo info(file);
        return info.isFile() && info.isReadable();
    });
    return found != files.end() ? *found : QString();
}

} // namespace manual
