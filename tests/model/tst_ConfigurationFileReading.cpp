#include "model/ConfigurationFileTest.h"

/// What the reader makes of a file as a whole: its result, its comment, its sections and its encoding.
class tst_ConfigurationFileReading : public ConfigurationFileTest
{
    Q_OBJECT

private slots:
    void init()
    {
        begin();
    }

    void missingFileYieldsThreeAndLeavesTheModel();
    void directoryYieldsTwoAndLeavesTheModel();
    void emptyFileIsAResetModel();
    void loadingAgainCountsErrorsAnew();

    void comments_data();
    void comments();
    void keysAreTakenWhereverTheyStand();
    void byteOrderMarkIsSkipped();
    void byteOrderMarkOfAnotherEncodingCounts();
    void textBehindANulIsLost();
    void fileOfLineFeedsIsOneLine();
    void nextLoadForgetsTheFormerFile();
    void wrongLinesAreToldOnRequest();
    void lineFeedsAreToldWhereTheyDoHarm();
    void whatIsToldIsNoneOfAFormerFile();
};

void tst_ConfigurationFileReading::missingFileYieldsThreeAndLeavesTheModel()
{
    model->setComment(s("mine"));
    model->findScript(0)->name = s("Fire");
    const QByteArray before = save(*model);
    QCOMPARE(model->loadFromFile(directory->filePath(s("missing.cfg"))), 3);
    QCOMPARE(model->errorCount(), 0);
    QCOMPARE(save(*model), before);
}

void tst_ConfigurationFileReading::directoryYieldsTwoAndLeavesTheModel()
{
    model->addGroup(s("Siren"), 5);
    const QByteArray before = save(*model);
    QCOMPARE(model->loadFromFile(directory->path()), 2);
    QCOMPARE(save(*model), before);
}

void tst_ConfigurationFileReading::emptyFileIsAResetModel()
{
    model->setComment(s("mine"));
    model->addGroup(s("Siren"), 5);
    model->findScript(0)->name = s("Fire");
    QCOMPARE(load({}), 0);
    QCOMPARE(model->errorCount(), 0);
    QCOMPARE(save(*model), save(RelayInfo()));
    QVERIFY(model->groups().constFirst()->connected);
}

void tst_ConfigurationFileReading::loadingAgainCountsErrorsAnew()
{
    QCOMPARE(load("x=1\r\ny=1\r\n"), 0);
    QCOMPARE(model->errorCount(), 2);
    QCOMPARE(load("x=1\r\n"), 0);
    QCOMPARE(model->errorCount(), 1);
    QCOMPARE(model->loadFromFile(directory->filePath(s("missing.cfg"))), 3);
    QCOMPARE(model->errorCount(), 0);
}

void tst_ConfigurationFileReading::comments_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("errors");
    QTest::addColumn<QString>("comment");
    QTest::addColumn<int>("mode"); // of script 0: shows whether its line was taken

    const QByteArray mode = "Script[0].Mode=1\r\n";
    QTest::newRow("one line") << "[Comment]\r\nHall\r\n[Scripts]\r\n" + mode << 0 << s("Hall\n") << 1;
    QTest::newRow("several lines, blank ones lost")
        << "[Comment]\r\n\r\nHall\r\n\r\nfloor 2\r\n\r\n[Scripts]\r\n" + mode << 0 << s("Hall\nfloor 2\n") << 1;
    QTest::newRow("equal signs") << "[Comment]\r\na=b=c\r\n===\r\n[Scripts]\r\n" + mode << 0 << s("a=b=c\n===\n") << 1;
    QTest::newRow("without end") << "[Comment]\r\n" + mode << 0 << s("Script[0].Mode=1\n") << 0;
    QTest::newRow("ended by a line that contains a section")
        << "[Comment]\r\nsee [Scripts] below\r\n" + mode << 1 << QString() << 1;
    QTest::newRow("ended by a key that contains a section")
        << QByteArray("[Comment]\r\nScript[0].Mode=1 [Configuration]\r\nScript[0].Mode=1\r\n") << 1 << QString() << 1;
    QTest::newRow("again") << "[Comment]\r\na\r\n[Scripts]\r\n[Comment]\r\nb\r\n[Scripts]\r\n" + mode << 0
                           << s("a\nb\n") << 1;
    QTest::newRow("begun by a line that contains its section")
        << "Script[0].Name=[Comment]\r\n" + mode << 0 << s("Script[0].Mode=1\n") << 0;
    QTest::newRow("lone line feeds stay") << "[Comment]\r\na\nb\rc\r\n[Scripts]\r\n" + mode << 0 << s("a\nb\rc\n") << 1;
    QTest::newRow("blanks stay") << "[Comment]\r\n  a  \r\n[Scripts]\r\n" + mode << 0 << s("  a  \n") << 1;
}

void tst_ConfigurationFileReading::comments()
{
    QFETCH(QByteArray, text);
    model->setComment(s("former"));
    QCOMPARE(load(text), 0);
    QTEST(model->errorCount(), "errors");
    QTEST(model->comment(), "comment");
    QTEST(int(model->findScript(0)->mode->code), "mode");
}

void tst_ConfigurationFileReading::keysAreTakenWhereverTheyStand()
{
    QCOMPARE(load("Script[0].Mode=1\r\n[Configuration]\r\nScript[1].Mode=2\r\n[Scripts]\r\n"
                  "ExecutiveTerminal[0].Name=A\r\n"),
             0);
    QCOMPARE(model->errorCount(), 0);
    QCOMPARE(changes().join('|'), QByteArray("ExecutiveTerminal[0].Name=A|Script[0].Mode=1|Script[1].Mode=2"));
}

void tst_ConfigurationFileReading::byteOrderMarkIsSkipped()
{
    QCOMPARE(load("\xEF\xBB\xBFScript[0].Mode=1\r\n"), 0);
    QCOMPARE(model->errorCount(), 0);
    QCOMPARE(changes().join('|'), QByteArray("Script[0].Mode=1"));
    QCOMPARE(load("\xEF\xBB\xBF[Scripts]\r\n"), 0); // the mark would make it an unknown word
    QCOMPARE(model->errorCount(), 0);
}

void tst_ConfigurationFileReading::byteOrderMarkOfAnotherEncodingCounts()
{
    // What some editors call Unicode: each character with its NUL, which doesn't end the text.
    QByteArray text("\xFF\xFE");
    const QByteArray characters("[Scripts]\r\nScript[0].Mode=1\r\n");
    for (const char byte : characters) {
        text.append(byte).append('\0');
    }
    QCOMPARE(load(text), 0);
    QCOMPARE(model->errorCount(), 0);
    QCOMPARE(changes().join('|'), QByteArray("Script[0].Mode=1"));
}

void tst_ConfigurationFileReading::textBehindANulIsLost()
{
    QCOMPARE(load(QByteArray("Script[0].Mode=1\r\nScript[1].Mo") + '\0' + "de=1\r\nScript[2].Mode=1\r\n"), 0);
    QCOMPARE(model->errorCount(), 1); // the line that was cut
    QCOMPARE(changes().join('|'), QByteArray("Script[0].Mode=1"));
}

void tst_ConfigurationFileReading::fileOfLineFeedsIsOneLine()
{
    QCOMPARE(load("[Comment]\nHall\n[Configuration]\nNumberOfDevices=7\n[Scripts]\nScript[0].Mode=1\n"), 0);
    QCOMPARE(model->errorCount(), 0);
    QCOMPARE(save(*model), save(RelayInfo()));

    // Without a comment it is one key, whose value isn't a number.
    QCOMPARE(load("Script[0].Mode=1\nScript[1].Mode=1\n"), 0);
    QCOMPARE(model->errorCount(), 1);
}

void tst_ConfigurationFileReading::nextLoadForgetsTheFormerFile()
{
    QCOMPARE(load("[Comment]\r\nHall\r\n[Scripts]\r\nNumberOfDevices=3\r\nScript[0].Mode=1\r\n"), 0);
    QCOMPARE(load("Script[1].Mode=1\r\n"), 0);
    QCOMPARE(changes().join('|'), QByteArray("Script[1].Mode=1"));
    QVERIFY(model->comment().isEmpty());
}

void tst_ConfigurationFileReading::wrongLinesAreToldOnRequest()
{
    const QByteArray text =
        "[Scripts]\r\n\r\nScript[0].Mode=x\r\nScript[1].Mode=1\r\nScript[2].NumberChannels=1; 7; 8; y\r\n";
    QCOMPARE(load(text), 0);
    QCOMPARE(model->errorCount(), 4);
    const QByteArray loaded = save(*model);

    ConfigurationErrors errors;
    RelayInfo telling;
    QCOMPARE(telling.loadFromFile(directory->filePath(s("loaded.cfg")), &errors), 0);
    QCOMPARE(telling.errorCount(), 4);
    QCOMPARE(save(telling), loaded);
    QCOMPARE(errors.size(), 2);
    QCOMPARE(errors.at(0).line, 3);
    QCOMPARE(errors.at(0).text, s("Script[0].Mode=x"));
    QCOMPARE(errors.at(0).faults.size(), 1);
    QCOMPARE(errors.at(0).faults.at(0).kind, ConfigurationFault::NoNumber);
    QCOMPARE(errors.at(0).faults.at(0).part, s("x"));
    QCOMPARE(errors.at(1).line, 5);
    QCOMPARE(countOf(errors.at(1).faults), 3);
    QCOMPARE(errors.at(1).faults.size(), 2);
    QCOMPARE(errors.at(1).faults.at(0).kind, ConfigurationFault::PartOutOfRange);
    QCOMPARE(errors.at(1).faults.at(0).highest, 3);
    QCOMPARE(errors.at(1).faults.at(0).part, s("7"));
    QCOMPARE(errors.at(1).faults.at(0).count, 2);
    QCOMPARE(errors.at(1).faults.at(1).kind, ConfigurationFault::PartNoNumber);
}

void tst_ConfigurationFileReading::lineFeedsAreToldWhereTheyDoHarm()
{
    QCOMPARE(load("[Comment]\r\na\nb\r\n[Scripts]\nScript[0].Mode=1\r\n"), 0);
    ConfigurationErrors errors;
    QCOMPARE(model->loadFromFile(directory->filePath(s("loaded.cfg")), &errors), 0);
    QCOMPARE(model->errorCount(), 0);
    QCOMPARE(errors.size(), 1);
    QCOMPARE(errors.at(0).line, 4);
    QCOMPARE(errors.at(0).text, s("[Scripts]"));
    QCOMPARE(errors.at(0).faults.at(0).kind, ConfigurationFault::LinesEndedByLfOnly);
    QCOMPARE(countOf(errors.at(0).faults), 0);
}

void tst_ConfigurationFileReading::whatIsToldIsNoneOfAFormerFile()
{
    QCOMPARE(load("wrong\r\n"), 0);
    ConfigurationErrors errors;
    QCOMPARE(model->loadFromFile(directory->filePath(s("loaded.cfg")), &errors), 0);
    QCOMPARE(errors.size(), 1);
    QCOMPARE(model->loadFromFile(directory->filePath(s("missing.cfg")), &errors), 3);
    QVERIFY(errors.isEmpty());
}

QTEST_GUILESS_MAIN(tst_ConfigurationFileReading)
#include "tst_ConfigurationFileReading.moc"
