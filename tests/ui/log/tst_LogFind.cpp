#include "LogFindTest.h"

#include <QCheckBox>
#include <QClipboard>
#include <QDateEdit>
#include <QScrollBar>
#include <QToolButton>

/// Finding in the log, by the user's steps.
class tst_LogFind : public LogFindTest
{
    Q_OBJECT

private slots:
    void init()
    {
        begin();
    }
    void cleanup()
    {
        end();
    }

    void barIsNotThereUntilItIsAskedFor();
    void keysOpenAndCloseTheBar();
    void menuOpensTheBar();
    void crossClosesTheBar();
    void openingAndClosingLeavesThePictureAsItWas();
    void searchAndReadingLeaveTheWidthsAsTheyWere();
    void barMakesTheWindowNoWider();

    void typingNarrowsTheTable();
    void textIsFoundAsItWasTyped();
    void fastKeysCostTheFirstRequestAndTheLast();
    void addressesNarrowTheTable();
    void kindsNarrowTheTable();
    void datesNarrowTheTable();
    void addressesThatMakeNoSenseAreMarked();
    void escapeShowsTheFoundEventAmongItsNeighbours();
    void scrollingToTheSideIsKept();
    void startedWithoutALogTheCountStaysAsItWas();
};

void tst_LogFind::barIsNotThereUntilItIsAskedFor()
{
    showLog(block(1, 20));
    QVERIFY(get<QWidget>("logFindBar") == nullptr);
    // As the layout places the two widgets that it has from the start.
    const int spacing = window->layout()->spacing();
    const QRect room = window->layout()->contentsRect();
    QCOMPARE(window->layout()->count(), 2);
    QCOMPARE(window->view->geometry().topLeft(), room.topLeft());
    QCOMPARE(window->view->height(), room.height() - spacing - window->countRows->height());
}

void tst_LogFind::keysOpenAndCloseTheBar()
{
    showLog(block(1, 20));
    openBar();
    QTest::keyClicks(get<QLineEdit>("lineEditFind"), QStringLiteral("25.09"));
    QTest::keyClick(get<QLineEdit>("lineEditFind"), Qt::Key_Escape);
    QVERIFY(!barIsOpen());
    QVERIFY(window->view->hasFocus());
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 20"), waitTime);
    // Escape from the table too, and the next search begins with nothing.
    openBar();
    QVERIFY(get<QLineEdit>("lineEditFind")->text().isEmpty());
    window->view->setFocus();
    QTest::keyClick(window->view, Qt::Key_Escape);
    QVERIFY(!barIsOpen());
}

void tst_LogFind::menuOpensTheBar()
{
    showLog(block(1, 20));
    QVERIFY(chooseFromMenu(window->view->viewport(), middleOfRow(1), "actionFind"));
    QVERIFY(barIsOpen());
}

void tst_LogFind::crossClosesTheBar()
{
    showLog(block(1, 20));
    openBar();
    QTest::keyClicks(get<QLineEdit>("lineEditFind"), QStringLiteral("nothing"));
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 0 of 20"), waitTime);
    QTest::mouseClick(get<QToolButton>("toolButtonCloseFind"), Qt::LeftButton);
    QVERIFY(!barIsOpen());
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 20"), waitTime);
}

void tst_LogFind::openingAndClosingLeavesThePictureAsItWas()
{
    showLog(block(1, 20));
    window->view->setFocus();
    const QImage before = window->grab().toImage();
    const QRect place = window->view->geometry();
    openBar();
    QTRY_VERIFY(window->view->geometry() != place);
    QVERIFY(window->grab().toImage() != before);
    QTest::keyClicks(get<QLineEdit>("lineEditFind"), QStringLiteral("nothing"));
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 0 of 20"), waitTime);
    QTest::keyClick(get<QLineEdit>("lineEditFind"), Qt::Key_Escape);
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 20"), waitTime);
    QTRY_COMPARE(window->view->geometry(), place);
    QTRY_VERIFY(window->view->updatesEnabled());
    QTRY_VERIFY(window->grab().toImage() == before);
}

/// As wide as the table leaves it, whatever the search has shown in between.
void tst_LogFind::searchAndReadingLeaveTheWidthsAsTheyWere()
{
    showLog(block(1, 20));
    const int details = window->view->columnWidth(17);
    openBar();
    QTest::keyClicks(get<QLineEdit>("lineEditFind"), QStringLiteral("nothing"));
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 0 of 20"), waitTime);
    QTRY_VERIFY(window->view->columnWidth(17) > details);
    readLog(20);
    QTRY_COMPARE(window->view->columnWidth(17), details); // once the scroll bar of the rows is there
    QVERIFY(!window->view->horizontalScrollBar()->isVisible());
}

void tst_LogFind::barMakesTheWindowNoWider()
{
    showLog(block(1, 20));
    const int before = window->minimumSizeHint().width();
    openBar();
    QCOMPARE(window->minimumSizeHint().width(), before);
}

void tst_LogFind::typingNarrowsTheTable()
{
    showLog(mixedRecords(20));
    openBar();
    QTest::keyClicks(get<QLineEdit>("lineEditFind"), QStringLiteral("0"));
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 20 of 20"), waitTime);
    QTest::keyClicks(get<QLineEdit>("lineEditFind"), QStringLiteral("7.09"));
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 1 of 20"), waitTime);
    QCOMPARE(cell(*window, 0, 11), QStringLiteral("07.09.2020"));
    QTest::keyClick(get<QLineEdit>("lineEditFind"), Qt::Key_Backspace);
    QTest::keyClick(get<QLineEdit>("lineEditFind"), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(get<QLineEdit>("lineEditFind"), Qt::Key_Delete);
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 20"), waitTime);
    QVERIFY(barIsOpen());
}

void tst_LogFind::textIsFoundAsItWasTyped()
{
    showLog(block(1, 20));
    openBar();
    auto* const field = get<QLineEdit>("lineEditFind");
    for (const char* const text : {"%", "_", "O'Neil", "\\", "' OR 1=1 --", "\"", "?", ":x"}) {
        field->selectAll();
        QTest::keyClicks(field, QLatin1String(text));
        QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 0 of 20"), waitTime);
        field->selectAll();
        QApplication::clipboard()->setText(QStringLiteral("(№7"));
        QTest::keyClick(field, Qt::Key_V, Qt::ControlModifier);
        QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 20 of 20"), waitTime);
    }
    QVERIFY(window->dialogs.boxes.isEmpty());
}

void tst_LogFind::fastKeysCostTheFirstRequestAndTheLast()
{
    showLog(block(1, 20));
    openBar();
    QSignalSpy requests(window->tab.get(), &LogTab::sig_filterTable);
    for (const char key : {'2', '5', '.', '0', '9', '.', '2', '0', '2', '0'}) {
        QTest::keyClick(get<QLineEdit>("lineEditFind"), key);
    }
    QTest::keyClick(get<QLineEdit>("lineEditFind"), 'x');
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 0 of 20"), waitTime);
    QCOMPARE(requests.size(), 2);
    QVERIFY(requests.first().first().toString().contains(QLatin1String("%2%")));
    QVERIFY(requests.last().first().toString().contains(QLatin1String("25.09.2020x")));
}

void tst_LogFind::addressesNarrowTheTable()
{
    showLog(mixedRecords(24));
    openBar();
    QTest::keyClicks(get<QLineEdit>("lineEditFindAddresses"), QStringLiteral("2, 5-6"));
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 9 of 24"), waitTime);
    for (int row = 0; row < 9; ++row) {
        const int address = window->view->model()->index(row, 8).data().toInt();
        QVERIFY(address == 2 || address == 5 || address == 6);
    }
}

void tst_LogFind::kindsNarrowTheTable()
{
    showLog(mixedRecords(24));
    openBar();
    QTest::mouseClick(get<QToolButton>("toolButtonKindMode"), Qt::LeftButton);
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 6 of 24"), waitTime);
    QCOMPARE(window->view->model()->index(0, 10).data().toInt(), 3);
    QTest::mouseClick(get<QToolButton>("toolButtonKindPowerUp"), Qt::LeftButton);
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 12 of 24"), waitTime);
    QTest::mouseClick(get<QToolButton>("toolButtonKindMode"), Qt::LeftButton);
    QTest::mouseClick(get<QToolButton>("toolButtonKindPowerUp"), Qt::LeftButton);
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 24"), waitTime);
}

void tst_LogFind::datesNarrowTheTable()
{
    showLog(mixedRecords(24));
    openBar();
    // The span of the log, from which the user goes on.
    QCOMPARE(get<QDateEdit>("dateEditFirstDay")->date(), QDate(2020, 9, 1));
    QCOMPARE(get<QDateEdit>("dateEditLastDay")->date(), QDate(2020, 9, 24));
    QVERIFY(!get<QDateEdit>("dateEditFirstDay")->isEnabled());
    QTest::mouseClick(get<QCheckBox>("checkBoxFirstDay"), Qt::LeftButton);
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 24 of 24"), waitTime);
    QTest::keyClick(get<QDateEdit>("dateEditFirstDay"), Qt::Key_Up);
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 23 of 24"), waitTime);
    QTest::mouseClick(get<QCheckBox>("checkBoxLastDay"), Qt::LeftButton);
    QTest::keyClick(get<QDateEdit>("dateEditLastDay"), Qt::Key_Down);
    QTest::keyClick(get<QDateEdit>("dateEditLastDay"), Qt::Key_Down);
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 21 of 24"), waitTime);
    QCOMPARE(cell(*window, 0, 11), QStringLiteral("22.09.2020"));
    QCOMPARE(cell(*window, 20, 11), QStringLiteral("02.09.2020"));
}

void tst_LogFind::addressesThatMakeNoSenseAreMarked()
{
    showLog(block(1, 20));
    openBar();
    auto* const field = get<QLineEdit>("lineEditFindAddresses");
    QTest::keyClicks(field, QStringLiteral("1-2-"));
    QVERIFY(!field->styleSheet().isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 20"), waitTime);
    QTest::keyClick(field, Qt::Key_Backspace);
    QVERIFY(field->styleSheet().isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 0 of 20"), waitTime);
}

void tst_LogFind::escapeShowsTheFoundEventAmongItsNeighbours()
{
    showLog(mixedRecords(400));
    openBar();
    QTest::keyClicks(get<QLineEdit>("lineEditFindAddresses"), QStringLiteral("4"));
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 50 of 400"), waitTime);
    const int number = window->view->model()->index(5, 0).data().toInt();
    QTest::mouseClick(window->view->viewport(), Qt::LeftButton, Qt::NoModifier, middleOfRow(5));
    QTest::keyClick(window->view, Qt::Key_Escape);
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 400"), waitTime);
    const QModelIndexList rows = window->view->selectionModel()->selectedRows();
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.first().data().toInt(), number);
    QVERIFY(rows.first().row() > 5);
    QVERIFY(window->view->viewport()->rect().contains(middleOfRow(rows.first().row())));
}

void tst_LogFind::scrollingToTheSideIsKept()
{
    window->resize(500, 400);
    showLog(mixedRecords(40));
    openBar();
    QScrollBar* const bar = window->view->horizontalScrollBar();
    QTRY_VERIFY(bar->maximum() > 1);
    bar->setValue(1);
    QTest::keyClicks(get<QLineEdit>("lineEditFind"), QStringLiteral("0"));
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 40 of 40"), waitTime);
    QCOMPARE(bar->value(), 1);
}

void tst_LogFind::startedWithoutALogTheCountStaysAsItWas()
{
    start();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    openBar();
    QTest::keyClick(get<QLineEdit>("lineEditFind"), 'x');
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 0 of 0"), waitTime);
    QTest::keyClick(get<QLineEdit>("lineEditFind"), Qt::Key_Escape);
    QTRY_COMPARE_WITH_TIMEOUT(window->countRows->text(), QString(), waitTime);
}

QTEST_MAIN(tst_LogFind)

#include "tst_LogFind.moc"
