#pragma once

#include "eventlog/DataBase.h"
#include "eventlog/eventRows.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>

#include <sys/resource.h>

inline const QString workingFile = QStringLiteral("Log.db");

inline QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline bool write(const QString& path, const QByteArray& content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

inline QString outputOfShell(const QStringList& arguments)
{
    QProcess process;
    process.start(QStringLiteral("sqlite3"), arguments);
    if (!process.waitForFinished()) {
        return QStringLiteral("the sqlite3 shell can't be run");
    }
    return QString::fromUtf8(process.readAllStandardOutput() + process.readAllStandardError()).trimmed();
}

/// What the sqlite3 shell prints about a database file.
inline QString shell(const QString& path, const QString& statement)
{
    return outputOfShell({QStringLiteral("-readonly"), path, statement});
}

/// Changes a database file by the sqlite3 shell, which prints nothing if it can.
inline QString writingShell(const QString& path, const QString& statement)
{
    return outputOfShell({path, statement});
}

inline QString textWithoutTime(const QString& line)
{
    static const QRegularExpression time(QStringLiteral("^\\d\\d:\\d\\d:\\d\\d:\\d\\d\\d(?= )"));
    return time.match(line).hasMatch() ? line.mid(12) : QStringLiteral("no time: ") + line;
}

/// As long as it lives no file can grow beyond a size, as on a full disk.
class FullDisk
{
public:
    explicit FullDisk(rlim_t size)
    {
        former = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &limit);
        const rlimit small = {size, limit.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &limit);
        std::signal(SIGXFSZ, former);
    }
    Q_DISABLE_COPY_MOVE(FullDisk)

private:
    rlimit limit = {};
    void (*former)(int) = nullptr;
};

inline const QFile::Permissions forReaders(0x5555);
inline const QFile::Permissions forAll(0x7777);

/// A database in a working directory of its own. The worker runs on the test's own thread here, so that each slot has
/// ended when it returns. That it works on a thread of its own is shown with the log tab.
class DataBaseTest : public QObject
{
protected:
    std::unique_ptr<QTemporaryDir> directory; ///< the working directory of one test
    std::unique_ptr<DataBase> dataBase;

    void begin()
    {
        directory = std::make_unique<QTemporaryDir>();
        QVERIFY(directory->isValid());
        QVERIFY(QDir::setCurrent(directory->path()));
        dataBase = std::make_unique<DataBase>(QStringLiteral("Log"));
    }
    void end()
    {
        dataBase->sl_closeDataBase();
        dataBase.reset();
        QDir::setCurrent(QDir::tempPath());
        directory.reset();
    }

    QString path(const QString& name) const
    {
        return directory->filePath(name);
    }

    /// A saved log with the given rows, made by a worker of its own.
    QString savedLog(const QString& name, int rows)
    {
        dataBase.reset(); // the default connection serves one at a time
        {
            DataBase other(QStringLiteral("Other"));
            other.sl_connectToDataBase();
            if (rows > 0) {
                other.sl_insertIntoTable(eventRows(rows));
            }
            other.sl_SaveDataBase(path(name));
            other.sl_closeDataBase();
        }
        dataBase = std::make_unique<DataBase>(QStringLiteral("Log"));
        return path(name);
    }

    SqlModel* connected()
    {
        const QSignalSpy spy(dataBase.get(), &DataBase::sig_ResultConnectDB);
        dataBase->sl_connectToDataBase();
        return spy.value(0).value(1).value<SqlModel*>();
    }
};
