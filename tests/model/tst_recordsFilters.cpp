#include "model/RecordsTest.h"
#include "model/tables.h"
#include "support/ModelInvariants.h"
#include "support/RandomModel.h"

/// Records of the scripts behind their states: channels, the filters and the flags that turn them on.
class tst_recordsFilters : public RecordsTest
{
    Q_OBJECT

private slots:
    void init()
    {
        begin();
    }

    void flagsStandAtTheirBits_data();
    void flagsStandAtTheirBits();
    void emptyChannelsSendNoBit();

    void dayOfTheWeekBits_data();
    void dayOfTheWeekBits();
    void timesAreMaskedDecimals();
    void datesOfZeroAreSentAndTakenAsOne();
    void numbersBelowZeroAreSentByTheirLowByte();
    void everyNumberBelowZeroIsTakenBackAsOneOfTwoDigits();
    void lastDayOfTheYearComesBack();

    void typeFilterIsTheCatalogueRow();
    void typeFilterThatNoRowHasIsTheScriptsOwn();
    void aSecondRecordOfAScriptLeavesTheCatalogueAlone();
    void missingTypeFilterIsAnyTerminal();
    void addressMaskIsLittleEndian();
};

void tst_recordsFilters::flagsStandAtTheirBits_data()
{
    QTest::addColumn<int>("byte");
    QTest::addColumn<QString>("flags"); // channels 1 to 4, then the filters by type, address, time and date

    QTest::newRow("channel 1") << 0x10 << s("1000 0000");
    QTest::newRow("channel 2") << 0x20 << s("0100 0000");
    QTest::newRow("channel 3") << 0x40 << s("0010 0000");
    QTest::newRow("channel 4") << 0x80 << s("0001 0000");
    QTest::newRow("no channel is channel 1") << 0x00 << s("1000 0000");
    QTest::newRow("filter by type") << 0x18 << s("1000 1000");
    QTest::newRow("filter by address") << 0x14 << s("1000 0100");
    QTest::newRow("filter by time") << 0x11 << s("1000 0010");
    QTest::newRow("filter by date") << 0x12 << s("1000 0001");
    QTest::newRow("all") << 0xFF << s("1111 1111");
}

void tst_recordsFilters::flagsStandAtTheirBits()
{
    QFETCH(int, byte);
    const ScriptInfoPtr script = readScript(*model, scriptRecord({{5, byte}}));
    QString flags;
    for (const bool flag : std::as_const(script->numberChannels)) {
        flags += QLatin1Char(flag ? '1' : '0');
    }
    flags += QLatin1Char(' ');
    for (const bool flag : std::as_const(script->activateFilter)) {
        flags += QLatin1Char(flag ? '1' : '0');
    }
    QTEST(flags, "flags");
    QCOMPARE(int(quint8(writeScript(*model, 0).at(5))), byte == 0 ? 0x10 : byte);
}

void tst_recordsFilters::emptyChannelsSendNoBit()
{
    model->findScript(0)->numberChannels.clear();
    QCOMPARE(writeScript(*model, 0).at(5), '\0');
    model->findScript(0)->numberChannels = {false, false, false, false};
    QCOMPARE(writeScript(*model, 0).at(5), '\0');
}

void tst_recordsFilters::dayOfTheWeekBits_data()
{
    QTest::addColumn<int>("byte");
    QTest::addColumn<int>("day");
    for (int day = 0; day < 6; ++day) {
        QTest::addRow("day %d", day) << (2 << day) << day;
    }
    QTest::newRow("Sunday") << 1 << 6;
}

void tst_recordsFilters::dayOfTheWeekBits()
{
    QFETCH(int, byte);
    QFETCH(int, day);
    const ScriptInfoPtr script = readScript(*model, scriptRecord({{6, byte | 0x80}})); // the highest bit is unused
    QCOMPARE(script->daysOfWeek.count(true), 1);
    QCOMPARE(script->daysOfWeek.indexOf(true), day);
    QCOMPARE(int(quint8(writeScript(*model, 0).at(6))), byte);
}

void tst_recordsFilters::timesAreMaskedDecimals()
{
    const ScriptInfoPtr script = readScript(*model, scriptRecord({{7, 0xD9}, {8, 0xE3}, {11, 0x80}, {12, 0x7F}}));
    QCOMPARE(script->timeFilter, (QList<int>{59, 23, 0, 45})); // halves above 9 count all the same
    script->timeFilter = {99, 99, 5, 23};
    const QByteArray record = writeScript(*model, 0);
    QCOMPARE(record.mid(7, 2), hex("19 19"));
    QCOMPARE(record.mid(11, 2), hex("05 23"));
}

void tst_recordsFilters::datesOfZeroAreSentAndTakenAsOne()
{
    ScriptInfo& script = *model->findScript(0);
    script.dateFilter = {0, 0, 0, 0};
    const QByteArray record = writeScript(*model, 0);
    QCOMPARE(record.mid(9, 2), hex("00 00"));
    QCOMPARE(record.mid(13, 2), hex("00 00"));
    QCOMPARE(readScript(*model, record)->dateFilter, (QList<int>{1, 1, 1, 1}));
}

// A file may bring such numbers. What a unit gets of them is what its own bytes could be.
void tst_recordsFilters::numbersBelowZeroAreSentByTheirLowByte()
{
    const ScriptInfoPtr script = model->findScript(0);
    script->timeFilter = {-2, -2, -7, -32768};
    script->dateFilter = {-2, -2, -7, -32768};
    const QByteArray record = model->makeScriptRecords().at(0);
    QCOMPARE(record.mid(7, 8).toHex(' '), QByteArray("54 14 14 14 49 00 09 00"));

    model->readScriptRecords({record});
    QCOMPARE(script->timeFilter, (QList<int>{54, 14, 49, 0}));
    QCOMPARE(script->dateFilter, (QList<int>{14, 14, 9, 1}));
    QCOMPARE(brokenInvariant(*model), QString());
}

void tst_recordsFilters::everyNumberBelowZeroIsTakenBackAsOneOfTwoDigits()
{
    for (int number = -2; number >= -300; --number) {
        const ScriptInfoPtr script = model->findScript(0);
        script->timeFilter = {number, number, number, number};
        script->dateFilter = {number, number, number, number};
        model->readScriptRecords(model->makeScriptRecords());
        const QList<int> numbers = script->timeFilter + script->dateFilter;
        for (const int taken : numbers) {
            QVERIFY2(taken >= 0 && taken <= 99, qPrintable(QString::number(number)));
        }
        const QByteArray settled = model->makeScriptRecords().at(0);
        model->readScriptRecords({settled});
        QCOMPARE(model->makeScriptRecords().at(0), settled);
    }
}

void tst_recordsFilters::lastDayOfTheYearComesBack()
{
    model->findScript(0)->dateFilter = {31, 12, 30, 11};
    const QByteArray record = writeScript(*model, 0);
    QCOMPARE(record.mid(9, 2), hex("31 12"));
    QCOMPARE(readScript(*model, record)->dateFilter, (QList<int>{31, 12, 30, 11}));
}

void tst_recordsFilters::typeFilterIsTheCatalogueRow()
{
    RandomModel::addTerminalTypes(*model);
    const auto filterOf = [this](const char* bytes) {
        return readScript(*model, QByteArray(15, '\0') + hex(bytes) + QByteArray(4, '\0'))->terminalFilter;
    };
    QCOMPARE(filterOf("14 31 20")->name, s("Dorn-NX(two-channel)"));
    QCOMPARE(filterOf("14 31 10")->name, s("Dorn-NX(single-channel)"));
    QVERIFY(model->terminalTypes().contains(filterOf("21 41 20")));
    QCOMPARE(writeScript(*model, 0).mid(15, 3), hex("21 41 20"));
}

void tst_recordsFilters::typeFilterThatNoRowHasIsTheScriptsOwn()
{
    RandomModel::addTerminalTypes(*model);
    const ScriptInfoPtr script = readScript(*model, scriptRecord({{15, 0x2F}, {16, 0xAB}, {17, 0xCD}}));
    QVERIFY(!model->terminalTypes().contains(script->terminalFilter));
    QCOMPARE(script->terminalFilter->label, s("<other type>"));
    QCOMPARE(int(script->terminalFilter->terminalClass), 2);
    QCOMPARE(int(script->terminalFilter->version), 15);
    QCOMPARE(int(script->terminalFilter->type), 0xAB);
    QCOMPARE(int(script->terminalFilter->characteristic), 0xCD);
    QCOMPARE(writeScript(*model, 0).mid(15, 3), hex("2f ab cd"));
}

void tst_recordsFilters::aSecondRecordOfAScriptLeavesTheCatalogueAlone()
{
    RandomModel::addTerminalTypes(*model);
    model->readScriptRecords(
        {scriptRecord({{15, 0x21}, {16, 0x41}, {17, 0x20}}), scriptRecord({{15, 0x2F}, {16, 0xAB}, {17, 0xCD}})});
    RelayInfo fresh;
    RandomModel::addTerminalTypes(fresh);
    for (int i = 0; i < fresh.terminalTypes().size(); ++i) {
        QVERIFY(sameModel(*model->terminalTypes().value(i), *fresh.terminalTypes().value(i)));
    }
}

void tst_recordsFilters::missingTypeFilterIsAnyTerminal()
{
    model->findScript(0)->terminalFilter.reset();
    QCOMPARE(writeScript(*model, 0).mid(15, 3), hex("f0 00 00"));
}

void tst_recordsFilters::addressMaskIsLittleEndian()
{
    for (int i = 0; i < 32; ++i) {
        QByteArray record(22, '\0');
        record[18 + i / 8] = char(1 << i % 8);
        const ScriptInfoPtr script = readScript(*model, record);
        QCOMPARE(script->addressFilter.count(true), 1);
        QCOMPARE(script->addressFilter.indexOf(true), i);
        QCOMPARE(writeScript(*model, 0).mid(18), record.mid(18));
    }
}

QTEST_GUILESS_MAIN(tst_recordsFilters)
#include "tst_recordsFilters.moc"
