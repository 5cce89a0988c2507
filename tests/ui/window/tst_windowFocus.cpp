#include "ui/window/WindowTest.h"

#include <QComboBox>
#include <QDockWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabWidget>
#include <QTableWidget>
#include <QTreeWidget>

#include <algorithm>

/// The way of the focus through the window: where Tab leads, and that its stops can be seen.
class tst_windowFocus : public WindowTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void theTreeHasTheFocusFirst();
    void tabGoesFromTheTreeThroughTheListsToTheEditor();
    void backtabGoesTheSameWayBack();
    void theControlsOfTheChosenOutputComeBehindTheTree();
    void controlsOfOtherOutputsAreNoStops();
    void tabLeavesEveryTable_data();
    void tabLeavesEveryTable();
    void whatTabReachesInTheEditorIsInSight();
    void whatTabReachesInTheTreeIsInSight();
    void aWindowThatComesBackStaysAsItWasScrolled();

private:
    static QString step(Qt::Key key);
    QStringList way(Qt::Key key, const QWidget* end);
    QTreeWidget* tree() const
    {
        return get<QTreeWidget>("treeWidget");
    }
};

void tst_windowFocus::init()
{
    begin();
    form()->hide();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
}

void tst_windowFocus::cleanup()
{
    window.reset();
}

/// Presses a key where the focus is, and names what has it then.
QString tst_windowFocus::step(Qt::Key key)
{
    QTest::keyClick(QApplication::focusWidget(), key);
    const QWidget* const now = QApplication::focusWidget();
    return now != nullptr ? now->objectName() : QString();
}

/// All that has the focus on the way to a widget, without that.
QStringList tst_windowFocus::way(Qt::Key key, const QWidget* end)
{
    constexpr int longest = 200;
    QStringList names;
    for (QString name = step(key); QApplication::focusWidget() != end && names.size() < longest; name = step(key)) {
        names.append(name);
    }
    return names;
}

void tst_windowFocus::theTreeHasTheFocusFirst()
{
    QCOMPARE(window->focusWidget(), tree());
}

void tst_windowFocus::tabGoesFromTheTreeThroughTheListsToTheEditor()
{
    tree()->setFocus();
    tree()->setCurrentItem(tree()->topLevelItem(0)->child(0));
    const QStringList names = way(Qt::Key_Tab, tree());
    const QStringList begin = {QStringLiteral("comboStartState"),          QStringLiteral("checkReturn"),
                               QStringLiteral("pushButtonAddGroup"),       QStringLiteral("qt_tabwidget_tabbar"),
                               QStringLiteral("listWidgetActivateScript"), QStringLiteral("pushButtonAddScript"),
                               QStringLiteral("pushButtonDeleteScript"),   QStringLiteral("listWidgetAllScript"),
                               QStringLiteral("textEditComment"),          QStringLiteral("lineEditNameScript"),
                               QStringLiteral("comboModeWorkRelay")};
    QCOMPARE(names.mid(0, begin.size()).join(QLatin1Char(' ')), begin.join(QLatin1Char(' ')));
    QCOMPARE(names.last(), QStringLiteral("checkBoxDate"));
}

void tst_windowFocus::backtabGoesTheSameWayBack()
{
    tree()->setFocus();
    const QStringList there = way(Qt::Key_Tab, tree());
    QStringList back = way(Qt::Key_Backtab, tree());
    std::reverse(back.begin(), back.end());
    QCOMPARE(back, there);
}

void tst_windowFocus::theControlsOfTheChosenOutputComeBehindTheTree()
{
    QTreeWidgetItem* const output = tree()->topLevelItem(0)->child(1);
    tree()->setFocus();
    tree()->setCurrentItem(output);
    QCOMPARE(step(Qt::Key_Tab), QStringLiteral("comboStartState"));
    QVERIFY(tree()->itemWidget(output, 0)->isAncestorOf(QApplication::focusWidget()));
    // A terminal stands for its first output.
    tree()->setFocus();
    tree()->setCurrentItem(tree()->topLevelItem(0));
    QCOMPARE(step(Qt::Key_Tab), QStringLiteral("comboStartState"));
    QVERIFY(tree()->itemWidget(tree()->topLevelItem(0)->child(0), 0)->isAncestorOf(QApplication::focusWidget()));
}

void tst_windowFocus::controlsOfOtherOutputsAreNoStops()
{
    tree()->setFocus();
    tree()->setCurrentItem(tree()->topLevelItem(0)->child(1));
    QCOMPARE(way(Qt::Key_Tab, tree()).count(QStringLiteral("comboStartState")), 1);
    tree()->setCurrentItem(tree()->topLevelItem(0)->child(2));
    QCOMPARE(way(Qt::Key_Tab, tree()).count(QStringLiteral("comboStartState")), 1);
}

void tst_windowFocus::tabLeavesEveryTable_data()
{
    QTest::addColumn<int>("tab");
    QTest::addColumn<QByteArray>("table");
    QTest::newRow("log") << 1 << QByteArray("tableViewLogEvents");
    QTest::newRow("packets") << 2 << QByteArray("tableLogger");
}

void tst_windowFocus::tabLeavesEveryTable()
{
    QFETCH(int, tab);
    QFETCH(QByteArray, table);
    get<QTabWidget>("tabWidget")->setCurrentIndex(tab);
    if (tab == 2) {
        window->sl_RequestInLog(QDateTime::currentDateTime(), QByteArray("\x01"), false);
        window->sl_RequestInLog(QDateTime::currentDateTime(), QByteArray("\x02"), false);
    }
    auto* const widget = get<QWidget>(table.constData());
    for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Backtab}) {
        widget->setFocus();
        step(key);
        QVERIFY(QApplication::focusWidget() != widget);
    }
}

void tst_windowFocus::whatTabReachesInTheEditorIsInSight()
{
    window->resize(window->width(), 500);
    QCoreApplication::processEvents();
    auto* const name = get<QWidget>("lineEditNameScript");
    for (const Qt::Key key : {Qt::Key_Backtab, Qt::Key_Tab}) {
        tree()->setFocus();
        for (QString stop = step(key); QApplication::focusWidget() != tree(); stop = step(key)) {
            const QWidget* const now = QApplication::focusWidget();
            // The list of states is higher than what there is to see.
            QVERIFY2(now->visibleRegion().boundingRect().height() >= qMin(now->height(), 100), qPrintable(stop));
        }
    }
    tree()->setFocus();
    step(Qt::Key_Backtab);
    QVERIFY(!name->visibleRegion().contains(name->rect().center()));
}

/// A click that brings it back is on its way to what is under the mouse.
void tst_windowFocus::aWindowThatComesBackStaysAsItWasScrolled()
{
    window->resize(window->width(), 500);
    get<QWidget>("lineEditNameScript")->setFocus();
    auto* const area = window->findChild<QDockWidget*>(QStringLiteral("dockScript"))->findChild<QScrollArea*>();
    QScrollBar* const bar = area->verticalScrollBar();
    QTRY_VERIFY(bar->maximum() > 100);
    bar->setValue(bar->maximum());
    QApplication::setActiveWindow(nullptr);
    QApplication::setActiveWindow(window.get());
    QCOMPARE(QApplication::focusWidget(), get<QWidget>("lineEditNameScript"));
    QCOMPARE(bar->value(), bar->maximum());
}

void tst_windowFocus::whatTabReachesInTheTreeIsInSight()
{
    window->resize(window->width(), 500);
    QTreeWidgetItem* const headUnit = tree()->topLevelItem(0);
    tree()->setFocus();
    tree()->setCurrentItem(headUnit->child(0));
    tree()->scrollToItem(headUnit->child(headUnit->childCount() - 1));
    QCoreApplication::processEvents();
    step(Qt::Key_Tab);
    const QWidget* const combo = QApplication::focusWidget();
    QCOMPARE(combo->objectName(), QStringLiteral("comboStartState"));
    QVERIFY(combo->visibleRegion().contains(combo->rect().center()));
}

QTEST_MAIN(tst_windowFocus)

#include "tst_windowFocus.moc"
