// The model as records of the device, as a configuration file, and back.

#include "domain/saveWhole.h"
#include "model/ConfigurationReader.h"
#include "model/ConfigurationWriter.h"
#include "model/RecordReader.h"
#include "model/RecordWriter.h"
#include "model/RelayInfo.h"

#include <QBuffer>
#include <QFile>
#include <QTextStream>

namespace
{

/// The text of an open file in UTF-8, up to a first NUL. A byte order mark is no part of it, and one of another
/// encoding counts. The file is to be open without QIODevice::Text, which would swallow the CR that ends the lines.
QString readText(QIODevice& file, bool& endsAtNul)
{
    QTextStream stream(&file);
    stream.setCodec("UTF-8");
    const QString text = stream.readAll();
    const int end = text.indexOf(QChar::Null);
    endsAtNul = end >= 0;
    return text.left(end);
}

/// The line behind which a text was cut.
ConfigurationError errorOfNul(const QString& text)
{
    const int line = text.count(QLatin1Char('\n')) + 1;
    const QString lastLine = text.mid(text.lastIndexOf(QLatin1Char('\n')) + 1);
    return {line, lastLine, {{ConfigurationFault::EndsAtNul, 0, 0, {}, 0}}};
}

} // namespace

QByteArrayList RelayInfo::makeOutputRecords() const
{
    return outputRecords(groupList);
}

QByteArrayList RelayInfo::makeScriptRecords() const
{
    return scriptRecords(scriptList);
}

void RelayInfo::readTerminalRecords(const QByteArrayList& records)
{
    connectedList = readTerminals(records, types);
    resetGroups(false);
    sortGroups();
}

void RelayInfo::readOutputRecords(const QByteArrayList& records)
{
    resetGroups(false);
    readOutputs(records, tables, groupList, scriptList);
    sortGroups();
}

void RelayInfo::readScriptRecords(const QByteArrayList& records)
{
    resetScripts();
    readScripts(records, tables, types, scriptList);
}

int RelayInfo::saveToFile(const QString& path) const
{
    return saveWhole(fileContents(), path).isEmpty() ? FileOk : FileNotWritten;
}

QByteArray RelayInfo::fileContents() const
{
    return configurationText(tables, groupList, scriptList, commentText).toUtf8();
}

void RelayInfo::loadFileContents(QByteArray contents)
{
    QBuffer file(&contents);
    file.open(QIODevice::ReadOnly);
    load(file, nullptr);
}

int RelayInfo::loadFromFile(const QString& path, ConfigurationErrors* errors)
{
    if (errors != nullptr) {
        errors->clear();
    }
    fileErrors = 0;
    QFile file(path);
    if (!file.exists()) {
        return FileNotFound;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        return FileNotOpened;
    }
    load(file, errors);
    return FileOk;
}

void RelayInfo::load(QIODevice& file, ConfigurationErrors* errors)
{
    bool endsAtNul = false;
    const QString text = readText(file, endsAtNul);

    resetGroups(true);
    resetScripts();
    ConfigurationModel model{tables, groupList, scriptList, {}};
    fileErrors = readConfiguration(text, model, errors);
    if (errors != nullptr && endsAtNul) {
        errors->append(errorOfNul(text));
    }
    groupList = model.groups;
    commentText = model.comment;
}
