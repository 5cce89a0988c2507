#include "model/ConfigurationFileTest.h"
#include "support/ModelInvariants.h"
#include "support/RandomModel.h"
#include "support/rounds.h"

/// What comes back of what was saved.
class tst_ConfigurationFileRoundTrips : public ConfigurationFileTest
{
    Q_OBJECT

private slots:
    void init()
    {
        begin();
    }

    void randomModelsComeBack();
    void loadingTwiceIsLoadingOnce();
    void nameWithEqualSignIsCut();
    void nameIsTrimmed();
    void emptyNameCountsAnError();
    void address65535CannotBeRead();
    void moreThanHundredGroupsOverwriteEachOther();
};

void tst_ConfigurationFileRoundTrips::randomModelsComeBack()
{
    for (quint32 seed = 0; seed < quint32(rounds(1000)); ++seed) {
        RelayInfo first;
        RandomModel::addTerminalTypes(first);
        RandomModel(seed).fill(first);
        const QByteArray text = save(first);

        // What the reader takes otherwise than it was written, by name.
        QByteArray expected = text;
        int errors = 0;
        // The comment's lines each get a line end, so that of the last line adds up to an empty line.
        expected.replace("\r\n\r\n[Configuration]", "\r\n\r\n\r\n[Configuration]");
        // The state "Not active" has no channel; the reader takes channel 1 for none.
        expected.replace(".NumberChannels=NONE", ".NumberChannels=0; ");
        // Days end at 30 and months at 11.
        for (const char* key : {".DayOfBegin=31", ".DayOfEnd=31", ".MonthOfBegin=12", ".MonthOfEnd=12"}) {
            errors += expected.count(key);
            expected.replace(key, QByteArray(key).replace(QByteArray(key).size() - 2, 2, "1"));
        }

        QCOMPARE(load(text), 0);
        QCOMPARE(model->errorCount(), errors);
        QCOMPARE(brokenInvariant(*model), QString());
        QVERIFY2(save(*model) == expected, qPrintable(s("seed %1").arg(seed)));
    }
}

void tst_ConfigurationFileRoundTrips::loadingTwiceIsLoadingOnce()
{
    for (quint32 seed = 0; seed < 50; ++seed) {
        RelayInfo first;
        RandomModel(seed).fill(first);
        QCOMPARE(load(save(first)), 0);
        const QByteArray once = save(*model);
        QCOMPARE(load(once), 0);
        QCOMPARE(model->errorCount(), 0);
        QCOMPARE(save(*model), once);
    }
}

void tst_ConfigurationFileRoundTrips::nameWithEqualSignIsCut()
{
    RelayInfo first;
    first.findScript(3)->name = s("a=b");
    QCOMPARE(load(save(first)), 0);
    QCOMPARE(model->errorCount(), 0);
    QCOMPARE(model->findScript(3)->name, s("a"));
}

void tst_ConfigurationFileRoundTrips::nameIsTrimmed()
{
    RelayInfo first;
    first.findScript(3)->name = s(" a b ");
    QCOMPARE(load(save(first)), 0);
    QCOMPARE(model->findScript(3)->name, s("a b"));
}

void tst_ConfigurationFileRoundTrips::emptyNameCountsAnError()
{
    RelayInfo first;
    first.findScript(3)->name.clear();
    QCOMPARE(load(save(first)), 0);
    QCOMPARE(model->errorCount(), 1);
    QCOMPARE(model->findScript(3)->name, s("Script"));
}

void tst_ConfigurationFileRoundTrips::address65535CannotBeRead()
{
    RelayInfo first;
    first.addGroup(s("Siren"), 65535);
    QCOMPARE(load(save(first)), 0);
    QCOMPARE(model->errorCount(), 1);
    QCOMPARE(int(model->groups().at(1)->address), 65535); // what a blank group has anyway
}

void tst_ConfigurationFileRoundTrips::moreThanHundredGroupsOverwriteEachOther()
{
    RelayInfo first;
    for (int address = 1; address <= 110; ++address) {
        first.addGroup(s("Terminal %1").arg(address), quint16(address));
    }
    QCOMPARE(load(save(first)), 0);
    QCOMPARE(model->groups().size(), 111);
    QCOMPARE(model->groups().at(10)->name, s("Terminal 109"));
    QCOMPARE(model->groups().at(11)->name, s("Terminal 110"));
    QVERIFY(model->groups().at(109)->name.isEmpty());
    QCOMPARE(brokenInvariant(*model), QString());
}

QTEST_GUILESS_MAIN(tst_ConfigurationFileRoundTrips)
#include "tst_ConfigurationFileRoundTrips.moc"
