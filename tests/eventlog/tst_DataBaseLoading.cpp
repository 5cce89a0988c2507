#include "DataBaseTest.h"
#include "support/DebugLines.h"
#include "support/OrdinaryUser.h"

#include <QPointer>
#include <QSqlDatabase>
#include <QSqlQuery>

/// The log as it comes from a file, whatever that is.
class tst_DataBaseLoading : public DataBaseTest
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

    void loadShowsASavedLog();
    void loadKeepsTheNumbersOfTheRows();
    void loadedLogIsWholeWhateverWasLookedForBefore();
    void loadOfAFileThatDoesNotExistEmitsNothing();
    void loadOfAFileThatIsNoLogEndsEmpty_data();
    void loadOfAFileThatIsNoLogEndsEmpty();
    void loadOfATableWithOtherColumnsEndsEmpty_data();
    void loadOfATableWithOtherColumnsEndsEmpty();
    void loadOfATableWithFurtherColumnsShowsThoseOfALog_data();
    void loadOfATableWithFurtherColumnsShowsThoseOfALog();
    void loadOfATableWithFurtherColumnsWorksAfterAStartThatFailed();
    void loadOfTheWorkingFileItselfEndsEmpty_data();
    void loadOfTheWorkingFileItselfEndsEmpty();
    void loadOfAHardLinkToTheWorkingFileShowsIt();
    void loadOntoAFullDiskEndsEmpty();
    void loadOfALogDamagedInTheMiddleShowsWhatCanBeRead();
    void loadWithoutWorkingDirectoryFails();
    void loadWorksAfterAStartThatFailed();
    void loadOfAWriteProtectedLogCanBeReplaced();
    void loadOfALogThatMustNotBeReadEndsEmpty();
    void loadOfALogWithWriteAheadLoggingCanBeSaved();
    void loadedFileIsNeverChanged();
};

// ---- Loading -----------------------------------------------------------------------------------------------------

void tst_DataBaseLoading::loadShowsASavedLog()
{
    const QString saved = savedLog(QStringLiteral("saved.db"), 700);
    const SqlModel* model = connected();
    dataBase->sl_insertIntoTable(eventRows(5));
    const QSignalSpy messages(dataBase.get(), &DataBase::sig_MessageForForm);
    const QSignalSpy results(dataBase.get(), &DataBase::sig_ResultConnectOtherDB);
    dataBase->sl_connectOtherDataBase(saved);
    QCOMPARE(messages.size(), 1);
    QCOMPARE(messages.first().first().toString(), QStringLiteral("Loading log of events from file started \n") + saved);
    QCOMPARE(results.size(), 1);
    QCOMPARE(results.first().at(0).value<ErrorDataBase>(), ErrorDataBaseNone);
    QVERIFY(results.first().at(1).value<SqlModel*>() == model);
    QCOMPARE(results.first().at(2).toString(), saved);
    dataBase->sl_refreshModel();
    QCOMPARE(model->rowCount(), 700);
    QCOMPARE(model->headerData(15, Qt::Horizontal).toString(), QStringLiteral("Event"));
}

void tst_DataBaseLoading::loadKeepsTheNumbersOfTheRows()
{
    const QString saved = savedLog(QStringLiteral("saved.db"), 3);
    const SqlModel* model = connected();
    dataBase->sl_connectOtherDataBase(saved);
    dataBase->sl_refreshModel();
    QCOMPARE(model->headerData(0, Qt::Vertical).toInt(), 3);
    QCOMPARE(model->headerData(2, Qt::Vertical).toInt(), 1);
}

void tst_DataBaseLoading::loadedLogIsWholeWhateverWasLookedForBefore()
{
    const QString saved = savedLog(QStringLiteral("saved.db"), 5);
    SqlModel* const model = connected();
    dataBase->sl_insertIntoTable(eventRows(3));
    dataBase->sl_refreshModel();
    for (const char* const condition : {"NumberEvent = 2", "0"}) {
        dataBase->sl_filterModel(QLatin1String(condition));
        QVERIFY(model->rowCount() < 3);
        dataBase->sl_connectOtherDataBase(saved);
        QCOMPARE(model->rowCount(), 5);
        QVERIFY(model->filter().isEmpty());
        dataBase->sl_filterModel(QStringLiteral("NumberEvent > 2"));
        QCOMPARE(model->rowCount(), 3);
    }
}

void tst_DataBaseLoading::loadOfAFileThatDoesNotExistEmitsNothing()
{
    const SqlModel* model = connected();
    dataBase->sl_insertIntoTable(eventRows(5));
    const QSignalSpy messages(dataBase.get(), &DataBase::sig_MessageForForm);
    const QSignalSpy connects(dataBase.get(), &DataBase::sig_ResultConnectDB);
    const QSignalSpy results(dataBase.get(), &DataBase::sig_ResultConnectOtherDB);
    const QSignalSpy refreshes(dataBase.get(), &DataBase::sig_RefreshComplete);
    const DebugLines debug;
    dataBase->sl_connectOtherDataBase(QStringLiteral("/nowhere/a \"log\".db"));
    QCOMPARE(debug.lines(), QStringList(QStringLiteral("DATABASE NOT FOUND /nowhere/a \"log\".db")));
    QCOMPARE(messages.size() + connects.size() + results.size() + refreshes.size(), 0);
    dataBase->sl_refreshModel();
    QCOMPARE(model->rowCount(), 5);
}

void tst_DataBaseLoading::loadOfAFileThatIsNoLogEndsEmpty_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("no database") << QStringLiteral("text.db");
    QTest::newRow("a database without the table") << QStringLiteral("tableless.db");
    QTest::newRow("empty") << QStringLiteral("empty.db");
    QTest::newRow("cut off in its first page") << QStringLiteral("cut.db");
    QTest::newRow("damaged in its first page") << QStringLiteral("damaged.db");
    QTest::newRow("can't be read") << QStringLiteral("directory.db");
}

void tst_DataBaseLoading::loadOfAFileThatIsNoLogEndsEmpty()
{
    QFETCH(QString, name);
    const QByteArray saved = contentOf(savedLog(QStringLiteral("saved.db"), 100));
    QVERIFY(write(QStringLiteral("text.db"), QByteArray("A letter, no log.\n").repeated(1000)));
    QVERIFY(write(QStringLiteral("empty.db"), QByteArray()));
    QVERIFY(write(QStringLiteral("cut.db"), saved.left(1000)));
    QByteArray damaged = saved;
    damaged.replace(100, 900, QByteArray(900, '\xAA'));
    QVERIFY(write(QStringLiteral("damaged.db"), damaged));
    QVERIFY(QDir().mkdir(QStringLiteral("directory.db")));
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other"));
        other.setDatabaseName(QStringLiteral("tableless.db"));
        QVERIFY(other.open());
        QVERIFY(QSqlQuery(other).exec(QStringLiteral("CREATE TABLE OtherTable (number INTEGER)")));
    }
    QSqlDatabase::removeDatabase(QStringLiteral("other"));

    QPointer<SqlModel> before = connected();
    dataBase->sl_insertIntoTable(eventRows(5));
    const QSignalSpy messages(dataBase.get(), &DataBase::sig_MessageForForm);
    const QSignalSpy connects(dataBase.get(), &DataBase::sig_ResultConnectDB);
    const QSignalSpy results(dataBase.get(), &DataBase::sig_ResultConnectOtherDB);
    const QSignalSpy refreshes(dataBase.get(), &DataBase::sig_RefreshComplete);
    const QByteArray content = contentOf(name);
    {
        const DebugLines debug;
        dataBase->sl_connectOtherDataBase(name);
        QCOMPARE(debug.lines().size(), 1);
        const QString line = debug.lines().constFirst();
        QVERIFY2(line.startsWith(QLatin1String("ERROR REFRESH TABLE EventLogTable (")), qPrintable(line));
        QVERIFY(line.endsWith(QLatin1Char(')')));
    }
    QCOMPARE(contentOf(name), content);
    QCOMPARE(messages.size(), 2);
    QCOMPARE(messages.last().first().toString(), QStringLiteral("ERROR loading log of events from file\n") + name);
    QCOMPARE(results.size(), 0);
    QCOMPARE(connects.size(), 1);
    QCOMPARE(connects.first().at(0).value<ErrorDataBase>(), ErrorDataBaseNone);
    QCOMPARE(refreshes.size(), 1);
    QCOMPARE(refreshes.first(), QVariantList({0, false}));

    // A fresh model took the place of the former one, and the table takes rows again.
    QVERIFY(before.isNull());
    const auto* model = connects.first().at(1).value<SqlModel*>();
    dataBase->sl_insertIntoTable(eventRows(4));
    dataBase->sl_refreshModel();
    QCOMPARE(model->rowCount(), 4);
}

void tst_DataBaseLoading::loadOfATableWithOtherColumnsEndsEmpty_data()
{
    QTest::addColumn<QString>("change");
    const auto anew = [](const QString& columns, const QString& definitions) {
        return QStringLiteral("CREATE TABLE Other (%2); INSERT INTO Other SELECT %1 FROM EventLogTable; "
                              "DROP TABLE EventLogTable; ALTER TABLE Other RENAME TO EventLogTable")
            .arg(columns, definitions);
    };
    const QString head = QStringLiteral("NumberEvent, SortDateTime, DateInDays, TimeInMinute, Class, Version, Type, "
                                        "Characteristic, AddressTerminal, NumberChannel, CodeEvent, Date, Time, ");
    const QString all = head + QStringLiteral("SignalLevel, NoiseLevel, Event, Source, Information");
    QTest::newRow("the last one is missing") << QStringLiteral("ALTER TABLE EventLogTable DROP COLUMN Information");
    QTest::newRow("one in the middle is missing") << QStringLiteral("ALTER TABLE EventLogTable DROP COLUMN Class");
    QTest::newRow("one has another name")
        << QStringLiteral("ALTER TABLE EventLogTable RENAME COLUMN SignalLevel TO Level");
    QTest::newRow("two have changed places")
        << anew(all, head + QStringLiteral("NoiseLevel, SignalLevel, Event, Source, Information"));
    QTest::newRow("one too many in front") << anew(QStringLiteral("1, ") + all, QStringLiteral("Id, ") + all);
    QTest::newRow("a further one that can't be left out")
        << anew(all + QStringLiteral(", 1"), all + QStringLiteral(", Further INTEGER NOT NULL"));
    QTest::newRow("no table but a view") << QStringLiteral(
        "ALTER TABLE EventLogTable RENAME TO Other; CREATE VIEW EventLogTable AS SELECT * FROM Other");
}

void tst_DataBaseLoading::loadOfATableWithOtherColumnsEndsEmpty()
{
    QFETCH(QString, change);
    const QString saved = savedLog(QStringLiteral("saved.db"), 10);
    QCOMPARE(writingShell(saved, change), QString());
    const QByteArray content = contentOf(saved);
    QVERIFY(connected() != nullptr);
    dataBase->sl_insertIntoTable(eventRows(5));
    const QSignalSpy messages(dataBase.get(), &DataBase::sig_MessageForForm);
    const QSignalSpy connects(dataBase.get(), &DataBase::sig_ResultConnectDB);
    const QSignalSpy results(dataBase.get(), &DataBase::sig_ResultConnectOtherDB);
    const QSignalSpy refreshes(dataBase.get(), &DataBase::sig_RefreshComplete);
    {
        const DebugLines debug;
        dataBase->sl_connectOtherDataBase(saved);
        QCOMPARE(debug.lines(), QStringList(QStringLiteral("ERROR REFRESH TABLE EventLogTable (other columns)")));
    }
    QCOMPARE(messages.last().first().toString(), QStringLiteral("ERROR loading log of events from file\n") + saved);
    QCOMPARE(results.size(), 0);
    QCOMPARE(connects.size(), 1);
    QCOMPARE(refreshes.size(), 1);
    QCOMPARE(refreshes.first(), QVariantList({0, false}));
    QCOMPARE(contentOf(saved), content);

    const auto* model = connects.first().at(1).value<SqlModel*>();
    dataBase->sl_deleteDataFromTable();
    dataBase->sl_insertIntoTable(eventRows(4));
    dataBase->sl_refreshModel();
    QCOMPARE(model->rowCount(), 4);
    QCOMPARE(model->data(model->index(0, 13)).toString(), QStringLiteral("8"));
}

void tst_DataBaseLoading::loadOfATableWithFurtherColumnsShowsThoseOfALog_data()
{
    QTest::addColumn<QString>("further");
    QTest::newRow("one") << QStringLiteral("Further TEXT");
    QTest::newRow("with a value of its own") << QStringLiteral("Further TEXT NOT NULL DEFAULT 'usual'");
    QTest::newRow("with the name of a heading") << QStringLiteral("Number INTEGER");
}

void tst_DataBaseLoading::loadOfATableWithFurtherColumnsShowsThoseOfALog()
{
    QFETCH(QString, further);
    const QString saved = savedLog(QStringLiteral("saved.db"), 10);
    QCOMPARE(writingShell(saved, QStringLiteral("ALTER TABLE EventLogTable ADD COLUMN ") + further), QString());
    const SqlModel* model = connected();
    const QSignalSpy results(dataBase.get(), &DataBase::sig_ResultConnectOtherDB);
    dataBase->sl_connectOtherDataBase(saved);
    QCOMPARE(results.size(), 1);
    QCOMPARE(results.first().at(0).value<ErrorDataBase>(), ErrorDataBaseNone);
    dataBase->sl_refreshModel();
    QCOMPARE(model->rowCount(), 10);
    QCOMPARE(model->columnCount(), 18);
    QCOMPARE(model->headerData(9, Qt::Vertical).toInt(), 1);
    QCOMPARE(model->data(model->index(9, 17)).toString(), eventRow(1).information);

    dataBase->sl_deleteDataFromTable();
    dataBase->sl_insertIntoTable(eventRows(4));
    dataBase->sl_refreshModel();
    QCOMPARE(model->rowCount(), 4);
    QCOMPARE(model->data(model->index(0, 17)).toString(), eventRow(4).information);
}

void tst_DataBaseLoading::loadOfATableWithFurtherColumnsWorksAfterAStartThatFailed()
{
    const QString saved = savedLog(QStringLiteral("saved.db"), 10);
    QCOMPARE(writingShell(saved, QStringLiteral("ALTER TABLE EventLogTable ADD COLUMN Further TEXT")), QString());
    QVERIFY(QDir().mkdir(workingFile));
    QVERIFY(connected() == nullptr);
    QVERIFY(QDir().rmdir(workingFile));
    const QSignalSpy results(dataBase.get(), &DataBase::sig_ResultConnectOtherDB);
    dataBase->sl_connectOtherDataBase(saved);
    const auto* model = results.value(0).value(1).value<SqlModel*>();
    QVERIFY(model != nullptr);
    QCOMPARE(model->columnCount(), 18);
    QCOMPARE(model->rowCount(), 10);
    QCOMPARE(model->headerData(17, Qt::Horizontal).toString(), QStringLiteral("Details"));
}

void tst_DataBaseLoading::loadOfTheWorkingFileItselfEndsEmpty_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("by its name") << workingFile;
    QTest::newRow("by a relative path") << QStringLiteral("./inner/../Log.db");
    QTest::newRow("through a link") << QStringLiteral("link.db");
}

void tst_DataBaseLoading::loadOfTheWorkingFileItselfEndsEmpty()
{
    QFETCH(QString, name);
    QVERIFY(QDir().mkdir(QStringLiteral("inner")));
    QVERIFY(QFile::link(path(workingFile), path(QStringLiteral("link.db"))));
    QVERIFY(connected() != nullptr);
    dataBase->sl_insertIntoTable(eventRows(5));
    const QSignalSpy messages(dataBase.get(), &DataBase::sig_MessageForForm);
    const QSignalSpy connects(dataBase.get(), &DataBase::sig_ResultConnectDB);
    const QSignalSpy refreshes(dataBase.get(), &DataBase::sig_RefreshComplete);
    dataBase->sl_connectOtherDataBase(name);
    QCOMPARE(messages.last().first().toString(), QStringLiteral("ERROR loading log of events from file\n") + name);
    QCOMPARE(connects.size(), 1);
    QCOMPARE(refreshes.first(), QVariantList({0, false}));
    QVERIFY(QFileInfo(QStringLiteral("link.db")).isSymLink());
    dataBase->sl_insertIntoTable(eventRows(4));
    QCOMPARE(shell(workingFile, QStringLiteral("SELECT count(*) FROM EventLogTable")), QStringLiteral("4"));
}

void tst_DataBaseLoading::loadOfAHardLinkToTheWorkingFileShowsIt()
{
    const SqlModel* model = connected();
    dataBase->sl_insertIntoTable(eventRows(5));
    QCOMPARE(link("Log.db", "hard.db"), 0);
    dataBase->sl_connectOtherDataBase(QStringLiteral("hard.db"));
    dataBase->sl_deleteDataFromTable();
    QCOMPARE(shell(QStringLiteral("hard.db"), QStringLiteral("SELECT count(*) FROM EventLogTable")),
             QStringLiteral("5"));
    dataBase->sl_refreshModel();
    QCOMPARE(model->rowCount(), 0);
}

void tst_DataBaseLoading::loadOntoAFullDiskEndsEmpty()
{
    const QString saved = savedLog(QStringLiteral("saved.db"), 2000);
    QVERIFY(connected() != nullptr);
    const QByteArray content = contentOf(saved);
    const QSignalSpy messages(dataBase.get(), &DataBase::sig_MessageForForm);
    {
        const FullDisk disk(65536);
        dataBase->sl_connectOtherDataBase(saved);
    }
    QCOMPARE(messages.last().first().toString(), QStringLiteral("ERROR loading log of events from file\n") + saved);
    QCOMPARE(contentOf(saved), content);
}

void tst_DataBaseLoading::loadOfALogDamagedInTheMiddleShowsWhatCanBeRead()
{
    const QString saved = savedLog(QStringLiteral("saved.db"), 2000);
    QByteArray content = contentOf(saved);
    const int half = content.size() / 2;
    content.replace(half, 20000, QByteArray(20000, '\xAA'));
    QVERIFY(write(saved, content));
    const SqlModel* model = connected();
    const QSignalSpy results(dataBase.get(), &DataBase::sig_ResultConnectOtherDB);
    dataBase->sl_connectOtherDataBase(saved);
    QCOMPARE(results.size(), 1);
    dataBase->sl_refreshModel();
    QVERIFY(model->rowCount() > 255);
    QVERIFY(model->rowCount() < 2000);
    QCOMPARE(model->headerData(0, Qt::Vertical).toInt(), 2000);
    QCOMPARE(contentOf(saved), content);
    // A fresh start gets rid of the damage.
    QVERIFY(connected() != nullptr);
    dataBase->sl_insertIntoTable(eventRows(4));
    QCOMPARE(shell(workingFile, QStringLiteral("SELECT count(*) FROM EventLogTable")), QStringLiteral("4"));
}

void tst_DataBaseLoading::loadWithoutWorkingDirectoryFails()
{
    QTemporaryDir elsewhere;
    const QString saved = elsewhere.filePath(QStringLiteral("saved.db"));
    QVERIFY(QFile::copy(savedLog(QStringLiteral("saved.db"), 10), saved));
    QVERIFY(directory->remove());
    const QSignalSpy results(dataBase.get(), &DataBase::sig_ResultConnectOtherDB);
    {
        const DebugLines debug;
        dataBase->sl_connectToDataBase();
        dataBase->sl_connectOtherDataBase(saved);
        QCOMPARE(debug.lines().constLast(), QStringLiteral("ERROR OPEN DATABASE ") + saved);
    }
    QCOMPARE(results.size(), 1);
    QCOMPARE(results.first().at(0).value<ErrorDataBase>(), ErrorDataBaseOpen);
    QVERIFY(results.first().at(1).value<SqlModel*>() == nullptr);
    QCOMPARE(results.first().at(2).toString(), saved);
    QVERIFY(!contentOf(saved).isEmpty());
}

void tst_DataBaseLoading::loadWorksAfterAStartThatFailed()
{
    const QString saved = savedLog(QStringLiteral("saved.db"), 10);
    QVERIFY(QDir().mkdir(workingFile));
    QVERIFY(connected() == nullptr);
    QVERIFY(QDir().rmdir(workingFile));
    const QSignalSpy results(dataBase.get(), &DataBase::sig_ResultConnectOtherDB);
    dataBase->sl_connectOtherDataBase(saved);
    QCOMPARE(results.first().at(0).value<ErrorDataBase>(), ErrorDataBaseNone);
    const auto* model = results.first().at(1).value<SqlModel*>();
    QVERIFY(model != nullptr);
    QCOMPARE(model->rowCount(), 10);
    QCOMPARE(model->headerData(17, Qt::Horizontal).toString(), QStringLiteral("Details"));
}

void tst_DataBaseLoading::loadOfAWriteProtectedLogCanBeReplaced()
{
    const QString saved = savedLog(QStringLiteral("saved.db"), 10);
    QVERIFY(QFile::setPermissions(saved, forReaders));
    QVERIFY(QFile::setPermissions(directory->path(), forAll));
    const OrdinaryUser user;
    QVERIFY(user.isOrdinary);
    QVERIFY(connected() != nullptr);
    dataBase->sl_connectOtherDataBase(saved);
    const QSignalSpy deletions(dataBase.get(), &DataBase::sig_ResultDeleteFromTable);
    dataBase->sl_deleteDataFromTable();
    QCOMPARE(deletions.first().first().value<ErrorDataBase>(), ErrorDataBaseNone);
    QVERIFY(!QFile::permissions(saved).testFlag(QFile::WriteOwner));
    dataBase->sl_closeDataBase();
}

void tst_DataBaseLoading::loadOfALogThatMustNotBeReadEndsEmpty()
{
    const QString saved = savedLog(QStringLiteral("saved.db"), 10);
    QVERIFY(QFile::setPermissions(saved, QFile::WriteOwner));
    QVERIFY(QFile::setPermissions(directory->path(), forAll));
    {
        const OrdinaryUser user;
        QVERIFY(user.isOrdinary);
        QVERIFY(connected() != nullptr);
        const QSignalSpy messages(dataBase.get(), &DataBase::sig_MessageForForm);
        const QSignalSpy refreshes(dataBase.get(), &DataBase::sig_RefreshComplete);
        dataBase->sl_connectOtherDataBase(saved);
        QCOMPARE(messages.last().first().toString(), QStringLiteral("ERROR loading log of events from file\n") + saved);
        QCOMPARE(refreshes.size(), 1);
        dataBase->sl_closeDataBase();
    }
    QVERIFY(QFile::setPermissions(saved, QFile::ReadOwner));
    QCOMPARE(shell(saved, QStringLiteral("SELECT count(*) FROM EventLogTable")), QStringLiteral("10"));
}

void tst_DataBaseLoading::loadOfALogWithWriteAheadLoggingCanBeSaved()
{
    const QString saved = savedLog(QStringLiteral("saved.db"), 10);
    QProcess process;
    process.start(QStringLiteral("sqlite3"), {saved, QStringLiteral("PRAGMA journal_mode = WAL")});
    QVERIFY(process.waitForFinished());
    QCOMPARE(contentOf(saved).at(18), '\2');
    QVERIFY(connected() != nullptr);
    dataBase->sl_connectOtherDataBase(saved);
    dataBase->sl_insertIntoTable(eventRows(500));
    dataBase->sl_SaveDataBase(path(QStringLiteral("again.db")));
    QVERIFY(QFile::rename(path(QStringLiteral("again.db")), path(QStringLiteral("moved.db"))));
    QCOMPARE(shell(QStringLiteral("moved.db"), QStringLiteral("SELECT count(*) FROM EventLogTable")),
             QStringLiteral("510"));
}

void tst_DataBaseLoading::loadedFileIsNeverChanged()
{
    const QString saved = savedLog(QStringLiteral("saved.db"), 100);
    const QByteArray content = contentOf(saved);
    QVERIFY(connected() != nullptr);
    dataBase->sl_connectOtherDataBase(saved);
    dataBase->sl_deleteDataFromTable();
    dataBase->sl_insertIntoTable(eventRows(5));
    dataBase->sl_connectOtherDataBase(saved);
    dataBase->sl_closeDataBase();
    QCOMPARE(contentOf(saved), content);
    QCOMPARE(shell(saved, QStringLiteral("SELECT count(*) FROM EventLogTable")), QStringLiteral("100"));
}

QTEST_GUILESS_MAIN(tst_DataBaseLoading)

#include "tst_DataBaseLoading.moc"
