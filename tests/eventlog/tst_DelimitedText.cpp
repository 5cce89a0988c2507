#include "DataBaseTest.h"
#include "eventlog/DelimitedText.h"

#include <QStandardItemModel>

class tst_DelimitedText : public QObject
{
    Q_OBJECT

private slots:
    void headingsAndChosenCellsInTheirOrder();
    void cellsAreQuotedWhereTheyHaveToBe_data();
    void cellsAreQuotedWhereTheyHaveToBe();
    void fileBeginsWithTheMarkOfItsEncoding();
    void fileIsWrittenWholeOrNotAtAll();
    void fileThatCannotBeWrittenIsTold();

private:
    static std::unique_ptr<QStandardItemModel> table(const QList<QStringList>& rows)
    {
        auto model = std::make_unique<QStandardItemModel>();
        model->setHorizontalHeaderLabels({QStringLiteral("A"), QStringLiteral("Level, dB"), QStringLiteral("C")});
        model->setRowCount(rows.size());
        for (int row = 0; row < rows.size(); ++row) {
            for (int column = 0; column < rows.at(row).size(); ++column) {
                model->setItem(row, column, new QStandardItem(rows.at(row).at(column)));
            }
        }
        return model;
    }
};

void tst_DelimitedText::headingsAndChosenCellsInTheirOrder()
{
    const auto model = table({{QStringLiteral("a0"), QStringLiteral("b0"), QStringLiteral("c0")},
                              {QStringLiteral("a1"), QStringLiteral("b1"), QStringLiteral("c1")},
                              {QStringLiteral("a2"), QStringLiteral("b2"), QStringLiteral("c2")}});
    QCOMPARE(delimited::text(*model, {2, 0}, {1, 0}, delimited::Form::Tabs),
             QStringLiteral("Level, dB\tA\nb2\ta2\nb0\ta0\n"));
    QCOMPARE(delimited::text(*model, {1}, {0, 1, 2}, delimited::Form::Commas),
             QStringLiteral("A,\"Level, dB\",C\r\na1,b1,c1\r\n"));
    QCOMPARE(delimited::text(*model, {}, {0}, delimited::Form::Commas), QStringLiteral("A\r\n"));
}

void tst_DelimitedText::cellsAreQuotedWhereTheyHaveToBe_data()
{
    QTest::addColumn<QString>("cell");
    QTest::addColumn<QString>("inTabs");
    QTest::addColumn<QString>("inCommas");
    const auto add = [](const char* name, const char* cell, const char* inTabs, const char* inCommas) {
        QTest::newRow(name) << QString::fromUtf8(cell) << QString::fromUtf8(inTabs) << QString::fromUtf8(inCommas);
    };
    add("plain", "KV-NX (№5)", "KV-NX (№5)", "KV-NX (№5)");
    add("empty", "", "", "");
    add("comma", "1, 2", "1, 2", "\"1, 2\"");
    add("tab", "1\t2", "\"1\t2\"", "1\t2");
    add("semicolon and apostrophe", "a; 'b'", "a; 'b'", "a; 'b'");
    add("quotation mark", "the \"hall\"", "\"the \"\"hall\"\"\"", "\"the \"\"hall\"\"\"");
    add("two lines", "12°C\n13°C", "\"12°C\n13°C\"", "\"12°C\n13°C\"");
    add("carriage return", "1\r2", "\"1\r2\"", "\"1\r2\"");
    add("blanks about it", " a ", " a ", " a ");
}

void tst_DelimitedText::cellsAreQuotedWhereTheyHaveToBe()
{
    QFETCH(QString, cell);
    QFETCH(QString, inTabs);
    QFETCH(QString, inCommas);
    const auto model = table({{cell}});
    QCOMPARE(delimited::text(*model, {0}, {0}, delimited::Form::Tabs), QStringLiteral("A\n%1\n").arg(inTabs));
    QCOMPARE(delimited::text(*model, {0}, {0}, delimited::Form::Commas), QStringLiteral("A\r\n%1\r\n").arg(inCommas));
}

void tst_DelimitedText::fileBeginsWithTheMarkOfItsEncoding()
{
    const QTemporaryDir directory;
    const QString file = directory.filePath(QStringLiteral("rows.csv"));
    QVERIFY(write(file, "what stood there before, which is longer"));
    QCOMPARE(delimited::save(QStringLiteral("№\r\n"), file), QString());
    QCOMPARE(contentOf(file), QByteArray("\xEF\xBB\xBF\xE2\x84\x96\r\n"));
}

void tst_DelimitedText::fileIsWrittenWholeOrNotAtAll()
{
    const QTemporaryDir directory;
    const QString file = directory.filePath(QStringLiteral("rows.csv"));
    QVERIFY(write(file, "former"));
    {
        const FullDisk disk(1000);
        QVERIFY(!delimited::save(QString(100000, QLatin1Char('x')), file).isEmpty());
    }
    QCOMPARE(contentOf(file), QByteArray("former"));
    QCOMPARE(QDir(directory.path()).entryList(QDir::Files), QStringList(QStringLiteral("rows.csv")));
}

void tst_DelimitedText::fileThatCannotBeWrittenIsTold()
{
    const QTemporaryDir directory;
    QVERIFY(!delimited::save(QStringLiteral("x"), directory.filePath(QStringLiteral("no/such/rows.csv"))).isEmpty());
}

QTEST_GUILESS_MAIN(tst_DelimitedText)

#include "tst_DelimitedText.moc"
