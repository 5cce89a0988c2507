#include "model/RecordsTest.h"

/// Records of the outputs: how they are made, and what the reader makes of each.
class tst_recordsOutputs : public RecordsTest
{
    Q_OBJECT

private slots:
    void init()
    {
        begin();
    }

    void outputIsWrittenAsItsWorkedExample();
    void outputIsReadAsItsWorkedExample();
    void outputRecordsComeInOrderOfGroupsAndOutputs();
    void outputRecordsOfEveryGroupAreMade();
    void outputWithoutStartStateIsWrittenOff();
    void outputNumbersHaveThreeBits();
    void shortOutputRecordsArePassedOver();
    void outputOfAnUnknownAddressCreatesItsGroupInOrder();
    void outputsBelowTheWantedOneArePlaceholders();
    void placeholdersGetTheirNameFromTheirRecord();
    void missingOutputsOfAKnownGroupAreAdded();
    void scriptsOfAnOutputAreReplacedInOrder();
    void scriptNumbersThatNoScriptHasAreDropped();
    void number255IsSkippedEvenIfAScriptHasIt();
    void addressesFrom128AreTakenLiterally();
    void unknownBitsOfTheStateAreIgnored();
    void readingOutputsBringsBackConnectedTerminals();
};

void tst_recordsOutputs::outputIsWrittenAsItsWorkedExample()
{
    const GroupRelayPtr group = model->addGroup(s("Siren"), 5);
    model->addOutput(group, s("A"));
    model->addOutput(group, s("B"));
    RelayInformation& output = *group->outputs.at(1);
    output.startState = model->outputStates().value(1);
    output.returnStartState = true;
    output.activatedScripts = {model->findScript(3), model->findScript(7)};
    QCOMPARE(model->makeOutputRecords().constLast(), hex("05 01 03 03 07"));
}

void tst_recordsOutputs::outputIsReadAsItsWorkedExample()
{
    model->readOutputRecords({hex("05 01 03 03 07")});
    const RelayInformationPtr output = model->findOutput(5, 1);
    QVERIFY(output);
    QCOMPARE(output->startState, model->outputStates().value(1));
    QVERIFY(output->returnStartState);
    QCOMPARE(output->activatedScripts, (QList<ScriptInfoPtr>{model->findScript(3), model->findScript(7)}));
}

void tst_recordsOutputs::outputRecordsComeInOrderOfGroupsAndOutputs()
{
    const GroupRelayPtr group = model->addGroup(s("Siren"), 5);
    model->addOutput(group, s("A"));
    model->addOutput(group, s("B"));
    group->outputs.swapItemsAt(0, 1);
    const QByteArrayList records = model->makeOutputRecords();
    QCOMPARE(records.size(), 10);
    for (int i = 0; i < 8; ++i) {
        QCOMPARE(records.at(i), QByteArray(1, '\0') + char(i) + '\0');
    }
    QCOMPARE(records.at(8), hex("05 01 00"));
    QCOMPARE(records.at(9), hex("05 00 00"));
}

void tst_recordsOutputs::outputRecordsOfEveryGroupAreMade()
{
    model->addOutput(model->addGroup(s("Not connected"), 31), s("A"));
    QCOMPARE(model->makeOutputRecords().constLast(), hex("1f 00 00"));
}

void tst_recordsOutputs::outputWithoutStartStateIsWrittenOff()
{
    const RelayInformationPtr output = model->findOutput(0, 0);
    output->startState.reset();
    output->returnStartState = true;
    QCOMPARE(model->makeOutputRecords().constFirst(), hex("00 00 02"));
}

void tst_recordsOutputs::outputNumbersHaveThreeBits()
{
    const GroupRelayPtr unit = model->groups().constFirst();
    model->addOutput(unit, s("Ninth"));
    QCOMPARE(model->makeOutputRecords().at(8), hex("00 07 00")); // the nameless output's 255

    model->readOutputRecords({hex("00 fa 01")});
    QCOMPARE(model->findOutput(0, 2)->startState, model->outputStates().value(1));
}

void tst_recordsOutputs::shortOutputRecordsArePassedOver()
{
    model->readOutputRecords({QByteArray(), hex("05"), hex("05 01")});
    QCOMPARE(addresses(*model), QList<int>{0});
}

void tst_recordsOutputs::outputOfAnUnknownAddressCreatesItsGroupInOrder()
{
    model->readOutputRecords({hex("09 00 00"), hex("05 00 00"), hex("1f 00 00")});
    QCOMPARE(addresses(*model), (QList<int>{0, 5, 9, 31}));
    const GroupRelayPtr group = model->findGroup(5);
    QCOMPARE(group->name, s("New executive terminal"));
    QVERIFY(!group->connected);
    QVERIFY(!group->expand);
}

void tst_recordsOutputs::outputsBelowTheWantedOneArePlaceholders()
{
    model->readOutputRecords({hex("05 06 00")});
    const GroupRelayPtr group = model->findGroup(5);
    QCOMPARE(outputNames(group),
             (QStringList{s("???"), s("???"), s("???"), s("???"), s("???"), s("???"), s("Output")}));
    for (int i = 0; i < 7; ++i) {
        QCOMPARE(int(group->outputs.at(i)->number), i);
        QCOMPARE(group->outputs.at(i)->startState, model->outputStates().value(0));
    }
}

void tst_recordsOutputs::placeholdersGetTheirNameFromTheirRecord()
{
    model->readOutputRecords({hex("05 02 00"), hex("05 01 01")});
    QCOMPARE(outputNames(model->findGroup(5)), (QStringList{s("???"), s("Output"), s("Output")}));
    QCOMPARE(model->findOutput(5, 1)->startState, model->outputStates().value(1));
}

void tst_recordsOutputs::missingOutputsOfAKnownGroupAreAdded()
{
    model->readTerminalRecords({hex("05 21 41 20 00 00 00 00")});
    model->readOutputRecords({hex("05 04 01")});
    const GroupRelayPtr group = model->findGroup(5);
    QCOMPARE(outputNames(group), (QStringList{s("Output"), s("Output"), s("???"), s("???"), s("Output")}));
    QVERIFY(group->connected);
}

void tst_recordsOutputs::scriptsOfAnOutputAreReplacedInOrder()
{
    model->readOutputRecords({hex("00 00 00 01 02"), hex("00 00 00 1f 00 1f")});
    QCOMPARE(model->findOutput(0, 0)->activatedScripts,
             (QList<ScriptInfoPtr>{model->findScript(31), model->findScript(0), model->findScript(31)}));
}

void tst_recordsOutputs::scriptNumbersThatNoScriptHasAreDropped()
{
    model->readOutputRecords({hex("00 00 00 20 05 fe ff 80 06")});
    QCOMPARE(model->findOutput(0, 0)->activatedScripts,
             (QList<ScriptInfoPtr>{model->findScript(5), model->findScript(6)}));
}

void tst_recordsOutputs::number255IsSkippedEvenIfAScriptHasIt()
{
    model->findScript(4)->number = 255;
    model->readOutputRecords({hex("00 00 00 ff 05")});
    QCOMPARE(model->findOutput(0, 0)->activatedScripts, QList<ScriptInfoPtr>{model->findScript(5)});
}

void tst_recordsOutputs::addressesFrom128AreTakenLiterally()
{
    model->readOutputRecords({hex("05 00 01"), hex("ff 00 01"), hex("80 01 02 03")});
    QCOMPARE(addresses(*model), (QList<int>{0, -128, -1, 5})); // the head unit stays in front
    QCOMPARE(model->makeOutputRecords().mid(8),
             (QByteArrayList{hex("80 00 00"), hex("80 01 02 03"), hex("ff 00 01"), hex("05 00 01")}));
    model->removeIdleGroups();
    QCOMPARE(addresses(*model), (QList<int>{0, -128}));
}

void tst_recordsOutputs::unknownBitsOfTheStateAreIgnored()
{
    model->readOutputRecords({hex("00 00 fc"), hex("00 01 fd"), hex("00 02 fe")});
    QCOMPARE(model->makeOutputRecords().mid(0, 3), (QByteArrayList{hex("00 00 00"), hex("00 01 01"), hex("00 02 02")}));
}

void tst_recordsOutputs::readingOutputsBringsBackConnectedTerminals()
{
    model->readTerminalRecords({hex("05 21 41 20 00 00 00 00"), hex("06 11 41 20 00 00 00")});
    model->addGroup(s("By hand"), 9);
    model->readOutputRecords({});
    QCOMPARE(addresses(*model), (QList<int>{0, 5}));
    QVERIFY(model->findGroup(0)->connected);
    QVERIFY(model->findGroup(5)->connected);
}

QTEST_GUILESS_MAIN(tst_recordsOutputs)
#include "tst_recordsOutputs.moc"
