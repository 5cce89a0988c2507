#pragma once

#include "model/Device.h"
#include "support/ScriptedDialogs.h"
#include "ui/log/LogTab.h"

#include <QLabel>
#include <QTableView>
#include <QVBoxLayout>
#include <QWidget>

#include <atomic>
#include <memory>

/// A table view of which another thread may ask whether it has a model.
class WatchedTableView : public QTableView
{
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

/// The main window as far as the log is concerned: the widgets of the log tab, and what it hears of it.
class LogWindow : public QWidget
{
public:
    LogWindow() : view(new WatchedTableView(this)), countRows(new QLabel(this))
    {
        auto* layout = new QVBoxLayout(this);
        layout->addWidget(view);
        layout->addWidget(countRows);
        resize(1000, 700);
        tab = std::make_unique<LogTab>(this, view, countRows, devices, dialogs);
        connect(tab.get(), &LogTab::forceReading, this, [this] { ++forcedReadings; });
        const DataBase* const dataBase = tab->database();
        connect(tab.get(), &LogTab::sig_insertDataToTable, dataBase, &DataBase::sl_insertIntoTable);
        connect(tab.get(), &LogTab::sig_refreshTable, dataBase, &DataBase::sl_refreshModel);
        connect(tab.get(), &LogTab::sig_deleteDataFromTable, dataBase, &DataBase::sl_deleteDataFromTable);
        connect(tab.get(), &LogTab::sig_LoadOtherDB, dataBase, &DataBase::sl_connectOtherDataBase);
        connect(tab.get(), &LogTab::sig_SaveOtherDB, dataBase, &DataBase::sl_SaveDataBase);
        connect(tab.get(), &LogTab::newResult, this, [this](const QString& text) { results.append(text); });
    }
    ~LogWindow() override = default;
    Q_DISABLE_COPY_MOVE(LogWindow)

    WatchedTableView* view;
    QLabel* countRows;
    ScriptedDialogs dialogs;
    Device devices{[](const QString&, const QString&) {}};
    std::unique_ptr<LogTab> tab;
    QStringList results; ///< lines that went to the result line
    int forcedReadings = 0;
};
