#include <atomic>
#include <functional>

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QPointer>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QSqlDatabase>
#include <QTemporaryDir>
#include <QTest>

#include "support/DebugLines.h"
#include "support/LogWindow.h"

namespace
{

constexpr int waitTime = 30000;

/// A record that gives one row, of a terminal with a number that can be recognised.
QByteArray record(int number)
{
    QByteArray data = QByteArray::fromHex("375425091110203200010700000000");
    data.append('\0');
    data[7] = static_cast<char>(number >> 8);
    data[8] = static_cast<char>(number);
    return data;
}

QByteArrayList block(int first, int last)
{
    QByteArrayList records;
    for (int number = first; number <= last; ++number) {
        records.append(record(number));
    }
    return records;
}

/// What the unit hands out for a log of some records: the newest block first, in each the oldest record first.
QList<QByteArrayList> blocksOf(int records)
{
    QList<QByteArrayList> blocks;
    for (int last = records; last > 0; last -= 4) {
        blocks.append(block(qMax(1, last - 3), last));
    }
    return blocks;
}

void handOver(LogTab& tab, int records)
{
    const QList<QByteArrayList> blocks = blocksOf(records);
    for (const QByteArrayList& block : blocks) {
        tab.sl_ReceiveDataEvents(block, false);
    }
    tab.sl_ReceiveDataEvents({}, true);
}

QString cell(const LogWindow& window, int row, int column)
{
    return window.view->model()->index(row, column).data().toString();
}

/// The number that a record was made with, read from the two columns that carry it.
int numberOfRow(const LogWindow& window, int row)
{
    return cell(window, row, 13).toInt() << 8 | cell(window, row, 14).toInt();
}

/// The lines of the program, which begin with a time, without that.
QStringList textsWithoutTime(const QStringList& lines)
{
    static const QRegularExpression time(QStringLiteral("^\\d\\d:\\d\\d:\\d\\d:\\d\\d\\d(?= )"));
    QStringList texts;
    for (const QString& line : lines) {
        if (time.match(line).hasMatch()) {
            texts.append(line.mid(12));
        }
    }
    return texts;
}

} // namespace

class tst_LogTab : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> directory;
    std::unique_ptr<LogWindow> window;

    QString path(const QString& name) const
    {
        return directory->filePath(name);
    }
    /// Shows the window with its database at work and the empty table in view.
    void start();
    /// Reads a log of some records and waits until it is in view.
    void readLog(int records);
    /// Loads a file and waits until its rows are in view.
    void load(const QString& name);
    bool attached() const
    {
        return window->view->model() != nullptr && !window->countRows->text().isEmpty();
    }

private slots:
    void init();
    void cleanup();

    void startShowsTheEmptyTableWithoutACount();
    void viewIsSetUpAsTold();
    void clicksOnTheHeaderDoNothing();
    void startThatFailsShowsABox_data();
    void startThatFailsShowsABox();
    void unwritableWorkingDirectoryShowsABoxAndTheWindowLives();

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

    void savingAsksForAFileAndCopiesTheLog();
    void savingWithoutANameDoesNothing();
    void loadingAsksForAFileAndShowsIt();
    void loadingWithoutANameDoesNothing();
    void loadingForcesTheNextReading();
    void loadingAFileThatIsGoneKeepsTheTable();
    void loadingAFileThatIsNoLogShowsAnEmptyTable();
    void loadingThatCannotOpenShowsABox_data();
    void loadingThatCannotOpenShowsABox();
    void savedAndLoadedLogIsEqualRowByRow();
    void loadingTwiceAtOnceShowsTheSecond();
    void loadingWhileAReadingRunsEndsWithTheReading();

    void nothingOfTheViewStaysTiedToADetachedModel();
    void modelNeverChangesWhileItIsInView();
    void closingWhileABatchIsInsertedRemovesTheFile_data();
    void closingWhileABatchIsInsertedRemovesTheFile();
    void closingAtOnceRemovesTheFile();
    void closingWithoutADatabaseEnds();
};

void tst_LogTab::init()
{
    directory = std::make_unique<QTemporaryDir>();
    QVERIFY(directory->isValid());
    QVERIFY(QDir::setCurrent(directory->path()));
    window = std::make_unique<LogWindow>();
}

void tst_LogTab::cleanup()
{
    window.reset();
    QVERIFY(!QFileInfo(path(QStringLiteral("Log.db"))).isFile());
    QDir::setCurrent(QDir::tempPath());
    directory.reset();
}

void tst_LogTab::start()
{
    window->tab->startDataBase();
    window->show();
    QTRY_VERIFY_WITH_TIMEOUT(window->view->model() != nullptr, waitTime);
}

void tst_LogTab::readLog(int records)
{
    window->tab->readLog();
    QVERIFY(window->view->model() == nullptr);
    handOver(*window->tab, records);
    QTRY_VERIFY_WITH_TIMEOUT(attached(), waitTime);
}

void tst_LogTab::load(const QString& name)
{
    window->dialogs.openAnswers.append(name);
    window->tab->sl_LoadLogFromFile();
    QVERIFY(!attached());
    QTRY_VERIFY_WITH_TIMEOUT(attached(), waitTime);
}

// ---- View --------------------------------------------------------------------------------------------------------

void tst_LogTab::startShowsTheEmptyTableWithoutACount()
{
    start();
    QCOMPARE(window->view->model()->rowCount(), 0);
    QCOMPARE(window->view->model()->columnCount(), 18);
    QVERIFY(window->countRows->text().isEmpty());
    QVERIFY(QFile::exists(QStringLiteral("Log.db")));
}

void tst_LogTab::viewIsSetUpAsTold()
{
    start();
    const QTableView* view = window->view;
    QStringList visible;
    for (int column = 0; column < 18; ++column) {
        if (!view->isColumnHidden(column)) {
            visible.append(view->model()->headerData(column, Qt::Horizontal).toString());
        }
    }
    QCOMPARE(visible.join(QLatin1Char('|')),
             QStringLiteral("Date|Time|Signal level, dB|Noise, dB|Event|Source of event|Details"));
    QCOMPARE(view->styleSheet(), QStringLiteral("selection-background-color: rgb(230,230,230); selection-color: black; "
                                                "border: 1px solid rgb(187,187,187)"));
    QCOMPARE(view->selectionBehavior(), QAbstractItemView::SelectRows);
    QCOMPARE(view->selectionMode(), QAbstractItemView::SingleSelection);
    QCOMPARE(int(view->editTriggers()), int(QAbstractItemView::NoEditTriggers));

    const QHeaderView* header = view->horizontalHeader();
    QCOMPARE(header->styleSheet(), QStringLiteral("QHeaderView::section { background-color : rgb(244,244,244); }"));
    QVERIFY(header->stretchLastSection());
    QCOMPARE(header->minimumHeight(), 40);
    QCOMPARE(header->maximumHeight(), 40);
    QCOMPARE(int(header->defaultAlignment()), 4228);
    QCOMPARE(view->verticalHeader()->defaultSectionSize(), 40);
    QCOMPARE(view->verticalHeader()->minimumWidth(), 40);
    QCOMPARE(view->verticalHeader()->maximumWidth(), 40);
    QCOMPARE(int(view->verticalHeader()->defaultAlignment()), 132);

    const QList<int> widths = {90, 90, 72, 72, 130, 143};
    for (int i = 0; i < widths.size(); ++i) {
        QCOMPARE(view->columnWidth(11 + i), widths.at(i));
    }
}

void tst_LogTab::clicksOnTheHeaderDoNothing()
{
    start();
    readLog(3);
    const QSignalSpy refreshes(window->tab.get(), &LogTab::sig_refreshTable);
    QHeaderView* header = window->view->horizontalHeader();
    const QPoint event(header->sectionViewportPosition(15) + 10, 20);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier, event);
    QTest::mouseDClick(header->viewport(), Qt::LeftButton, Qt::NoModifier, event);
    QVERIFY(!window->view->selectionModel()->hasSelection());
    QVERIFY(!header->isSortIndicatorShown());
    QCOMPARE(refreshes.size(), 0);
    QCOMPARE(numberOfRow(*window, 0), 3);
}

void tst_LogTab::startThatFailsShowsABox_data()
{
    QTest::addColumn<ErrorDataBase>("error");
    QTest::addColumn<QString>("text");
    QTest::newRow("not opened") << ErrorDataBaseOpen << QStringLiteral("Ошибка открытия БД!");
    QTest::newRow("no table") << ErrorDataBaseCreateTable << QStringLiteral("Ошибка создания таблицы БД!");
    QTest::newRow("anything else") << ErrorDataBaseExec << QStringLiteral("Непредвиденная ошибка БД!");
}

void tst_LogTab::startThatFailsShowsABox()
{
    QFETCH(ErrorDataBase, error);
    QFETCH(QString, text);
    window->tab->sl_SettingModel(error, nullptr);
    QCOMPARE(window->dialogs.boxes.size(), 1);
    QCOMPARE(window->dialogs.boxes.first().title, QStringLiteral("Ошибка БД"));
    QCOMPARE(window->dialogs.boxes.first().text, text);
}

void tst_LogTab::unwritableWorkingDirectoryShowsABoxAndTheWindowLives()
{
    QVERIFY(QDir().mkdir(QStringLiteral("Log.db")));
    window->tab->startDataBase();
    window->show();
    QTRY_COMPARE_WITH_TIMEOUT(window->dialogs.boxes.size(), 1, waitTime);
    QCOMPARE(window->dialogs.boxes.last().text, QStringLiteral("Ошибка открытия БД!"));
    QVERIFY(window->view->model() == nullptr);

    // A reading ends with a box, not with a window that waits for ever.
    const QSignalSpy hidden(window->tab.get(), &LogTab::sig_HideFormWaiting);
    window->tab->readLog();
    handOver(*window->tab, 10);
    QTRY_COMPARE_WITH_TIMEOUT(hidden.size(), 1, waitTime);
    QCOMPARE(window->dialogs.boxes.size(), 2);
    QCOMPARE(window->dialogs.boxes.last().title, QStringLiteral("Fault database"));
    QCOMPARE(window->dialogs.boxes.last().text, QStringLiteral("Fault working with the database"));
    window->tab->sl_RestoreLogEvent();
    QTRY_COMPARE_WITH_TIMEOUT(window->countRows->text(), QStringLiteral("Count of rows in log - 0"), waitTime);
}

// ---- Reading -----------------------------------------------------------------------------------------------------

void tst_LogTab::readingDetachesForcesAndAsks()
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

void tst_LogTab::readingOnAChangeOfTabAsksWithoutForcing()
{
    start();
    const QSignalSpy asked(window->tab.get(), &LogTab::sig_ReadLogEvents);
    window->tab->readLogIfChanged();
    QCOMPARE(asked.size(), 1);
    QCOMPARE(window->forcedReadings, 0);
    QVERIFY(window->view->model() == nullptr);
}

void tst_LogTab::detachingAndAttachingWriteDebugLines()
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

void tst_LogTab::recordsWaitUntilTheReadingIsOver()
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

void tst_LogTab::readingEndsWithTheRowsInViewInOrder()
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

void tst_LogTab::readingThatFailsInsertsWhatHasCome()
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

void tst_LogTab::emptyLogShowsACountOfZero()
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

void tst_LogTab::rowsGoOutInBatches_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<QList<int>>("sizes");
    QTest::newRow("one row") << 1 << QList<int>{1};
    QTest::newRow("one below the limit") << 1999 << QList<int>{1999};
    QTest::newRow("the limit") << 2000 << QList<int>{2000};
    QTest::newRow("one above the limit") << 2001 << QList<int>{2000, 1};
    QTest::newRow("three batches") << 4100 << QList<int>{2000, 2000, 100};
}

void tst_LogTab::rowsGoOutInBatches()
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

void tst_LogTab::nextBatchWaitsForTheFormerOne()
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

void tst_LogTab::secondReadingReplacesTheFirst()
{
    start();
    readLog(2500);
    readLog(30);
    QCOMPARE(window->countRows->text(), QStringLiteral("Count of rows in log - 30"));
    QCOMPARE(numberOfRow(*window, 0), 30);
    QCOMPARE(numberOfRow(*window, 29), 1);
}

void tst_LogTab::widthsThatTheUserSetSurviveAReading()
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

void tst_LogTab::readingTwiceAtOnceKeepsTheWidths()
{
    start();
    window->view->setColumnWidth(15, 333);
    window->tab->readLogIfChanged();
    readLog(10);
    QCOMPARE(window->view->columnWidth(15), 333);
    QVERIFY(window->view->isColumnHidden(0));
    QVERIFY(!window->view->isColumnHidden(17));
}

void tst_LogTab::modelWithOtherColumnsKeepsItsOwnWidths()
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

void tst_LogTab::unchangedLogComesBackWithItsCount()
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

void tst_LogTab::restoredEventsAreNotInsertedAgain()
{
    start();
    window->tab->sl_ReceiveDataEvents(blocksOf(3).constFirst(), false); // left over, as after a fault
    window->tab->readLogIfChanged();
    window->tab->sl_RestoreLogEvent();
    QTRY_COMPARE_WITH_TIMEOUT(window->countRows->text(), QStringLiteral("Count of rows in log - 0"), waitTime);
}

// ---- Faults ------------------------------------------------------------------------------------------------------

void tst_LogTab::faultOfTheDatabaseShowsABoxAndHidesTheBusyForm_data()
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

void tst_LogTab::faultOfTheDatabaseShowsABoxAndHidesTheBusyForm()
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

void tst_LogTab::readingOfWhichNothingIsLeftForcesTheNext_data()
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

void tst_LogTab::readingOfWhichNothingIsLeftForcesTheNext()
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

void tst_LogTab::faultOfALaterBatchForcesNothing()
{
    window->tab->readLogIfChanged();
    handOver(*window->tab, 2001);
    window->tab->sl_DataIsDeleted(ErrorDataBaseNone);
    window->tab->sl_InsertNextPartEvents(ErrorDataBaseNone);
    window->tab->sl_InsertNextPartEvents(ErrorDataBaseExec);
    QCOMPARE(window->dialogs.boxes.size(), 1);
    QCOMPARE(window->forcedReadings, 0);
}

void tst_LogTab::lineAboutTheEmptyTableIsWrittenWhateverTheOutcome()
{
    for (const ErrorDataBase error : {ErrorDataBaseNone, ErrorDataBasePrepare, ErrorDataBaseExec}) {
        const DebugLines debug;
        window->tab->sl_DataIsDeleted(error);
        QCOMPARE(textsWithoutTime(debug.lines()).value(0), QStringLiteral(" (Waiting): all data deleted from table"));
    }
}

void tst_LogTab::apostropheInTheCatalogueStopsTheInsertAndTheProgramLives()
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

// ---- Files -------------------------------------------------------------------------------------------------------

void tst_LogTab::savingAsksForAFileAndCopiesTheLog()
{
    start();
    readLog(5);
    const QString target = path(QStringLiteral("kept.db"));
    window->dialogs.saveAnswers.append(target);
    window->tab->sl_SaveLogInFile();
    QCOMPARE(window->dialogs.questions, QStringList(QStringLiteral("Save log of events|*.db")));
    QTRY_COMPARE_WITH_TIMEOUT(window->results.size(), 2, waitTime);
    QCOMPARE(window->results.first(), QStringLiteral("Saving log of events to file started \n") + target);
    QCOMPARE(window->results.last(),
             QStringLiteral("Saving log of events to file ") + target + QStringLiteral("\nSUCCESSFUL COMPLETE"));
    QVERIFY(attached());
    QVERIFY(QFile::exists(target));
}

void tst_LogTab::savingWithoutANameDoesNothing()
{
    const QSignalSpy asked(window->tab.get(), &LogTab::sig_SaveOtherDB);
    window->tab->sl_SaveLogInFile();
    QCOMPARE(window->dialogs.questions.size(), 1);
    QCOMPARE(asked.size(), 0);
}

void tst_LogTab::loadingAsksForAFileAndShowsIt()
{
    start();
    readLog(3000);
    window->dialogs.saveAnswers.append(path(QStringLiteral("kept.db")));
    window->tab->sl_SaveLogInFile();
    readLog(2);
    window->view->setColumnWidth(15, 333);
    window->results.clear();
    window->dialogs.questions.clear();
    load(path(QStringLiteral("kept.db")));
    QCOMPARE(window->dialogs.questions, QStringList(QStringLiteral("Load log of events|*.db")));
    QCOMPARE(window->countRows->text(), QStringLiteral("Count of rows in log - 3000"));
    QCOMPARE(numberOfRow(*window, 0), 3000);
    QCOMPARE(window->view->model()->headerData(2999, Qt::Vertical).toInt(), 1);
    QCOMPARE(window->view->columnWidth(15), 130); // the view was set up anew
    QVERIFY(window->view->isColumnHidden(0));
    QCOMPARE(
        window->results,
        QStringList({QStringLiteral("Loading log of events from file started \n") + path(QStringLiteral("kept.db")),
                     QStringLiteral("Loading log of events from file ") + path(QStringLiteral("kept.db")) +
                         QStringLiteral("\nSUCCESSFUL COMPLETE")}));
}

void tst_LogTab::loadingWithoutANameDoesNothing()
{
    start();
    readLog(2);
    const QSignalSpy asked(window->tab.get(), &LogTab::sig_LoadOtherDB);
    const int forced = window->forcedReadings;
    window->tab->sl_LoadLogFromFile();
    QCOMPARE(asked.size(), 0);
    QCOMPARE(window->forcedReadings, forced);
    QVERIFY(attached());
}

void tst_LogTab::loadingForcesTheNextReading()
{
    const QSignalSpy asked(window->tab.get(), &LogTab::sig_LoadOtherDB);
    window->dialogs.openAnswers.append(QStringLiteral("/nowhere/kept.db"));
    window->tab->sl_LoadLogFromFile();
    QCOMPARE(window->forcedReadings, 1);
    QCOMPARE(asked.size(), 1);
    QCOMPARE(asked.first().first().toString(), QStringLiteral("/nowhere/kept.db"));
}

void tst_LogTab::loadingAFileThatIsGoneKeepsTheTable()
{
    start();
    readLog(2);
    const DebugLines debug;
    window->dialogs.openAnswers.append(QStringLiteral("/nowhere/kept.db"));
    window->tab->sl_LoadLogFromFile();
    QTRY_COMPARE_WITH_TIMEOUT(debug.linesWith(QStringLiteral("DATABASE")),
                              QStringList(QStringLiteral("DATABASE NOT FOUND /nowhere/kept.db")), waitTime);
    QVERIFY(attached());
    QCOMPARE(window->countRows->text(), QStringLiteral("Count of rows in log - 2"));
    QVERIFY(window->results.isEmpty());
}

void tst_LogTab::loadingAFileThatIsNoLogShowsAnEmptyTable()
{
    start();
    readLog(20);
    QFile file(QStringLiteral("letter.db"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(5000, 'x'));
    file.close();
    window->view->setColumnWidth(15, 333);
    load(path(QStringLiteral("letter.db")));
    QCOMPARE(window->countRows->text(), QStringLiteral("Count of rows in log - 0"));
    QCOMPARE(window->results.last(),
             QStringLiteral("ERROR loading log of events from file\n") + path(QStringLiteral("letter.db")));
    QVERIFY(window->view->isColumnHidden(0));
    QCOMPARE(window->view->columnWidth(15), 333);
    QVERIFY(window->dialogs.boxes.isEmpty());
    readLog(7);
    QCOMPARE(window->countRows->text(), QStringLiteral("Count of rows in log - 7"));
}

void tst_LogTab::loadingThatCannotOpenShowsABox_data()
{
    QTest::addColumn<ErrorDataBase>("error");
    QTest::addColumn<QString>("text");
    QTest::newRow("not opened") << ErrorDataBaseOpen << QStringLiteral("Ошибка открытия БД! (/somewhere/a.db)");
    QTest::newRow("anything else") << ErrorDataBaseExec
                                   << QStringLiteral("Непредвиденная ошибка БД! (/somewhere/a.db)");
}

void tst_LogTab::loadingThatCannotOpenShowsABox()
{
    QFETCH(ErrorDataBase, error);
    QFETCH(QString, text);
    QStringList results;
    connect(window->tab.get(), &LogTab::newResult, this, [&results](const QString& line) { results.append(line); });
    window->tab->sl_SettingOtherModel(error, nullptr, QStringLiteral("/somewhere/a.db"));
    QCOMPARE(window->dialogs.boxes.size(), 1);
    QCOMPARE(window->dialogs.boxes.first().title, QStringLiteral("Ошибка БД"));
    QCOMPARE(window->dialogs.boxes.first().text, text);
    QCOMPARE(results, QStringList(QStringLiteral("ERROR loading log of events from file\n/somewhere/a.db")));
}

void tst_LogTab::savedAndLoadedLogIsEqualRowByRow()
{
    start();
    readLog(2222);
    const auto content = [this] {
        QStringList cells;
        const QAbstractItemModel* model = window->view->model();
        for (int row = 0; row < model->rowCount(); ++row) {
            for (int column = 0; column < model->columnCount(); ++column) {
                cells.append(model->index(row, column).data().toString());
            }
        }
        return cells;
    };
    const QStringList before = content();
    QCOMPARE(before.size(), 2222 * 18);
    window->dialogs.saveAnswers.append(path(QStringLiteral("kept.db")));
    window->tab->sl_SaveLogInFile();
    readLog(0);
    load(path(QStringLiteral("kept.db")));
    QCOMPARE(content(), before);
}

void tst_LogTab::loadingTwiceAtOnceShowsTheSecond()
{
    start();
    for (const int rows : {900, 500}) {
        readLog(rows);
        window->dialogs.saveAnswers.append(path(QString::number(rows)));
        window->tab->sl_SaveLogInFile();
    }
    readLog(0);
    for (int round = 0; round < 5; ++round) {
        window->dialogs.openAnswers << path(QStringLiteral("900")) << path(QStringLiteral("500"));
        window->results.clear();
        window->tab->sl_LoadLogFromFile();
        window->tab->sl_LoadLogFromFile();
        QTRY_COMPARE_WITH_TIMEOUT(window->results.size(), 4, waitTime);
        QTRY_VERIFY_WITH_TIMEOUT(attached(), waitTime);
        QCOMPARE(window->countRows->text(), QStringLiteral("Count of rows in log - 500"));
    }
}

void tst_LogTab::loadingWhileAReadingRunsEndsWithTheReading()
{
    start();
    readLog(3000);
    window->dialogs.saveAnswers.append(path(QStringLiteral("kept.db")));
    window->tab->sl_SaveLogInFile();
    for (int round = 0; round < 5; ++round) {
        window->results.clear();
        window->dialogs.openAnswers.append(path(QStringLiteral("kept.db")));
        window->tab->readLog();
        window->tab->sl_LoadLogFromFile();
        handOver(*window->tab, 2500);
        QTRY_COMPARE_WITH_TIMEOUT(window->countRows->text(), QStringLiteral("Count of rows in log - 2500"), waitTime);
        QCOMPARE(window->view->model()->rowCount(), 2500);
        QCOMPARE(numberOfRow(*window, 0), 2500);
    }
}

// ---- Threads -----------------------------------------------------------------------------------------------------

void tst_LogTab::nothingOfTheViewStaysTiedToADetachedModel()
{
    start();
    readLog(20);
    QTest::mouseClick(window->view->viewport(), Qt::LeftButton, Qt::NoModifier,
                      window->view->visualRect(window->view->model()->index(2, 15)).center());
    QVERIFY(window->view->selectionModel()->hasSelection());
    const QPersistentModelIndex index(window->view->model()->index(3, 3));
    const QList<QPointer<QItemSelectionModel>> selections = [this] {
        QList<QPointer<QItemSelectionModel>> list;
        const QList<QItemSelectionModel*> all = window->view->findChildren<QItemSelectionModel*>();
        for (QItemSelectionModel* selection : all) {
            list.append(selection);
        }
        return list;
    }();
    QVERIFY(!selections.isEmpty());
    window->tab->readLog();
    QVERIFY(!index.isValid());
    for (const QPointer<QItemSelectionModel>& selection : selections) {
        QVERIFY(selection.isNull());
    }
}

void tst_LogTab::modelNeverChangesWhileItIsInView()
{
    start();
    readLog(1500);
    window->dialogs.saveAnswers.append(path(QStringLiteral("kept.db")));
    window->tab->sl_SaveLogInFile();
    QFile letter(path(QStringLiteral("letter.db")));
    QVERIFY(letter.open(QIODevice::WriteOnly));
    letter.write(QByteArray(5000, 'x'));
    letter.close();

    // The model's own signals come on the thread that changes it.
    std::atomic<int> changesInView = 0;
    std::atomic<int> changes = 0;
    const auto check = [this, &changes, &changesInView] {
        ++changes;
        changesInView += window->view->hasModel ? 1 : 0;
    };
    const auto watch = [this, check](QAbstractItemModel* model) {
        if (model != nullptr && !model->property("watched").toBool()) {
            model->setProperty("watched", true);
            connect(model, &QAbstractItemModel::modelAboutToBeReset, this, check, Qt::DirectConnection);
            connect(model, &QAbstractItemModel::rowsAboutToBeInserted, this, check, Qt::DirectConnection);
            connect(model, &QObject::destroyed, this, check, Qt::DirectConnection);
        }
    };
    watch(window->view->model());

    int readings = 0;
    const QSignalSpy ends(window->tab.get(), &LogTab::sig_HideFormWaiting);
    const QList<std::function<void()>> actions = {
        [this, &readings] {
            ++readings;
            window->tab->readLog();
            handOver(*window->tab, 300);
        },
        [this] {
            window->tab->readLogIfChanged();
            window->tab->sl_RestoreLogEvent();
        },
        [this] {
            window->dialogs.openAnswers.append(path(QStringLiteral("kept.db")));
            window->tab->sl_LoadLogFromFile();
        },
        [this] {
            window->dialogs.openAnswers.append(path(QStringLiteral("letter.db")));
            window->tab->sl_LoadLogFromFile();
        },
        [this] {
            window->dialogs.openAnswers.append(path(QStringLiteral("gone.db")));
            window->tab->sl_LoadLogFromFile();
        },
        [] { QTest::qWait(5); },
        [] { QCoreApplication::processEvents(); },
    };
    QRandomGenerator dice(1);
    for (int i = 0; i < 150; ++i) {
        actions.at(dice.bounded(actions.size()))();
        QCoreApplication::processEvents();
        watch(window->view->model());
        window->view->viewport()->repaint();
    }
    QTRY_COMPARE_WITH_TIMEOUT(ends.size(), readings, waitTime);
    window->tab->readLog();
    handOver(*window->tab, 9);
    QTRY_COMPARE_WITH_TIMEOUT(window->countRows->text(), QStringLiteral("Count of rows in log - 9"), waitTime);
    QVERIFY(changes > 10);
    QCOMPARE(changesInView.load(), 0);
    QVERIFY(window->dialogs.boxes.isEmpty());
    window.reset();
}

void tst_LogTab::closingWhileABatchIsInsertedRemovesTheFile_data()
{
    QTest::addColumn<int>("batchesBefore");
    QTest::newRow("first batch") << 1;
    QTest::newRow("second batch") << 2;
    QTest::newRow("last batch") << 4;
}

void tst_LogTab::closingWhileABatchIsInsertedRemovesTheFile()
{
    QFETCH(int, batchesBefore);
    start();
    QEventLoop loop;
    const QSignalSpy batches(window->tab.get(), &LogTab::sig_insertDataToTable);
    connect(window->tab.get(), &LogTab::sig_insertDataToTable, &loop, [stop = &loop, seen = &batches, batchesBefore] {
        if (seen->size() == batchesBefore) {
            stop->quit();
        }
    });
    window->tab->readLog();
    handOver(*window->tab, 8000);
    loop.exec();
    window.reset();
    QVERIFY(!QFile::exists(path(QStringLiteral("Log.db"))));
}

void tst_LogTab::closingAtOnceRemovesTheFile()
{
    for (int round = 0; round < 20; ++round) {
        window = std::make_unique<LogWindow>();
        window->tab->startDataBase();
        window.reset();
        QVERIFY(!QFile::exists(path(QStringLiteral("Log.db"))));
    }
}

void tst_LogTab::closingWithoutADatabaseEnds()
{
    window.reset();
    QVERIFY(!QFile::exists(path(QStringLiteral("Log.db"))));
}

QTEST_MAIN(tst_LogTab)

#include "tst_LogTab.moc"
