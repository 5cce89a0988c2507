#pragma once

#include <QList>
#include <QMetaType>
#include <QString>

/// One row of the event table on its way to the database thread, to which it crosses by value.
///
/// "QList<EventOfTable>" has to be registered with the meta-type system before the signals that carry it are connected.
struct EventOfTable
{
    quint16 numberEvent = 0;
    quint32 sortDateTime = 0; ///< dateInDays * 10000 + timeInMinute
    quint16 dateInDays = 0;   ///< days since 2000-01-01
    quint16 timeInMinute = 0; ///< hour * 24 + minute: the factor is part of the file format
    quint8 classTerminal = 0;
    quint8 version = 0;
    quint8 type = 0;
    quint8 characteristic = 0;
    quint8 addressTerminal = 0;
    quint8 numberChannel = 0; ///< 1 to 4 for events of a channel, else 0
    quint8 codeEvent = 0;
    QString date;
    QString time;
    QString source;
    quint8 signalLevel = 0;
    quint8 noiseLevel = 0;
    QString event;
    QString information;
};

Q_DECLARE_METATYPE(EventOfTable)
