#include "widgets/ElidedLabel.h"

#include <QApplication>
#include <QHelpEvent>
#include <QTextDocument>
#include <QToolTip>
#include <QtTest>

class tst_ElidedLabel : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        QToolTip::hideText();
    }

    void asksForTheRoomOfItsTextAndNeedsNone();
    void longTextEndsInAnEllipsis();
    void ellipsisStandsWhereItIsSet();
    void wrappedTextBreaksBetweenWords();
    void wordThatIsLongerThanALineIsBroken();
    void wrappedTextWithoutRoomIsElidedInTheMiddle();
    void formattedTextIsShownByItsLetters();
    void markupIsDrawnAsText();
    void cutTextIsWholeInTheTooltip();
    void textThatFitsHasNoTooltip();
    void ownTooltipComesFirst();

private:
    static QImage picture(QLabel& label)
    {
        QImage image(label.size(), QImage::Format_RGB32);
        image.fill(Qt::white);
        label.render(&image);
        return image;
    }

    static void askForToolTip(ElidedLabel& label)
    {
        QHelpEvent event(QEvent::ToolTip, QPoint(2, 2), label.mapToGlobal(QPoint(2, 2)));
        QApplication::sendEvent(&label, &event);
    }
};

void tst_ElidedLabel::asksForTheRoomOfItsTextAndNeedsNone()
{
    ElidedLabel label;
    label.setText(QStringLiteral("Terminal"));
    label.setContentsMargins(3, 4, 5, 6);
    const QFontMetrics metrics = label.fontMetrics();
    QCOMPARE(label.sizeHint(), QSize(metrics.horizontalAdvance(label.text()) + 8, metrics.height() + 10));
    QCOMPARE(label.minimumSizeHint(), QSize(0, metrics.height() + 10));
}

void tst_ElidedLabel::longTextEndsInAnEllipsis()
{
    ElidedLabel cut;
    cut.setText(QStringLiteral("one two three four five"));
    cut.resize(70, 20);
    ElidedLabel shown;
    shown.setText(cut.fontMetrics().elidedText(cut.text(), Qt::ElideRight, 70));
    shown.resize(70, 20);
    QVERIFY(shown.text().endsWith(QChar(0x2026)));
    QCOMPARE(picture(cut), picture(shown));
    QCOMPARE(cut.text(), QStringLiteral("one two three four five"));
}

void tst_ElidedLabel::ellipsisStandsWhereItIsSet()
{
    ElidedLabel cut;
    cut.setElideMode(Qt::ElideMiddle);
    cut.setText(QStringLiteral("one two three four five"));
    cut.resize(70, 20);
    ElidedLabel shown;
    shown.setText(cut.fontMetrics().elidedText(cut.text(), Qt::ElideMiddle, 70));
    shown.resize(100, 20);
    QVERIFY(shown.text().startsWith(QLatin1Char('o')) && shown.text().endsWith(QLatin1Char('e')));
    QCOMPARE(picture(cut), picture(shown).copy(cut.rect()));
}

void tst_ElidedLabel::wrappedTextBreaksBetweenWords()
{
    ElidedLabel wrapped;
    wrapped.setWordWrap(true);
    wrapped.setAlignment(Qt::AlignCenter);
    wrapped.setText(QStringLiteral("one two three four five"));
    wrapped.resize(70, 100);
    QLabel plain(wrapped.text());
    plain.setWordWrap(true);
    plain.setAlignment(Qt::AlignCenter);
    plain.resize(70, 100);
    QCOMPARE(picture(wrapped), picture(plain));
    QVERIFY(!wrapped.hasHeightForWidth());
}

void tst_ElidedLabel::wordThatIsLongerThanALineIsBroken()
{
    ElidedLabel wrapped;
    wrapped.setWordWrap(true);
    const QString line(8, QLatin1Char('x'));
    wrapped.setText(line + line);
    wrapped.resize(wrapped.fontMetrics().horizontalAdvance(line) + 2, 100);
    ElidedLabel halves;
    halves.setWordWrap(true);
    halves.setText(line + QLatin1Char('\n') + line);
    halves.resize(wrapped.size());
    QCOMPARE(picture(wrapped), picture(halves));
    askForToolTip(wrapped);
    QVERIFY(!QToolTip::isVisible());
}

void tst_ElidedLabel::wrappedTextWithoutRoomIsElidedInTheMiddle()
{
    ElidedLabel wrapped;
    wrapped.setWordWrap(true);
    wrapped.setElideMode(Qt::ElideMiddle);
    const QString text =
        QStringLiteral("begin") + QString(200, QLatin1Char('x')) + QStringLiteral("y z") + QStringLiteral("end");
    wrapped.setText(text);
    wrapped.resize(70, 3 * wrapped.fontMetrics().lineSpacing());
    wrapped.show();
    // Its beginning and its end are to be seen, the middle isn't.
    ElidedLabel other;
    other.setWordWrap(true);
    other.setElideMode(Qt::ElideMiddle);
    other.resize(wrapped.size());
    const auto looksLike = [&](QString changed, int at) {
        changed[at] = QLatin1Char('W');
        other.setText(changed);
        return picture(other) == picture(wrapped);
    };
    QVERIFY(!looksLike(text, 0));
    QVERIFY(!looksLike(text, text.size() - 1));
    QVERIFY(looksLike(text, text.size() / 2));
    askForToolTip(wrapped);
    QTextDocument tip;
    tip.setHtml(QToolTip::text());
    QCOMPARE(tip.toPlainText().remove(QChar(0x200B)), text);
}

void tst_ElidedLabel::formattedTextIsShownByItsLetters()
{
    ElidedLabel formatted;
    formatted.setTextFormat(Qt::AutoText);
    formatted.setText(QStringLiteral("<b>R&amp;D</b>"));
    formatted.resize(100, 20);
    ElidedLabel plain;
    plain.setText(QStringLiteral("R&D"));
    plain.resize(100, 20);
    QCOMPARE(picture(formatted), picture(plain));
    QCOMPARE(formatted.sizeHint(), plain.sizeHint());
}

void tst_ElidedLabel::markupIsDrawnAsText()
{
    ElidedLabel marked;
    marked.setText(QStringLiteral("<b>a</b>"));
    ElidedLabel plain;
    plain.setText(QStringLiteral("a"));
    QVERIFY(marked.sizeHint().width() > plain.sizeHint().width());
    marked.resize(100, 20);
    plain.resize(100, 20);
    QVERIFY(picture(marked) != picture(plain));
}

void tst_ElidedLabel::cutTextIsWholeInTheTooltip()
{
    ElidedLabel label;
    label.setText(QStringLiteral("<i> & ") + QString(30, QLatin1Char('x')));
    label.resize(50, 20);
    label.show();
    askForToolTip(label);
    QVERIFY(Qt::mightBeRichText(QToolTip::text()));
    QTextDocument shown;
    shown.setHtml(QToolTip::text());
    QCOMPARE(shown.toPlainText(), label.text());
}

void tst_ElidedLabel::textThatFitsHasNoTooltip()
{
    ElidedLabel label;
    label.setText(QStringLiteral("x"));
    label.resize(50, 20);
    label.show();
    askForToolTip(label);
    QVERIFY(!QToolTip::isVisible());
}

void tst_ElidedLabel::ownTooltipComesFirst()
{
    ElidedLabel label;
    label.setText(QString(60, QLatin1Char('x')));
    label.setToolTip(QStringLiteral("own"));
    label.resize(50, 20);
    label.show();
    askForToolTip(label);
    QCOMPARE(QToolTip::text(), QStringLiteral("own"));
}

QTEST_MAIN(tst_ElidedLabel)
#include "tst_ElidedLabel.moc"
