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
    void frames_in_view_are_shown_and_no_others();
    void scrolling_shows_what_comes_into_view();
    void jumping_shows_what_comes_into_view();
    void expanding_shows_the_children_in_view();
    void collapsed_children_are_hidden_again();
    void growing_shows_more();
    void tree_that_is_filled_while_hidden_is_whole_when_shown();
    void other_widgets_are_shown_at_once();
    void rows_have_the_height_they_were_told();
};

void tst_NodeTree::frames_in_view_are_shown_and_no_others()
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

void tst_NodeTree::scrolling_shows_what_comes_into_view()
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

void tst_NodeTree::jumping_shows_what_comes_into_view()
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

void tst_NodeTree::expanding_shows_the_children_in_view()
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

void tst_NodeTree::collapsed_children_are_hidden_again()
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

void tst_NodeTree::growing_shows_more()
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

void tst_NodeTree::tree_that_is_filled_while_hidden_is_whole_when_shown()
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

void tst_NodeTree::other_widgets_are_shown_at_once()
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

void tst_NodeTree::rows_have_the_height_they_were_told()
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
