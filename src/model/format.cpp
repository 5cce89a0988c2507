#include "model/format.h"

#include <QColor>

QString numberedName(const QString& name, int index)
{
    return QStringLiteral("%1. %2").arg(QString::number(index + 1), name);
}

QString terminalTitle(const QString& name, quint16 address)
{
    return address == 0 ? name : QStringLiteral("%1 (%2)").arg(name, QString::number(address));
}

QString outputTitle(const QString& name, quint16 address, const QString& outputName, int outputIndex)
{
    const QString place = address == 0 ? QString() : QLatin1Char('#') + QString::number(address);
    return QStringLiteral("%1 %2(%3 %4)").arg(name, place, outputName, QString::number(outputIndex + 1));
}

QString colorName(const QColor& color)
{
    return color.name(QColor::HexRgb);
}

QString modelCode(quint8 terminalClass, quint8 version, quint8 type, quint8 characteristic)
{
    return QStringLiteral("%1%2 %3 %4")
        .arg(terminalClass)
        .arg(version, 0, 16)
        .arg(type, 2, 16, QLatin1Char('0'))
        .arg(characteristic, 2, 16, QLatin1Char('0'));
}
