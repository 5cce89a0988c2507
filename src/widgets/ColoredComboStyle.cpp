#include "widgets/ColoredComboStyle.h"

#include "widgets/Look.h"

#include <QApplication>
#include <QPointer>
#include <QStyleFactory>
#include <QStyleOption>

ColoredComboStyle::ColoredComboStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion")))
{
}

ColoredComboStyle* ColoredComboStyle::shared()
{
    static QPointer<ColoredComboStyle> style;
    if (style.isNull()) {
        style = new ColoredComboStyle;
        style->setParent(QApplication::instance());
    }
    return style;
}

void ColoredComboStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                           const QWidget* widget) const
{
    const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option);
    if (control != CC_ComboBox || combo == nullptr) {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
        return;
    }
    QStyleOptionComboBox known(*combo);
    known.palette = look::knownPalette(combo->palette);
    QProxyStyle::drawComplexControl(control, &known, painter, widget);
}
