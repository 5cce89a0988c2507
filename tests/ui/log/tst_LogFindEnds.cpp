#include "LogFindTest.h"

#include <QFile>

/// What ends a search in the log beside the user, who may be typing meanwhile.
class tst_LogFindEnds : public LogFindTest
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

    void readingEndsTheSearch();
    void readingBegunWhileTheDatabaseSearchesShowsNoTable();
    void unchangedLogComesBackWhole();
    void loadingEndsTheSearch();
    void loadingBegunWhileKeysWaitShowsTheWholeFile();
    void loadingNothingLeavesTheSearchOpen();
    void nothingIsSoughtWhileAReadingRuns();
    void closingTheWindowWhileTheDatabaseSearchesEnds();

private:
    void type(const QString& text)
    {
        QTest::keyClicks(get<QLineEdit>("lineEditFind"), text);
    }
    void saveLog(const QString& name)
    {
        window->dialogs.saveAnswers.append(path(name));
        window->tab->sl_SaveLogInFile();
        QTRY_VERIFY_WITH_TIMEOUT(
            !window->results.isEmpty() && window->results.last().contains(QLatin1String("SUCCESSFUL")), waitTime);
    }
};

void tst_LogFindEnds::readingEndsTheSearch()
{
    showLog(block(1, 20));
    openBar();
    type(QStringLiteral("nothing"));
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 0 of 20"), waitTime);
    window->tab->readLog();
    QVERIFY(!barIsOpen());
    QVERIFY(count().isEmpty());
    window->tab->sl_ReceiveDataEvents(block(1, 7), true);
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 7"), waitTime);
    QCOMPARE(window->view->model()->rowCount(), 7);
}

void tst_LogFindEnds::readingBegunWhileTheDatabaseSearchesShowsNoTable()
{
    showLog(block(1, 3000));
    openBar();
    const QSignalSpy requests(window->tab.get(), &LogTab::sig_filterTable);
    type(QStringLiteral("nothing"));
    QTRY_COMPARE(requests.size(), 1);
    window->tab->readLog();
    QVERIFY(window->view->updatesEnabled());
    // The answer comes behind what was asked before it.
    bool over = false;
    QMetaObject::invokeMethod(window->tab->database(), [this, &over] {
        QMetaObject::invokeMethod(
            window->tab.get(), [&over] { over = true; }, Qt::QueuedConnection);
    });
    QTRY_VERIFY_WITH_TIMEOUT(over, waitTime);
    QVERIFY(window->view->model() == nullptr);
    QVERIFY(count().isEmpty());
    window->tab->sl_ReceiveDataEvents(block(1, 7), true);
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 7"), waitTime);
    QCOMPARE(numbersInView().size(), 7);
}

void tst_LogFindEnds::unchangedLogComesBackWhole()
{
    showLog(block(1, 20));
    openBar();
    type(QStringLiteral("nothing"));
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 0 of 20"), waitTime);
    window->tab->readLogIfChanged();
    window->tab->sl_RestoreLogEvent();
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 20"), waitTime);
    QVERIFY(!barIsOpen());
    QCOMPARE(numbersInView().size(), 20);
}

void tst_LogFindEnds::loadingEndsTheSearch()
{
    showLog(block(1, 20));
    saveLog(QStringLiteral("kept.db"));
    openBar();
    type(QStringLiteral("nothing"));
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 0 of 20"), waitTime);
    load(path(QStringLiteral("kept.db")));
    QVERIFY(!barIsOpen());
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 20"), waitTime);
    QCOMPARE(numbersInView().size(), 20);
}

void tst_LogFindEnds::loadingBegunWhileKeysWaitShowsTheWholeFile()
{
    showLog(block(1, 20));
    saveLog(QStringLiteral("kept.db"));
    const QSignalSpy requests(window->tab.get(), &LogTab::sig_filterTable);
    openBar();
    type(QStringLiteral("no"));
    QTRY_COMPARE(requests.size(), 1);
    type(QStringLiteral("thing"));
    window->dialogs.openAnswers.append(path(QStringLiteral("kept.db")));
    window->tab->sl_LoadLogFromFile();
    QVERIFY(!barIsOpen());
    QTRY_VERIFY_WITH_TIMEOUT(window->results.last().contains(QLatin1String("Loading log of events from file")) &&
                                 window->results.last().contains(QLatin1String("SUCCESSFUL")),
                             waitTime);
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 20"), waitTime);
    QCOMPARE(numbersInView().size(), 20);
    QCOMPARE(requests.size(), 1);
}

void tst_LogFindEnds::loadingNothingLeavesTheSearchOpen()
{
    showLog(block(1, 20));
    openBar();
    type(QStringLiteral("nothing"));
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 0 of 20"), waitTime);
    window->tab->sl_LoadLogFromFile(); // cancelled
    window->dialogs.openAnswers.append(path(QStringLiteral("gone.db")));
    window->tab->sl_LoadLogFromFile();
    QVERIFY(barIsOpen());
    QCOMPARE(count(), QStringLiteral("Count of rows in log - 0 of 20"));
}

void tst_LogFindEnds::nothingIsSoughtWhileAReadingRuns()
{
    showLog(block(1, 20));
    window->tab->readLog();
    QTest::keyClick(window->view, Qt::Key_F, Qt::ControlModifier);
    QVERIFY(!barIsOpen());
    QVERIFY(!chooseFromMenu(window->view->viewport(), QPoint(20, 20), "actionFind"));
    QVERIFY(!barIsOpen());
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    window->tab->sl_ReceiveDataEvents(block(1, 7), true);
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 7"), waitTime);
    openBar(); // the menu hasn't taken the keys away
}

void tst_LogFindEnds::closingTheWindowWhileTheDatabaseSearchesEnds()
{
    showLog(block(1, 3000));
    openBar();
    const QSignalSpy requests(window->tab.get(), &LogTab::sig_filterTable);
    type(QStringLiteral("nothing"));
    QTRY_COMPARE(requests.size(), 1);
    window.reset();
    QVERIFY(!QFile::exists(path(QStringLiteral("Log.db"))));
}

QTEST_MAIN(tst_LogFindEnds)

#include "tst_LogFindEnds.moc"
