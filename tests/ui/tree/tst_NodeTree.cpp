#include "ui/tree/NodeFrame.h"
#include "ui/tree/NodeTree.h"

#include <QLabel>
#include <QScrollBar>
#include <QVBoxLayout>
#include <QtTest>

namespace
{

constexpr int rowHeight = 40;
constexpr int rows = 30;

NodeFrame* frameOf(const NodeTree& tree, QTreeWidgetItem* item)
{
    return qobject_cast<NodeFrame*>(tree.itemWidget(item, 0));
}

void fill(NodeTree& tree)
{
    for (int row = 0; row < rows; ++row) {
        auto* item = new QTreeWidgetItem(&tree);
        auto* frame = new NodeFrame;
        frame->setRowHeight(rowHeight);
        auto* child = new QTreeWidgetItem(item);
        auto* childFrame = new NodeFrame;
        childFrame->setRowHeight(rowHeight);
        tree.setItemWidget(item, 0, frame);
        tree.setItemWidget(child, 0, childFrame);
    }
}

} // namespace

class tst_NodeTree : public QObject
{
    Q_OBJECT

private slots:
    void framesInViewAreShownAndNoOthers();
    void scrollingShowsWhatComesIntoView();
    void jumpingShowsWhatComesIntoView();
    void expandingShowsTheChildrenInView();
    void collapsedChildrenAreHiddenAgain();
    void growingShowsMore();
    void treeThatIsFilledWhileHiddenIsWholeWhenShown();
    void otherWidgetsAreShownAtOnce();
    void rowsHaveTheHeightTheyWereTold();
};

void tst_NodeTree::framesInViewAreShownAndNoOthers()
{
    NodeTree tree;
    tree.resize(200, 200);
    fill(tree);
    tree.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tree));
    for (int row = 0; row < rows; ++row) {
        QTreeWidgetItem* item = tree.topLevelItem(row);
        const bool inView = tree.visualItemRect(item).intersects(tree.viewport()->rect());
        QCOMPARE(frameOf(tree, item)->isVisible(), inView);
        QVERIFY(!frameOf(tree, item->child(0))->isVisible());
    }
}

void tst_NodeTree::scrollingShowsWhatComesIntoView()
{
    NodeTree tree;
    tree.resize(200, 200);
    fill(tree);
    tree.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tree));
    QTreeWidgetItem* next = tree.topLevelItem(6);
    QVERIFY(!frameOf(tree, next)->isVisible());
    tree.verticalScrollBar()->setValue(2 * rowHeight);
    QVERIFY(frameOf(tree, next)->isVisible());
    QCOMPARE(frameOf(tree, next)->geometry(), tree.visualItemRect(next).adjusted(0, 0, 0, -NodeTree::gap));
}

void tst_NodeTree::jumpingShowsWhatComesIntoView()
{
    NodeTree tree;
    tree.resize(200, 200);
    fill(tree);
    tree.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tree));
    QTreeWidgetItem* last = tree.topLevelItem(rows - 1);
    tree.scrollToItem(last);
    QVERIFY(frameOf(tree, last)->isVisible());
    QCOMPARE(frameOf(tree, last)->geometry(), tree.visualItemRect(last).adjusted(0, 0, 0, -NodeTree::gap));
    QVERIFY(!frameOf(tree, tree.topLevelItem(10))->isVisible());
}

void tst_NodeTree::expandingShowsTheChildrenInView()
{
    NodeTree tree;
    tree.resize(200, 200);
    fill(tree);
    tree.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tree));
    tree.topLevelItem(0)->setExpanded(true);
    tree.topLevelItem(20)->setExpanded(true);
    QTRY_VERIFY(frameOf(tree, tree.topLevelItem(0)->child(0))->isVisible());
    QVERIFY(!frameOf(tree, tree.topLevelItem(20)->child(0))->isVisible());
}

void tst_NodeTree::collapsedChildrenAreHiddenAgain()
{
    NodeTree tree;
    tree.resize(200, 200);
    fill(tree);
    tree.topLevelItem(0)->setExpanded(true);
    tree.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tree));
    NodeFrame* child = frameOf(tree, tree.topLevelItem(0)->child(0));
    QVERIFY(child->isVisible());
    tree.topLevelItem(0)->setExpanded(false);
    QTRY_VERIFY(!child->isVisible());
    tree.topLevelItem(0)->setExpanded(true);
    QTRY_VERIFY(child->isVisible());
}

void tst_NodeTree::growingShowsMore()
{
    NodeTree tree;
    tree.resize(200, 200);
    fill(tree);
    tree.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tree));
    QVERIFY(!frameOf(tree, tree.topLevelItem(7))->isVisible());
    tree.resize(200, 400);
    QTRY_VERIFY(frameOf(tree, tree.topLevelItem(7))->isVisible());
}

void tst_NodeTree::treeThatIsFilledWhileHiddenIsWholeWhenShown()
{
    NodeTree tree;
    tree.resize(200, 200);
    tree.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tree));
    tree.hide();
    fill(tree);
    QCoreApplication::processEvents();
    tree.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tree));
    QTRY_VERIFY(frameOf(tree, tree.topLevelItem(0))->isVisible());
    QVERIFY(frameOf(tree, tree.topLevelItem(3))->isVisible());
}

void tst_NodeTree::otherWidgetsAreShownAtOnce()
{
    NodeTree tree;
    tree.resize(200, 200);
    fill(tree);
    auto* label = new QLabel(QStringLiteral("x"));
    tree.setItemWidget(new QTreeWidgetItem(&tree), 0, label);
    tree.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tree));
    QVERIFY(label->isVisible());
}

void tst_NodeTree::rowsHaveTheHeightTheyWereTold()
{
    NodeFrame frame;
    auto* layout = new QVBoxLayout(&frame);
    layout->setContentsMargins(0, 10, 0, 10);
    auto* content = new QWidget;
    content->setFixedHeight(50);
    layout->addWidget(content);
    frame.setRowHeight(rowHeight);
    QCOMPARE(frame.sizeHint().height(), rowHeight);
    QCOMPARE(frame.minimumSizeHint().height(), rowHeight);
    QCOMPARE(frame.naturalSize().height(), 70);
}

QTEST_MAIN(tst_NodeTree)
#include "tst_NodeTree.moc"
