#pragma once

#include <QProxyStyle>

/// The style of spin boxes and check boxes that wear a style sheet with a background colour.
///
/// Such a sheet also colours the buttons of a spin box and the indicator of a check box, and those of a transparent one
/// come out black or not at all. This style gives these parts the colours of the application back. Owned by the form
/// whose controls it draws; GUI thread only.
class PlainPartsStyle : public QProxyStyle
{
    Q_OBJECT

public:
    /// Draws with Fusion, the style of the whole program, whichever style the desktop has.
    PlainPartsStyle();

    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget = nullptr) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget = nullptr) const override;
};
