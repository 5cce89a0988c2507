#include "link/FormChoiceCoordinator.h"
#include "support/ScriptedDialogs.h"
#include "ui/window/MainWindow.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QTabWidget>
#include <QTableView>
#include <QTableWidget>
#include <QtTest>

/// What the window's tabs of the log and of the packets have beside what they show as they open.
class tst_windowLog : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void tabOfTheLogOpensWithItsTwoWidgetsAlone();
    void tabOfTheLogLooksAsBeforeOnceTheSearchIsOver();
    void changeOfTheTabEndsTheSearch();
    void searchIsOpenedFromAnywhereInTheWindowWhileTheLogIsInSight();
    void barLeavesTheWindowItsWidth();
    void savedPacketsAreToldInTheResultLine();

private:
    template <typename Widget>
    Widget* get(const char* name) const
    {
        return window->findChild<Widget*>(QLatin1String(name));
    }
    QWidget* page() const
    {
        return get<QWidget>("tabLogEvents");
    }
    QString count() const
    {
        return get<QLabel>("labelCountRows")->text();
    }
    bool barIsOpen() const
    {
        const auto* const bar = get<QWidget>("logFindBar");
        return bar != nullptr && bar->isVisible();
    }
    void showLog(int records);

    std::unique_ptr<ScriptedDialogs> dialogs;
    std::unique_ptr<MainWindow> window;
};

void tst_windowLog::init()
{
    dialogs = std::make_unique<ScriptedDialogs>();
    WindowSeams seams;
    seams.portNames = [] { return QStringList(); };
    seams.dialogs = dialogs.get();
    window = std::make_unique<MainWindow>(seams);
    // Closed without a port, it puts the actions of the unit out of use, and a change of the tab reads no log.
    window->findChild<FormChoiceCoordinator*>()->close();
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
}

void tst_windowLog::cleanup()
{
    window.reset();
}

/// Brings a log into the table, and its tab into sight.
void tst_windowLog::showLog(int records)
{
    QTRY_VERIFY(get<QTableView>("tableViewLogEvents")->model() != nullptr);
    window->sl_ReceiveDataEvents(
        QVector<QByteArray>(records, QByteArray::fromHex("37542509111020320a0a010700000000")).toList(), true);
    QTRY_COMPARE(count(), QStringLiteral("Count of rows in log - %1").arg(records));
    get<QTabWidget>("tabWidget")->setCurrentWidget(page());
    QCoreApplication::processEvents();
}

void tst_windowLog::tabOfTheLogOpensWithItsTwoWidgetsAlone()
{
    showLog(40);
    const auto* const view = get<QTableView>("tableViewLogEvents");
    const auto* const label = get<QLabel>("labelCountRows");
    const QLayout* const layout = page()->layout();
    QCOMPARE(layout->count(), 2);
    QCOMPARE(page()->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly).size(), 2);
    QCOMPARE(page()->findChild<QWidget*>(QStringLiteral("logFindBar")), nullptr);
    // The table has all the room but that of the label.
    const QRect room = layout->contentsRect();
    QCOMPARE(view->geometry(),
             QRect(room.topLeft(), QSize(room.width(), room.height() - layout->spacing() - label->height())));
    QVERIFY(!view->horizontalHeader()->isSortIndicatorShown());
}

void tst_windowLog::tabOfTheLogLooksAsBeforeOnceTheSearchIsOver()
{
    showLog(40);
    auto* const view = get<QTableView>("tableViewLogEvents");
    view->setFocus();
    const QRect place = view->geometry();
    const QImage before = page()->grab().toImage();
    QTest::keyClick(view, Qt::Key_F, Qt::ControlModifier);
    QVERIFY(barIsOpen());
    QTest::keyClicks(get<QLineEdit>("lineEditFind"), QStringLiteral("nothing"));
    QTRY_COMPARE(count(), QStringLiteral("Count of rows in log - 0 of 40"));
    QTest::keyClick(get<QLineEdit>("lineEditFind"), Qt::Key_Escape);
    QTRY_COMPARE(count(), QStringLiteral("Count of rows in log - 40"));
    QTRY_COMPARE(view->geometry(), place);
    QTRY_VERIFY(view->updatesEnabled());
    QTRY_VERIFY(page()->grab().toImage() == before);
}

void tst_windowLog::changeOfTheTabEndsTheSearch()
{
    showLog(40);
    QTest::keyClick(get<QTableView>("tableViewLogEvents"), Qt::Key_F, Qt::ControlModifier);
    QTest::keyClicks(get<QLineEdit>("lineEditFind"), QStringLiteral("nothing"));
    QTRY_COMPARE(count(), QStringLiteral("Count of rows in log - 0 of 40"));
    auto* const tabs = get<QTabWidget>("tabWidget");
    tabs->setCurrentIndex(0);
    QTRY_COMPARE(count(), QStringLiteral("Count of rows in log - 40"));
    tabs->setCurrentWidget(page());
    QVERIFY(!barIsOpen());
}

void tst_windowLog::searchIsOpenedFromAnywhereInTheWindowWhileTheLogIsInSight()
{
    QTRY_VERIFY(get<QTableView>("tableViewLogEvents")->model() != nullptr);
    auto* const tree = get<QWidget>("treeWidget");
    QTest::keyClick(tree, Qt::Key_F, Qt::ControlModifier);
    QVERIFY(!barIsOpen());
    showLog(3);
    QTest::keyClick(tree, Qt::Key_F, Qt::ControlModifier);
    QVERIFY(barIsOpen());
}

void tst_windowLog::barLeavesTheWindowItsWidth()
{
    showLog(3);
    const int narrowest = window->minimumSizeHint().width();
    QTest::keyClick(get<QTableView>("tableViewLogEvents"), Qt::Key_F, Qt::ControlModifier);
    QVERIFY(barIsOpen());
    QCOMPARE(window->minimumSizeHint().width(), narrowest);
}

void tst_windowLog::savedPacketsAreToldInTheResultLine()
{
    window->sl_RequestInLog(QDateTime::currentDateTime(), QByteArray::fromHex("c186010001052be8"), false);
    dialogs->saveAnswers.append(QStringLiteral("none/packets.txt"));
    get<QAction>("actionSavePackets")->trigger();
    QVERIFY(get<QLabel>("labelResult")->text().startsWith(QStringLiteral("ERROR saving packets to file")));
}

QTEST_MAIN(tst_windowLog)

#include "tst_windowLog.moc"
