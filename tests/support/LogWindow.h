#pragma once

#include <atomic>
#include <memory>

#include <QLabel>
#include <QTableView>
#include <QVBoxLayout>
#include <QWidget>

#include "model/Device.h"
#include "support/ScriptedDialogs.h"
#include "ui/LogTab.h"

/// A table view of which another thread may ask whether it has a model.
class WatchedTableView : public QTableView
{
    Q_OBJECT

public:
    using QTableView::QTableView;

    void setModel(QAbstractItemModel* model) override
    {
        if (model != nullptr) {
            hasModel = true;
        }
        QTableView::setModel(model);
        hasModel = model != nullptr;
    }

    std::atomic<bool> hasModel = false;
};

/// The main window as far as the log is concerned: the widgets of the log tab, and the slots and signals by which the
/// database worker and the log tab know the window.
class LogWindow : public QWidget
{
    Q_OBJECT

public:
    LogWindow() : view(new WatchedTableView(this)), countRows(new QLabel(this))
    {
        auto* layout = new QVBoxLayout(this);
        layout->addWidget(view);
        layout->addWidget(countRows);
        resize(1000, 700);
        tab = std::make_unique<LogTab>(LogWidgets{this, view, countRows}, devices, dialogs);
        connect(tab.get(), &LogTab::forceReading, this, [this] { ++forcedReadings; });
    }
    ~LogWindow() override = default;
    Q_DISABLE_COPY_MOVE(LogWindow)

    void startDataBase()
    {
        tab->startDataBase(this);
    }

    WatchedTableView* view;
    QLabel* countRows;
    ScriptedDialogs dialogs;
    Device devices{[](const QString&, const QString&) {}};
    std::unique_ptr<LogTab> tab;
    QStringList results; ///< lines that went to the result line
    int forcedReadings = 0;

public slots:
    void sl_SettingModel(ErrorDataBase err, SqlModel* model)
    {
        tab->sl_SettingModel(err, model);
    }
    void sl_InsertNextPartEvents(ErrorDataBase err)
    {
        tab->sl_InsertNextPartEvents(err);
    }
    void sl_setStatusLog(int count, bool filter)
    {
        tab->sl_setStatusLog(count, filter);
    }
    void sl_DataIsDeleted(ErrorDataBase err)
    {
        tab->sl_DataIsDeleted(err);
    }
    void sl_SettingOtherModel(ErrorDataBase err, SqlModel* model, const QString& fileName)
    {
        tab->sl_SettingOtherModel(err, model, fileName);
    }
    void sl_ReceiveNewMessageAboutResult(const QString& mess)
    {
        results.append(mess);
    }

signals:
    void sig_ReadLogEvents();
    void sig_insertDataToTable(const QList<EventOfTable>& rows);
    void sig_refreshTable();
    void sig_deleteDataFromTable();
    void sig_LoadOtherDB(const QString& fileName);
    void sig_SaveOtherDB(const QString& fileName);
    void sig_HideFormWaiting();
};
