#include "model/RelayInfo.h"
#include "model/modelShorthand.h"
#include "support/ModelInvariants.h"
#include "support/RandomModel.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>

#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

/// Runs a function in a child process and returns its result; -1 if the child came to another end.
template <typename Function>
int inChild(Function function)
{
    const pid_t child = fork();
    if (child == 0) {
        _exit(function());
    }
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// Makes root an ordinary user; root may read and write everything.
bool dropRights()
{
    constexpr uid_t nobody = 65534;
    return geteuid() != 0 || (setgid(nobody) == 0 && setuid(nobody) == 0);
}

} // namespace

/// The configuration file on a disk that fails, and files that nobody wrote with this program.
class tst_ConfigurationDisk : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void fullDiskLeavesTheOldFile();
    void aSaveThatIsKilledLeavesAWholeFile();
    void aFileWithoutRightsIsNotLoaded();
    void aFileWithoutRightsIsNotReplaced();
    void aDirectoryWithoutRightsIsLeftAlone();

    void aFileCutAtEveryByteIsSurvived();
    void binaryFilesAreSurvived();
    void everyLineOfRandomWordsIsSurvived();
    void largeFiles_data();
    void largeFiles();

private:
    std::unique_ptr<QTemporaryDir> directory;
    QString path;
};

void tst_ConfigurationDisk::init()
{
    directory = std::make_unique<QTemporaryDir>();
    QVERIFY(directory->isValid());
    path = directory->filePath(s("a.cfg"));
    QVERIFY(QFile::setPermissions(directory->path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                                         QFile::ReadOther | QFile::WriteOther | QFile::ExeOther));
}

void tst_ConfigurationDisk::fullDiskLeavesTheOldFile()
{
    RelayInfo model;
    model.setComment(s("old"));
    QCOMPARE(model.saveToFile(path), 0);
    const QByteArray old = contents(path);

    model.setComment(s("new"));
    for (const rlim_t limit : {rlim_t(0), rlim_t(1), rlim_t(1000), rlim_t(old.size() - 1)}) {
        QCOMPARE(inChild([&] {
                     // A file that may not grow is as good as a disk that is full.
                     const rlimit space = {limit, limit};
                     std::signal(SIGXFSZ, SIG_IGN);
                     return setrlimit(RLIMIT_FSIZE, &space) == 0 ? model.saveToFile(path) : 99;
                 }),
                 1);
        QCOMPARE(contents(path), old);
        QCOMPARE(QDir(directory->path()).entryList(QDir::Files), QStringList{s("a.cfg")});
    }
    QCOMPARE(inChild([&] { return model.saveToFile(path); }), 0);
    QVERIFY(contents(path) != old);
}

void tst_ConfigurationDisk::aSaveThatIsKilledLeavesAWholeFile()
{
    RelayInfo model;
    const QString comments[] = {QString(500000, QLatin1Char('a')), QString(600000, QLatin1Char('b'))};
    QByteArray texts[2];
    for (int i : {1, 0}) {
        model.setComment(comments[i]);
        QCOMPARE(model.saveToFile(path), 0);
        texts[i] = contents(path);
    }
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(model.saveToFile(path), 0);
    const auto duration = int(timer.elapsed());

    int news = 0;
    for (int attempt = 0; attempt < 40 || (news == 0 && attempt < 400); ++attempt) {
        const pid_t child = fork();
        if (child == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            for (int i = 1; i < 10000; ++i) {
                model.setComment(comments[i % 2]);
                model.saveToFile(path);
            }
            _exit(0);
        }
        // Where the save is caught doesn't matter: the old or the new file must stand there at each place.
        QTest::qSleep(1 + duration * (attempt % 20) / 8);
        QCOMPARE(kill(child, SIGKILL), 0);
        QCOMPARE(waitpid(child, nullptr, 0), child);
        const QByteArray text = contents(path);
        QVERIFY2(text == texts[0] || text == texts[1], qPrintable(s("%1 bytes").arg(text.size())));
        news += text == texts[1] ? 1 : 0;
    }
    QVERIFY(news > 0); // some saves got through, so the saves were really at work
}

void tst_ConfigurationDisk::aFileWithoutRightsIsNotLoaded()
{
    QVERIFY(write(path, "Script[0].Name=A\r\n"));
    QVERIFY(QFile::setPermissions(path, {}));
    RelayInfo model;
    model.findScript(0)->name = s("Mine");
    QCOMPARE(inChild([&] {
                 const bool untouched = dropRights() && model.loadFromFile(path) == 2 && model.errorCount() == 0 &&
                                        model.findScript(0)->name == s("Mine");
                 return untouched ? 0 : 1;
             }),
             0);
}

void tst_ConfigurationDisk::aFileWithoutRightsIsNotReplaced()
{
    QVERIFY(write(path, "old"));
    QVERIFY(QFile::setPermissions(path, QFile::ReadOwner));
    const RelayInfo model;
    QCOMPARE(inChild([&] { return dropRights() ? model.saveToFile(path) : 99; }), 1);
    QCOMPARE(contents(path), QByteArray("old"));
}

void tst_ConfigurationDisk::aDirectoryWithoutRightsIsLeftAlone()
{
    QVERIFY(write(path, "old"));
    QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther | QFile::WriteOther));
    QVERIFY(QFile::setPermissions(directory->path(),
                                  QFile::ReadOwner | QFile::ExeOwner | QFile::ReadOther | QFile::ExeOther));
    const RelayInfo model;
    QCOMPARE(inChild([&] { return dropRights() ? model.saveToFile(path) : 99; }), 1);
    QCOMPARE(contents(path), QByteArray("old"));
    QVERIFY(QFile::setPermissions(directory->path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

void tst_ConfigurationDisk::aFileCutAtEveryByteIsSurvived()
{
    RelayInfo model;
    RandomModel(7).fill(model);
    QCOMPARE(model.saveToFile(path), 0);
    const QByteArray whole = contents(path);
    const QByteArray head = whole.left(1200);
    const QByteArray tail = whole.right(1200);
    const QString cut = directory->filePath(s("cut.cfg"));
    for (const QByteArray& text : {head, tail}) {
        for (int length = 0; length <= text.size(); ++length) {
            QVERIFY(write(cut, text.left(length)));
            QCOMPARE(model.loadFromFile(cut), 0);
            QCOMPARE(brokenInvariant(model), QString());
        }
    }
    for (int length = 0; length < whole.size(); length += 401) {
        QVERIFY(write(cut, whole.left(length)));
        QCOMPARE(model.loadFromFile(cut), 0);
        QVERIFY(model.errorCount() < 60); // the last line, and the lines that a whole file has errors in as well
        QCOMPARE(brokenInvariant(model), QString());
    }
}

void tst_ConfigurationDisk::binaryFilesAreSurvived()
{
    RandomModel random(8);
    RelayInfo model;
    for (int i = 0; i < 300; ++i) {
        QByteArray bytes = random.bytes(random.below(3000));
        if (random.flag()) {
            bytes.replace('\0', "\r\n").replace('\1', '=').replace('\2', "Script[").replace('\3', "].Mode");
        }
        QVERIFY(write(path, bytes));
        QCOMPARE(model.loadFromFile(path), 0);
        QCOMPARE(brokenInvariant(model), QString());
    }
}

void tst_ConfigurationDisk::everyLineOfRandomWordsIsSurvived()
{
    const QList<QByteArray> words = {"ExecutiveTerminal[",
                                     "Script[",
                                     ".Output[",
                                     "]",
                                     "0",
                                     "1",
                                     "31",
                                     "99",
                                     "-1",
                                     ".Name",
                                     ".Address",
                                     ".Number",
                                     ".NumberOfOutputs",
                                     "=",
                                     "; ",
                                     "NONE",
                                     "OTHER",
                                     "NumberOfDevices",
                                     "\r\n",
                                     "\r\n",
                                     ".StartState",
                                     ".Mode",
                                     ".NumberChannels",
                                     ".Class",
                                     "4294967296",
                                     ".ActivatedScripts",
                                     "[Comment]",
                                     "[Scripts]",
                                     ".Filter",
                                     ".StateTerminal"};
    RandomModel random(9);
    RelayInfo model;
    for (int i = 0; i < 2000; ++i) {
        QByteArray text;
        for (int word = random.below(300); word > 0; --word) {
            text += words.at(random.below(words.size()));
        }
        QVERIFY(write(path, text));
        QCOMPARE(model.loadFromFile(path), 0);
        QCOMPARE(brokenInvariant(model), QString());
    }
}

void tst_ConfigurationDisk::largeFiles_data()
{
    QTest::addColumn<QByteArray>("part");
    QTest::addColumn<int>("megabytes");

    QTest::newRow("keys") << QByteArray("Script[3].Filter.Characteristic=7\r\n") << 50;
    QTest::newRow("keys in error") << QByteArray("ExecutiveTerminal[88].Output[9].ActivatedScripts=7; \r\n") << 10;
    QTest::newRow("comment") << QByteArray("[Comment]\r\na line of a comment\r\n") << 10;
    QTest::newRow("one long line") << QByteArray("Script[0].Mode ") << 10;
    QTest::newRow("one long list") << QByteArray("Script[0].Filter.DaysOfWeek=1; 2; 3; 99; x; ") << 10;
    QTest::newRow("lists of scripts") << QByteArray("ExecutiveTerminal[0].Output[0].ActivatedScripts=1; 2; 3; 99\r\n")
                                      << 10;
    QTest::newRow("one line of equal signs") << QByteArray("=") << 10;
    QTest::newRow("line ends") << QByteArray("\r\n") << 10;
    QTest::newRow("carriage returns") << QByteArray("\r") << 10;
    QTest::newRow("groups") << QByteArray("NumberOfDevices=65535\r\nNumberOfDevices=2\r\n") << 10;
    QTest::newRow("NULs") << QByteArray(1, '\0') << 10;
    QTest::newRow("broken UTF-8") << QByteArray("\xC3\xFF\xE0") << 10;
}

void tst_ConfigurationDisk::largeFiles()
{
    QFETCH(QByteArray, part);
    QFETCH(int, megabytes);
    QVERIFY(write(path, part.repeated(megabytes * 1000 * 1000 / part.size())));
    RelayInfo model;
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(model.loadFromFile(path), 0);
    QVERIFY2(timer.elapsed() < megabytes * 1000, qPrintable(s("%1 ms").arg(timer.elapsed())));
    QCOMPARE(brokenInvariant(model), QString());
}

QTEST_GUILESS_MAIN(tst_ConfigurationDisk)
#include "tst_ConfigurationDisk.moc"
