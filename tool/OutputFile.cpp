#include "tool/OutputFile.h"

#include "tool/Command.h"
#include "tool/Console.h"

#include <QCommandLineParser>
#include <QFileInfo>

bool mayWrite(const QString& path, const QCommandLineParser& commandLine, Console& console)
{
    if (!QFileInfo::exists(path) || commandLine.isSet(forceOption())) {
        return true;
    }
    console.error(QStringLiteral("%1 exists; --force overwrites it").arg(path));
    return false;
}
