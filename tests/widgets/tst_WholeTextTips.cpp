#include "widgets/WholeTextTips.h"

#include <QHelpEvent>
#include <QTableWidget>
#include <QToolTip>
#include <QtTest>

class tst_WholeTextTips : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void textThatFitsHasNone();
    void textWiderThanItsCellIsShown();
    void textHigherThanItsCellIsShown();
    void textPartlyScrolledAwayIsShown();
    void markupIsShownAsItIsWritten();
    void theModelsOwnToolTipStays();
    void emptyCellHasNone();

private:
    /// What the tool tip says while the mouse rests on a cell; empty for none.
    QString tip(const QString& text, int column = 0);

    std::unique_ptr<QTableWidget> table;
};

void tst_WholeTextTips::init()
{
    table = std::make_unique<QTableWidget>(1, 4);
    table->setItemDelegate(new WholeTextTips(table.get()));
    for (int column = 0; column < table->columnCount(); ++column) {
        table->setColumnWidth(column, 100);
    }
    table->setRowHeight(0, 30);
    table->resize(350, 200);
    table->show();
    QVERIFY(QTest::qWaitForWindowExposed(table.get()));
    QToolTip::hideText();
}

void tst_WholeTextTips::cleanup()
{
    QToolTip::hideText();
    table.reset();
}

QString tst_WholeTextTips::tip(const QString& text, int column)
{
    if (table->item(0, column) == nullptr) {
        table->setItem(0, column, new QTableWidgetItem);
    }
    table->item(0, column)->setText(text);
    const QPoint place = table->visualItemRect(table->item(0, column)).topLeft() + QPoint(5, 5);
    QHelpEvent rest(QEvent::ToolTip, place, table->viewport()->mapToGlobal(place));
    QApplication::sendEvent(table->viewport(), &rest);
    return QToolTip::isVisible() ? QToolTip::text() : QString();
}

void tst_WholeTextTips::textThatFitsHasNone()
{
    QCOMPARE(tip(QStringLiteral("short")), QString());
}

void tst_WholeTextTips::textWiderThanItsCellIsShown()
{
    table->setWordWrap(false);
    const QString text = QStringLiteral("a text of many words in a cell of one line");
    QVERIFY(tip(text).contains(text));
    table->resize(700, 200);
    table->setColumnWidth(0, 600);
    QToolTip::hideText();
    QTRY_VERIFY(!QToolTip::isVisible());
    QCOMPARE(tip(text), QString());
}

void tst_WholeTextTips::textHigherThanItsCellIsShown()
{
    const QString text = QStringLiteral("a text of many words that takes some lines");
    QVERIFY(tip(text).contains(text));
    table->setRowHeight(0, 150);
    QToolTip::hideText();
    QTRY_VERIFY(!QToolTip::isVisible());
    QCOMPARE(tip(text), QString());
}

void tst_WholeTextTips::textPartlyScrolledAwayIsShown()
{
    QVERIFY(table->viewport()->width() < 390);
    QVERIFY(tip(QStringLiteral("shown in part"), 3).contains(QLatin1String("shown in part")));
}

void tst_WholeTextTips::markupIsShownAsItIsWritten()
{
    table->setWordWrap(false);
    QVERIFY(tip(QStringLiteral("<b>the name of a file that is no markup at all</b>")).contains(QLatin1String("&lt;b")));
    QVERIFY(tip(QStringLiteral("two lines\nof which the second one is much too long")).contains(QLatin1String("<br>")));
}

void tst_WholeTextTips::theModelsOwnToolTipStays()
{
    table->setItem(0, 0, new QTableWidgetItem);
    table->item(0, 0)->setToolTip(QStringLiteral("of its own"));
    const QString text = QStringLiteral("a text of many words that does not fit into its cell");
    QCOMPARE(tip(text), QStringLiteral("of its own"));
    table->item(0, 0)->setToolTip(QString()); // taken back
    QVERIFY(tip(text).contains(text));
}

void tst_WholeTextTips::emptyCellHasNone()
{
    table->setColumnWidth(0, 1);
    QCOMPARE(tip(QString()), QString());
}

QTEST_MAIN(tst_WholeTextTips)
#include "tst_WholeTextTips.moc"
