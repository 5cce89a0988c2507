#include "LogTabTest.h"

#include <QAction>
#include <QEventLoop>
#include <QFile>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QPointer>
#include <QRandomGenerator>

#include <atomic>
#include <functional>

/// The view, and its model that belongs to another thread.
class tst_LogTab : public LogTabTest
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

    void startShowsTheEmptyTableWithoutACount();
    void viewIsSetUpAsTold();
    void clicksOnTheHeaderDoNothing();
    void startThatFailsShowsABox_data();
    void startThatFailsShowsABox();
    void unwritableWorkingDirectoryShowsABoxAndTheWindowLives();

    void nothingOfTheViewStaysTiedToADetachedModel();
    void modelNeverChangesWhileItIsInView();
    void closingWhileABatchIsInsertedRemovesTheFile_data();
    void closingWhileABatchIsInsertedRemovesTheFile();
    void closingAtOnceRemovesTheFile();
    void closingWithoutADatabaseEnds();
};

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
    QTest::ignoreMessage(QtWarningMsg, "QSqlQuery::prepare: database not open");
    window->tab->readLog();
    handOver(*window->tab, 10);
    QTRY_COMPARE_WITH_TIMEOUT(hidden.size(), 1, waitTime);
    QCOMPARE(window->dialogs.boxes.size(), 2);
    QCOMPARE(window->dialogs.boxes.last().title, QStringLiteral("Fault database"));
    QCOMPARE(window->dialogs.boxes.last().text, QStringLiteral("Fault working with the database"));
    window->tab->sl_RestoreLogEvent();
    QTRY_COMPARE_WITH_TIMEOUT(window->countRows->text(), QStringLiteral("Count of rows in log - 0"), waitTime);
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
    const auto check = [view = window->view, &changes, &changesInView] {
        ++changes;
        changesInView += view->hasModel ? 1 : 0;
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

    QRandomGenerator dice(1);
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
        [&] { QTRY_COMPARE_WITH_TIMEOUT(ends.size(), readings, waitTime); },
        [this, &dice] {
            window->findChild<QAction*>(QStringLiteral("actionFind"))->trigger();
            auto* const field = window->findChild<QLineEdit*>(QStringLiteral("lineEditFind"));
            if (field != nullptr && field->isVisible()) {
                field->setText(QString::number(dice.bounded(100)));
            }
        },
        [this] { window->tab->endFinding(); },
        [] { QCoreApplication::processEvents(); },
    };
    for (int i = 0; i < 200; ++i) {
        actions.at(dice.bounded(actions.size()))();
        QCoreApplication::processEvents();
        watch(window->view->model());
        window->view->viewport()->repaint();
    }
    QTRY_COMPARE_WITH_TIMEOUT(ends.size(), readings, waitTime);
    window->tab->readLog();
    handOver(*window->tab, 9);
    QTRY_COMPARE_WITH_TIMEOUT(window->countRows->text(), QStringLiteral("Count of rows in log - 9"), waitTime);
    // However few of the models above were in view for long enough to be watched.
    for (int i = 0; i < 11; ++i) {
        watch(window->view->model());
        readLog(9);
    }
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
