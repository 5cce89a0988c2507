#pragma once

#include <QProxyStyle>

/// The style of combo boxes that wear a style sheet with a background colour.
///
/// The Fusion style keeps the picture of a combo box for the next time, and finds it by its palette among others. A
/// style sheet makes a palette of its own for each drawing, so that no picture would ever be found again. This style
/// takes the palette that a drawing of the same colours had before. GUI thread only.
class ColoredComboStyle : public QProxyStyle
{
    Q_OBJECT

public:
    /// Draws what the Fusion style draws.
    ColoredComboStyle();

    /// The one for all combo boxes of the application, which owns it. The style is set before the first sheet.
    static ColoredComboStyle* shared();

    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget = nullptr) const override;
};
