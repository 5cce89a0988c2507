#include <csignal>

#include <sys/resource.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include "eventlog/DataBase.h"
#include "eventlog/LogTable.h"
#include "support/DebugLines.h"
#include "support/OrdinaryUser.h"

namespace
{

const QString workingFile = QStringLiteral("Log.db");

/// A row of which every field can be told from every other.
EventOfTable eventRow(int number)
{
    EventOfTable row;
    row.numberEvent = static_cast<quint16>(number);
    row.sortDateTime = 75730373U;
    row.dateInDays = 7573;
    row.timeInMinute = 373;
    row.classTerminal = 1;
    row.version = 2;
    row.type = 3;
    row.characteristic = 4;
    row.addressTerminal = 5;
    row.numberChannel = 6;
    row.codeEvent = 7;
    row.date = QStringLiteral("25.09.2020");
    row.time = QStringLiteral("14:37");
    row.source = QStringLiteral("KV-NX (№5, channel 6)");
    row.signalLevel = 8;
    row.noiseLevel = 9;
    row.event = QStringLiteral("Alarm (fire)");
    row.information = QStringLiteral("12°C (channel 1)\n13°C (channel 2)");
    return row;
}

QList<EventOfTable> eventRows(int count)
{
    QList<EventOfTable> rows;
    for (int i = 0; i < count; ++i) {
        rows.append(eventRow(count - i));
    }
    return rows;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool write(const QString& path, const QByteArray& content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QString outputOfShell(const QStringList& arguments)
{
    QProcess process;
    process.start(QStringLiteral("sqlite3"), arguments);
    if (!process.waitForFinished()) {
        return QStringLiteral("the sqlite3 shell can't be run");
    }
    return QString::fromUtf8(process.readAllStandardOutput() + process.readAllStandardError()).trimmed();
}

/// What the sqlite3 shell prints about a database file.
QString shell(const QString& path, const QString& statement)
{
    return outputOfShell({QStringLiteral("-readonly"), path, statement});
}

/// Changes a database file by the sqlite3 shell, which prints nothing if it can.
QString writingShell(const QString& path, const QString& statement)
{
    return outputOfShell({path, statement});
}

QString textWithoutTime(const QString& line)
{
    static const QRegularExpression time(QStringLiteral("^\\d\\d:\\d\\d:\\d\\d:\\d\\d\\d(?= )"));
    return time.match(line).hasMatch() ? line.mid(12) : QStringLiteral("no time: ") + line;
}

/// As long as it lives no file can grow beyond a size, as on a full disk.
class FullDisk
{
public:
    explicit FullDisk(rlim_t size)
    {
        former = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &limit);
        const rlimit small = {size, limit.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &limit);
        std::signal(SIGXFSZ, former);
    }
    Q_DISABLE_COPY_MOVE(FullDisk)

private:
    rlimit limit = {};
    void (*former)(int) = nullptr;
};

const QFile::Permissions forReaders(0x5555);
const QFile::Permissions forAll(0x7777);

} // namespace

/// The worker runs on the test's own thread here, so that each slot has ended when it returns. That it works on a
/// thread of its own is shown with the log tab.
class tst_DataBase : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> directory; ///< the working directory of one test
    std::unique_ptr<DataBase> dataBase;

    /// A saved log with the given rows, made by a worker of its own.
    QString savedLog(const QString& name, int rows);
    SqlModel* connected();
    QString path(const QString& name) const
    {
        return directory->filePath(name);
    }

private slots:
    void init();
    void cleanup();

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

    void saveCopiesTheOpenDatabase();
    void saveReplacesAFile();
    void saveWithoutNameWritesADebugLineOnly();
    void saveFails_data();
    void saveFails();
    void saveWhereNothingMayBeWrittenKeepsTheFormerFile();
    void saveOntoAFullDiskKeepsTheFormerFile();
    void saveOntoTheWorkingFileLeavesItAlone_data();
    void saveOntoTheWorkingFileLeavesItAlone();
    void saveOntoALinkReplacesTheLink();
    void savedFileReadsTheSameInTheShell();

    void loadShowsASavedLog();
    void loadKeepsTheNumbersOfTheRows();
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

void tst_DataBase::init()
{
    directory = std::make_unique<QTemporaryDir>();
    QVERIFY(directory->isValid());
    QVERIFY(QDir::setCurrent(directory->path()));
    dataBase = std::make_unique<DataBase>(QStringLiteral("Log"));
}

void tst_DataBase::cleanup()
{
    dataBase->sl_closeDataBase();
    dataBase.reset();
    QDir::setCurrent(QDir::tempPath());
    directory.reset();
}

QString tst_DataBase::savedLog(const QString& name, int rows)
{
    dataBase.reset(); // the default connection serves one at a time
    {
        DataBase other(QStringLiteral("Other"));
        other.sl_connectToDataBase();
        if (rows > 0) {
            other.sl_insertIntoTable(eventRows(rows));
        }
        other.sl_SaveDataBase(path(name));
        other.sl_closeDataBase();
    }
    dataBase = std::make_unique<DataBase>(QStringLiteral("Log"));
    return path(name);
}

SqlModel* tst_DataBase::connected()
{
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_ResultConnectDB);
    dataBase->sl_connectToDataBase();
    return spy.value(0).value(1).value<SqlModel*>();
}

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

// ---- Saving ------------------------------------------------------------------------------------------------------

void tst_DataBase::saveCopiesTheOpenDatabase()
{
    QVERIFY(connected() != nullptr);
    dataBase->sl_insertIntoTable(eventRows(2000));
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_MessageForForm);
    const QString target = path(QStringLiteral("100%1.db"));
    dataBase->sl_SaveDataBase(target);
    QCOMPARE(spy.size(), 2);
    QCOMPARE(spy.first().first().toString(), QStringLiteral("Saving log of events to file started \n") + target);
    QCOMPARE(spy.last().first().toString(),
             QStringLiteral("Saving log of events to file ") + target + QStringLiteral("\nSUCCESSFUL COMPLETE"));
    QCOMPARE(contentOf(target), contentOf(workingFile));
    QCOMPARE(shell(target, QStringLiteral("PRAGMA integrity_check")), QStringLiteral("ok"));
    QCOMPARE(shell(target, QStringLiteral("SELECT count(*) FROM EventLogTable")), QStringLiteral("2000"));
    QCOMPARE(QDir().entryList(QDir::Files), QStringList({QStringLiteral("100%1.db"), workingFile}));
}

void tst_DataBase::saveReplacesAFile()
{
    QVERIFY(connected() != nullptr);
    dataBase->sl_insertIntoTable(eventRows(2));
    const QString target = path(QStringLiteral("kept.db"));
    QVERIFY(write(target, QByteArray(1000000, 'x')));
    dataBase->sl_SaveDataBase(target);
    QCOMPARE(contentOf(target), contentOf(workingFile));
    QCOMPARE(QDir().entryList(QDir::Files), QStringList({QStringLiteral("kept.db"), workingFile}));
}

void tst_DataBase::saveWithoutNameWritesADebugLineOnly()
{
    QVERIFY(connected() != nullptr);
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_MessageForForm);
    const DebugLines debug;
    dataBase->sl_SaveDataBase(QString());
    QCOMPARE(spy.size(), 0);
    QCOMPARE(debug.lines(), QStringList(QStringLiteral("FILE NOT SELECTED")));
}

void tst_DataBase::saveFails_data()
{
    QTest::addColumn<QString>("target");
    QTest::newRow("in a directory that doesn't exist") << QStringLiteral("nowhere/kept.db");
    QTest::newRow("onto a directory") << QStringLiteral("directory.db");
    QTest::newRow("below a file") << QStringLiteral("file/kept.db");
    QTest::newRow("with a name that is too long") << QString(300, QLatin1Char('n'));
}

void tst_DataBase::saveFails()
{
    QFETCH(QString, target);
    QVERIFY(QDir().mkpath(QStringLiteral("directory.db/inner")));
    QVERIFY(write(QStringLiteral("file"), "x"));
    QVERIFY(connected() != nullptr);
    const QStringList before = QDir().entryList();
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_MessageForForm);
    dataBase->sl_SaveDataBase(target);
    QCOMPARE(spy.size(), 2);
    QCOMPARE(spy.last().first().toString(), QStringLiteral("ERROR saving log of events to file\n") + target);
    QCOMPARE(QDir().entryList(), before);
}

void tst_DataBase::saveWhereNothingMayBeWrittenKeepsTheFormerFile()
{
    QVERIFY(QDir().mkdir(QStringLiteral("locked")));
    const QString target = path(QStringLiteral("locked/kept.db"));
    QVERIFY(write(target, "what was saved before"));
    QVERIFY(QFile::setPermissions(path(QStringLiteral("locked")), forReaders));
    QVERIFY(QFile::setPermissions(directory->path(), forAll));
    const OrdinaryUser user;
    QVERIFY(user.isOrdinary);
    QVERIFY(connected() != nullptr);
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_MessageForForm);
    dataBase->sl_SaveDataBase(target);
    QCOMPARE(spy.last().first().toString(), QStringLiteral("ERROR saving log of events to file\n") + target);
    QCOMPARE(contentOf(target), QByteArray("what was saved before"));
    dataBase->sl_closeDataBase();
}

void tst_DataBase::saveOntoAFullDiskKeepsTheFormerFile()
{
    QVERIFY(connected() != nullptr);
    dataBase->sl_insertIntoTable(eventRows(2000));
    const QString target = path(QStringLiteral("kept.db"));
    QVERIFY(write(target, "what was saved before"));
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_MessageForForm);
    {
        const FullDisk disk(65536);
        dataBase->sl_SaveDataBase(target);
    }
    QCOMPARE(spy.last().first().toString(), QStringLiteral("ERROR saving log of events to file\n") + target);
    QCOMPARE(contentOf(target), QByteArray("what was saved before"));
    QCOMPARE(QDir().entryList(QDir::Files), QStringList({QStringLiteral("kept.db"), workingFile}));
}

void tst_DataBase::saveOntoTheWorkingFileLeavesItAlone_data()
{
    QTest::addColumn<QString>("target");
    QTest::newRow("by its name") << workingFile;
    QTest::newRow("by a relative path") << QStringLiteral("./inner/../Log.db");
    QTest::newRow("through a link to the directory") << QStringLiteral("inner/same/Log.db");
}

void tst_DataBase::saveOntoTheWorkingFileLeavesItAlone()
{
    QFETCH(QString, target);
    QVERIFY(QDir().mkdir(QStringLiteral("inner")));
    QVERIFY(QFile::link(directory->path(), path(QStringLiteral("inner/same"))));
    QVERIFY(connected() != nullptr);
    dataBase->sl_insertIntoTable(eventRows(3));
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_MessageForForm);
    dataBase->sl_SaveDataBase(target);
    QCOMPARE(spy.last().first().toString(), QStringLiteral("ERROR saving log of events to file\n") + target);
    dataBase->sl_insertIntoTable(eventRows(4));
    QCOMPARE(shell(workingFile, QStringLiteral("SELECT count(*) FROM EventLogTable")), QStringLiteral("7"));
}

void tst_DataBase::saveOntoALinkReplacesTheLink()
{
    QVERIFY(connected() != nullptr);
    dataBase->sl_insertIntoTable(eventRows(3));
    const QString link = path(QStringLiteral("link.db"));
    QVERIFY(QFile::link(path(workingFile), link));
    dataBase->sl_SaveDataBase(link);
    QVERIFY(!QFileInfo(link).isSymLink());
    QCOMPARE(contentOf(link), contentOf(workingFile));
    QVERIFY(!contentOf(link).isEmpty());
}

void tst_DataBase::savedFileReadsTheSameInTheShell()
{
    const SqlModel* model = connected();
    dataBase->sl_insertIntoTable(eventRows(700));
    dataBase->sl_refreshModel();
    const QString target = path(QStringLiteral("kept.db"));
    dataBase->sl_SaveDataBase(target);
    QStringList rows;
    for (int row = 0; row < model->rowCount(); ++row) {
        QStringList fields;
        for (int column = 0; column < model->columnCount(); ++column) {
            fields.append(model->data(model->index(row, column)).toString());
        }
        rows.append(fields.join(QLatin1Char('|')));
    }
    QCOMPARE(rows.size(), 700);
    QCOMPARE(shell(target, QStringLiteral("SELECT * FROM EventLogTable")), rows.join(QLatin1Char('\n')));
}

// ---- Loading -----------------------------------------------------------------------------------------------------

void tst_DataBase::loadShowsASavedLog()
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

void tst_DataBase::loadKeepsTheNumbersOfTheRows()
{
    const QString saved = savedLog(QStringLiteral("saved.db"), 3);
    const SqlModel* model = connected();
    dataBase->sl_connectOtherDataBase(saved);
    dataBase->sl_refreshModel();
    QCOMPARE(model->headerData(0, Qt::Vertical).toInt(), 3);
    QCOMPARE(model->headerData(2, Qt::Vertical).toInt(), 1);
}

void tst_DataBase::loadOfAFileThatDoesNotExistEmitsNothing()
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

void tst_DataBase::loadOfAFileThatIsNoLogEndsEmpty_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("no database") << QStringLiteral("text.db");
    QTest::newRow("a database without the table") << QStringLiteral("tableless.db");
    QTest::newRow("empty") << QStringLiteral("empty.db");
    QTest::newRow("cut off in its first page") << QStringLiteral("cut.db");
    QTest::newRow("damaged in its first page") << QStringLiteral("damaged.db");
    QTest::newRow("can't be read") << QStringLiteral("directory.db");
}

void tst_DataBase::loadOfAFileThatIsNoLogEndsEmpty()
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

void tst_DataBase::loadOfATableWithOtherColumnsEndsEmpty_data()
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

void tst_DataBase::loadOfATableWithOtherColumnsEndsEmpty()
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

void tst_DataBase::loadOfATableWithFurtherColumnsShowsThoseOfALog_data()
{
    QTest::addColumn<QString>("further");
    QTest::newRow("one") << QStringLiteral("Further TEXT");
    QTest::newRow("with a value of its own") << QStringLiteral("Further TEXT NOT NULL DEFAULT 'usual'");
    QTest::newRow("with the name of a heading") << QStringLiteral("Number INTEGER");
}

void tst_DataBase::loadOfATableWithFurtherColumnsShowsThoseOfALog()
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

void tst_DataBase::loadOfATableWithFurtherColumnsWorksAfterAStartThatFailed()
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

void tst_DataBase::loadOfTheWorkingFileItselfEndsEmpty_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("by its name") << workingFile;
    QTest::newRow("by a relative path") << QStringLiteral("./inner/../Log.db");
    QTest::newRow("through a link") << QStringLiteral("link.db");
}

void tst_DataBase::loadOfTheWorkingFileItselfEndsEmpty()
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

void tst_DataBase::loadOfAHardLinkToTheWorkingFileShowsIt()
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

void tst_DataBase::loadOntoAFullDiskEndsEmpty()
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

void tst_DataBase::loadOfALogDamagedInTheMiddleShowsWhatCanBeRead()
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

void tst_DataBase::loadWithoutWorkingDirectoryFails()
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

void tst_DataBase::loadWorksAfterAStartThatFailed()
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

void tst_DataBase::loadOfAWriteProtectedLogCanBeReplaced()
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

void tst_DataBase::loadOfALogThatMustNotBeReadEndsEmpty()
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

void tst_DataBase::loadOfALogWithWriteAheadLoggingCanBeSaved()
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

void tst_DataBase::loadedFileIsNeverChanged()
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

QTEST_GUILESS_MAIN(tst_DataBase)

#include "tst_DataBase.moc"
