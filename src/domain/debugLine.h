#pragma once

#include <QDebug>
#include <QString>
#include <QTime>

/// Writes a line to the debug stream: the time of day, then the text, which names the part that speaks.
inline void debugLine(const QString& text)
{
    qDebug().noquote() << QTime::currentTime().toString(QStringLiteral("hh:mm:ss:zzz")) + text;
}
