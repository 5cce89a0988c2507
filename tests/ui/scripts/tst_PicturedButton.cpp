#include "ui/scripts/AddressButton.h"
#include "ui/scripts/PicturedButton.h"

#include <QApplication>
#include <QImage>
#include <QPixmapCache>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QTest>

#include <algorithm>
#include <cstdlib>
#include <functional>

namespace
{

/// The edge of a picture is blended twice instead of once, and each blending rounds.
constexpr int roundingOfEdges = 2;

QString sheet(bool selected, bool compatible)
{
    AddressButton look;
    look.selected = selected;
    look.compatible = compatible;
    return addressButtonStyle(look);
}

/// A button on a window of its own, in the size of the address filter's.
template <typename Button>
struct Shown
{
    QWidget window;
    Button button{QStringLiteral("17"), &window};

    Shown()
    {
        button.resize(22, 22);
        button.setStyleSheet(sheet(false, true));
        window.resize(30, 30);
    }

    QImage picture()
    {
        return window.grab().toImage();
    }
};

/// How far the colours of two pictures lie apart where they differ most, of 255.
int farthest(const QImage& left, const QImage& right)
{
    int most = left.size() == right.size() ? 0 : 255;
    for (int y = 0; most < 255 && y < left.height(); ++y) {
        for (int x = 0; x < left.width(); ++x) {
            const QColor one = left.pixelColor(x, y);
            const QColor other = right.pixelColor(x, y);
            most = std::max({most, std::abs(one.red() - other.red()), std::abs(one.green() - other.green()),
                             std::abs(one.blue() - other.blue())});
        }
    }
    return most;
}

/// Counts how often a button is drawn.
class CountingStyle : public QProxyStyle
{
public:
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override
    {
        drawn += element == CE_PushButton ? 1 : 0;
        QProxyStyle::drawControl(element, option, painter, widget);
    }

    mutable int drawn = 0;
};

} // namespace

class tst_PicturedButton : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void looksLikeAPlainButton_data();
    void looksLikeAPlainButton();
    void eachLookIsDrawnOnce();
};

void tst_PicturedButton::initTestCase()
{
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
}

using Change = std::function<void(QPushButton&)>;
Q_DECLARE_METATYPE(Change)

void tst_PicturedButton::looksLikeAPlainButton_data()
{
    QTest::addColumn<Change>("change");
    QTest::newRow("as it is made") << Change([](QPushButton&) {});
    QTest::newRow("selected") << Change([](QPushButton& button) { button.setStyleSheet(sheet(true, true)); });
    QTest::newRow("unfit") << Change([](QPushButton& button) { button.setStyleSheet(sheet(true, false)); });
    QTest::newRow("another text") << Change([](QPushButton& button) { button.setText(QStringLiteral("HUBN")); });
    QTest::newRow("wider") << Change([](QPushButton& button) { button.resize(26, 22); });
    QTest::newRow("held down") << Change([](QPushButton& button) { button.setDown(true); });
    QTest::newRow("disabled") << Change([](QPushButton& button) { button.setEnabled(false); });
    QTest::newRow("bold") << Change([](QPushButton& button) {
        QFont font = button.font();
        font.setBold(true);
        button.setFont(font);
    });
    QTest::newRow("on a shaded frame") << Change([](QPushButton& button) {
        button.parentWidget()->setStyleSheet(QStringLiteral("background-color: rgba(187, 187, 187, 150)"));
    });
    QTest::newRow("in the frame's colour of text") << Change(
        [](QPushButton& button) { button.parentWidget()->setStyleSheet(QStringLiteral("color: rgb(0, 0, 200)")); });
}

void tst_PicturedButton::looksLikeAPlainButton()
{
    QFETCH(const Change, change);
    Shown<QPushButton> plain;
    Shown<PicturedButton> pictured;
    QVERIFY(farthest(pictured.picture(), plain.picture()) <= roundingOfEdges);
    change(plain.button);
    change(pictured.button);
    QVERIFY(farthest(pictured.picture(), plain.picture()) <= roundingOfEdges);
    QVERIFY(farthest(pictured.picture(), plain.picture()) <= roundingOfEdges); // from the picture that was kept
}

void tst_PicturedButton::eachLookIsDrawnOnce()
{
    QPixmapCache::clear();
    CountingStyle style;
    QWidget window;
    PicturedButton one(QStringLiteral("3"), &window);
    PicturedButton other(QStringLiteral("3"), &window);
    for (PicturedButton* button : {&one, &other}) {
        button->resize(22, 22);
        button->setStyle(&style);
        button->grab();
        button->grab();
    }
    QCOMPARE(style.drawn, 1);
    other.setText(QStringLiteral("4"));
    other.grab();
    QCOMPARE(style.drawn, 2);
    one.setEnabled(false);
    one.grab();
    QCOMPARE(style.drawn, 3);
    one.setEnabled(true);
    one.setCrossed(true);
    one.grab();
    QCOMPARE(style.drawn, 4);
    one.setCrossed(false);
    other.setText(QStringLiteral("3"));
    one.grab();
    other.grab();
    QCOMPARE(style.drawn, 4);
}

QTEST_MAIN(tst_PicturedButton)
#include "tst_PicturedButton.moc"
