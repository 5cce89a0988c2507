#include "LogTabTest.h"

#include <QFile>

/// The log to a file and back.
class tst_LogTabFiles : public LogTabTest
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
};

// ---- Files -------------------------------------------------------------------------------------------------------

void tst_LogTabFiles::savingAsksForAFileAndCopiesTheLog()
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

void tst_LogTabFiles::savingWithoutANameDoesNothing()
{
    const QSignalSpy asked(window->tab.get(), &LogTab::sig_SaveOtherDB);
    window->tab->sl_SaveLogInFile();
    QCOMPARE(window->dialogs.questions.size(), 1);
    QCOMPARE(asked.size(), 0);
}

void tst_LogTabFiles::loadingAsksForAFileAndShowsIt()
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

void tst_LogTabFiles::loadingWithoutANameDoesNothing()
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

void tst_LogTabFiles::loadingForcesTheNextReading()
{
    const QSignalSpy asked(window->tab.get(), &LogTab::sig_LoadOtherDB);
    window->dialogs.openAnswers.append(QStringLiteral("/nowhere/kept.db"));
    window->tab->sl_LoadLogFromFile();
    QCOMPARE(window->forcedReadings, 1);
    QCOMPARE(asked.size(), 1);
    QCOMPARE(asked.first().first().toString(), QStringLiteral("/nowhere/kept.db"));
}

void tst_LogTabFiles::loadingAFileThatIsGoneKeepsTheTable()
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

void tst_LogTabFiles::loadingAFileThatIsNoLogShowsAnEmptyTable()
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

void tst_LogTabFiles::loadingThatCannotOpenShowsABox_data()
{
    QTest::addColumn<ErrorDataBase>("error");
    QTest::addColumn<QString>("text");
    QTest::newRow("not opened") << ErrorDataBaseOpen << QStringLiteral("Ошибка открытия БД! (/somewhere/a.db)");
    QTest::newRow("anything else") << ErrorDataBaseExec
                                   << QStringLiteral("Непредвиденная ошибка БД! (/somewhere/a.db)");
}

void tst_LogTabFiles::loadingThatCannotOpenShowsABox()
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

void tst_LogTabFiles::savedAndLoadedLogIsEqualRowByRow()
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

void tst_LogTabFiles::loadingTwiceAtOnceShowsTheSecond()
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

void tst_LogTabFiles::loadingWhileAReadingRunsEndsWithTheReading()
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

QTEST_MAIN(tst_LogTabFiles)

#include "tst_LogTabFiles.moc"
