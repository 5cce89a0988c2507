#pragma once

#include "link/packetText.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <optional>

/// A packet as a line gives it.
struct GivenPacket
{
    QString time; ///< as it stands there; empty where there is none
    std::optional<Packet::Direction> direction;
    QByteArray bytes; ///< none for an answer that never came
};

/// Reads the packets of a line in any of the forms in which they are handed on: bytes in hexadecimal, with or without
/// blanks; a line of a file that the packet logger saved; a row copied from it, which has a request and its answer.
/// Empty lines, comments and the heading of copied rows have none. Nothing if the line is in no such form.
std::optional<QVector<GivenPacket>> packetsOfLine(const QString& line);
