#include "eventlog/LogEvents.h"
#include "model/Device.h"
#include "simulator/LogGenerator.h"
#include "support/DebugLines.h"
#include "support/Eventually.h"
#include "support/WindowOverUnit.h"
#include "support/threadedTestMain.h"
#include "texts/texts.h"

#include <QAction>
#include <QDir>
#include <QHeaderView>
#include <QProcess>
#include <QTabWidget>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>

#include <limits>

namespace
{

constexpr int waitTime = 60000;

/// A unit without terminals, so that the chain comes to the log at once, with a history of every kind of event.
UnitState unitWithLog(int records, int capacity = LogRing::maximumCapacity)
{
    UnitState state;
    state.log = LogRing(capacity);
    state.log.append(
        LogGenerator(3, LogGenerator::Everything).history(records, QDateTime(QDate(2026, 3, 9), QTime(12, 0))));
    return state;
}

/// The rows that a log has to show, without numbers: those of the newest record first.
QStringList rowsOf(const QByteArrayList& records)
{
    const Device devices([](const QString&, const QString&) {});
    LogEvents events;
    events.setDevices(&devices);
    events.decodeEvents(records);
    const QList<EventOfTable> rows = events.takeEvents(std::numeric_limits<int>::max());
    QStringList texts;
    for (const EventOfTable& row : rows) {
        const QStringList fields = {QString::number(row.sortDateTime),
                                    QString::number(row.dateInDays),
                                    QString::number(row.timeInMinute),
                                    QString::number(row.classTerminal),
                                    QString::number(row.version),
                                    QString::number(row.type),
                                    QString::number(row.characteristic),
                                    QString::number(row.addressTerminal),
                                    QString::number(row.numberChannel),
                                    QString::number(row.codeEvent),
                                    row.date,
                                    row.time,
                                    QString::number(row.signalLevel),
                                    QString::number(row.noiseLevel),
                                    row.event,
                                    row.source,
                                    row.information};
        texts.append(fields.join(QLatin1Char('|')));
    }
    return texts;
}

/// The rows of the table as it is in view, in the form of rowsOf().
QStringList rowsInView(const QTableView* view)
{
    QStringList texts;
    const QAbstractItemModel* model = view->model();
    for (int row = 0; model != nullptr && row < model->rowCount(); ++row) {
        QStringList fields;
        for (int column = 1; column < model->columnCount(); ++column) {
            fields.append(model->index(row, column).data().toString());
        }
        texts.append(fields.join(QLatin1Char('|')));
    }
    return texts;
}

/// The records that the coordinator form hands over, oldest first.
class ReceivedRecords : public QObject
{
public:
    explicit ReceivedRecords(const WindowOverUnit& over)
    {
        connect(over.form(), &FormChoiceCoordinator::sig_sendReadLogOnForm, this,
                [this](const QByteArrayList& block) { records = block + records; });
    }

    /// What has to be told about a reading of these, where the unit had announced so many.
    QString result(int announced) const
    {
        const int missing = announced - records.size();
        return missing == 0 ? texts::resultLogOk()
                            : texts::resultLogErrors() + QStringLiteral(" (Number of error = %1)").arg(missing);
    }

    QByteArrayList records;
};

} // namespace

/// The log on its whole way: from the unit through the link, decoding and the database into the table, and by files out
/// of it and back.
class tst_log_reading : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir directory;

    static QTableView* view(const WindowOverUnit& over)
    {
        return over.get<QTableView>("tableViewLogEvents");
    }
    static bool shown(const WindowOverUnit& over, int timeout = waitTime)
    {
        return eventually(
            [&] { return view(over)->model() != nullptr && !over.label("labelCountRows")->text().isEmpty(); }, timeout);
    }
    static QString count(const WindowOverUnit& over)
    {
        return over.label("labelCountRows")->text();
    }
    static QString countOf(int rows)
    {
        return QStringLiteral("Count of rows in log - %1").arg(rows);
    }

private slots:
    void initTestCase();

    void aFullLogReachesTheTableAndAFileAndComesBack();
    void anEmptyLogShowsACountOfZero();
    void aWrappedLogShowsWhatTheRingStillHolds();
    void theNumberOfRecordsInTheLastBlockDoesNotMatter_data();
    void theNumberOfRecordsInTheLastBlockDoesNotMatter();
    void aLostAnswerCostsWhatTheUnitMakesOfIt_data();
    void aLostAnswerCostsWhatTheUnitMakesOfIt();
    void aWrappedLogThatLostABlockSaysSo();
    void aLinkThatDiesLeavesTheRecordsBeforeIt_data();
    void aLinkThatDiesLeavesTheRecordsBeforeIt();
    void aBlockOfAnotherLengthEndsTheReading_data();
    void aBlockOfAnotherLengthEndsTheReading();
    void informationThatCannotBeReadEmptiesTheTable();
    void aReadingThatLeftNothingIsMadeAgainOnTheTab_data();
    void aReadingThatLeftNothingIsMadeAgainOnTheTab();
    void aReadingThatLeftSomeRowsIsNotMadeAgain();
    void anEmptyLogIsNotReadAtEveryChangeToTheTab();
    void anUnchangedLogComesBackWithoutAReading();
    void theActionReadsAnUnchangedLogToo();
    void aLogThatHasGrownIsReadAgainOnTheTab();
    void theTabChosenTwiceAtOnceReadsTheLogOnce();
    void afterALoadedFileTheTabReadsTheUnitAgain();
    void nothingHappensOnTheTabWhileReadingIsDisabled();
    void theWindowClosesAtAnyMomentOfAReading_data();
    void theWindowClosesAtAnyMomentOfAReading();
};

void tst_log_reading::initTestCase()
{
    QVERIFY(directory.isValid());
    QVERIFY(QDir::setCurrent(directory.path()));
}

// ---- Whole logs --------------------------------------------------------------------------------------------------

void tst_log_reading::aFullLogReachesTheTableAndAFileAndComesBack()
{
    const UnitState state = unitWithLog(LogRing::maximumCapacity);
    QCOMPARE(state.log.size(), 32767);
    const QStringList expected = rowsOf(state.log.records());

    WindowOverUnit over(state);
    QVERIFY(over.waitForChain(4 * waitTime));
    QVERIFY(shown(over));
    QCOMPARE(over.told.last(), texts::resultLogOk());
    QCOMPARE(count(over), countOf(expected.size()));
    QVERIFY(rowsInView(view(over)) == expected);
    for (int row = 0; row < expected.size(); ++row) {
        QCOMPARE(view(over)->model()->headerData(row, Qt::Vertical).toInt(), (expected.size() - row) % 65536);
    }

    const QString file = directory.filePath(QStringLiteral("whole.db"));
    over.dialogs.saveAnswers.append(file);
    over.trigger("actionSaveLog");
    QVERIFY(eventually([&] { return over.result() == texts::resultLogSaveOk().arg(file); }, waitTime));
    QProcess shell;
    shell.start(QStringLiteral("sqlite3"),
                {QStringLiteral("-readonly"), file, QStringLiteral("SELECT * FROM EventLogTable")});
    QVERIFY(shell.waitForFinished(waitTime));
    QString printed;
    for (int row = 0; row < expected.size(); ++row) {
        printed +=
            QString::number((expected.size() - row) % 65536) + QLatin1Char('|') + expected.at(row) + QLatin1Char('\n');
    }
    QVERIFY(QString::fromUtf8(shell.readAllStandardOutput()) == printed);

    over.unit.change([](UnitState& changed) { changed.log.clear(); });
    QVERIFY(over.readLog());
    QVERIFY(shown(over));
    QCOMPARE(count(over), countOf(0));
    over.dialogs.openAnswers.append(file);
    over.trigger("actionLoadLog");
    QVERIFY(eventually([&] { return count(over) == countOf(expected.size()); }, waitTime));
    QCOMPARE(over.result(), texts::resultLogLoadOk().arg(file));
    QVERIFY(rowsInView(view(over)) == expected);
    QVERIFY(over.dialogs.boxes.isEmpty());
}

void tst_log_reading::anEmptyLogShowsACountOfZero()
{
    WindowOverUnit over;
    QVERIFY(over.waitForChain());
    QVERIFY(shown(over));
    QCOMPARE(over.unit.requestCount(3), 1);
    QCOMPARE(count(over), countOf(0));
}

void tst_log_reading::aWrappedLogShowsWhatTheRingStillHolds()
{
    const UnitState state = unitWithLog(250, 100);
    QVERIFY(state.log.wrapped());
    WindowOverUnit over(state);
    QVERIFY(over.waitForChain());
    QVERIFY(shown(over));
    QCOMPARE(rowsInView(view(over)), rowsOf(state.log.records()));
}

void tst_log_reading::theNumberOfRecordsInTheLastBlockDoesNotMatter_data()
{
    QTest::addColumn<int>("records");
    for (const int records : {1, 3, 4, 5, 8, 11}) {
        QTest::newRow(qPrintable(QString::number(records))) << records;
    }
}

void tst_log_reading::theNumberOfRecordsInTheLastBlockDoesNotMatter()
{
    QFETCH(int, records);
    const UnitState state = unitWithLog(records);
    WindowOverUnit over(state);
    QVERIFY(over.waitForChain());
    QVERIFY(shown(over));
    // A full block is always followed by one more request.
    QCOMPARE(over.unit.requestCount(3), records / 4 + 1);
    QCOMPARE(rowsInView(view(over)), rowsOf(state.log.records()));
}

// ---- A bad link --------------------------------------------------------------------------------------------------

void tst_log_reading::aLostAnswerCostsWhatTheUnitMakesOfIt_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("repeats");
    QTest::newRow("lost, the unit repeats the block: the log is whole") << int(UnitFault::LoseAnswer) << true;
    QTest::newRow("lost, the unit goes on: four records are missing") << int(UnitFault::LoseAnswer) << false;
    QTest::newRow("damaged, the unit goes on: four records are missing") << int(UnitFault::BadChecksum) << false;
}

void tst_log_reading::aLostAnswerCostsWhatTheUnitMakesOfIt()
{
    QFETCH(int, kind);
    QFETCH(bool, repeats);
    UnitState state = unitWithLog(42);
    state.repeatsLostLogBlock = repeats;
    WindowOverUnit over(state, {UnitFault(static_cast<UnitFault::Kind>(kind)).onRequest(3).from(3).times(1)});
    const ReceivedRecords received(over);
    QVERIFY(over.waitForChain());
    QVERIFY(shown(over));

    const QByteArrayList kept = state.log.records();
    if (!repeats) {
        // The third block from the newest record on; a busy machine may make the link lose another one.
        QVERIFY(!received.records.contains(kept.at(42 - 12)));
        QVERIFY(received.records.size() <= 38);
    }
    QCOMPARE(rowsInView(view(over)), rowsOf(received.records));
    QCOMPARE(over.told.last(), received.result(42));
    QCOMPARE(count(over), countOf(rowsOf(received.records).size()));
}

void tst_log_reading::aWrappedLogThatLostABlockSaysSo()
{
    UnitState state = unitWithLog(250, 100);
    state.repeatsLostLogBlock = false;
    WindowOverUnit over(state, {UnitFault(UnitFault::LoseAnswer).onRequest(3).from(7).times(2)});
    const ReceivedRecords received(over);
    QVERIFY(over.waitForChain());
    QVERIFY(received.records.size() <= 92);
    QCOMPARE(over.told.last(), received.result(100));
}

void tst_log_reading::aLinkThatDiesLeavesTheRecordsBeforeIt_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("request");
    const struct
    {
        const char* name;
        int request;
    } moments[] = {
        {"at the first block", 1}, {"after the first block", 2}, {"in the middle", 6}, {"at the last block", 11}};
    for (const auto& moment : moments) {
        QTest::addRow("silence %s", moment.name) << int(UnitFault::LoseAnswer) << moment.request;
        QTest::addRow("unplugged %s", moment.name) << int(UnitFault::Unplug) << moment.request;
    }
}

void tst_log_reading::aLinkThatDiesLeavesTheRecordsBeforeIt()
{
    QFETCH(int, kind);
    QFETCH(int, request);
    const UnitState state = unitWithLog(42);
    const UnitFault fault(static_cast<UnitFault::Kind>(kind));
    WindowOverUnit over(state, {UnitFault(fault).onRequest(3).from(request).amount(20).value(0)});
    QVERIFY(over.waitForChain());
    QVERIFY(shown(over));
    QCOMPARE(over.told.last(), texts::resultLogError());
    const QByteArrayList received = state.log.records().mid(42 - 4 * (request - 1));
    QCOMPARE(rowsInView(view(over)), rowsOf(received));
    QCOMPARE(count(over), countOf(rowsOf(received).size()));
    QVERIFY(!over.isBusy());
    QVERIFY(over.dialogs.boxes.isEmpty());
}

void tst_log_reading::aBlockOfAnotherLengthEndsTheReading_data()
{
    QTest::addColumn<QByteArray>("block");
    QTest::addColumn<int>("records");
    QTest::addColumn<QString>("result");
    const QByteArray records = unitWithLog(5).log.records().join();
    const QString errors = texts::resultLogErrors() + QStringLiteral(" (Number of error = 1)");
    QTest::newRow("empty") << QByteArray() << 0 << texts::resultLogOk();
    QTest::newRow("one byte") << records.left(1) << 0 << errors;
    QTest::newRow("a record less one byte") << records.left(15) << 0 << errors;
    QTest::newRow("two records") << records.left(32) << 2 << texts::resultLogOk();
    QTest::newRow("70 bytes") << records.left(70) << 4 << errors;
    QTest::newRow("five records") << records << 5 << texts::resultLogOk();
}

void tst_log_reading::aBlockOfAnotherLengthEndsTheReading()
{
    QFETCH(QByteArray, block);
    QFETCH(int, records);
    QFETCH(QString, result);
    const UnitState state = unitWithLog(42);
    WindowOverUnit over(state, {UnitFault(UnitFault::ReplaceAnswer).onRequest(3).from(3).bytes(block)});
    QVERIFY(over.waitForChain());
    QVERIFY(shown(over));
    QCOMPARE(over.told.last(), result);
    QCOMPARE(over.unit.requestCount(3), 3);
    QByteArrayList received;
    for (int i = 0; i < records; ++i) {
        received.append(block.mid(16 * i, 16));
    }
    QCOMPARE(rowsInView(view(over)), rowsOf(received + state.log.records().mid(42 - 8)));
}

void tst_log_reading::informationThatCannotBeReadEmptiesTheTable()
{
    WindowOverUnit over(unitWithLog(10));
    QVERIFY(over.waitForChain());
    QVERIFY(shown(over));
    over.unit.setFaults({UnitFault(UnitFault::Refuse).onRequest(4)});
    QVERIFY(over.readLog());
    QVERIFY(shown(over));
    QCOMPARE(over.told.last(), texts::resultLogError());
    QCOMPARE(over.unit.requestCount(3), 0);
    QCOMPARE(count(over), countOf(0));
}

void tst_log_reading::aReadingThatLeftNothingIsMadeAgainOnTheTab_data()
{
    QTest::addColumn<int>("newRecords");
    QTest::addColumn<UnitFault>("fault");
    QTest::newRow("its information failed") << 0 << UnitFault(UnitFault::Refuse).onRequest(4);
    QTest::newRow("its first block failed") << 1 << UnitFault(UnitFault::Refuse).onRequest(3);
    QTest::newRow("its first block was no record")
        << 1 << UnitFault(UnitFault::ReplaceAnswer).onRequest(3).bytes(QByteArray(15, 'x'));
}

void tst_log_reading::aReadingThatLeftNothingIsMadeAgainOnTheTab()
{
    QFETCH(int, newRecords);
    QFETCH(UnitFault, fault);
    WindowOverUnit over(unitWithLog(10));
    QVERIFY(over.waitForChain());
    QVERIFY(shown(over));
    over.unit.change([newRecords](UnitState& state) { state.log.append(unitWithLog(newRecords).log.records()); });
    over.unit.setFaults({fault});
    auto* const tabs = over.get<QTabWidget>("tabWidget");
    over.told.clear();
    tabs->setCurrentIndex(1);
    QVERIFY(over.waitFor({texts::resultLogError(), texts::resultLogErrors()}));
    QVERIFY(shown(over));
    QCOMPARE(count(over), countOf(0));

    over.unit.setFaults({});
    tabs->setCurrentIndex(0);
    over.told.clear();
    tabs->setCurrentIndex(1);
    QVERIFY(over.waitFor({texts::resultLogOk(), texts::resultLogUnchanged()}));
    QVERIFY(shown(over));
    QCOMPARE(over.told.last(), texts::resultLogOk());
    QCOMPARE(rowsInView(view(over)), rowsOf(over.unit.state().log.records()));
}

void tst_log_reading::aReadingThatLeftSomeRowsIsNotMadeAgain()
{
    WindowOverUnit over(unitWithLog(10), {UnitFault(UnitFault::Refuse).onRequest(3).from(2)});
    QVERIFY(over.waitForChain());
    QVERIFY(shown(over));
    QCOMPARE(over.told.last(), texts::resultLogError());
    const QString before = count(over);
    over.unit.setFaults({});
    over.told.clear();
    over.get<QTabWidget>("tabWidget")->setCurrentIndex(1);
    QVERIFY(over.waitFor({texts::resultLogOk(), texts::resultLogUnchanged()}));
    QVERIFY(shown(over));
    QCOMPARE(over.told.last(), texts::resultLogUnchanged());
    QCOMPARE(count(over), before);
}

void tst_log_reading::anEmptyLogIsNotReadAtEveryChangeToTheTab()
{
    WindowOverUnit over;
    QVERIFY(over.waitForChain());
    QVERIFY(shown(over));
    over.told.clear();
    over.get<QTabWidget>("tabWidget")->setCurrentIndex(1);
    QVERIFY(over.waitFor({texts::resultLogOk(), texts::resultLogUnchanged()}));
    QCOMPARE(over.told.last(), texts::resultLogUnchanged());
}

// ---- When it reads -----------------------------------------------------------------------------------------------

void tst_log_reading::anUnchangedLogComesBackWithoutAReading()
{
    const UnitState state = unitWithLog(30);
    WindowOverUnit over(state);
    QVERIFY(over.waitForChain());
    QVERIFY(shown(over));
    view(over)->setColumnWidth(15, 321);
    over.unit.clearRequests();
    over.told.clear();
    const DebugLines debug;
    over.get<QTabWidget>("tabWidget")->setCurrentIndex(1);
    QVERIFY(view(over)->model() == nullptr);
    QVERIFY(count(over).isEmpty());
    QVERIFY(over.waitFor({texts::resultLogUnchanged()}));
    QVERIFY(shown(over));
    QCOMPARE(over.unit.requestCount(3), 0);
    QCOMPARE(rowsInView(view(over)), rowsOf(state.log.records()));
    QCOMPARE(view(over)->columnWidth(15), 321);
    QVERIFY(debug.linesWith(QStringLiteral("(Database)")).isEmpty());
}

void tst_log_reading::theActionReadsAnUnchangedLogToo()
{
    const UnitState state = unitWithLog(30);
    WindowOverUnit over(state);
    QVERIFY(over.waitForChain());
    QVERIFY(over.readLog());
    QVERIFY(shown(over));
    QCOMPARE(over.unit.requestCount(3), 8);
    QCOMPARE(rowsInView(view(over)), rowsOf(state.log.records()));
}

void tst_log_reading::aLogThatHasGrownIsReadAgainOnTheTab()
{
    WindowOverUnit over(unitWithLog(30));
    QVERIFY(over.waitForChain());
    QVERIFY(shown(over));
    over.unit.growLog(5);
    QVERIFY(eventually([&] { return over.unit.state().log.size() > 40; }, waitTime));
    over.unit.growLog(0);
    over.told.clear();
    over.get<QTabWidget>("tabWidget")->setCurrentIndex(1);
    QVERIFY(over.waitFor({texts::resultLogOk()}));
    QVERIFY(shown(over));
    QCOMPARE(rowsInView(view(over)), rowsOf(over.unit.state().log.records()));
}

void tst_log_reading::theTabChosenTwiceAtOnceReadsTheLogOnce()
{
    WindowOverUnit over(unitWithLog(30));
    QVERIFY(over.waitForChain());
    QVERIFY(shown(over));
    over.unit.change([](UnitState& state) { state.log.append(unitWithLog(17).log.records()); });
    over.told.clear();
    auto* const tabs = over.get<QTabWidget>("tabWidget");
    for (const int tab : {1, 0, 1}) {
        tabs->setCurrentIndex(tab);
    }
    QVERIFY(over.waitFor({texts::resultLogOk(), texts::resultLogUnchanged()}));
    QVERIFY(shown(over));
    QCOMPARE(over.told, QStringList({texts::resultLogStarted(), texts::resultLogOk()}));
    QCOMPARE(rowsInView(view(over)), rowsOf(over.unit.state().log.records()));
}

void tst_log_reading::afterALoadedFileTheTabReadsTheUnitAgain()
{
    const UnitState state = unitWithLog(30);
    WindowOverUnit over(state);
    QVERIFY(over.waitForChain());
    QVERIFY(shown(over));
    const QString file = directory.filePath(QStringLiteral("thirty.db"));
    over.dialogs.saveAnswers.append(file);
    over.trigger("actionSaveLog");
    over.dialogs.openAnswers.append(file);
    over.trigger("actionLoadLog");
    QVERIFY(eventually([&] { return over.result() == texts::resultLogLoadOk().arg(file); }, waitTime));
    QVERIFY(shown(over));

    over.unit.clearRequests();
    over.told.clear();
    over.get<QTabWidget>("tabWidget")->setCurrentIndex(1);
    QVERIFY(over.waitFor({texts::resultLogOk()}));
    QVERIFY(shown(over));
    QCOMPARE(over.unit.requestCount(3), 8);
    QCOMPARE(rowsInView(view(over)), rowsOf(state.log.records()));
}

void tst_log_reading::nothingHappensOnTheTabWhileReadingIsDisabled()
{
    WindowOverUnit over(unitWithLog(30));
    QVERIFY(over.waitForChain());
    QVERIFY(shown(over));
    const QString before = count(over);
    over.unit.clearRequests();
    over.get<QAction>("actionReadLog")->setEnabled(false);
    over.get<QTabWidget>("tabWidget")->setCurrentIndex(1);
    QVERIFY(view(over)->model() != nullptr);
    QCOMPARE(count(over), before);
    QCOMPARE(over.unit.requestCount(4), 0);
}

void tst_log_reading::theWindowClosesAtAnyMomentOfAReading_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("blocks come in") << QString();
    QTest::newRow("the table is emptied") << QStringLiteral("delete all data from table started");
    QTest::newRow("the first batch goes in") << QStringLiteral("started (size = 2000)");
    QTest::newRow("a batch has gone in") << QStringLiteral("ended (size = 2000)");
    const int rows = rowsOf(unitWithLog(2000).log.records()).size();
    QVERIFY(rows > 2000 && rows < 4000);
    QTest::newRow("the table is read anew") << QStringLiteral("ended (size = %1)").arg(rows - 2000);
}

void tst_log_reading::theWindowClosesAtAnyMomentOfAReading()
{
    QFETCH(QString, line);
    const UnitState state = unitWithLog(2000);
    const DebugLines debug;
    {
        WindowOverUnit over(state);
        QVERIFY(eventually(
            [&] { return line.isEmpty() ? over.unit.requestCount(3) > 10 : !debug.linesWith(line).isEmpty(); },
            waitTime));
        over.window.reset();
    }
    QVERIFY(!QFile::exists(QStringLiteral("Log.db")));
}

HUBN_THREADED_TEST_MAIN(tst_log_reading)

#include "tst_log_reading.moc"
