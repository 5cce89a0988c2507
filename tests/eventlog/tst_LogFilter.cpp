#include "DataBaseTest.h"
#include "eventlog/LogEvents.h"
#include "eventlog/LogFilter.h"
#include "texts/texts.h"

Q_DECLARE_METATYPE(LogFilter)

/// What a filter finds in a log, through the database as the window asks it.
class tst_LogFilter : public DataBaseTest
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

    void nothingSetAsksForNothing();
    void textIsFoundAsItStands_data();
    void textIsFoundAsItStands();
    void textIsFoundInTheFiveColumnsAlone_data();
    void textIsFoundInTheFiveColumnsAlone();
    void datesAndTimesInWordsAreFound();
    void connectionIsFoundByItsLooks_data();
    void connectionIsFoundByItsLooks();
    void addressesKindsAndDaysNarrow_data();
    void addressesKindsAndDaysNarrow();
    void addressesAreReadAsTheyAreWritten_data();
    void addressesAreReadAsTheyAreWritten();

private:
    SqlModel* model = nullptr;

    void fill(const QList<EventOfTable>& rows)
    {
        model = connected();
        QVERIFY(model != nullptr);
        dataBase->sl_insertIntoTable(rows);
        dataBase->sl_refreshModel();
        QCOMPARE(model->rowCount(), rows.size());
    }
    QList<int> found(const LogFilter& filter)
    {
        dataBase->sl_filterModel(filter.condition());
        QList<int> numbers;
        for (int row = 0; row < model->rowCount(); ++row) {
            numbers.append(model->index(row, 0).data().toInt());
        }
        return numbers;
    }
};

void tst_LogFilter::nothingSetAsksForNothing()
{
    QVERIFY(LogFilter().condition().isEmpty());
    QVERIFY(LogFilter().addresses.isEmpty());
}

void tst_LogFilter::textIsFoundAsItStands_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QList<int>>("numbers");
    const QList<int> none;
    QTest::newRow("percent") << QStringLiteral("50%") << QList<int>{9};
    QTest::newRow("percent alone") << QStringLiteral("%") << QList<int>{9};
    QTest::newRow("apostrophe") << QStringLiteral("O'Neil") << QList<int>{8};
    QTest::newRow("underscore") << QStringLiteral("a_b") << QList<int>{7};
    QTest::newRow("backslash") << QStringLiteral("\\") << QList<int>{6};
    QTest::newRow("backslash before a percent") << QStringLiteral("\\%") << none;
    QTest::newRow("quote") << QStringLiteral("\"") << none;
    QTest::newRow("condition") << QStringLiteral("' OR 1=1 --") << none;
    QTest::newRow("another case") << QStringLiteral("ALARM") << QList<int>{10};
    QTest::newRow("Cyrillic") << QStringLiteral("Датчик") << QList<int>{5};
    QTest::newRow("Cyrillic in another case") << QStringLiteral("дАТЧИК №3 [*?]") << QList<int>{5};
    QTest::newRow("star beside other letters") << QStringLiteral("датчик*") << none;
    QTest::newRow("set beside other letters") << QStringLiteral("[д]") << none;
    QTest::newRow("number sign") << QStringLiteral("(№5") << QList<int>{10, 9, 8, 7, 6, 4};
    QTest::newRow("two lines") << QStringLiteral("1\n2") << QList<int>{4};
    QTest::newRow("blank at the end") << QStringLiteral("Alarm ") << QList<int>{10};
    QTest::newRow("what isn't there") << QStringLiteral("zzz") << none;
}

void tst_LogFilter::textIsFoundAsItStands()
{
    QFETCH(QString, text);
    QFETCH(QList<int>, numbers);
    QList<EventOfTable> rows;
    const QStringList details = {
        QStringLiteral("Alarm (fire)"), QStringLiteral("level 50% of all"), QStringLiteral("Hall of O''Neil"),
        QStringLiteral("a_b axb"),      QStringLiteral("C:\\logs"),         QStringLiteral("x"),
        QStringLiteral("1\n2")};
    for (int i = 0; i < details.size(); ++i) {
        EventOfTable row = eventRow(10 - i);
        row.event = QStringLiteral("-");
        row.information = details.at(i);
        rows.append(row);
    }
    rows[5].source = QStringLiteral("Датчик №3 [*?]");
    fill(rows);
    QCOMPARE(found({text, {}, {}, {}, {}}), numbers);
}

void tst_LogFilter::textIsFoundInTheFiveColumnsAlone_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isFound");
    QTest::newRow("date") << QStringLiteral("25.09") << true;
    QTest::newRow("time") << QStringLiteral("14:37") << true;
    QTest::newRow("event") << QStringLiteral("larm (") << true;
    QTest::newRow("source") << QStringLiteral("KV-NX") << true;
    QTest::newRow("details") << QStringLiteral("13°C") << true;
    QTest::newRow("sorting number") << QStringLiteral("75730373") << false;
    QTest::newRow("date and time") << QStringLiteral("25.09.2020 14:37") << true;
    QTest::newRow("end of the date and begin of the time") << QStringLiteral(".2020 14:") << true;
    QTest::newRow("date and another time") << QStringLiteral("25.09.2020 14:38") << false;
    QTest::newRow("time and date") << QStringLiteral("14:37 25.09.2020") << false;
    QTest::newRow("over the border of other columns") << QStringLiteral("14:37 Alarm") << false;
}

void tst_LogFilter::textIsFoundInTheFiveColumnsAlone()
{
    QFETCH(QString, text);
    QFETCH(bool, isFound);
    fill(eventRows(1));
    QCOMPARE(!found({text, {}, {}, {}, {}}).isEmpty(), isFound);
}

void tst_LogFilter::datesAndTimesInWordsAreFound()
{
    // As the decoder leaves a record without a date and one without a time.
    QByteArray noDate = QByteArray::fromHex("375400001110203200010700000000");
    QByteArray noTime = QByteArray::fromHex("7f7f25091110203200010700000000");
    LogEvents events;
    events.decodeEvents({noDate.append('\0'), noTime.append('\0')});
    events.numberEvents();
    const QList<EventOfTable> rows = events.takeEvents(2);
    fill(rows);
    QCOMPARE(found({rows.last().date.toUpper(), {}, {}, {}, {}}), QList<int>{rows.last().numberEvent});
    QCOMPARE(found({rows.first().time.toUpper(), {}, {}, {}, {}}), QList<int>{rows.first().numberEvent});
    QCOMPARE(found({QStringLiteral("25.09.2020 ") + rows.first().time, {}, {}, {}, {}}),
             QList<int>{rows.first().numberEvent});
    QCOMPARE(found({rows.last().date + QStringLiteral(" 14:37"), {}, {}, {}, {}}), QList<int>{rows.last().numberEvent});
    QCOMPARE(found({QStringLiteral("25.09.2020"), {}, {}, {}, {}}), QList<int>{rows.first().numberEvent});
    QCOMPARE(found({QStringLiteral("14:37"), {}, {}, {}, {}}), QList<int>{rows.last().numberEvent});
}

void tst_LogFilter::connectionIsFoundByItsLooks_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QList<int>>("numbers");
    QTest::newRow("all of it") << QStringLiteral("Connection") << QList<int>{3, 2};
    QTest::newRow("in another case") << QStringLiteral("CONN") << QList<int>{3, 2};
    QTest::newRow("with the letter that it has") << QStringLiteral("\u0421onnection") << QList<int>{3};
    QTest::newRow("the rest of it") << QStringLiteral("onnection") << QList<int>{3, 2};
    QTest::newRow("a letter too many") << QStringLiteral("connections") << QList<int>();
    QTest::newRow("a part of another") << QStringLiteral("disconnection") << QList<int>{2};
    QTest::newRow("Latin in another column") << QStringLiteral("cellar") << QList<int>{1};
}

/// The event's text begins with a Cyrillic letter, which looks like the Latin one.
void tst_LogFilter::connectionIsFoundByItsLooks()
{
    QFETCH(QString, text);
    QFETCH(QList<int>, numbers);
    QList<EventOfTable> rows{eventRow(3), eventRow(2), eventRow(1)};
    rows[0].event = texts::eventTerminalConnection();
    rows[1].event = QStringLiteral("Disconnection");
    rows[2].information = QStringLiteral("in the cellar");
    QVERIFY(!rows.first().event.startsWith(QLatin1Char('C')));
    fill(rows);
    QCOMPARE(found({text, {}, {}, {}, {}}), numbers);
}

void tst_LogFilter::addressesKindsAndDaysNarrow_data()
{
    QTest::addColumn<LogFilter>("filter");
    QTest::addColumn<QList<int>>("numbers");
    // Row n has the address n, the code n and the day 7570 + n.
    const QDate begin = QDate(2000, 1, 1).addDays(7570);
    QTest::newRow("one address") << LogFilter{{}, {{3, 3}}, {}, {}, {}} << QList<int>{3};
    QTest::newRow("head unit") << LogFilter{{}, {{0, 0}}, {}, {}, {}} << QList<int>{0};
    QTest::newRow("spans") << LogFilter{{}, {{1, 2}, {5, 9}}, {}, {}, {}} << QList<int>{1, 2, 5};
    QTest::newRow("upside down") << LogFilter{{}, {{5, 3}}, {}, {}, {}} << QList<int>();
    QTest::newRow("kind") << LogFilter{{}, {}, {EventKind::Channel}, {}, {}} << QList<int>{1};
    QTest::newRow("kinds") << LogFilter{{}, {}, {EventKind::PowerUp, EventKind::Mode}, {}, {}} << QList<int>{0, 3};
    QTest::newRow("other") << LogFilter{{}, {}, {EventKind::Other}, {}, {}} << QList<int>{4, 5};
    QTest::newRow("from a day on") << LogFilter{{}, {}, {}, begin.addDays(4), {}} << QList<int>{4, 5};
    QTest::newRow("up to a day") << LogFilter{{}, {}, {}, {}, begin.addDays(1)} << QList<int>{0, 1};
    QTest::newRow("all of it") << LogFilter{QStringLiteral("alarm"),
                                            {{0, 4}},
                                            {EventKind::Status, EventKind::Mode},
                                            begin.addDays(3),
                                            begin.addDays(9)}
                               << QList<int>{3};
}

void tst_LogFilter::addressesKindsAndDaysNarrow()
{
    QFETCH(LogFilter, filter);
    QFETCH(QList<int>, numbers);
    QList<EventOfTable> rows;
    for (int i = 0; i < 6; ++i) {
        EventOfTable row = eventRow(i);
        row.addressTerminal = static_cast<quint8>(i);
        row.codeEvent = static_cast<quint8>(i);
        row.dateInDays = static_cast<quint16>(7570 + i);
        rows.append(row);
    }
    fill(rows);
    QCOMPARE(found(filter), numbers);
}

void tst_LogFilter::addressesAreReadAsTheyAreWritten_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("makesSense");
    QTest::addColumn<QList<AddressRange>>("ranges");
    QTest::newRow("nothing") << QString() << true << QList<AddressRange>();
    QTest::newRow("one") << QStringLiteral("7") << true << QList<AddressRange>{{7, 7}};
    QTest::newRow("several") << QStringLiteral(" 1, 3-5;7 9,") << true
                             << QList<AddressRange>{{1, 1}, {3, 5}, {7, 7}, {9, 9}};
    QTest::newRow("blanks about the dash") << QStringLiteral("3 - 5") << true << QList<AddressRange>{{3, 5}};
    QTest::newRow("upside down") << QStringLiteral("5-3") << true << QList<AddressRange>{{3, 5}};
    QTest::newRow("open end") << QStringLiteral("20-") << true << QList<AddressRange>{{20, 255}};
    QTest::newRow("open begin") << QStringLiteral("-5") << true << QList<AddressRange>{{0, 5}};
    QTest::newRow("dash alone") << QStringLiteral("-") << false << QList<AddressRange>();
    QTest::newRow("two dashes") << QStringLiteral("1-2-3") << false << QList<AddressRange>();
    QTest::newRow("letters") << QStringLiteral("1, x") << false << QList<AddressRange>();
    QTest::newRow("too long") << QStringLiteral("1234567") << false << QList<AddressRange>();
}

void tst_LogFilter::addressesAreReadAsTheyAreWritten()
{
    QFETCH(QString, text);
    QFETCH(bool, makesSense);
    QFETCH(QList<AddressRange>, ranges);
    const std::optional<QList<AddressRange>> read = addressRanges(text);
    QCOMPARE(read.has_value(), makesSense);
    QCOMPARE(read.value_or(QList<AddressRange>()), ranges);
}

QTEST_GUILESS_MAIN(tst_LogFilter)

#include "tst_LogFilter.moc"
