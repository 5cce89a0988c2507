#include "model/Device.h"

#include "model/catalogue.h"
#include "texts/texts.h"

#include <QDebug>
#include <QFile>
#include <QSaveFile>
#include <QTextStream>

namespace
{

constexpr int leastFields = 5;

QString usedFile()
{
    return QStringLiteral("Devices_EN.csv");
}

QString localFile()
{
    return QStringLiteral("Devices_RU.csv");
}

void writeFile(const QString& name, const QString& text)
{
    QSaveFile file(name);
    // Without it a file that may be written would be out of reach in a directory that may not.
    file.setDirectWriteFallback(true);
    if (file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) >= 0 && file.flush()) {
        file.commit();
    }
}

void warn(const QString& line, const char* complaint)
{
    qDebug().noquote().nospace() << "RELAY : Device : (WARNING) string of file of devices '" << line << "' "
                                 << complaint;
}

/// Reads a hexadecimal field; only the low 8 bits of a number count.
bool readByte(const QString& field, quint8& byte)
{
    bool ok = false;
    byte = quint8(field.trimmed().toLongLong(&ok, 16));
    return ok;
}

bool readLine(const QString& line, DeviceRecord& record)
{
    const QStringList fields = line.split(QLatin1Char(';'), Qt::SkipEmptyParts);
    if (fields.size() < leastFields) {
        warn(line, "not enought");
        return false;
    }
    record.name = fields.at(0).trimmed();
    if (!readByte(fields.at(1), record.terminalClass) || !readByte(fields.at(2), record.version) ||
        !readByte(fields.at(3), record.type) || !readByte(fields.at(4), record.characteristic)) {
        warn(line, "contains convert error");
        return false;
    }
    for (int i = leastFields; i < fields.size(); ++i) {
        record.outputs.append(fields.at(i).trimmed());
    }
    return true;
}

} // namespace

Device::Device(Reporter errorReporter, QObject* parent, Files keptFiles)
    : QObject(parent), files(keptFiles), reportError(std::move(errorReporter))
{
    readCatalogue();
}

QVariantList Device::deviceRow(int index) const
{
    if (index < 0 || index >= records.size()) {
        return {};
    }
    const DeviceRecord& record = records.at(index);
    return {record.name,
            QVariant::fromValue<uchar>(record.terminalClass),
            QVariant::fromValue<uchar>(record.version),
            QVariant::fromValue<uchar>(record.type),
            QVariant::fromValue<uchar>(record.characteristic),
            record.outputs};
}

void Device::readCatalogue()
{
    records.clear();
    if (QFile::exists(usedFile())) {
        readFile();
    } else if (files == Files::ReadOnly) {
        QString text = catalogue::english();
        QTextStream stream(&text, QIODevice::ReadOnly);
        readRecords(stream);
    } else {
        writeCatalogue();
    }
}

void Device::writeCatalogue()
{
    writeFile(localFile(), catalogue::russian());
    writeFile(usedFile(), catalogue::english());
    records.clear();
    if (QFile::exists(usedFile())) {
        readFile();
    } else {
        qDebug().noquote() << "RELAY : Device : (WARNING) file of devices can't be written, there are no models";
    }
}

void Device::readFile()
{
    QFile file(usedFile());
    if (!file.open(QIODevice::ReadOnly)) {
        const QString title = texts::wordError() + QLatin1Char(' ') + usedFile();
        if (reportError) {
            reportError(title, texts::fileOpenError());
        } else {
            qDebug().noquote() << "RELAY : Device : (WARNING)" << title << texts::fileOpenError();
        }
        return;
    }
    QTextStream stream(&file);
    stream.setCodec("UTF-8");
    readRecords(stream);
}

void Device::readRecords(QTextStream& stream)
{
    QString line;
    while (stream.readLineInto(&line)) {
        DeviceRecord record;
        if (readLine(line.left(line.indexOf(QChar::Null)), record)) {
            records.append(record);
        }
    }
}
