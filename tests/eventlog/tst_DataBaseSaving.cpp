#include "DataBaseTest.h"
#include "support/DebugLines.h"
#include "support/OrdinaryUser.h"

/// The log as it goes to a file.
class tst_DataBaseSaving : public DataBaseTest
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

    void saveCopiesTheOpenDatabase();
    void saveReplacesAFile();
    void saveWithoutNameWritesADebugLineOnly();
    void saveFails_data();
    void saveFails();
    void saveWhereNothingMayBeWrittenKeepsTheFormerFile();
    void saveOntoAFullDiskKeepsTheFormerFile();
    void saveOntoTheWorkingFileLeavesItAlone_data();
    void saveOntoTheWorkingFileLeavesItAlone();
    void saveOntoALinkReplacesTheLink();
    void savedFileReadsTheSameInTheShell();
};

// ---- Saving ------------------------------------------------------------------------------------------------------

void tst_DataBaseSaving::saveCopiesTheOpenDatabase()
{
    QVERIFY(connected() != nullptr);
    dataBase->sl_insertIntoTable(eventRows(2000));
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_MessageForForm);
    const QString target = path(QStringLiteral("100%1.db"));
    dataBase->sl_SaveDataBase(target);
    QCOMPARE(spy.size(), 2);
    QCOMPARE(spy.first().first().toString(), QStringLiteral("Saving log of events to file started \n") + target);
    QCOMPARE(spy.last().first().toString(),
             QStringLiteral("Saving log of events to file ") + target + QStringLiteral("\nSUCCESSFUL COMPLETE"));
    QCOMPARE(contentOf(target), contentOf(workingFile));
    QCOMPARE(shell(target, QStringLiteral("PRAGMA integrity_check")), QStringLiteral("ok"));
    QCOMPARE(shell(target, QStringLiteral("SELECT count(*) FROM EventLogTable")), QStringLiteral("2000"));
    QCOMPARE(QDir().entryList(QDir::Files), QStringList({QStringLiteral("100%1.db"), workingFile}));
}

void tst_DataBaseSaving::saveReplacesAFile()
{
    QVERIFY(connected() != nullptr);
    dataBase->sl_insertIntoTable(eventRows(2));
    const QString target = path(QStringLiteral("kept.db"));
    QVERIFY(write(target, QByteArray(1000000, 'x')));
    dataBase->sl_SaveDataBase(target);
    QCOMPARE(contentOf(target), contentOf(workingFile));
    QCOMPARE(QDir().entryList(QDir::Files), QStringList({QStringLiteral("kept.db"), workingFile}));
}

void tst_DataBaseSaving::saveWithoutNameWritesADebugLineOnly()
{
    QVERIFY(connected() != nullptr);
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_MessageForForm);
    const DebugLines debug;
    dataBase->sl_SaveDataBase(QString());
    QCOMPARE(spy.size(), 0);
    QCOMPARE(debug.lines(), QStringList(QStringLiteral("FILE NOT SELECTED")));
}

void tst_DataBaseSaving::saveFails_data()
{
    QTest::addColumn<QString>("target");
    QTest::newRow("in a directory that doesn't exist") << QStringLiteral("nowhere/kept.db");
    QTest::newRow("onto a directory") << QStringLiteral("directory.db");
    QTest::newRow("below a file") << QStringLiteral("file/kept.db");
    QTest::newRow("with a name that is too long") << QString(300, QLatin1Char('n'));
}

void tst_DataBaseSaving::saveFails()
{
    QFETCH(QString, target);
    QVERIFY(QDir().mkpath(QStringLiteral("directory.db/inner")));
    QVERIFY(write(QStringLiteral("file"), "x"));
    QVERIFY(connected() != nullptr);
    const QStringList before = QDir().entryList();
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_MessageForForm);
    dataBase->sl_SaveDataBase(target);
    QCOMPARE(spy.size(), 2);
    QCOMPARE(spy.last().first().toString(), QStringLiteral("ERROR saving log of events to file\n") + target);
    QCOMPARE(QDir().entryList(), before);
}

void tst_DataBaseSaving::saveWhereNothingMayBeWrittenKeepsTheFormerFile()
{
    QVERIFY(QDir().mkdir(QStringLiteral("locked")));
    const QString target = path(QStringLiteral("locked/kept.db"));
    QVERIFY(write(target, "what was saved before"));
    QVERIFY(QFile::setPermissions(path(QStringLiteral("locked")), forReaders));
    QVERIFY(QFile::setPermissions(directory->path(), forAll));
    const OrdinaryUser user;
    QVERIFY(user.isOrdinary);
    QVERIFY(connected() != nullptr);
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_MessageForForm);
    dataBase->sl_SaveDataBase(target);
    QCOMPARE(spy.last().first().toString(), QStringLiteral("ERROR saving log of events to file\n") + target);
    QCOMPARE(contentOf(target), QByteArray("what was saved before"));
    dataBase->sl_closeDataBase();
}

void tst_DataBaseSaving::saveOntoAFullDiskKeepsTheFormerFile()
{
    QVERIFY(connected() != nullptr);
    dataBase->sl_insertIntoTable(eventRows(2000));
    const QString target = path(QStringLiteral("kept.db"));
    QVERIFY(write(target, "what was saved before"));
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_MessageForForm);
    {
        const FullDisk disk(65536);
        dataBase->sl_SaveDataBase(target);
    }
    QCOMPARE(spy.last().first().toString(), QStringLiteral("ERROR saving log of events to file\n") + target);
    QCOMPARE(contentOf(target), QByteArray("what was saved before"));
    QCOMPARE(QDir().entryList(QDir::Files), QStringList({QStringLiteral("kept.db"), workingFile}));
}

void tst_DataBaseSaving::saveOntoTheWorkingFileLeavesItAlone_data()
{
    QTest::addColumn<QString>("target");
    QTest::newRow("by its name") << workingFile;
    QTest::newRow("by a relative path") << QStringLiteral("./inner/../Log.db");
    QTest::newRow("through a link to the directory") << QStringLiteral("inner/same/Log.db");
}

void tst_DataBaseSaving::saveOntoTheWorkingFileLeavesItAlone()
{
    QFETCH(QString, target);
    QVERIFY(QDir().mkdir(QStringLiteral("inner")));
    QVERIFY(QFile::link(directory->path(), path(QStringLiteral("inner/same"))));
    QVERIFY(connected() != nullptr);
    dataBase->sl_insertIntoTable(eventRows(3));
    const QSignalSpy spy(dataBase.get(), &DataBase::sig_MessageForForm);
    dataBase->sl_SaveDataBase(target);
    QCOMPARE(spy.last().first().toString(), QStringLiteral("ERROR saving log of events to file\n") + target);
    dataBase->sl_insertIntoTable(eventRows(4));
    QCOMPARE(shell(workingFile, QStringLiteral("SELECT count(*) FROM EventLogTable")), QStringLiteral("7"));
}

void tst_DataBaseSaving::saveOntoALinkReplacesTheLink()
{
    QVERIFY(connected() != nullptr);
    dataBase->sl_insertIntoTable(eventRows(3));
    const QString link = path(QStringLiteral("link.db"));
    QVERIFY(QFile::link(path(workingFile), link));
    dataBase->sl_SaveDataBase(link);
    QVERIFY(!QFileInfo(link).isSymLink());
    QCOMPARE(contentOf(link), contentOf(workingFile));
    QVERIFY(!contentOf(link).isEmpty());
}

void tst_DataBaseSaving::savedFileReadsTheSameInTheShell()
{
    const SqlModel* model = connected();
    dataBase->sl_insertIntoTable(eventRows(700));
    dataBase->sl_refreshModel();
    const QString target = path(QStringLiteral("kept.db"));
    dataBase->sl_SaveDataBase(target);
    QStringList rows;
    for (int row = 0; row < model->rowCount(); ++row) {
        QStringList fields;
        for (int column = 0; column < model->columnCount(); ++column) {
            fields.append(model->data(model->index(row, column)).toString());
        }
        rows.append(fields.join(QLatin1Char('|')));
    }
    QCOMPARE(rows.size(), 700);
    QCOMPARE(shell(target, QStringLiteral("SELECT * FROM EventLogTable")), rows.join(QLatin1Char('\n')));
}

QTEST_GUILESS_MAIN(tst_DataBaseSaving)

#include "tst_DataBaseSaving.moc"
