#include "widgets/ColoredComboStyle.h"
#include "widgets/Look.h"

#include <QComboBox>
#include <QImage>
#include <QPixmapCache>
#include <QStyleFactory>
#include <QtTest>

namespace
{

/// Counts the frames that the style below draws, which it does for pictures that it doesn't find.
class CountingStyle : public ColoredComboStyle
{
public:
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override
    {
        drawn += element == PE_PanelButtonCommand ? 1 : 0;
        ColoredComboStyle::drawPrimitive(element, option, painter, widget);
    }

    mutable int drawn = 0;
};

QImage picture(QComboBox& combo, const QColor& color)
{
    combo.setStyleSheet(QStringLiteral("QComboBox{combobox-popup: 0; background-color: %1;}").arg(look::rgba(color)));
    return combo.grab().toImage();
}

} // namespace

class tst_ColoredComboStyle : public QObject
{
    Q_OBJECT

public:
    /// A desktop, or a user, that wants another style.
    static void initMain()
    {
        qputenv("QT_STYLE_OVERRIDE", "windows");
    }

private slots:
    void initTestCase();
    void init();

    void aComboBoxLooksAsEver();
    void aPictureIsDrawnOnceForEachColour();
    void oneStyleServesTheWholeApplication();
};

void tst_ColoredComboStyle::initTestCase()
{
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
}

void tst_ColoredComboStyle::init()
{
    QPixmapCache::clear();
}

void tst_ColoredComboStyle::aComboBoxLooksAsEver()
{
    QComboBox bare;
    QComboBox styled;
    styled.setStyle(ColoredComboStyle::shared());
    for (QComboBox* combo : {&bare, &styled}) {
        combo->addItems({QStringLiteral("one"), QStringLiteral("two")});
        combo->resize(120, 24);
    }
    for (const bool enabled : {true, false, true}) {
        for (const QColor& color : {QColor(Qt::green), QColor(Qt::red), QColor(0, 0, 200, 90), QColor(Qt::green)}) {
            bare.setEnabled(enabled);
            styled.setEnabled(enabled);
            QCOMPARE(picture(styled, color), picture(bare, color));
        }
    }
}

void tst_ColoredComboStyle::aPictureIsDrawnOnceForEachColour()
{
    CountingStyle style;
    QComboBox combo;
    combo.setStyle(&style);
    combo.resize(120, 24);
    const QImage green = picture(combo, Qt::green);
    const int drawnForOne = style.drawn;
    QVERIFY(drawnForOne > 0);
    const QImage red = picture(combo, Qt::red);
    QCOMPARE(style.drawn, 2 * drawnForOne);
    QCOMPARE(picture(combo, Qt::green), green);
    QCOMPARE(picture(combo, Qt::red), red);
    QCOMPARE(style.drawn, 2 * drawnForOne);
}

void tst_ColoredComboStyle::oneStyleServesTheWholeApplication()
{
    QCOMPARE(ColoredComboStyle::shared(), ColoredComboStyle::shared());
    QCOMPARE(ColoredComboStyle::shared()->parent(), QApplication::instance());
}

QTEST_MAIN(tst_ColoredComboStyle)
#include "tst_ColoredComboStyle.moc"
