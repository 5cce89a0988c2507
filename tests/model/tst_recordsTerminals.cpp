#include "model/RecordsTest.h"
#include "support/RandomModel.h"

/// Records of the connected terminals, which come from the unit alone.
class tst_recordsTerminals : public RecordsTest
{
    Q_OBJECT

private slots:
    void init()
    {
        begin();
    }

    void terminalIsReadAsItsWorkedExample();
    void terminalWithoutCatalogueIsNamedByItsNumbers();
    void lengthOfATerminalRecordSetsTheOutputs_data();
    void lengthOfATerminalRecordSetsTheOutputs();
    void catalogueNamesReachAsFarAsBothLists();
    void onlyExecutiveTerminalsHaveAGroup();
    void readingTerminalsResetsTheGroups();
    void terminalsAreSortedByAddress();
    void shortTerminalRecordsArePassedOver();
};

void tst_recordsTerminals::terminalIsReadAsItsWorkedExample()
{
    RandomModel::addTerminalTypes(*model);
    model->readTerminalRecords({hex("05 21 41 20 aa bb cc dd")});
    const ConnectedTerminalPtr terminal = model->findConnectedTerminal(5);
    QVERIFY(terminal);
    QCOMPARE(int(terminal->terminalClass), 2);
    QCOMPARE(int(terminal->version), 1);
    QCOMPARE(int(terminal->type), 0x41);
    QCOMPARE(int(terminal->characteristic), 0x20);
    QCOMPARE(terminal->label, s("Haldeon-NX"));
    QCOMPARE(terminal->outputs, (QStringList{s("Output"), s("Output")}));
    const GroupRelayPtr group = model->findGroup(5);
    QVERIFY(group);
    QCOMPARE(group->name, s("Haldeon-NX"));
    QVERIFY(group->connected);
    QVERIFY(!group->expand);
    QCOMPARE(outputNames(group), terminal->outputs);
}

void tst_recordsTerminals::terminalWithoutCatalogueIsNamedByItsNumbers()
{
    model->readTerminalRecords({hex("05 2a 01 0f 00 00 00 00")});
    QCOMPARE(model->findConnectedTerminal(5)->label, s("2a 01 0f"));
    QCOMPARE(model->findGroup(5)->name, s("2a 01 0f"));
}

void tst_recordsTerminals::lengthOfATerminalRecordSetsTheOutputs_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("outputs");
    const QList<int> expected = {1, 2, 2, 2, 2, 3, 3, 3, 3, 4, 4};
    for (int i = 0; i < expected.size(); ++i) {
        QTest::addRow("%d bytes", 7 + i) << 7 + i << expected.at(i);
    }
    QTest::newRow("100 bytes") << 100 << 4;
}

void tst_recordsTerminals::lengthOfATerminalRecordSetsTheOutputs()
{
    QFETCH(int, length);
    model->readTerminalRecords({hex("05 21 41 20") + QByteArray(length - 4, 'x')});
    QTEST(model->findConnectedTerminal(5)->outputs.size(), "outputs");
    QTEST(model->findGroup(5)->outputs.size(), "outputs");
}

void tst_recordsTerminals::catalogueNamesReachAsFarAsBothLists()
{
    model->addTerminalType(true, s("Siren"), 2, 1, 0x41, 0x20, {s("Left"), s("Right")});
    model->readTerminalRecords({hex("05 21 41 20 00 00 00"), hex("06 21 41 20 00 00 00 00 00 00 00 00")});
    QCOMPARE(model->findConnectedTerminal(5)->outputs, QStringList{s("Left")});
    QCOMPARE(model->findConnectedTerminal(6)->outputs, (QStringList{s("Left"), s("Right"), s("Output")}));
}

void tst_recordsTerminals::onlyExecutiveTerminalsHaveAGroup()
{
    QByteArrayList records;
    for (int terminalClass = 0; terminalClass < 16; ++terminalClass) {
        QByteArray record = hex("00 01 41 20 00 00 00 00");
        record[0] = char(terminalClass + 1);
        record[1] = char(terminalClass << 4 | 1);
        records.append(record);
    }
    model->readTerminalRecords(records);
    QCOMPARE(model->connectedTerminals().size(), 16);
    QCOMPARE(addresses(*model), (QList<int>{0, 3}));
}

void tst_recordsTerminals::readingTerminalsResetsTheGroups()
{
    model->readTerminalRecords({hex("05 21 41 20 00 00 00 00")});
    model->addGroup(s("By hand"), 9);
    model->findOutput(0, 0)->name = s("Renamed");
    model->readTerminalRecords({});
    QCOMPARE(addresses(*model), QList<int>{0});
    QVERIFY(model->connectedTerminals().isEmpty());
    QCOMPARE(model->findOutput(0, 0)->name, s("Internal relay"));
    QVERIFY(model->findGroup(0)->connected);
}

void tst_recordsTerminals::terminalsAreSortedByAddress()
{
    model->readTerminalRecords(
        {hex("09 21 41 20 00 00 00 00"), hex("03 21 41 20 00 00 00 00"), hex("1f 21 41 20 00 00 00 00")});
    QCOMPARE(addresses(*model), (QList<int>{0, 3, 9, 31}));
    QCOMPARE(int(model->connectedTerminals().constFirst()->address), 9); // this list keeps the order of arrival
}

void tst_recordsTerminals::shortTerminalRecordsArePassedOver()
{
    model->readTerminalRecords({QByteArray(), hex("05 21 41 20 00 00")});
    QVERIFY(model->connectedTerminals().isEmpty());
    QCOMPARE(addresses(*model), QList<int>{0});
}

QTEST_GUILESS_MAIN(tst_recordsTerminals)
#include "tst_recordsTerminals.moc"
