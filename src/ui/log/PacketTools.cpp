#include "ui/log/PacketTools.h"

#include "domain/saveWhole.h"
#include "eventlog/DelimitedText.h"
#include "texts/texts.h"
#include "ui/log/PacketLogger.h"
#include "widgets/Dialogs.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QItemSelectionModel>
#include <QMenu>
#include <QTableWidget>

#include <numeric>

PacketTools::PacketTools(QWidget* window, QTableWidget* packetTable, const PacketLogger& packetLogger,
                         Dialogs& fileDialogs)
    : QObject(window), dialogParent(window), table(packetTable), logger(packetLogger), dialogs(fileDialogs),
      copyAction(addAction(QStringLiteral("actionCopyPacket"), texts::packetsCopy(), &PacketTools::copyRow)),
      copyAllAction(addAction(QStringLiteral("actionCopyPackets"), texts::packetsCopyAll(), &PacketTools::copyAllRows)),
      saveAction(addAction(QStringLiteral("actionSavePackets"), texts::packetsSave(), &PacketTools::save))
{
    copyAction->setShortcut(QKeySequence::Copy);
    copyAction->setShortcutContext(Qt::WidgetShortcut);
    table->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(table, &QWidget::customContextMenuRequested, this, &PacketTools::showMenu);
}

QAction* PacketTools::addAction(const QString& name, const QString& text, void (PacketTools::*slot)())
{
    auto* const action = new QAction(text, table);
    action->setObjectName(name);
    connect(action, &QAction::triggered, this, slot);
    table->addAction(action);
    return action;
}

void PacketTools::showMenu(const QPoint& position)
{
    const bool hasRows = table->rowCount() > 0;
    copyAction->setEnabled(currentRow() >= 0);
    copyAllAction->setEnabled(hasRows);
    saveAction->setEnabled(hasRows);
    QMenu::exec({copyAction, copyAllAction, saveAction}, table->viewport()->mapToGlobal(position), nullptr, table);
    copyAction->setEnabled(true);
}

/// The selected row, -1 if there is none.
int PacketTools::currentRow() const
{
    const QModelIndexList rows = table->selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.first().row();
}

void PacketTools::copyRow()
{
    if (currentRow() >= 0) {
        copyRows({currentRow()});
    }
}

void PacketTools::copyAllRows()
{
    QVector<int> rows(table->rowCount());
    std::iota(rows.begin(), rows.end(), 0);
    copyRows(rows);
}

void PacketTools::copyRows(const QVector<int>& rows) const
{
    QApplication::clipboard()->setText(delimited::text(*table->model(), rows, {0, 1, 2, 3}, delimited::Form::Tabs));
}

void PacketTools::save()
{
    const QString fileName = dialogs.saveFileName(dialogParent, texts::packetsSaveCaption(), QStringLiteral("*.txt"));
    if (fileName.isEmpty()) {
        return;
    }
    const QString fault = saveWhole(packettext::fromPackets(logger.packets()).toUtf8(), fileName);
    emit newResult(fault.isEmpty() ? texts::packetsSaveOk().arg(fileName)
                                   : texts::packetsSaveError().arg(fileName, fault));
}
