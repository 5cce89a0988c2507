#pragma once

#include <QSpinBox>

/// A spin box for clock and calendar numbers: it shows at least two digits, so 5 reads "05".
///
/// The date and time frames own it and connect it; it is a plain QSpinBox otherwise. GUI thread only.
class SpecialSpinBox : public QSpinBox
{
    Q_OBJECT

public:
    using QSpinBox::QSpinBox;

protected:
    QString textFromValue(int value) const override;
    int valueFromText(const QString& text) const override;
};
