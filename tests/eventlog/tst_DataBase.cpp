#include "DataBaseTest.h"
#include "eventlog/LogTable.h"
#include "support/DebugLines.h"
#include "support/ForeignThread.h"
#include "support/OrdinaryUser.h"

#include <QSqlDatabase>
#include <QSqlQuery>

/// The worker from its start to its end: the table and its rows.
class tst_DataBase : public DataBaseTest
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

    void codesOfErrors();

    void startMakesAnEmptyTable();
    void startSetsTheHeadings();
    void startRemovesWhateverIsLeftOfAFormerRun_data();
    void startRemovesWhateverIsLeftOfAFormerRun();
    void startLeavesTheTargetOfADeadLinkAlone();
    void startFailsWhenTheFileCannotBeMade();
    void startFailsInADirectoryThatIsGone();
    void startFailsInADirectoryThatMustNotBeWritten();
    void startFailsWhenTheTableCannotBeMade();

    void insertWritesEveryField();
    void insertKeepsTheOrderOfTheRows();
    void insertTakesTextsAsTheyStand();
    void insertOfABatchOfTwoThousand();
    void insertOfNothingIsAnError();
    void apostropheFailsAtThePreparation();
    void insertThatCannotBeWrittenFails();
    void insertWithoutDatabaseFails();
    void deleteEmptiesTheTable();
    void deleteFails_data();
    void deleteFails();

    void refreshFetchesAllRows();
    void refreshClearsTheFilter();
    void refreshWithoutDatabaseCountsNoRows();
    void filterShowsTheRowsThatItNames();
    void closingRemovesTheWorkingFile();
    void noSlotRunsOnAForeignThread();
    void allThatCrossesIsAValueButTheModel();
};

void tst_DataBase::codesOfErrors()
{
    QCOMPARE(int(ErrorDataBaseNone), 0);
    QCOMPARE(int(ErrorDataBaseOpen), 1);
    QCOMPARE(int(ErrorDataBaseCreateTable), 2);
    QCOMPARE(int(ErrorDataBaseNoData), 3);
    QCOMPARE(int(ErrorDataBasePrepare), 4);
    QCOMPARE(int(ErrorDataBaseExec), 5);
}

// ---- Start -------------------------------------------------------------------------------------------------------

void tst_DataBase::startMakesAnEmptyTable()
{
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_ResultConnectDB);
    dataBase->sl_connectToDataBase();
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.first().at(0).value<ErrorDataBase>(), ErrorDataBaseNone);
    const auto* model = spy.first().at(1).value<SqlModel*>();
    QVERIFY(model != nullptr);
    QCOMPARE(model->rowCount(), 0);
    QCOMPARE(model->tableName(), QStringLiteral("EventLogTable"));
    QCOMPARE(shell(workingFile, QStringLiteral("SELECT sql FROM sqlite_master")), logtable::createStatement());
}

void tst_DataBase::startSetsTheHeadings()
{
    const SqlModel* model = connected();
    QStringList headings;
    for (int column = 0; column < model->columnCount(); ++column) {
        headings.append(model->headerData(column, Qt::Horizontal).toString());
    }
    QCOMPARE(headings.join(QLatin1Char('|')),
             QStringLiteral("Number|Days * 10000 + minutes|Date in days|Time in minutes|Class|Version|Type|"
                            "Characteristic|Address of terminal|Number of channel|Code of event|Date|Time|"
                            "Signal level, dB|Noise, dB|Event|Source of event|Details"));
}

void tst_DataBase::startRemovesWhateverIsLeftOfAFormerRun_data()
{
    QTest::addColumn<QByteArray>("left");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("no database") << QByteArray("What a crash left behind\n");
    QTest::newRow("half a database") << QByteArray("SQLite format 3\0", 16);
}

void tst_DataBase::startRemovesWhateverIsLeftOfAFormerRun()
{
    QFETCH(QByteArray, left);
    QVERIFY(write(workingFile, left));
    QVERIFY(QFile::setPermissions(workingFile, QFile::ReadOwner));
    const SqlModel* model = connected();
    QVERIFY(model != nullptr);
    QCOMPARE(model->rowCount(), 0);
}

void tst_DataBase::startLeavesTheTargetOfADeadLinkAlone()
{
    QVERIFY(QFile::link(path(QStringLiteral("elsewhere.db")), path(workingFile)));
    QVERIFY(connected() != nullptr);
    QVERIFY(!QFile::exists(path(QStringLiteral("elsewhere.db"))));
    QVERIFY(!QFileInfo(workingFile).isSymLink());
}

void tst_DataBase::startFailsWhenTheFileCannotBeMade()
{
    QVERIFY(QDir().mkdir(workingFile));
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_ResultConnectDB);
    const DebugLines debug;
    dataBase->sl_connectToDataBase();
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.first().at(0).value<ErrorDataBase>(), ErrorDataBaseOpen);
    QVERIFY(spy.first().at(1).value<SqlModel*>() == nullptr);
    QCOMPARE(debug.lines(), QStringList(QStringLiteral("ERROR OPEN DATABASE AFTER CREATE")));
}

void tst_DataBase::startFailsInADirectoryThatIsGone()
{
    QVERIFY(directory->remove());
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_ResultConnectDB);
    dataBase->sl_connectToDataBase();
    QCOMPARE(spy.first().at(0).value<ErrorDataBase>(), ErrorDataBaseOpen);
}

void tst_DataBase::startFailsInADirectoryThatMustNotBeWritten()
{
    QVERIFY(QFile::setPermissions(directory->path(), forReaders));
    const OrdinaryUser user;
    QVERIFY(user.isOrdinary);
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_ResultConnectDB);
    dataBase->sl_connectToDataBase();
    QCOMPARE(spy.first().at(0).value<ErrorDataBase>(), ErrorDataBaseOpen);
}

void tst_DataBase::startFailsWhenTheTableCannotBeMade()
{
    const FullDisk disk(0);
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_ResultConnectDB);
    const DebugLines debug;
    dataBase->sl_connectToDataBase();
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.first().at(0).value<ErrorDataBase>(), ErrorDataBaseCreateTable);
    QVERIFY(spy.first().at(1).value<SqlModel*>() == nullptr);
    QCOMPARE(debug.lines(), QStringList(QStringLiteral("ERROR CREATE TABLE EventLogTable")));
}

// ---- Rows --------------------------------------------------------------------------------------------------------

void tst_DataBase::insertWritesEveryField()
{
    QVERIFY(connected() != nullptr);
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_ResultInsertIntoTable);
    const DebugLines debug;
    dataBase->sl_insertIntoTable({eventRow(65535)});
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.first().first().value<ErrorDataBase>(), ErrorDataBaseNone);
    QCOMPARE(debug.lines().size(), 2);
    QCOMPARE(textWithoutTime(debug.lines().constFirst()),
             QStringLiteral(" (Database): insert data in table started (size = 1)"));
    QCOMPARE(textWithoutTime(debug.lines().constLast()),
             QStringLiteral(" (Database): insert data in table successful ended (size = 1)"));
    QCOMPARE(shell(workingFile, QStringLiteral("SELECT * FROM EventLogTable")),
             QStringLiteral("65535|75730373|7573|373|1|2|3|4|5|6|7|25.09.2020|14:37|8|9|Alarm (fire)|"
                            "KV-NX (№5, channel 6)|12°C (channel 1)\n13°C (channel 2)"));
    QCOMPARE(
        shell(workingFile, QStringLiteral("SELECT NumberEvent, SortDateTime, DateInDays, TimeInMinute, Class, "
                                          "Version, Type, Characteristic, AddressTerminal, NumberChannel, CodeEvent, "
                                          "SignalLevel, NoiseLevel FROM EventLogTable")),
        QStringLiteral("65535|75730373|7573|373|1|2|3|4|5|6|7|8|9"));
}

void tst_DataBase::insertKeepsTheOrderOfTheRows()
{
    QVERIFY(connected() != nullptr);
    dataBase->sl_insertIntoTable({eventRow(5), eventRow(9)});
    dataBase->sl_insertIntoTable({eventRow(1), eventRow(7)});
    QCOMPARE(shell(workingFile, QStringLiteral("SELECT NumberEvent FROM EventLogTable")), QStringLiteral("5\n9\n1\n7"));
}

void tst_DataBase::insertTakesTextsAsTheyStand()
{
    const SqlModel* model = connected();
    EventOfTable row = eventRow(1);
    row.date = QStringLiteral("%1 %18");
    row.event = QStringLiteral("%17 :name ? -- ; \"quoted\" \\ (");
    row.source = QStringLiteral("two '' are one");
    row.information = QString();
    dataBase->sl_insertIntoTable({row, eventRow(2)});
    dataBase->sl_refreshModel();
    QCOMPARE(model->rowCount(), 2);
    QCOMPARE(model->data(model->index(0, 11)).toString(), row.date);
    QCOMPARE(model->data(model->index(0, 15)).toString(), row.event);
    QCOMPARE(model->data(model->index(0, 16)).toString(), QStringLiteral("two ' are one"));
    QCOMPARE(model->data(model->index(0, 17)).toString(), QString());
    QVERIFY(!model->data(model->index(0, 17)).isNull());
}

void tst_DataBase::insertOfABatchOfTwoThousand()
{
    QVERIFY(connected() != nullptr);
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_ResultInsertIntoTable);
    dataBase->sl_insertIntoTable(eventRows(2000));
    QCOMPARE(spy.first().first().value<ErrorDataBase>(), ErrorDataBaseNone);
    QCOMPARE(shell(workingFile, QStringLiteral("SELECT count(*) FROM EventLogTable")), QStringLiteral("2000"));
}

void tst_DataBase::insertOfNothingIsAnError()
{
    QVERIFY(connected() != nullptr);
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_ResultInsertIntoTable);
    const DebugLines debug;
    dataBase->sl_insertIntoTable({});
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.first().first().value<ErrorDataBase>(), ErrorDataBaseNoData);
    QCOMPARE(debug.lines().size(), 2);
    QCOMPARE(textWithoutTime(debug.lines().constFirst()),
             QStringLiteral(" (Database): insert data in table started (size = 0)"));
    QCOMPARE(textWithoutTime(debug.lines().constLast()),
             QStringLiteral(" (Database): ERROR - size data for insert to table = 0!!"));
}

void tst_DataBase::apostropheFailsAtThePreparation()
{
    const SqlModel* model = connected();
    EventOfTable row = eventRow(2);
    row.source = QStringLiteral("Smith's sensor (№5)");
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_ResultInsertIntoTable);
    {
        const DebugLines debug;
        dataBase->sl_insertIntoTable({eventRow(1), row, eventRow(3)});
        QCOMPARE(debug.lines().size(), 2);
        QVERIFY(textWithoutTime(debug.lines().constLast())
                    .startsWith(QStringLiteral(" (Database): ERROR - Unable to prepare query: ")));
    }
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.first().first().value<ErrorDataBase>(), ErrorDataBasePrepare);
    // The batch is lost as a whole; the next one goes in.
    dataBase->sl_insertIntoTable(eventRows(3));
    dataBase->sl_refreshModel();
    QCOMPARE(model->rowCount(), 3);
}

void tst_DataBase::insertThatCannotBeWrittenFails()
{
    const SqlModel* model = connected();
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_ResultInsertIntoTable);
    {
        const FullDisk disk(rlim_t(QFileInfo(workingFile).size()));
        const DebugLines debug;
        dataBase->sl_insertIntoTable(eventRows(2000));
        QCOMPARE(debug.lines().size(), 2);
        QVERIFY(textWithoutTime(debug.lines().constLast())
                    .startsWith(QStringLiteral(" (Database): ERROR - Insert data into table : ")));
    }
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.first().first().value<ErrorDataBase>(), ErrorDataBaseExec);
    // With room again the database goes on where it was.
    dataBase->sl_insertIntoTable(eventRows(10));
    dataBase->sl_refreshModel();
    QCOMPARE(model->rowCount(), 10);
}

void tst_DataBase::insertWithoutDatabaseFails()
{
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_ResultInsertIntoTable);
    QTest::ignoreMessage(QtWarningMsg, "QSqlQuery::exec: database not open");
    dataBase->sl_insertIntoTable(eventRows(1));
    QCOMPARE(spy.first().first().value<ErrorDataBase>(), ErrorDataBasePrepare);
}

void tst_DataBase::deleteEmptiesTheTable()
{
    QVERIFY(connected() != nullptr);
    dataBase->sl_insertIntoTable(eventRows(300));
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_ResultDeleteFromTable);
    const DebugLines debug;
    dataBase->sl_deleteDataFromTable();
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.first().first().value<ErrorDataBase>(), ErrorDataBaseNone);
    QCOMPARE(debug.lines().size(), 2);
    QCOMPARE(textWithoutTime(debug.lines().constFirst()),
             QStringLiteral(" (Database): delete all data from table started"));
    QCOMPARE(textWithoutTime(debug.lines().constLast()),
             QStringLiteral(" (Database): delete all data from table successful ended"));
    QCOMPARE(shell(workingFile, QStringLiteral("SELECT count(*) FROM EventLogTable")), QStringLiteral("0"));
}

void tst_DataBase::deleteFails_data()
{
    QTest::addColumn<QString>("harm");
    QTest::addColumn<ErrorDataBase>("error");
    QTest::addColumn<QString>("line");
    QTest::newRow("without the table") << QStringLiteral("DROP TABLE EventLogTable") << ErrorDataBasePrepare
                                       << QStringLiteral(" (Database): ERROR - Unable to prepare query: ");
    QTest::newRow("against a trigger") << QStringLiteral("CREATE TRIGGER keep BEFORE DELETE ON EventLogTable BEGIN "
                                                         "SELECT RAISE(ABORT, 'kept'); END")
                                       << ErrorDataBaseExec
                                       << QStringLiteral(" (Database): ERROR - Delete data from table : ");
}

void tst_DataBase::deleteFails()
{
    QFETCH(QString, harm);
    QFETCH(ErrorDataBase, error);
    QFETCH(QString, line);
    QVERIFY(connected() != nullptr);
    dataBase->sl_insertIntoTable(eventRows(3));
    QVERIFY(QSqlQuery().exec(harm));
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_ResultDeleteFromTable);
    const DebugLines debug;
    dataBase->sl_deleteDataFromTable();
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.first().first().value<ErrorDataBase>(), error);
    QVERIFY(textWithoutTime(debug.lines().value(1)).startsWith(line));
}

// ---- Model -------------------------------------------------------------------------------------------------------

void tst_DataBase::refreshFetchesAllRows()
{
    const SqlModel* model = connected();
    dataBase->sl_insertIntoTable(eventRows(1700));
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_RefreshComplete);
    dataBase->sl_refreshModel();
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.first(), QVariantList({1700, false}));
    QCOMPARE(model->rowCount(), 1700);
    QVERIFY(!model->canFetchMore());
    QCOMPARE(model->headerData(0, Qt::Vertical).toInt(), 1700);
    QCOMPARE(model->headerData(1699, Qt::Vertical).toInt(), 1);
    QCOMPARE(model->headerData(0, Qt::Horizontal).toString(), QStringLiteral("Number"));
}

void tst_DataBase::refreshClearsTheFilter()
{
    const SqlModel* model = connected();
    dataBase->sl_insertIntoTable(eventRows(20));
    dataBase->sl_filterModel(QStringLiteral("NumberEvent = 3"));
    QCOMPARE(model->rowCount(), 1);
    dataBase->sl_refreshModel();
    QCOMPARE(model->rowCount(), 20);
    QVERIFY(model->filter().isEmpty());
}

void tst_DataBase::refreshWithoutDatabaseCountsNoRows()
{
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_RefreshComplete);
    dataBase->sl_refreshModel();
    QCOMPARE(spy.first(), QVariantList({0, false}));
}

void tst_DataBase::filterShowsTheRowsThatItNames()
{
    QVERIFY(connected() != nullptr);
    dataBase->sl_insertIntoTable(eventRows(1000));
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_FilterComplete);
    dataBase->sl_filterModel(QStringLiteral("NumberEvent > 400"));
    dataBase->sl_filterModel(QString());
    QCOMPARE(spy.size(), 2);
    QCOMPARE(spy.first(), QVariantList({600, true}));
    QCOMPARE(spy.last(), QVariantList({1000, false}));
}

void tst_DataBase::closingRemovesTheWorkingFile()
{
    QVERIFY(connected() != nullptr);
    QVERIFY(QFile::exists(workingFile));
    dataBase->sl_closeDataBase();
    QVERIFY(!QFile::exists(workingFile));
    QVERIFY(!QSqlDatabase::database(QLatin1String(QSqlDatabase::defaultConnection), false).isOpen());
}

void tst_DataBase::noSlotRunsOnAForeignThread()
{
    QVERIFY(connected() != nullptr);
    QCOMPARE(slotsForAnyThread(dataBase.get()), QStringList());
}

void tst_DataBase::allThatCrossesIsAValueButTheModel()
{
    QCOMPARE(methodsThatShare(DataBase::staticMetaObject),
             (QStringList{QStringLiteral("sig_ResultConnectDB(ErrorDataBase,SqlModel*)"),
                          QStringLiteral("sig_ResultConnectOtherDB(ErrorDataBase,SqlModel*,QString)")}));
}

QTEST_GUILESS_MAIN(tst_DataBase)

#include "tst_DataBase.moc"
