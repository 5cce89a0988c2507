#pragma once

#include <QString>

class QColor;

/// Display texts that model and views share.

/// "3. Name" for index 2.
QString numberedName(const QString& name, int index);

/// The name alone for the head unit (address 0), else "Name (5)".
QString terminalTitle(const QString& name, quint16 address);

/// "Name #5(Output 2)"; the head unit has no "#" and address.
QString outputTitle(const QString& name, quint16 address, const QString& outputName, int outputIndex);

/// "#rrggbb" in lower case, without the alpha.
QString colorName(const QColor& color);

/// The model numbers as the device sends them: "21 41 20" for class 2, version 1, type 0x41, characteristic 0x20.
QString modelCode(quint8 terminalClass, quint8 version, quint8 type, quint8 characteristic);
