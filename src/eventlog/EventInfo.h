#pragma once

#include "eventlog/dayZero.h"

#include <QByteArray>
#include <QDate>
#include <QString>
#include <QTime>

/// One decoded event, as it is held in memory until it goes to the database.
///
/// A record of the device gives one or more of these. The terminal fields are the raw numbers of the record; see
/// EventDecoder.h for its layout.
struct EventInfo
{
    quint16 number = 0; ///< row number; 0 until LogEvents::numberEvents() has run
    QTime time = QTime(0, 0);
    QDate date = dayZero();
    quint8 address = 0;       ///< 0 is the head unit
    quint8 classTerminal = 0; ///< nibble values 8 to 15 stand here as 248 to 255
    quint8 version = 0;
    quint8 type = 0;
    quint8 characteristic = 0; ///< the high nibble is the number of channels
    quint8 channel = 255;      ///< counted from 0; only events of a channel set it
    QString source = QStringLiteral("------");
    quint8 noise = 0;  ///< dB
    quint8 signal = 0; ///< dB
    qint32 code = -1;
    QString event;
    QByteArray data; ///< the five data bytes
    QString details;
};
