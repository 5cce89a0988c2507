#include "eventlog/LogTable.h"
#include "eventlog/eventRows.h"

#include <QSqlField>
#include <QSqlRecord>
#include <QTest>

class tst_LogTable : public QObject
{
    Q_OBJECT

private slots:
    void statementsAreThoseOfEveryLogThatWasSaved();
    void rowsAreJoinedIntoOneStatement();
    void detailsAreTheColumnThatTakesTheRest();
    void fitsColumnsOfALog_data();
    void fitsColumnsOfALog();
};

/// The file format: a change here makes the logs unreadable that users have saved.
void tst_LogTable::statementsAreThoseOfEveryLogThatWasSaved()
{
    QCOMPARE(logtable::createStatement(),
             QStringLiteral("CREATE TABLE EventLogTable (NumberEvent INTEGER NULL,SortDateTime INTEGER NULL,"
                            "DateInDays INTEGER NULL,TimeInMinute INTEGER NULL,Class INTEGER NULL,"
                            "Version INTEGER NULL,Type INTEGER NULL,Characteristic INTEGER NULL,"
                            "AddressTerminal INTEGER NULL,NumberChannel INTEGER NULL,CodeEvent INTEGER NULL,"
                            "Date VARCHAR(20) NULL,Time VARCHAR(20) NULL,SignalLevel INTEGER NULL,"
                            "NoiseLevel INTEGER NULL,Event TEXT NULL,Source TEXT NULL,Information TEXT NULL )"));

    EventOfTable row = eventRow(65535);
    row.sortDateTime = 4294967295U;
    row.event = QStringLiteral("Alarm %1 (fire)");
    row.source = QStringLiteral("Smith's (№5, channel 6)");
    row.information.clear();
    QCOMPARE(logtable::insertStatement({row}),
             QStringLiteral("INSERT INTO EventLogTable ( NumberEvent, SortDateTime, DateInDays, TimeInMinute, Class, "
                            "Version, Type, Characteristic, AddressTerminal, NumberChannel, CodeEvent, Date, Time, "
                            "SignalLevel, NoiseLevel, Event, Source, Information ) VALUES "
                            "(65535, 4294967295, 7573, 373, 1, 2, 3, 4, 5, 6, 7, '25.09.2020', '14:37', 8, 9, "
                            "'Alarm %1 (fire)', 'Smith's (№5, channel 6)', '')"));
}

void tst_LogTable::rowsAreJoinedIntoOneStatement()
{
    const QString zeros = QStringLiteral("(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, '', '', 0, 0, '', '', '')");
    QVERIFY(logtable::insertStatement({EventOfTable(), EventOfTable()})
                .endsWith(QLatin1String(" VALUES ") + zeros + QLatin1String(", ") + zeros));
}

void tst_LogTable::detailsAreTheColumnThatTakesTheRest()
{
    QCOMPARE(logtable::columns().size(), 18);
    QCOMPARE(logtable::columnOfDetails(), 17);
}

void tst_LogTable::fitsColumnsOfALog_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("last");
    QTest::addColumn<bool>("required");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("fits");
    const QString further = QStringLiteral("Further");
    QTest::newRow("its own") << 17 << QStringLiteral("Information") << false << QVariant() << true;
    QTest::newRow("its own, which must be given") << 17 << QStringLiteral("Information") << true << QVariant() << true;
    QTest::newRow("in other letters") << 17 << QStringLiteral("INFORMATION") << false << QVariant() << true;
    QTest::newRow("with another name") << 17 << further << false << QVariant() << false;
    QTest::newRow("without the last") << 16 << QStringLiteral("Source") << false << QVariant() << false;
    QTest::newRow("a further one") << 18 << further << false << QVariant() << true;
    QTest::newRow("a further one that must be given") << 18 << further << true << QVariant() << false;
    QTest::newRow("a further one with a value of its own") << 18 << further << true << QVariant(0) << true;
}

void tst_LogTable::fitsColumnsOfALog()
{
    QFETCH(int, count);
    QFETCH(QString, last);
    QFETCH(bool, required);
    QFETCH(QVariant, value);
    QFETCH(bool, fits);
    QSqlRecord record;
    for (int column = 0; column < count; ++column) {
        record.append(QSqlField(QLatin1String(logtable::columns().at(column).name)));
    }
    QSqlField field(last);
    field.setRequired(required);
    field.setDefaultValue(value);
    record.append(field);
    QCOMPARE(logtable::fits(record), fits);
}

QTEST_GUILESS_MAIN(tst_LogTable)

#include "tst_LogTable.moc"
