#include "tool/OutputFile.h"

#include "tool/Command.h"
#include "tool/Console.h"

#include <QCommandLineParser>
#include <QFileInfo>

bool mayWrite(const QString& path, const QCommandLineParser& commandLine, Console& console)
{
    const QFileInfo file(path);
    const QFileInfo folder(file.absolutePath());
    if (path.isEmpty() || file.isDir() || !folder.isDir() || !folder.isWritable()) {
        console.error(QStringLiteral("\"%1\" can't be written").arg(path));
        return false;
    }
    if (file.exists() && !commandLine.isSet(forceOption())) {
        console.error(QStringLiteral("%1 exists; --force overwrites it").arg(path));
        return false;
    }
    return true;
}
