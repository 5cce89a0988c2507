#include "widgets/FocusInSight.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTableWidget>
#include <QVBoxLayout>
#include <QtTest>

namespace
{

constexpr int rows = 40;

bool isInSight(const QWidget* widget)
{
    return widget->visibleRegion().contains(widget->rect().center());
}

} // namespace

class tst_FocusInSight : public QObject
{
    Q_OBJECT

private slots:
    void aFieldOfAScrolledPanelIsScrolledIntoSight();
    void theRowOfAControlInATableIsScrolledIntoSight();
    void whatNothingScrollsIsLeftAlone();
};

void tst_FocusInSight::aFieldOfAScrolledPanelIsScrolledIntoSight()
{
    QScrollArea area;
    auto* const panel = new QWidget;
    auto* const layout = new QVBoxLayout(panel);
    for (int i = 0; i < rows; ++i) {
        layout->addWidget(new QLineEdit);
    }
    area.setWidget(panel);
    area.resize(200, 150);
    area.show();
    QVERIFY(QTest::qWaitForWindowExposed(&area));
    QWidget* const last = layout->itemAt(rows - 1)->widget();
    QVERIFY(!isInSight(last));
    focus::bringIntoSight(last);
    QVERIFY(isInSight(last));
    QWidget* const first = layout->itemAt(0)->widget();
    focus::bringIntoSight(first);
    QVERIFY(isInSight(first));
    QVERIFY(!isInSight(last));
}

void tst_FocusInSight::theRowOfAControlInATableIsScrolledIntoSight()
{
    QTableWidget table(rows, 1);
    auto* const frame = new QWidget;
    auto* const layout = new QVBoxLayout(frame);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* const button = new QPushButton(QStringLiteral("Connect"));
    layout->addWidget(button);
    table.setCellWidget(rows - 1, 0, frame);
    table.resize(200, 150);
    table.show();
    QVERIFY(QTest::qWaitForWindowExposed(&table));
    QVERIFY(!isInSight(button));
    focus::bringIntoSight(button);
    QCoreApplication::processEvents();
    QVERIFY(isInSight(button));
    QCOMPARE(table.verticalScrollBar()->value(), table.verticalScrollBar()->maximum());
}

void tst_FocusInSight::whatNothingScrollsIsLeftAlone()
{
    QTableWidget table(rows, 1);
    table.resize(200, 150);
    table.show();
    QVERIFY(QTest::qWaitForWindowExposed(&table));
    table.verticalScrollBar()->setValue(10);
    focus::bringIntoSight(&table);
    focus::bringIntoSight(table.horizontalHeader());
    focus::bringIntoSight(nullptr);
    QCOMPARE(table.verticalScrollBar()->value(), 10);
}

QTEST_MAIN(tst_FocusInSight)

#include "tst_FocusInSight.moc"
