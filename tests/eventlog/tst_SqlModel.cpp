#include "eventlog/SqlModel.h"
#include "support/ForeignThread.h"

#include <QAbstractItemModelTester>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>

class tst_SqlModel : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<SqlModel> model;

private slots:
    void initTestCase();
    void cleanupTestCase();

    void readsTheDefaultConnectionAndHasNoParent();
    void cellsAreCentredButTheDetails();
    void rowHeaderShowsTheNumberOfTheEvent();
    void rowHeaderPastTheEndIsInvalid();
    void otherRolesAndHeadersAreThoseOfTheTable();
    void keepsTheRulesOfAModel();
    void filterChoosesAmongTheRowsAtHand();
    void filterOfATableThatHasChangedReadsItAnew();
    void filterThatIsNoSqlShowsNothing();
    void forgetsTheIndexesThatViewsHaveLeft();
    void changesOnItsOwnThreadAlone();
};

void tst_SqlModel::initTestCase()
{
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
    database.setDatabaseName(QStringLiteral(":memory:"));
    QVERIFY(database.open());
    QStringList columns;
    for (int i = 0; i < 18; ++i) {
        columns.append(QStringLiteral("c%1 TEXT").arg(i));
    }
    QSqlQuery query;
    QVERIFY(query.exec(QStringLiteral("CREATE TABLE EventLogTable (%1)").arg(columns.join(QLatin1Char(',')))));
    QVERIFY(query.exec(QStringLiteral("INSERT INTO EventLogTable (c0, c15, c17) VALUES (7, 'x', 'y'), (6, 'a', 'b')")));
    model = std::make_unique<SqlModel>();
    model->setTable(QStringLiteral("EventLogTable"));
    QVERIFY(model->select());
}

void tst_SqlModel::cleanupTestCase()
{
    model.reset();
    QSqlDatabase::removeDatabase(QLatin1String(QSqlDatabase::defaultConnection));
}

void tst_SqlModel::readsTheDefaultConnectionAndHasNoParent()
{
    QVERIFY(model->parent() == nullptr);
    QCOMPARE(model->rowCount(), 2);
    QCOMPARE(model->columnCount(), 18);
}

void tst_SqlModel::cellsAreCentredButTheDetails()
{
    for (int column = 0; column < 17; ++column) {
        QCOMPARE(model->data(model->index(0, column), Qt::TextAlignmentRole).toInt(), 132);
    }
    QVERIFY(!model->data(model->index(0, 17), Qt::TextAlignmentRole).isValid());
}

void tst_SqlModel::rowHeaderShowsTheNumberOfTheEvent()
{
    QCOMPARE(model->headerData(0, Qt::Vertical).toInt(), 7);
    QCOMPARE(model->headerData(1, Qt::Vertical).toInt(), 6);
}

void tst_SqlModel::rowHeaderPastTheEndIsInvalid()
{
    QVERIFY(!model->headerData(2, Qt::Vertical).isValid());
    QVERIFY(!model->headerData(-1, Qt::Vertical).isValid());
}

void tst_SqlModel::otherRolesAndHeadersAreThoseOfTheTable()
{
    QVERIFY(model->setHeaderData(15, Qt::Horizontal, QStringLiteral("Event"), Qt::EditRole));
    QCOMPARE(model->headerData(15, Qt::Horizontal).toString(), QStringLiteral("Event"));
    QCOMPARE(model->headerData(14, Qt::Horizontal).toString(), QStringLiteral("c14"));
    QVERIFY(!model->headerData(0, Qt::Vertical, Qt::ToolTipRole).isValid());
    QCOMPARE(model->data(model->index(0, 15)).toString(), QStringLiteral("x"));
    QCOMPARE(model->data(model->index(1, 17), Qt::EditRole).toString(), QStringLiteral("b"));
}

void tst_SqlModel::keepsTheRulesOfAModel()
{
    const QAbstractItemModelTester tester(model.get(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    QVERIFY(model->select());
    model->setFilter(QStringLiteral("c0 = 7"));
    QCOMPARE(model->rowCount(), 1);
    model->setFilter(QString());
    QCOMPARE(model->rowCount(), 2);
}

void tst_SqlModel::filterChoosesAmongTheRowsAtHand()
{
    const QAbstractItemModelTester tester(model.get(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    QVERIFY(model->select());
    const QString readAnew = model->query().lastQuery();
    model->setFilter(QStringLiteral("c15 = 'a'"));
    QCOMPARE(model->filter(), QStringLiteral("c15 = 'a'"));
    QCOMPARE(model->query().lastQuery(), readAnew);
    QCOMPARE(model->rowCount(), 1);
    QCOMPARE(model->rowCount(model->index(0, 0)), 0);
    QCOMPARE(model->headerData(0, Qt::Vertical).toInt(), 6);
    QCOMPARE(model->index(0, 17).data().toString(), QStringLiteral("b"));
    QVERIFY(!model->index(1, 17).isValid());
    model->setFilter(QStringLiteral("c15 = 'nothing'"));
    QCOMPARE(model->rowCount(), 0);
    model->setFilter(QStringLiteral("c15 IS NOT NULL"));
    QCOMPARE(model->rowCount(), 2);
    model->setFilter(QString());
    QCOMPARE(model->rowCount(), 2);
    QCOMPARE(model->index(0, 15).data().toString(), QStringLiteral("x"));
}

void tst_SqlModel::filterOfATableThatHasChangedReadsItAnew()
{
    QVERIFY(model->select());
    QSqlQuery query;
    QVERIFY(query.exec(QStringLiteral("UPDATE EventLogTable SET c15 = 'changed' WHERE c0 = 7")));
    model->setFilter(QStringLiteral("c15 = 'changed'"));
    QCOMPARE(model->rowCount(), 1);
    QCOMPARE(model->index(0, 15).data().toString(), QStringLiteral("changed"));
    QVERIFY(query.exec(QStringLiteral("UPDATE EventLogTable SET c15 = 'x' WHERE c0 = 7")));
    model->setFilter(QString());
    QCOMPARE(model->rowCount(), 2);
    QCOMPARE(model->index(0, 15).data().toString(), QStringLiteral("x"));
}

void tst_SqlModel::filterThatIsNoSqlShowsNothing()
{
    QVERIFY(model->select());
    model->setFilter(QStringLiteral("nonsense ("));
    QCOMPARE(model->rowCount(), 0);
    model->setFilter(QString());
    QCOMPARE(model->rowCount(), 2);
}

void tst_SqlModel::forgetsTheIndexesThatViewsHaveLeft()
{
    const QPersistentModelIndex first(model->index(0, 3));
    const QPersistentModelIndex second(model->index(1, 4));
    QVERIFY(first.isValid() && second.isValid());
    model->forgetViews();
    QVERIFY(!first.isValid());
    QVERIFY(!second.isValid());
}

void tst_SqlModel::changesOnItsOwnThreadAlone()
{
    model->moveToThread(nullptr);
    QVERIFY(endsByAssertion([this] { model->select(); }));
    QVERIFY(endsByAssertion([this] { model->setFilter(QStringLiteral("c0 = 1")); }));
    model->moveToThread(QThread::currentThread());
    QVERIFY(!endsByAssertion([this] { model->select(); }));
}

QTEST_GUILESS_MAIN(tst_SqlModel)

#include "tst_SqlModel.moc"
