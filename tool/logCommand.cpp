#include "domain/saveWhole.h"
#include "eventlog/DataBase.h"
#include "eventlog/DelimitedText.h"
#include "eventlog/LogEvents.h"
#include "eventlog/LogTable.h"
#include "model/Device.h"
#include "tool/Console.h"
#include "tool/OutputFile.h"
#include "tool/UnitSession.h"
#include "tool/commandList.h"

#include <QCommandLineParser>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <numeric>

namespace
{

/// What came of a reading of the log.
struct LogRead
{
    int announced = 0; ///< records, as the unit counts them
    int received = 0;
    QList<EventOfTable> rows;
    QString failure; ///< why it ended early; empty if it didn't
};

/// Nothing if interrupted.
std::optional<LogRead> readLog(UnitSession& unit)
{
    const Device catalogue({}, nullptr, Device::Files::ReadOnly);
    LogEvents events;
    events.setDevices(&catalogue);
    LogRead log;
    QEventLoop loop;
    CoordinatorLink& link = unit.link();
    QObject::connect(&link, &CoordinatorLink::logAnnounced, &loop, [&log](int records) { log.announced = records; });
    QObject::connect(&link, &CoordinatorLink::stepFailed, &loop,
                     [&log](const message& answer) { log.failure = UnitSession::reasonOf(answer); });
    QObject::connect(&link, &CoordinatorLink::logRead, &loop, [&](const QByteArrayList& records, bool end) {
        log.received += records.size();
        events.decodeEvents(records);
        if (end) {
            loop.quit();
        }
    });
    QObject::connect(&link, &CoordinatorLink::logNotNecessary, &loop, [&] {
        log.failure = QStringLiteral("the unit tells nothing of its log");
        loop.quit();
    });
    link.readLog();
    if (!unit.wait(loop)) {
        return {};
    }
    events.numberEvents();
    log.rows = events.takeEvents(std::numeric_limits<int>::max());
    return log;
}

/// The events in a database of their own, which goes with the object.
class Table
{
public:
    explicit Table(const QList<EventOfTable>& rows) : database(folder.filePath(QStringLiteral("log")))
    {
        QObject::connect(&database, &DataBase::sig_ResultConnectDB, &database,
                         [this](ErrorDataBase error, SqlModel* newModel) {
                             note(error);
                             model = newModel;
                         });
        QObject::connect(&database, &DataBase::sig_ResultInsertIntoTable, &database,
                         [this](ErrorDataBase error) { note(error); });
        database.sl_connectToDataBase();
        for (int first = 0; first < rows.size() && isWhole; first += rowsAtOnce) {
            database.sl_insertIntoTable(rows.mid(first, rowsAtOnce));
        }
        database.sl_refreshModel();
    }

    ~Table()
    {
        database.sl_closeDataBase();
    }

    Q_DISABLE_COPY_MOVE(Table)

    /// Saves the events in the form that the file's suffix names. Returns what went wrong.
    QString saveTo(const QString& path) const
    {
        if (!isWhole || model == nullptr) {
            return QStringLiteral("the events can't be kept in a database");
        }
        const QString suffix = QFileInfo(path).suffix().toLower();
        if (suffix == QLatin1String("csv")) {
            return delimited::save(csv(), path);
        }
        if (suffix == QLatin1String("json")) {
            return saveWhole(json(), path);
        }
        QFile file(folder.filePath(QStringLiteral("log.db")));
        return file.open(QIODevice::ReadOnly) ? saveWhole(file.readAll(), path) : file.errorString();
    }

private:
    static constexpr int rowsAtOnce = 2000;

    void note(ErrorDataBase error)
    {
        isWhole = isWhole && error == ErrorDataBaseNone;
    }

    QString csv() const
    {
        QVector<int> rows(model->rowCount());
        std::iota(rows.begin(), rows.end(), 0);
        QVector<int> shown;
        for (int column = 0; column < logtable::columns().size(); ++column) {
            if (logtable::columns().at(column).width != logtable::hidden) {
                shown.append(column);
            }
        }
        return delimited::text(*model, rows, shown, delimited::Form::Commas);
    }

    QByteArray json() const
    {
        QJsonArray events;
        for (int row = 0; row < model->rowCount(); ++row) {
            QJsonObject event;
            for (int column = 0; column < logtable::columns().size(); ++column) {
                event.insert(QString::fromLatin1(logtable::columns().at(column).name),
                             QJsonValue::fromVariant(model->index(row, column).data()));
            }
            events.append(event);
        }
        return QJsonDocument(events).toJson();
    }

    const QTemporaryDir folder;
    DataBase database;
    SqlModel* model = nullptr;
    bool isWhole = true;
};

ExitCode tell(const LogRead& log, const QString& path, const UnitSession& unit, Console& console)
{
    if (console.isJson()) {
        QJsonObject object = unit.identity();
        object.insert(QStringLiteral("file"), path);
        object.insert(QStringLiteral("announced"), log.announced);
        object.insert(QStringLiteral("received"), log.received);
        object.insert(QStringLiteral("rows"), log.rows.size());
        object.insert(QStringLiteral("failure"), log.failure);
        console.result(QJsonDocument(object));
    } else {
        console.result(path + QStringLiteral(": the unit announced %1 events, %2 came; %3 rows")
                                  .arg(log.announced)
                                  .arg(log.received)
                                  .arg(log.rows.size()));
    }
    if (log.received < log.announced) {
        console.error(QStringLiteral("%1 events are missing; read again").arg(log.announced - log.received));
        return ExitCode::WithErrors;
    }
    return ExitCode::Done;
}

ExitCode log(const QCommandLineParser& commandLine, const QStringList& arguments, Console& console)
{
    const QString& path = arguments.at(0);
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (!QStringList{QStringLiteral("db"), QStringLiteral("csv"), QStringLiteral("json")}.contains(suffix)) {
        console.error(QStringLiteral("%1: a log is kept in a file that ends in .db, .csv or .json").arg(path));
        return ExitCode::BadInput;
    }
    if (!mayWrite(path, commandLine, console)) {
        return ExitCode::Refused;
    }
    UnitSession unit(commandLine, console);
    if (const ExitCode found = unit.open(); found != ExitCode::Done) {
        return found;
    }
    const std::optional<LogRead> log = readLog(unit);
    if (!log) {
        console.noteSoFar({{QStringLiteral("blocks"), unit.stepsDone()}});
        console.error(QStringLiteral("interrupted after %1 blocks; ").arg(unit.stepsDone()) + path +
                      QStringLiteral(" was not written"));
        return ExitCode::Interrupted;
    }
    if (!log->failure.isEmpty()) {
        console.error(QStringLiteral("the reading ended early: ") + log->failure);
        if (log->rows.isEmpty()) {
            console.error(path + QStringLiteral(" was not written"));
            return ExitCode::WithErrors;
        }
    }
    if (const QString fault = Table(log->rows).saveTo(path); !fault.isEmpty()) {
        console.error(QStringLiteral("%1: %2").arg(path, fault));
        return ExitCode::Refused;
    }
    const ExitCode told = tell(*log, path, unit, console);
    return log->failure.isEmpty() ? told : ExitCode::WithErrors;
}

} // namespace

Command logCommand()
{
    Command command;
    command.name = QStringLiteral("log");
    command.arguments = QStringLiteral("FILE.db|.csv|.json");
    command.leastArguments = 1;
    command.mostArguments = 1;
    command.summary = QStringLiteral("Reads the event log of the unit into a file, decoded");
    command.example = QStringLiteral("hubn-tool log events.csv");
    command.options = {forceOption()};
    command.run = log;
    return command;
}
