#include "eventlog/LogEvents.h"
#include "model/Device.h"
#include "support/DebugLines.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <limits>

namespace
{

/// One case of events.tsv: a record and the rows it has to give, each as its eighteen fields.
struct EventCase
{
    QString name;
    QByteArray record;
    QList<QStringList> rows;
};

struct EventTable
{
    QByteArray catalogue;
    QList<EventCase> cases;
};

EventTable readTable()
{
    EventTable table;
    QFile file(QStringLiteral(EVENT_TABLE));
    if (!file.open(QIODevice::ReadOnly)) {
        return table;
    }
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        QStringList fields = line.split(QLatin1Char('\t'));
        const QString kind = fields.takeFirst();
        if (kind == QLatin1String("C")) {
            table.catalogue += fields.first().toUtf8() + '\n';
        } else if (kind == QLatin1String("R")) {
            table.cases.append({fields.first(), QByteArray::fromHex(fields.at(1).toLatin1()), {}});
        } else {
            fields.last().replace(QLatin1String("\\n"), QLatin1String("\n"));
            table.cases.last().rows.append(fields);
        }
    }
    return table;
}

QStringList fieldsOf(const EventOfTable& row)
{
    QStringList fields;
    for (const quint32 number :
         {quint32(row.numberEvent), row.sortDateTime, quint32(row.dateInDays), quint32(row.timeInMinute),
          quint32(row.classTerminal), quint32(row.version), quint32(row.type), quint32(row.characteristic),
          quint32(row.addressTerminal), quint32(row.numberChannel), quint32(row.codeEvent)}) {
        fields.append(QString::number(number));
    }
    fields << row.date << row.time << row.source << QString::number(row.signalLevel) << QString::number(row.noiseLevel)
           << row.event << row.information;
    return fields;
}

/// The rows that are waiting; they stay where they are.
QList<EventOfTable> rowsIn(LogEvents events)
{
    return events.takeEvents(std::numeric_limits<int>::max());
}

QByteArray hex(const char* text)
{
    return QByteArray::fromHex(text);
}

/// A record of 25.09.2020 14:37 with the given terminal, code, address and data, all in hexadecimal.
QByteArray record(const char* terminal, const char* codeAndAddress, const char* data)
{
    return (hex("37542509") + hex(terminal) + hex("320A") + hex(codeAndAddress) + hex(data)).leftJustified(16, '\0');
}

} // namespace

class tst_LogEvents : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir directory;
    EventTable table;
    std::unique_ptr<Device> devices;

    LogEvents logEvents() const
    {
        LogEvents events;
        events.setDevices(devices.get());
        return events;
    }

    /// The rows of one record.
    QList<EventOfTable> rowsOf(const QByteArray& data) const
    {
        LogEvents events = logEvents();
        events.decodeEvents({data});
        events.numberEvents();
        return events.takeEvents(100);
    }

    QStringList eventsOf(const QByteArray& data) const
    {
        QStringList texts;
        const QList<EventOfTable> rows = rowsOf(data);
        for (const EventOfTable& row : rows) {
            texts.append(row.event);
        }
        return texts;
    }

private slots:
    void initTestCase();

    void decodesTheTable_data();
    void decodesTheTable();
    void decodesTheTableAsOneLogInBlocks();
    void decodesTheWorkedExample();
    void withoutCatalogueTerminalsKeepTheirNumbers();
    void firstRowOfTheCatalogueThatMatchesWins();
    void nameWithoutBracketIsTakenWhole();
    void placeMarkersInANameStay();

    void emptyListLeavesEventsAsTheyAre();
    void recordsOfAListAreWalkedFromTheLastToTheFirst();
    void shortRecordGivesADebugLineWithTheFirstRecordAndNoRow();
    void bytesBehindTheSixteenthAreNotLookedAt();
    void everyRowOfAStatusChangeCarriesTheSameRest();
    void statusChangeWithoutAChangedBitStillCarriesDetails();
    void bothInputsOfTheUnitShareOneDetailsText();
    void bothInputsOfTheUnitChangeInTwoRowsInputTwoFirst();
    void modeChangeOfTheUnitHasAnEndOfBracketOnly();
    void terminalWithoutChannelsShowsNoneAtPowerUp();
    void classNibbleFromEightOnIsNegative();
    void counterValueOfZeroShowsZero();
    void nineButtonsListEightNumbers();
    void restoredConnectionBeginsWithACyrillicLetter();
    void sortKeyIsNotMonotonicInTheTimeOfDay();
    void impossibleDateAndTimeAreSaidInWords();
    void newEventHasItsStartingValues();

    void numbersCountDownToOne();
    void numbersAreCutToSixteenBits();
    void takingFromAnEmptyListGivesAnEmptyList();
    void takingRemovesFromTheFront();
    void takingLessThanOneTakesNothing();
    void savingEmptiesAndRestoringBringsBack();
};

void tst_LogEvents::initTestCase()
{
    QVERIFY(directory.isValid());
    QDir::setCurrent(directory.path());
    table = readTable();
    QVERIFY(table.cases.size() >= 300);
    QFile catalogue(QStringLiteral("Devices_EN.csv"));
    QVERIFY(catalogue.open(QIODevice::WriteOnly));
    catalogue.write(table.catalogue);
    catalogue.close();
    devices = std::make_unique<Device>([](const QString&, const QString&) { QFAIL("the catalogue can't be read"); });
    QCOMPARE(devices->deviceCount(), table.catalogue.count('\n'));
}

// ---- Decoding ----------------------------------------------------------------------------------------------------

void tst_LogEvents::decodesTheTable_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < table.cases.size(); ++i) {
        QTest::newRow(qPrintable(table.cases.at(i).name)) << i;
    }
}

void tst_LogEvents::decodesTheTable()
{
    QFETCH(int, index);
    const EventCase& expected = table.cases.at(index);
    QCOMPARE(expected.record.size(), 16);
    const QList<EventOfTable> rows = rowsOf(expected.record);
    QCOMPARE(rows.size(), expected.rows.size());
    for (int i = 0; i < rows.size(); ++i) {
        QCOMPARE(fieldsOf(rows.at(i)), expected.rows.at(i));
    }
}

void tst_LogEvents::decodesTheTableAsOneLogInBlocks()
{
    LogEvents events = logEvents();
    QList<QStringList> expected;
    QByteArrayList block;
    QList<QStringList> rowsOfBlock;
    for (const EventCase& entry : qAsConst(table.cases)) {
        block.append(entry.record);
        rowsOfBlock = entry.rows + rowsOfBlock;
        if (block.size() == 4) {
            events.decodeEvents(block);
            expected += rowsOfBlock;
            block.clear();
            rowsOfBlock.clear();
        }
    }
    events.decodeEvents(block);
    expected += rowsOfBlock;
    events.numberEvents();
    const QList<EventOfTable> rows = rowsIn(events);
    QCOMPARE(rows.size(), expected.size());
    for (int i = 0; i < rows.size(); ++i) {
        expected[i][0] = QString::number(expected.size() - i);
        QCOMPARE(fieldsOf(rows.at(i)), expected.at(i));
    }
}

void tst_LogEvents::decodesTheWorkedExample()
{
    const QList<EventOfTable> rows = rowsOf(hex("37 54 25 09 11 41 10 32 0A 01 07 21 00 00 00 00"));
    QCOMPARE(rows.size(), 1);
    const EventOfTable& row = rows.first();
    QCOMPARE(row.date, QStringLiteral("25.09.2020"));
    QCOMPARE(row.time, QStringLiteral("14:37"));
    QCOMPARE(row.dateInDays, quint16(7573));
    QCOMPARE(row.timeInMinute, quint16(373));
    QCOMPARE(row.sortDateTime, 75730373U);
    QCOMPARE(row.signalLevel, quint8(50));
    QCOMPARE(row.noiseLevel, quint8(10));
    QCOMPARE(row.source, QStringLiteral("KV-NX (№7, channel 3)"));
    QCOMPARE(row.numberChannel, quint8(3));
    QCOMPARE(row.event, QStringLiteral("Alarm (fire)"));
    QCOMPARE(row.information, QString());
}

void tst_LogEvents::withoutCatalogueTerminalsKeepTheirNumbers()
{
    LogEvents events;
    events.decodeEvents({record("11 41 10", "01 07", "21")});
    QCOMPARE(rowsIn(events).constFirst().source, QStringLiteral("11 41 10 (№7, channel 3)"));
}

void tst_LogEvents::firstRowOfTheCatalogueThatMatchesWins()
{
    QVERIFY(table.catalogue.contains("Second of its numbers; 0x1; 0x1; 0x41; 0x10"));
    QCOMPARE(rowsOf(record("11 41 10", "00 07", "")).constFirst().source, QStringLiteral("KV-NX (№7)"));
}

void tst_LogEvents::nameWithoutBracketIsTakenWhole()
{
    QCOMPARE(rowsOf(record("11 10 20", "00 03", "")).constFirst().source, QStringLiteral("Moriz-NX (№3)"));
    QCOMPARE(rowsOf(record("14 31 10", "00 03", "")).constFirst().source, QStringLiteral("Dorn-NX (№3)"));
}

void tst_LogEvents::placeMarkersInANameStay()
{
    QCOMPARE(rowsOf(record("19 77 20", "01 03", "01")).constFirst().source,
             QStringLiteral("%1 100 %2 (№3, channel 1)"));
}

void tst_LogEvents::emptyListLeavesEventsAsTheyAre()
{
    LogEvents events = logEvents();
    events.decodeEvents({record("11 41 10", "01 07", "21")});
    events.decodeEvents({});
    QCOMPARE(rowsIn(events).size(), 1);
}

void tst_LogEvents::recordsOfAListAreWalkedFromTheLastToTheFirst()
{
    LogEvents events = logEvents();
    events.decodeEvents({record("11 41 10", "00 01", ""), record("11 41 10", "00 02", "")});
    events.decodeEvents({record("11 41 10", "00 03", "")});
    const QList<EventOfTable> rows = rowsIn(events);
    QCOMPARE(rows.size(), 3);
    QCOMPARE(rows.at(0).addressTerminal, quint8(2));
    QCOMPARE(rows.at(1).addressTerminal, quint8(1));
    QCOMPARE(rows.at(2).addressTerminal, quint8(3));
}

void tst_LogEvents::shortRecordGivesADebugLineWithTheFirstRecordAndNoRow()
{
    LogEvents events = logEvents();
    const DebugLines debug;
    const QByteArray whole = record("11 41 10", "01 07", "21");
    events.decodeEvents({whole, whole.left(15), whole});
    QCOMPARE(rowsIn(events).size(), 2);
    QCOMPARE(debug.lines(),
             QStringList(QStringLiteral("___WARNING___: LOG EVENTS: Missing event: 37542509114110320a01072100000000")));

    events.decodeEvents({QByteArray()});
    QCOMPARE(rowsIn(events).size(), 2);
    QCOMPARE(debug.lines().constLast(), QStringLiteral("___WARNING___: LOG EVENTS: Missing event: "));
}

void tst_LogEvents::bytesBehindTheSixteenthAreNotLookedAt()
{
    const QByteArray whole = record("11 02 03", "77 07", "0102030405");
    QCOMPARE(fieldsOf(rowsOf(whole + hex("060708")).constFirst()), fieldsOf(rowsOf(whole).constFirst()));
    QCOMPARE(rowsOf(whole).constFirst().information, QStringLiteral("01 02 03 04 05"));
}

void tst_LogEvents::everyRowOfAStatusChangeCarriesTheSameRest()
{
    const QList<EventOfTable> rows = rowsOf(record("11 41 10", "02 07", "00FF"));
    QCOMPARE(rows.size(), 6);
    QStringList first = fieldsOf(rows.first());
    for (const EventOfTable& row : rows) {
        QStringList fields = fieldsOf(row);
        fields[0] = first[0];
        fields[16] = first[16];
        QCOMPARE(fields, first);
    }
}

void tst_LogEvents::statusChangeWithoutAChangedBitStillCarriesDetails()
{
    const QList<EventOfTable> rows = rowsOf(record("11 41 10", "02 07", "C141"));
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.first().event, QStringLiteral("No changes"));
    QCOMPARE(rows.first().information, QStringLiteral("Case of terminal is opened; "));
}

void tst_LogEvents::bothInputsOfTheUnitShareOneDetailsText()
{
    const QList<EventOfTable> rows = rowsOf(record("06 1A 1F", "00 00", "0086"));
    QCOMPARE(rows.first().information, QStringLiteral("RTR mode is enabled; Inputs HUBN 1 and 2 is opened; "));
}

void tst_LogEvents::bothInputsOfTheUnitChangeInTwoRowsInputTwoFirst()
{
    QCOMPARE(eventsOf(record("06 1A 1F", "02 00", "0006")),
             QStringList({QStringLiteral("Input 2 HUBN is opened"), QStringLiteral("Input 1 HUBN is opened")}));
}

void tst_LogEvents::modeChangeOfTheUnitHasAnEndOfBracketOnly()
{
    QCOMPARE(rowsOf(record("06 1A 1F", "03 00", "0809")).constFirst().source, QStringLiteral("HUBN-NX-Q)"));
}

void tst_LogEvents::terminalWithoutChannelsShowsNoneAtPowerUp()
{
    QCOMPARE(rowsOf(record("11 41 0F", "00 07", "00081111")).constFirst().information, QString());
}

void tst_LogEvents::classNibbleFromEightOnIsNegative()
{
    const EventOfTable row = rowsOf(record("81 01 20", "01 07", "0102030405")).constFirst();
    QCOMPARE(row.classTerminal, quint8(248));
    QCOMPARE(row.event, QStringLiteral("Unknown class of channel(248)"));
    QCOMPARE(row.information, QStringLiteral("01 02 03 04 05"));
    QCOMPARE(row.source, QStringLiteral("f81 01 20 (№7, channel 1)"));
    // Only a row of the catalogue that holds the negative number can match.
    QCOMPARE(rowsOf(record("91 01 20", "01 07", "01")).constFirst().source,
             QStringLiteral("Negative class (№7, channel 1)"));
}

void tst_LogEvents::counterValueOfZeroShowsZero()
{
    QCOMPARE(rowsOf(record("41 20 11", "01 07", "0100000000")).constFirst().information, QStringLiteral("0"));
}

void tst_LogEvents::nineButtonsListEightNumbers()
{
    const EventOfTable row = rowsOf(record("33 34 10", "01 07", "0921436587")).constFirst();
    QCOMPARE(row.event, QStringLiteral("Pressing 9 buttons"));
    QCOMPARE(row.information, QStringLiteral("Pressed 01 02 03 04 05 06 07 08 "));
}

void tst_LogEvents::restoredConnectionBeginsWithACyrillicLetter()
{
    const QString event = eventsOf(record("11 41 10", "02 07", "0800")).constFirst();
    QCOMPARE(event.at(0).unicode(), ushort(0x0421));
    QCOMPARE(event.mid(1), QStringLiteral("onnection"));
}

void tst_LogEvents::sortKeyIsNotMonotonicInTheTimeOfDay()
{
    QByteArray data = record("11 41 10", "01 07", "01");
    data[0] = 0x00;
    QCOMPARE(rowsOf(data).constFirst().timeInMinute, quint16(336));
    data[0] = 0x59;
    data[1] = 0x53;
    QCOMPARE(rowsOf(data).constFirst().time, QStringLiteral("13:59"));
    QCOMPARE(rowsOf(data).constFirst().timeInMinute, quint16(371));
}

void tst_LogEvents::impossibleDateAndTimeAreSaidInWords()
{
    const EventOfTable row = rowsOf(hex("7F 3F 3F 1F 11 41 10 32 0A 01 07 01 00 00 00 00")).constFirst();
    QCOMPARE(row.date, QStringLiteral("Incorrect date"));
    QCOMPARE(row.time, QStringLiteral("Incorrect time"));
    QCOMPARE(row.dateInDays, quint16(0));
    QCOMPARE(row.timeInMinute, quint16(65511));
    QCOMPARE(row.sortDateTime, 65511U);
}

void tst_LogEvents::newEventHasItsStartingValues()
{
    const EventInfo event;
    QCOMPARE(event.number, quint16(0));
    QCOMPARE(event.time, QTime(0, 0, 0, 0));
    QCOMPARE(event.date, QDate(2000, 1, 1));
    QCOMPARE(event.channel, quint8(255));
    QCOMPARE(event.source, QStringLiteral("------"));
    QCOMPARE(event.code, -1);
}

// ---- The list ----------------------------------------------------------------------------------------------------

void tst_LogEvents::numbersCountDownToOne()
{
    LogEvents events = logEvents();
    const QByteArray data = record("11 41 10", "01 07", "21");
    events.decodeEvents({data, data, data});
    QCOMPARE(rowsIn(events).constFirst().numberEvent, quint16(0));
    events.numberEvents();
    const QList<EventOfTable> rows = rowsIn(events);
    QCOMPARE(rows.at(0).numberEvent, quint16(3));
    QCOMPARE(rows.at(1).numberEvent, quint16(2));
    QCOMPARE(rows.at(2).numberEvent, quint16(1));
}

void tst_LogEvents::numbersAreCutToSixteenBits()
{
    LogEvents events;
    QByteArrayList records;
    for (int i = 0; i < 65538; ++i) {
        records.append(record("06 1A 1F", "00 00", ""));
    }
    events.decodeEvents(records);
    events.numberEvents();
    const QList<EventOfTable> rows = rowsIn(events);
    QCOMPARE(rows.at(0).numberEvent, quint16(2));
    QCOMPARE(rows.at(2).numberEvent, quint16(0));
    QCOMPARE(rows.at(3).numberEvent, quint16(65535));
    QCOMPARE(rows.constLast().numberEvent, quint16(1));
}

void tst_LogEvents::takingFromAnEmptyListGivesAnEmptyList()
{
    LogEvents events;
    QVERIFY(events.takeEvents(2000).isEmpty());
}

void tst_LogEvents::takingRemovesFromTheFront()
{
    LogEvents events = logEvents();
    for (const char* address : {"0001", "0002", "0003", "0004", "0005"}) {
        events.decodeEvents({record("11 41 10", address, "")});
    }
    const QList<EventOfTable> first = events.takeEvents(2);
    QCOMPARE(first.size(), 2);
    QCOMPARE(first.at(0).addressTerminal, quint8(1));
    QCOMPARE(first.at(1).addressTerminal, quint8(2));
    const QList<EventOfTable> rest = events.takeEvents(2000);
    QCOMPARE(rest.size(), 3);
    QCOMPARE(rest.at(0).addressTerminal, quint8(3));
    QVERIFY(rowsIn(events).isEmpty());
}

void tst_LogEvents::takingLessThanOneTakesNothing()
{
    LogEvents events = logEvents();
    events.decodeEvents({record("11 41 10", "01 07", "21")});
    QVERIFY(events.takeEvents(0).isEmpty());
    QVERIFY(events.takeEvents(-1).isEmpty());
    QCOMPARE(rowsIn(events).size(), 1);
}

void tst_LogEvents::savingEmptiesAndRestoringBringsBack()
{
    LogEvents events = logEvents();
    events.decodeEvents({record("11 41 10", "01 07", "21")});
    events.saveAndClearEvents();
    QVERIFY(rowsIn(events).isEmpty());
    // What is decoded meanwhile gives way to what was there before.
    events.decodeEvents({record("11 41 10", "01 08", "21"), record("11 41 10", "01 09", "21")});
    events.restoreEvents();
    QCOMPARE(rowsIn(events).size(), 1);
    QCOMPARE(rowsIn(events).constFirst().addressTerminal, quint8(7));
    events.restoreEvents();
    QCOMPARE(rowsIn(events).size(), 1);
}

QTEST_GUILESS_MAIN(tst_LogEvents)

#include "tst_LogEvents.moc"
