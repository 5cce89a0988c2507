#pragma once

#include <QByteArray>

/// A byte as the unit means it, from 0 to 255.
inline quint8 byteAt(const QByteArray& bytes, int index)
{
    return quint8(bytes.at(index));
}
