#include "domain/saveWhole.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

#include <sys/resource.h>

namespace
{

/// As long as it lives no file of this process can become larger, as on a disk that is full.
class NoMoreRoom
{
public:
    explicit NoMoreRoom(rlim_t bytes) : handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &before);
        rlimit limit = before;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~NoMoreRoom()
    {
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler);
    }
    Q_DISABLE_COPY_MOVE(NoMoreRoom)

private:
    rlimit before{};
    void (*handler)(int);
};

QByteArray contentOf(const QString& name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("none");
}

} // namespace

class tst_saveWhole : public QObject
{
    Q_OBJECT

private slots:
    void aFullDiskIsToldAndKeepsTheOldFile_data();
    void aFullDiskIsToldAndKeepsTheOldFile();
    void aFolderThatIsNotThereIsTold();
    void whatFitsTakesTheOldOnesPlace();
};

/// Small ones are written in another moment than large ones: when the file is closed.
void tst_saveWhole::aFullDiskIsToldAndKeepsTheOldFile_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {1, 100, 5000, 16383, 16384, 16385, 100000}) {
        QTest::addRow("%d bytes", size) << size;
    }
}

void tst_saveWhole::aFullDiskIsToldAndKeepsTheOldFile()
{
    QFETCH(const int, size);
    const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("site.cfg"));
    QCOMPARE(saveWhole("old", name), QString());
    QString fault;
    {
        const NoMoreRoom disk(rlim_t(size / 2));
        fault = saveWhole(QByteArray(size, 'n'), name);
    }
    QVERIFY(!fault.isEmpty());
    QCOMPARE(contentOf(name), QByteArray("old"));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList(QStringLiteral("site.cfg")));
}

void tst_saveWhole::aFolderThatIsNotThereIsTold()
{
    const QTemporaryDir folder;
    QVERIFY(!saveWhole("new", folder.filePath(QStringLiteral("none/site.cfg"))).isEmpty());
}

void tst_saveWhole::whatFitsTakesTheOldOnesPlace()
{
    const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("site.cfg"));
    QCOMPARE(saveWhole("old and longer", name), QString());
    QCOMPARE(saveWhole("new", name), QString());
    QCOMPARE(contentOf(name), QByteArray("new"));
}

QTEST_GUILESS_MAIN(tst_saveWhole)
#include "tst_saveWhole.moc"
