#include "ui/pickers/SpecialSpinBox.h"

QString SpecialSpinBox::textFromValue(int value) const
{
    return QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0'));
}

int SpecialSpinBox::valueFromText(const QString& text) const
{
    return text.toInt();
}
