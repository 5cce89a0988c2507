// Any bytes as a saved log: it is shown or refused, all of its cells can be asked for, it takes the rows of a reading
// or says that it doesn't, and in the end there is an empty log again. The file itself is only read.

#include "eventlog/DataBase.h"
#include "fuzz/fuzz.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>

namespace
{

/// The worker on the fuzzer's own thread, with what it reports.
class Log
{
public:
    Log() : dataBase(directory.filePath(QStringLiteral("Log")))
    {
        QObject::connect(&dataBase, &DataBase::sig_ResultConnectDB, &dataBase,
                         [this](ErrorDataBase error, SqlModel* model) { taken(error, model, emptied); });
        QObject::connect(&dataBase, &DataBase::sig_ResultConnectOtherDB, &dataBase,
                         [this](ErrorDataBase error, SqlModel* model) { taken(error, model, shown); });
        QObject::connect(&dataBase, &DataBase::sig_ResultInsertIntoTable, &dataBase, [this] { ++inserted; });
        empty();
    }

    void look(const QByteArray& bytes);

private:
    struct Report
    {
        int count = 0;
        ErrorDataBase error = ErrorDataBaseNone;
    };

    void taken(ErrorDataBase error, SqlModel* model, Report& report)
    {
        ++report.count;
        report.error = error;
        table = model;
    }

    void askForCells() const;
    void readAnew();
    void empty();

    const QTemporaryDir directory;
    DataBase dataBase;
    SqlModel* table = nullptr;
    Report shown;
    Report emptied;
    int inserted = 0;
};

void Log::askForCells() const
{
    constexpr int mostRows = 200;
    for (int row = 0; row < std::min(mostRows, table->rowCount()); ++row) {
        for (int column = 0; column < table->columnCount(); ++column) {
            table->data(table->index(row, column));
        }
        table->headerData(row, Qt::Vertical, Qt::DisplayRole);
    }
}

/// What a reading of the unit's log does, with a filter before it.
void Log::readAnew()
{
    dataBase.sl_refreshModel();
    askForCells();
    dataBase.sl_filterModel(QStringLiteral("CodeEvent > 1"));
    askForCells();
    dataBase.sl_deleteDataFromTable();
    inserted = 0;
    dataBase.sl_insertIntoTable({EventOfTable(), EventOfTable()});
    fuzz::demand(inserted == 1, QStringLiteral("nothing is told of the rows"));
    dataBase.sl_refreshModel();
    askForCells();
}

void Log::empty()
{
    emptied = Report();
    dataBase.sl_connectToDataBase();
    fuzz::demand(emptied.count == 1 && emptied.error == ErrorDataBaseNone && table != nullptr && table->rowCount() == 0,
                 QStringLiteral("no empty log in the end"));
}

void Log::look(const QByteArray& bytes)
{
    const QString path = directory.filePath(QStringLiteral("saved.db"));
    QFile file(path);
    fuzz::demand(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(), QStringLiteral("the file"));
    file.close();
    shown = Report();
    emptied = Report();
    dataBase.sl_connectOtherDataBase(path);
    fuzz::demand(shown.count + emptied.count == 1, QStringLiteral("not one report"));
    if (shown.count == 1 && shown.error == ErrorDataBaseNone) {
        readAnew();
    }
    empty();
    fuzz::demand(file.open(QIODevice::ReadOnly) && file.readAll() == bytes, QStringLiteral("the file has changed"));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments)
{
    static const QCoreApplication application(*count, *arguments);
    fuzz::silenceDebugLines();
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static Log log;
    log.look(fuzz::bytesOf(data, size));
    return 0;
}
