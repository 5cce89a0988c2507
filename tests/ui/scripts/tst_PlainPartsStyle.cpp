#include "ui/scripts/PlainPartsStyle.h"

#include <QApplication>
#include <QCheckBox>
#include <QImage>
#include <QPixmapCache>
#include <QSpinBox>
#include <QStyleFactory>
#include <QStyleOptionComplex>
#include <QTest>

class tst_PlainPartsStyle : public QObject
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
    void buttonsOfATransparentSpinBoxLookAsEverywhere();
    void fieldOfASpinBoxKeepsTheColourOfItsSheet();
    void indicatorOfATransparentCheckBoxHasAFrame();
    void pictureOfASpinBoxIsDrawnOnce();

private:
    /// A picture of a control on the grey of a window, in the sheet and style given.
    template <typename Control>
    static QImage picture(const QString& sheet, bool plainParts)
    {
        PlainPartsStyle style;
        QWidget window;
        Control control(&window);
        if (plainParts) {
            control.setStyle(&style);
        }
        control.setStyleSheet(sheet);
        control.resize(60, 24);
        return window.grab(QRect(0, 0, 60, 24)).toImage();
    }

    static QRgb pixel(const QImage& image, int x, int y)
    {
        return image.pixel(x, y) & RGB_MASK;
    }
};

void tst_PlainPartsStyle::initTestCase()
{
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
}

void tst_PlainPartsStyle::buttonsOfATransparentSpinBoxLookAsEverywhere()
{
    const QImage bare = picture<QSpinBox>(QString(), false);
    const QImage mended = picture<QSpinBox>(QStringLiteral("background-color: transparent"), true);
    for (int y = 3; y < 21; ++y) {
        QCOMPARE(pixel(mended, 50, y), pixel(bare, 50, y));
    }
}

void tst_PlainPartsStyle::fieldOfASpinBoxKeepsTheColourOfItsSheet()
{
    const QImage mended = picture<QSpinBox>(QStringLiteral("background-color: rgb(10,200,30)"), true);
    QCOMPARE(pixel(mended, 30, 12), QRgb(qRgb(10, 200, 30) & RGB_MASK));
}

void tst_PlainPartsStyle::indicatorOfATransparentCheckBoxHasAFrame()
{
    const QImage bare = picture<QCheckBox>(QString(), false);
    const QImage mended = picture<QCheckBox>(QStringLiteral("background-color: transparent"), true);
    for (int x = 0; x < 16; ++x) {
        QCOMPARE(pixel(mended, x, 12), pixel(bare, x, 12));
    }
}

/// The style below asks where the buttons are for a picture that it doesn't find.
void tst_PlainPartsStyle::pictureOfASpinBoxIsDrawnOnce()
{
    class CountingStyle : public PlainPartsStyle
    {
    public:
        QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                             const QWidget* widget) const override
        {
            asked += part == SC_SpinBoxUp ? 1 : 0;
            return PlainPartsStyle::subControlRect(control, option, part, widget);
        }

        mutable int asked = 0;
    };
    QPixmapCache::clear();
    CountingStyle style;
    QSpinBox box;
    box.setStyle(&style);
    box.setStyleSheet(QStringLiteral("background-color: rgb(10,200,30)"));
    box.resize(60, 24);
    box.ensurePolished();
    const auto askedForAPicture = [&] {
        const int before = style.asked;
        box.grab();
        return style.asked - before;
    };
    askedForAPicture(); // and for the layout
    QPixmapCache::clear();
    const int drawing = askedForAPicture();
    QVERIFY(askedForAPicture() < drawing);
}

QTEST_MAIN(tst_PlainPartsStyle)
#include "tst_PlainPartsStyle.moc"
