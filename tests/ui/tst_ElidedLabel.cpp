#include <QApplication>
#include <QHelpEvent>
#include <QTextDocument>
#include <QToolTip>
#include <QtTest>

#include "ui/ElidedLabel.h"

class tst_ElidedLabel : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        QToolTip::hideText();
    }

    void asks_for_the_room_of_its_text_and_needs_none();
    void long_text_ends_in_an_ellipsis();
    void markup_is_drawn_as_text();
    void cut_text_is_whole_in_the_tooltip();
    void text_that_fits_has_no_tooltip();
    void own_tooltip_comes_first();

private:
    static QImage picture(ElidedLabel& label)
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

void tst_ElidedLabel::asks_for_the_room_of_its_text_and_needs_none()
{
    ElidedLabel label;
    label.setText(QStringLiteral("Terminal"));
    label.setContentsMargins(3, 4, 5, 6);
    const QFontMetrics metrics = label.fontMetrics();
    QCOMPARE(label.sizeHint(), QSize(metrics.horizontalAdvance(label.text()) + 8, metrics.height() + 10));
    QCOMPARE(label.minimumSizeHint(), QSize(0, metrics.height() + 10));
}

void tst_ElidedLabel::long_text_ends_in_an_ellipsis()
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

void tst_ElidedLabel::markup_is_drawn_as_text()
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

void tst_ElidedLabel::cut_text_is_whole_in_the_tooltip()
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

void tst_ElidedLabel::text_that_fits_has_no_tooltip()
{
    ElidedLabel label;
    label.setText(QStringLiteral("x"));
    label.resize(50, 20);
    label.show();
    askForToolTip(label);
    QVERIFY(!QToolTip::isVisible());
}

void tst_ElidedLabel::own_tooltip_comes_first()
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
