#include "LogTabTest.h"

#include <QFile>

/// The way of a reading into the table, also where the database fails.
class tst_LogTabReading : public LogTabTest
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

    void readingDetachesForcesAndAsks();
    void readingOnAChangeOfTabAsksWithoutForcing();
    void detachingAndAttachingWriteDebugLines();
    void recordsWaitUntilTheReadingIsOver();
    void readingEndsWithTheRowsInViewInOrder();
    void readingThatFailsInsertsWhatHasCome();
    void emptyLogShowsACountOfZero();
    void rowsGoOutInBatches_data();
    void rowsGoOutInBatches();
    void nextBatchWaitsForTheFormerOne();
    void secondReadingReplacesTheFirst();
    void widthsThatTheUserSetSurviveAReading();
    void readingTwiceAtOnceKeepsTheWidths();
    void modelWithOtherColumnsKeepsItsOwnWidths();
    void unchangedLogComesBackWithItsCount();
    void restoredEventsAreNotInsertedAgain();

    void faultOfTheDatabaseShowsABoxAndHidesTheBusyForm_data();
    void faultOfTheDatabaseShowsABoxAndHidesTheBusyForm();
    void readingOfWhichNothingIsLeftForcesTheNext_data();
    void readingOfWhichNothingIsLeftForcesTheNext();
    void faultOfALaterBatchForcesNothing();
    void lineAboutTheEmptyTableIsWrittenWhateverTheOutcome();
    void apostropheInTheCatalogueStopsTheInsertAndTheProgramLives();
};

// ---- Reading -----------------------------------------------------------------------------------------------------

void tst_LogTabReading::readingDetachesForcesAndAsks()
{
    start();
    const QSignalSpy asked(window->tab.get(), &LogTab::sig_ReadLogEvents);
    connect(window->tab.get(), &LogTab::sig_ReadLogEvents, this, [this] {
        QCOMPARE(window->forcedReadings, 1);
        QVERIFY(window->view->model() == nullptr);
    });
    window->tab->readLog();
    QCOMPARE(asked.size(), 1);
    QCOMPARE(window->forcedReadings, 1);
}

void tst_LogTabReading::readingOnAChangeOfTabAsksWithoutForcing()
{
    start();
    const QSignalSpy asked(window->tab.get(), &LogTab::sig_ReadLogEvents);
    window->tab->readLogIfChanged();
    QCOMPARE(asked.size(), 1);
    QCOMPARE(window->forcedReadings, 0);
    QVERIFY(window->view->model() == nullptr);
}

void tst_LogTabReading::detachingAndAttachingWriteDebugLines()
{
    start();
    const DebugLines debug;
    window->tab->readLog();
    QCOMPARE(textsWithoutTime(debug.lines()), QStringList(QStringLiteral(" (MainWindow): Model is Reset")));
    handOver(*window->tab, 1);
    QTRY_VERIFY_WITH_TIMEOUT(attached(), waitTime);
    QCOMPARE(textsWithoutTime(debug.lines()),
             QStringList({QStringLiteral(" (MainWindow): Model is Reset"),
                          QStringLiteral(" (Database): delete all data from table started"),
                          QStringLiteral(" (Database): delete all data from table successful ended"),
                          QStringLiteral(" (Waiting): all data deleted from table"),
                          QStringLiteral(" (Database): insert data in table started (size = 1)"),
                          QStringLiteral(" (Database): insert data in table successful ended (size = 1)"),
                          QStringLiteral(" (MainWindow): Model is Set")}));
}

void tst_LogTabReading::recordsWaitUntilTheReadingIsOver()
{
    start();
    const QSignalSpy deleted(window->tab.get(), &LogTab::sig_deleteDataFromTable);
    const QSignalSpy inserted(window->tab.get(), &LogTab::sig_insertDataToTable);
    window->tab->readLog();
    const QList<QByteArrayList> blocks = blocksOf(40);
    for (const QByteArrayList& block : blocks) {
        window->tab->sl_ReceiveDataEvents(block, false);
    }
    QCOMPARE(deleted.size(), 0);
    QCOMPARE(inserted.size(), 0);
    window->tab->sl_ReceiveDataEvents({}, true);
    QTRY_COMPARE_WITH_TIMEOUT(deleted.size(), 1, waitTime); // once the database is done with its start
    QTRY_VERIFY_WITH_TIMEOUT(attached(), waitTime);
    QCOMPARE(inserted.size(), 1);
}

void tst_LogTabReading::readingEndsWithTheRowsInViewInOrder()
{
    start();
    const QSignalSpy hidden(window->tab.get(), &LogTab::sig_HideFormWaiting);
    readLog(4321);
    QCOMPARE(window->countRows->text(), QStringLiteral("Count of rows in log - 4321"));
    QCOMPARE(hidden.size(), 1);
    QCOMPARE(window->view->model()->rowCount(), 4321);
    for (int row = 0; row < 4321; ++row) {
        QCOMPARE(numberOfRow(*window, row), 4321 - row);
        QCOMPARE(window->view->model()->headerData(row, Qt::Vertical).toInt(), 4321 - row);
    }
    QCOMPARE(cell(*window, 0, 11), QStringLiteral("25.09.2020"));
    QCOMPARE(cell(*window, 0, 16), QStringLiteral("Moriz-NX (№7, channel 1)"));
    for (int column = 0; column < 11; ++column) {
        QVERIFY(window->view->isColumnHidden(column));
    }
    QVERIFY(window->dialogs.boxes.isEmpty());
}

void tst_LogTabReading::readingThatFailsInsertsWhatHasCome()
{
    start();
    readLog(20);
    window->tab->readLog();
    window->tab->sl_ReceiveDataEvents(blocksOf(20).constFirst(), false);
    window->tab->sl_ReceiveDataEvents({}, true); // as after a link that died
    QTRY_COMPARE_WITH_TIMEOUT(window->countRows->text(), QStringLiteral("Count of rows in log - 4"), waitTime);
    QCOMPARE(numberOfRow(*window, 0), 20);
    QCOMPARE(window->view->model()->headerData(0, Qt::Vertical).toInt(), 4);
}

void tst_LogTabReading::emptyLogShowsACountOfZero()
{
    start();
    const QSignalSpy inserted(window->tab.get(), &LogTab::sig_insertDataToTable);
    const QSignalSpy hidden(window->tab.get(), &LogTab::sig_HideFormWaiting);
    readLog(7);
    readLog(0);
    QCOMPARE(inserted.size(), 1);
    QCOMPARE(hidden.size(), 2);
    QCOMPARE(window->countRows->text(), QStringLiteral("Count of rows in log - 0"));
    QCOMPARE(window->view->model()->rowCount(), 0);
}

void tst_LogTabReading::rowsGoOutInBatches_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<QList<int>>("sizes");
    QTest::newRow("one row") << 1 << QList<int>{1};
    QTest::newRow("one below the limit") << 1999 << QList<int>{1999};
    QTest::newRow("the limit") << 2000 << QList<int>{2000};
    QTest::newRow("one above the limit") << 2001 << QList<int>{2000, 1};
    QTest::newRow("three batches") << 4100 << QList<int>{2000, 2000, 100};
}

void tst_LogTabReading::rowsGoOutInBatches()
{
    QFETCH(int, rows);
    QFETCH(QList<int>, sizes);
    start();
    const QSignalSpy batches(window->tab.get(), &LogTab::sig_insertDataToTable);
    readLog(rows);
    QList<int> sent;
    for (const QVariantList& arguments : batches) {
        sent.append(arguments.constFirst().value<QList<EventOfTable>>().size());
    }
    QCOMPARE(sent, sizes);
    QCOMPARE(window->countRows->text(), QStringLiteral("Count of rows in log - %1").arg(rows));
}

void tst_LogTabReading::nextBatchWaitsForTheFormerOne()
{
    // Without a worker nobody answers but this test.
    const QSignalSpy inserted(window->tab.get(), &LogTab::sig_insertDataToTable);
    const QSignalSpy hidden(window->tab.get(), &LogTab::sig_HideFormWaiting);
    handOver(*window->tab, 4500);
    QCOMPARE(inserted.size(), 0);
    window->tab->sl_DataIsDeleted(ErrorDataBaseNone);
    QCOMPARE(inserted.size(), 1);
    window->tab->sl_InsertNextPartEvents(ErrorDataBaseNone);
    QCOMPARE(inserted.size(), 2);
    window->tab->sl_InsertNextPartEvents(ErrorDataBaseNone);
    QCOMPARE(inserted.size(), 3);
    QCOMPARE(inserted.last().first().value<QList<EventOfTable>>().size(), 500);
    QCOMPARE(hidden.size(), 0);
    window->tab->sl_InsertNextPartEvents(ErrorDataBaseNone);
    QCOMPARE(inserted.size(), 3);
    QCOMPARE(hidden.size(), 1);
}

void tst_LogTabReading::secondReadingReplacesTheFirst()
{
    start();
    readLog(2500);
    readLog(30);
    QCOMPARE(window->countRows->text(), QStringLiteral("Count of rows in log - 30"));
    QCOMPARE(numberOfRow(*window, 0), 30);
    QCOMPARE(numberOfRow(*window, 29), 1);
}

void tst_LogTabReading::widthsThatTheUserSetSurviveAReading()
{
    start();
    window->view->setColumnWidth(15, 333);
    window->view->setColumnHidden(13, true);
    window->view->setColumnHidden(9, false);
    window->view->setColumnWidth(9, 44);
    readLog(10);
    QCOMPARE(window->view->columnWidth(15), 333);
    QCOMPARE(window->view->columnWidth(9), 44);
    QCOMPARE(window->view->columnWidth(11), 90);
    QVERIFY(window->view->isColumnHidden(13));
    QVERIFY(window->view->isColumnHidden(8));
}

void tst_LogTabReading::readingTwiceAtOnceKeepsTheWidths()
{
    start();
    window->view->setColumnWidth(15, 333);
    window->tab->readLogIfChanged();
    readLog(10);
    QCOMPARE(window->view->columnWidth(15), 333);
    QVERIFY(window->view->isColumnHidden(0));
    QVERIFY(!window->view->isColumnHidden(17));
}

void tst_LogTabReading::modelWithOtherColumnsKeepsItsOwnWidths()
{
    SqlModel usual;
    QVERIFY(usual.insertColumns(0, 18));
    window->tab->sl_SettingTableView(&usual);
    window->view->setColumnWidth(15, 333);
    window->tab->readLog();
    window->tab->sl_setStatusLog(0, false);
    QCOMPARE(window->view->columnWidth(15), 333);
    window->tab->readLog();

    SqlModel other;
    QVERIFY(other.insertColumns(0, 17));
    window->tab->sl_SettingTableView(&other);
    QCOMPARE(window->view->columnWidth(15), 130);
    window->tab->sl_setStatusLog(0, false);
    QVERIFY(window->view->model() == &other);
    QCOMPARE(window->view->columnWidth(15), 130);
    window.reset();
}

void tst_LogTabReading::unchangedLogComesBackWithItsCount()
{
    start();
    readLog(12);
    const QSignalSpy deleted(window->tab.get(), &LogTab::sig_deleteDataFromTable);
    const QSignalSpy inserted(window->tab.get(), &LogTab::sig_insertDataToTable);
    window->tab->readLogIfChanged();
    QVERIFY(window->view->model() == nullptr);
    QVERIFY(window->countRows->text().isEmpty());
    window->tab->sl_RestoreLogEvent();
    QTRY_VERIFY_WITH_TIMEOUT(attached(), waitTime);
    QCOMPARE(window->countRows->text(), QStringLiteral("Count of rows in log - 12"));
    QCOMPARE(deleted.size() + inserted.size(), 0);
    QCOMPARE(numberOfRow(*window, 0), 12);
}

void tst_LogTabReading::restoredEventsAreNotInsertedAgain()
{
    start();
    window->tab->sl_ReceiveDataEvents(blocksOf(3).constFirst(), false); // left over, as after a fault
    window->tab->readLogIfChanged();
    window->tab->sl_RestoreLogEvent();
    QTRY_COMPARE_WITH_TIMEOUT(window->countRows->text(), QStringLiteral("Count of rows in log - 0"), waitTime);
}

// ---- Faults ------------------------------------------------------------------------------------------------------

void tst_LogTabReading::faultOfTheDatabaseShowsABoxAndHidesTheBusyForm_data()
{
    QTest::addColumn<bool>("insert");
    QTest::addColumn<ErrorDataBase>("error");
    QTest::addColumn<QString>("text");
    const QString working = QStringLiteral("Fault working with the database");
    const QString insert = QStringLiteral("Fault of insert in database");
    QTest::newRow("delete 1") << false << ErrorDataBaseOpen << working;
    QTest::newRow("delete 3") << false << ErrorDataBaseNoData << working;
    QTest::newRow("delete 4") << false << ErrorDataBasePrepare << working;
    QTest::newRow("delete 5") << false << ErrorDataBaseExec << QStringLiteral("Fault of delete in database");
    QTest::newRow("insert 1") << true << ErrorDataBaseOpen << working;
    QTest::newRow("insert 2") << true << ErrorDataBaseCreateTable << working;
    QTest::newRow("insert 3") << true << ErrorDataBaseNoData << insert;
    QTest::newRow("insert 4") << true << ErrorDataBasePrepare << working;
    QTest::newRow("insert 5") << true << ErrorDataBaseExec << insert;
}

void tst_LogTabReading::faultOfTheDatabaseShowsABoxAndHidesTheBusyForm()
{
    QFETCH(bool, insert);
    QFETCH(ErrorDataBase, error);
    QFETCH(QString, text);
    const QSignalSpy hidden(window->tab.get(), &LogTab::sig_HideFormWaiting);
    const QSignalSpy inserted(window->tab.get(), &LogTab::sig_insertDataToTable);
    const QSignalSpy refreshed(window->tab.get(), &LogTab::sig_refreshTable);
    handOver(*window->tab, 5);
    if (insert) {
        window->tab->sl_InsertNextPartEvents(error);
    } else {
        window->tab->sl_DataIsDeleted(error);
    }
    QCOMPARE(window->dialogs.boxes.size(), 1);
    QCOMPARE(window->dialogs.boxes.first().title, QStringLiteral("Fault database"));
    QCOMPARE(window->dialogs.boxes.first().text, text);
    QCOMPARE(hidden.size(), 1);
    QCOMPARE(inserted.size() + refreshed.size(), 0);
}

void tst_LogTabReading::readingOfWhichNothingIsLeftForcesTheNext_data()
{
    QTest::addColumn<int>("records");
    QTest::addColumn<bool>("missing");
    QTest::addColumn<ErrorDataBase>("deletion");
    QTest::addColumn<ErrorDataBase>("insertion");
    QTest::addColumn<bool>("forces");
    QTest::newRow("whole") << 5 << false << ErrorDataBaseNone << ErrorDataBaseNone << false;
    QTest::newRow("empty log") << 0 << false << ErrorDataBaseNone << ErrorDataBaseNone << false;
    QTest::newRow("failed before its first event") << 0 << true << ErrorDataBaseNone << ErrorDataBaseNone << true;
    QTest::newRow("failed after some events") << 5 << true << ErrorDataBaseNone << ErrorDataBaseNone << false;
    QTest::newRow("not deleted") << 5 << false << ErrorDataBaseExec << ErrorDataBaseNone << true;
    QTest::newRow("not inserted") << 5 << false << ErrorDataBaseNone << ErrorDataBaseExec << true;
    QTest::newRow("not prepared") << 5 << false << ErrorDataBaseNone << ErrorDataBasePrepare << true;
}

void tst_LogTabReading::readingOfWhichNothingIsLeftForcesTheNext()
{
    QFETCH(int, records);
    QFETCH(bool, missing);
    QFETCH(ErrorDataBase, deletion);
    QFETCH(ErrorDataBase, insertion);
    QFETCH(bool, forces);
    // Once the busy form is gone, the user may change to the tab.
    int forcedInTime = -1;
    connect(window->tab.get(), &LogTab::sig_HideFormWaiting, this,
            [this, &forcedInTime] { forcedInTime = window->forcedReadings; });
    window->tab->readLogIfChanged();
    if (missing) {
        window->tab->expectMissingEvents();
    }
    handOver(*window->tab, records);
    window->tab->sl_DataIsDeleted(deletion);
    if (deletion == ErrorDataBaseNone && records > 0) {
        window->tab->sl_InsertNextPartEvents(insertion);
    }
    QCOMPARE(forcedInTime, forces ? 1 : 0);

    // It says nothing of the reading after it.
    window->tab->readLogIfChanged();
    handOver(*window->tab, 0);
    window->tab->sl_DataIsDeleted(ErrorDataBaseNone);
    QCOMPARE(window->forcedReadings, forcedInTime);
}

void tst_LogTabReading::faultOfALaterBatchForcesNothing()
{
    window->tab->readLogIfChanged();
    handOver(*window->tab, 2001);
    window->tab->sl_DataIsDeleted(ErrorDataBaseNone);
    window->tab->sl_InsertNextPartEvents(ErrorDataBaseNone);
    window->tab->sl_InsertNextPartEvents(ErrorDataBaseExec);
    QCOMPARE(window->dialogs.boxes.size(), 1);
    QCOMPARE(window->forcedReadings, 0);
}

void tst_LogTabReading::lineAboutTheEmptyTableIsWrittenWhateverTheOutcome()
{
    for (const ErrorDataBase error : {ErrorDataBaseNone, ErrorDataBasePrepare, ErrorDataBaseExec}) {
        const DebugLines debug;
        window->tab->sl_DataIsDeleted(error);
        QCOMPARE(textsWithoutTime(debug.lines()).value(0), QStringLiteral(" (Waiting): all data deleted from table"));
    }
}

void tst_LogTabReading::apostropheInTheCatalogueStopsTheInsertAndTheProgramLives()
{
    QFile catalogue(QStringLiteral("Devices_EN.csv"));
    QVERIFY(catalogue.open(QIODevice::Append));
    catalogue.write("Smith's sensor; 0x1; 0xF; 0x10; 0x20\n");
    catalogue.close();
    window = std::make_unique<LogWindow>();
    start();
    readLog(5);

    const QSignalSpy hidden(window->tab.get(), &LogTab::sig_HideFormWaiting);
    QByteArray bad = record(1);
    bad[4] = 0x1F;
    window->tab->readLog();
    window->tab->sl_ReceiveDataEvents({record(3), bad, record(2)}, true);
    QTRY_COMPARE_WITH_TIMEOUT(hidden.size(), 1, waitTime);
    QCOMPARE(window->dialogs.boxes.size(), 1);
    QCOMPARE(window->dialogs.boxes.first().title, QStringLiteral("Fault database"));
    QCOMPARE(window->dialogs.boxes.first().text, QStringLiteral("Fault working with the database"));
    QVERIFY(window->view->model() == nullptr);
    QVERIFY(window->countRows->text().isEmpty());

    readLog(6);
    QCOMPARE(window->countRows->text(), QStringLiteral("Count of rows in log - 6"));
}

QTEST_MAIN(tst_LogTabReading)

#include "tst_LogTabReading.moc"
