#pragma once

#include "eventlog/DataBase.h"
#include "eventlog/LogEvents.h"
#include "ui/log/LogView.h"

#include <QByteArrayList>
#include <QObject>
#include <QPointer>
#include <QQueue>
#include <QString>
#include <QThread>

#include <functional>

class Device;
class Dialogs;
class LogTools;
class QLabel;
class QTableView;
class QWidget;

/// The log side of the main window: starts readings of the unit's log, has the records decoded, moves the rows into the
/// database in batches, shows the table, has it filtered, and loads and saves logs as files.
///
/// The main window owns the one instance, for its whole life; GUI thread only. It owns the decoded events and the
/// database worker with its thread. The destructor waits for the thread, however long its last operation takes, and the
/// working file is gone after it.
///
/// The view has a model only while the worker leaves that model alone: it is detached before every request that changes
/// the model, and attached again with the answer.
///
/// It knows neither the window nor the coordinator form: the window joins the two, and has the names that begin with
/// sl_ and sig_ as well.
class LogTab : public QObject
{
    Q_OBJECT

public:
    /// None of the arguments is owned; the dialogs and the catalogue have to live as long as the tab. The window is the
    /// parent of message boxes and file dialogs.
    LogTab(QWidget* window, QTableView* tableView, QLabel* countLabel, const Device& devices, Dialogs& dialogs);
    ~LogTab() override;
    Q_DISABLE_COPY_MOVE(LogTab)

    /// Wires the database worker and starts its thread. Called once.
    void startDataBase();

    /// The worker, on its own thread.
    DataBase* database() const;

    void readLog();          ///< reads the unit's log whether it has changed or not
    void readLogIfChanged(); ///< reads it if its counter has moved since the last reading

    /// The reading ends with an error: if no row of it is left, the next one is forced. Comes before the last records.
    void expectMissingEvents();

    /// Closes the find bar, if it is open, and shows all rows. A reading and a loading do so by themselves.
    void endFinding();

signals:
    // To the coordinator form.
    void sig_ReadLogEvents();
    void forceReading(); ///< the next reading must not find the log unchanged
    void sig_HideFormWaiting();

    // To the database worker; the tab itself connects this one, and whoever owns the tab the others.
    void sig_filterTable(const QString& condition);
    void sig_insertDataToTable(const QList<EventOfTable>& rows);
    void sig_refreshTable();
    void sig_deleteDataFromTable();
    void sig_LoadOtherDB(const QString& fileName);
    void sig_SaveOtherDB(const QString& fileName);

    void newResult(const QString& text); ///< for the result line of the window

public slots:
    /// The worker has made the working file, or failed to.
    void sl_SettingModel(ErrorDataBase err, SqlModel* model);

    /// Gives the view a model and sets all its properties anew, the column widths included.
    void sl_SettingTableView(SqlModel* model);

    /// The rows of the model have been read anew: shows their count and the table.
    void sl_setStatusLog(int count, bool filter);

    /// The worker has chosen the rows that fit what the user looks for, or all rows again: shows them and their count.
    void sl_setStatusFilter(int count, bool filter);

    /// Records of one block of the unit's log; with end set, the last one, or the reading failed.
    void sl_ReceiveDataEvents(const QByteArrayList& data, bool end);

    /// The table is empty, or could not be emptied.
    void sl_DataIsDeleted(ErrorDataBase err);

    /// Sends the next batch; err is the outcome of the former one.
    void sl_InsertNextPartEvents(ErrorDataBase err);

    /// The unit's log has not changed: shows again what the table holds.
    void sl_RestoreLogEvent();

    void sl_LoadLogFromFile();
    void sl_SaveLogInFile();

    /// A saved log has been loaded, or could not be opened.
    void sl_SettingOtherModel(ErrorDataBase err, SqlModel* model, const QString& fileName);

private:
    /// Requests reach the worker in the order in which they are made, but one that changes the model waits for the end
    /// of the change before it: so the view is never given a model that is about to change.
    void inOrder(const std::function<void()>& request);
    void changeModel(const std::function<void()>& request);
    void beginModelChange(const std::function<void()>& request);
    void sendModelChange(const std::function<void()>& request);
    void endModelChange();

    void forgetFinding();
    void filter(const QString& condition);
    void filterAfterPainting();
    void sendFilter();

    void beginReading();
    void endReading(bool allIsLost);
    void detachLogView();
    void showDataBaseError(const QString& text);
    void stopWithFault(const QString& text);

    QWidget* dialogParent;
    LogView view;
    LogTools* tools;
    QPointer<QLabel> countRows;
    Dialogs& dialogs;
    LogEvents logEvents;
    QThread dataBaseThread;
    DataBase* dataBase;
    bool eventsAreMissing = false; ///< the reading ends with an error
    int batches = 0;               ///< that the reading has sent to the worker
    int modelChanges = 0;          ///< that have begun and not ended
    QQueue<std::function<void()>> waitingRequests;
    QString wantedCondition; ///< for the rows to show; empty for all
    QString sentCondition;   ///< that the worker has or is about to have
    bool filterWaits = false;
    int allRows = 0;
    QString countOfAll; ///< as the label tells it while nothing is filtered
};
