#include "ui/scripts/PlainPartsStyle.h"

#include "widgets/Look.h"

#include <QApplication>
#include <QStyleFactory>
#include <QStyleOption>

PlainPartsStyle::PlainPartsStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion")))
{
}

void PlainPartsStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                         const QWidget* widget) const
{
    const auto* spinBox = qstyleoption_cast<const QStyleOptionSpinBox*>(option);
    if (control != CC_SpinBox || spinBox == nullptr) {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
        return;
    }
    QStyleOptionSpinBox plain(*spinBox);
    plain.palette = QApplication::palette(widget);
    plain.palette.setBrush(QPalette::Base, spinBox->palette.base()); // the field itself keeps the sheet's colour
    plain.palette = look::knownPalette(plain.palette);
    QProxyStyle::drawComplexControl(control, &plain, painter, widget);
}

void PlainPartsStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                    const QWidget* widget) const
{
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
    if (element != PE_IndicatorCheckBox || button == nullptr) {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        return;
    }
    QStyleOptionButton plain(*button);
    plain.palette = QApplication::palette(widget);
    QProxyStyle::drawPrimitive(element, &plain, painter, widget);
}
