#include "ui/tree/ShownTree.h"

#include <QApplication>
#include <QScrollBar>

/// The way of Tab through the rows of the tree.
class tst_treeTab : public ShownTree
{
    Q_OBJECT

private slots:
    void behindAClickTabGoesOnInTheClickedRow();
    void behindTheClickedRowComesTheButtonAndBeforeItTheTree();
    void inTheTreeItselfTabLeadsToTheCurrentRowAgain();
    void tabReachesAnOutputBelowTheEdge();
    void tabPassesOutputsThatAreFoldedAway();

private:
    static void press(Qt::Key key)
    {
        QTest::keyClick(QApplication::focusWidget(), key);
    }
    static void click(QWidget* control)
    {
        // What lies beside a box belongs to its row, which a click there would choose.
        QTest::mouseClick(control, Qt::LeftButton, Qt::NoModifier, QPoint(8, control->height() / 2));
    }
    QCheckBox* box(int group, int output) const
    {
        return part<QCheckBox>(outputItem(group, output), "checkReturn");
    }
    void beginOnFirstOutput()
    {
        build();
        list->expandAll();
        list->setFocus();
        list->setCurrentItem(outputItem(0, 0));
    }
};

void tst_treeTab::behindAClickTabGoesOnInTheClickedRow()
{
    beginOnFirstOutput();
    combo(0, 2)->setFocus(Qt::MouseFocusReason);
    press(Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), box(0, 2));
    press(Qt::Key_Backtab);
    QCOMPARE(QApplication::focusWidget(), combo(0, 2));
    QCOMPARE(list->currentItem(), outputItem(0, 0));
}

void tst_treeTab::behindTheClickedRowComesTheButtonAndBeforeItTheTree()
{
    beginOnFirstOutput();
    click(box(0, 1));
    QCOMPARE(QApplication::focusWidget(), box(0, 1));
    QCOMPARE(list->currentItem(), outputItem(0, 0));
    press(Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), addButton());
    press(Qt::Key_Backtab);
    QCOMPARE(QApplication::focusWidget(), box(0, 1));
    press(Qt::Key_Backtab);
    press(Qt::Key_Backtab);
    QCOMPARE(QApplication::focusWidget(), list);
}

void tst_treeTab::inTheTreeItselfTabLeadsToTheCurrentRowAgain()
{
    beginOnFirstOutput();
    click(box(0, 1));
    press(Qt::Key_Backtab);
    press(Qt::Key_Backtab);
    QCOMPARE(QApplication::focusWidget(), list);
    press(Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), combo(0, 0));
    QCOMPARE(combo(0, 1)->focusPolicy(), Qt::ClickFocus);
}

void tst_treeTab::tabReachesAnOutputBelowTheEdge()
{
    for (quint16 address = 1; address <= 6; ++address) {
        addTerminal(address, 2);
    }
    build();
    list->expandAll();
    list->setFocus();
    list->setCurrentItem(groupItem(6)); // comes into view at the lower edge
    QVERIFY(!frame(outputItem(6, 0))->isVisible());
    press(Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), combo(6, 0));
    QCOMPARE(frame(outputItem(6, 0))->geometry().top(), list->visualItemRect(outputItem(6, 0)).top());
}

void tst_treeTab::tabPassesOutputsThatAreFoldedAway()
{
    addTerminal(1, 2);
    build();
    list->expandAll();
    groupItem(1)->setExpanded(false);
    list->setFocus();
    list->setCurrentItem(groupItem(1));
    press(Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), addButton());
    QVERIFY(!frame(outputItem(1, 0))->isVisible());
}

QTEST_MAIN(tst_treeTab)

#include "tst_treeTab.moc"
