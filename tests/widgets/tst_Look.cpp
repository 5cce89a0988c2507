#include "support/StyleChanges.h"
#include "widgets/Look.h"

#include <QComboBox>
#include <QLabel>
#include <QPalette>
#include <QTextDocument>
#include <QtTest>

#include <cmath>

class tst_Look : public QObject
{
    Q_OBJECT

private slots:
    void coloursHaveFourParts();
    void combosWearTheirRowAndAreRedWithout();
    void equalStyleSheetsAreNotSetAgain();
    void equalPalettesAreOneAndKeepTheirGroup();
    void manyPalettesAreKnownForAWhile();
    void richTextShowsWhatWasTyped_data();
    void richTextShowsWhatWasTyped();
    void longWordsMayBeBroken();
    void fadedTextCanBeReadOnEveryWindow_data();
    void fadedTextCanBeReadOnEveryWindow();
};

void tst_Look::coloursHaveFourParts()
{
    QCOMPARE(look::rgba(QColor(0, 255, 17, 150)), QStringLiteral("rgba(0, 255, 17, 150)"));
    QCOMPARE(look::rgba(QColor(240, 240, 240)), QStringLiteral("rgba(240, 240, 240, 255)"));
}

void tst_Look::combosWearTheirRowAndAreRedWithout()
{
    const QString begin = QStringLiteral("combobox-popup: 0; selection-color: black; "
                                         "selection-background-color: rgba(0,0,0,20);background-color: ");
    QComboBox combo;
    combo.addItems({QStringLiteral("a"), QStringLiteral("b")});
    combo.setItemData(1, QColor(1, 2, 3, 4), Qt::BackgroundRole);
    QCOMPARE(look::comboProperties(&combo, -1), begin + QStringLiteral("red;"));
    QCOMPARE(look::comboProperties(&combo, 1), begin + QStringLiteral("rgba(1, 2, 3, 4);"));
}

void tst_Look::equalStyleSheetsAreNotSetAgain()
{
    const QString sheet = QStringLiteral("QLabel{color: red}");
    QLabel label;
    label.ensurePolished();
    StyleChanges changes(&label);
    look::applyStyleSheet(&label, sheet);
    QCOMPARE(label.styleSheet(), sheet);
    const int once = changes.count;
    QVERIFY(once > 0);
    look::applyStyleSheet(&label, sheet);
    QCOMPARE(changes.count, once);
}

void tst_Look::equalPalettesAreOneAndKeepTheirGroup()
{
    const auto make = [](QPalette::ColorGroup group) {
        QPalette made(QColor(1, 2, 3), QColor(4, 5, 6));
        made.setColor(QPalette::Disabled, QPalette::ButtonText, Qt::gray);
        made.setCurrentColorGroup(group);
        return made;
    };
    const QPalette first = look::knownPalette(make(QPalette::Active));
    const QPalette second = look::knownPalette(make(QPalette::Disabled));
    QVERIFY(make(QPalette::Active).cacheKey() != make(QPalette::Active).cacheKey());
    QCOMPARE(second.cacheKey(), first.cacheKey());
    QCOMPARE(second.color(QPalette::ButtonText), QColor(Qt::gray));
    QVERIFY(first.color(QPalette::ButtonText) != QColor(Qt::gray));
    QPalette other = make(QPalette::Active);
    other.setColor(QPalette::Button, Qt::red);
    QVERIFY(look::knownPalette(other).cacheKey() != first.cacheKey());
}

void tst_Look::manyPalettesAreKnownForAWhile()
{
    const auto key = [](int shade) { return look::knownPalette(QPalette(QColor(shade, 50, 50))).cacheKey(); };
    const qint64 oldest = key(0);
    QCOMPARE(key(0), oldest);
    for (int shade = 1; shade < 200; ++shade) {
        const qint64 newest = key(shade);
        QCOMPARE(key(shade), newest);
    }
    QVERIFY(key(0) != oldest);
}

void tst_Look::richTextShowsWhatWasTyped_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << QStringLiteral("Fan 1");
    QTest::newRow("markup") << QStringLiteral("<b>x</b> &amp; \"y\"");
    QTest::newRow("200 letters") << QString(200, QLatin1Char('W'));
    QTest::newRow("pairs of surrogates") << QStringLiteral("\U0001F525").repeated(50);
}

void tst_Look::richTextShowsWhatWasTyped()
{
    QFETCH(QString, text);
    QTextDocument document;
    document.setHtml(look::richText(text));
    QCOMPARE(document.toPlainText().remove(QChar(0x200B)), text);
}

void tst_Look::longWordsMayBeBroken()
{
    const auto widthNeeded = [](const QString& html) {
        QTextDocument document;
        document.setHtml(html);
        document.setTextWidth(10);
        return document.idealWidth();
    };
    const QString word(40, QLatin1Char('W'));
    QCOMPARE(look::richText(word), word);
    QCOMPARE(look::richText(word + QLatin1Char(' ') + word), word + QLatin1Char(' ') + word);
    QVERIFY(widthNeeded(look::richText(word.repeated(5))) < 1.5 * widthNeeded(word));
}

void tst_Look::fadedTextCanBeReadOnEveryWindow_data()
{
    QTest::addColumn<QColor>("text");
    QTest::addColumn<QColor>("window");
    QTest::newRow("light") << QColor(Qt::black) << QColor(239, 239, 239);
    QTest::newRow("dark") << QColor(Qt::white) << QColor(50, 50, 50);
    QTest::newRow("black") << QColor(Qt::white) << QColor(Qt::black);
    QTest::newRow("middle") << QColor(Qt::white) << QColor(100, 100, 100);
    QTest::newRow("colours") << QColor(255, 255, 0) << QColor(0, 0, 128);
}

void tst_Look::fadedTextCanBeReadOnEveryWindow()
{
    QFETCH(const QColor, text);
    QFETCH(const QColor, window);
    const auto luminance = [](const QColor& color) {
        const auto linear = [](double part) {
            return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
    };
    QPalette colors;
    colors.setColor(QPalette::WindowText, text);
    colors.setColor(QPalette::Window, window);
    const QColor faded = look::fadedText(colors);
    const double one = luminance(faded) + 0.05;
    const double other = luminance(window) + 0.05;
    QVERIFY2(qMax(one, other) / qMin(one, other) >= 4.5, qPrintable(faded.name()));
    QVERIFY(faded != text);
}

QTEST_MAIN(tst_Look)
#include "tst_Look.moc"
