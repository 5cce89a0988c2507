#pragma once

#include "eventlog/ErrorDataBase.h"
#include "eventlog/EventOfTable.h"
#include "eventlog/SqlModel.h"

#include <QList>
#include <QObject>
#include <QSqlDatabase>
#include <QString>

/// The event log in an SQLite file, and the worker that alone touches it.
///
/// The working file (base name and ".db", in the current directory) is scratch: sl_connectToDataBase() makes it anew,
/// sl_closeDataBase() removes it. A log is kept by copying the file out and shown again by copying such a file in.
///
/// The log tab owns the object, without a parent, and moves it to a thread of its own before the first slot runs. The
/// default connection and the model belong to that thread. All slots run there, one at a time; each reports by a signal
/// from that thread and shows nothing to the user. The model may be given a view only between the report of one
/// operation and the request of the next.
class DataBase : public QObject
{
    Q_OBJECT

public:
    explicit DataBase(const QString& baseName, QObject* parent = nullptr);
    ~DataBase() override; ///< to be run when the thread has ended

signals:
    void sig_FilterComplete(int rowCount, bool filter);
    void sig_RefreshComplete(int rowCount, bool filter);
    void sig_ResultConnectDB(ErrorDataBase error, SqlModel* model);
    void sig_ResultConnectOtherDB(ErrorDataBase error, SqlModel* model, const QString& fileName);
    void sig_ResultInsertIntoTable(ErrorDataBase error);
    void sig_ResultDeleteFromTable(ErrorDataBase error);
    void sig_MessageForForm(const QString& text);

public slots:
    /// Begins with an empty working file, whatever stood there. Reports by sig_ResultConnectDB.
    void sl_connectToDataBase();

    /// Writes the rows with one statement. The texts go in as they stand, so an apostrophe in one makes the whole batch
    /// fail. Reports by sig_ResultInsertIntoTable.
    void sl_insertIntoTable(const QList<EventOfTable>& data);

    /// Empties the table. Reports by sig_ResultDeleteFromTable.
    void sl_deleteDataFromTable();

    /// Closes the database and removes the working file.
    void sl_closeDataBase();

    /// Shows a saved log: its copy becomes the working file. A file that doesn't exist leaves everything as it is, with
    /// no signal. A file that is no log, by what it is or by the columns of its table, ends with an empty working file,
    /// a fresh model (sig_ResultConnectDB), a message and sig_RefreshComplete; else reports by
    /// sig_ResultConnectOtherDB, without any filter that the log before had. Columns behind those of a log do no harm.
    /// The named file is only read.
    void sl_connectOtherDataBase(const QString& otherFileName);

    /// Copies the working file as it stands to a target; a former file of that name goes only when the copy is whole.
    /// Reports by sig_MessageForForm.
    void sl_SaveDataBase(const QString& target);

    /// Sets the filter of the model and fetches all rows. Reports by sig_FilterComplete.
    void sl_filterModel(const QString& request);

    /// Reads the table anew, all rows of it. Reports by sig_RefreshComplete.
    void sl_refreshModel();

private:
    bool openWorkingFile();
    QString faultOfWorkingFile() const;
    void makeModel();
    void fetchAll();
    int rowCount() const;
    bool copyIn(const QString& source) const;
    bool copyOut(const QString& target) const;

    QSqlDatabase database;
    QString fileName;
    SqlModel* model = nullptr;
};
