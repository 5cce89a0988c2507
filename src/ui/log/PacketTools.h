#pragma once

#include <QObject>

class Dialogs;
class PacketLogger;
class QAction;
class QPoint;
class QTableWidget;
class QWidget;

/// What the user can hand on of the packets in the table, by keys and by the menu of a right click.
///
/// The main window owns the one instance. The table, the logger and the dialogs, which it doesn't own, have to live as
/// long. GUI thread only.
class PacketTools : public QObject
{
    Q_OBJECT

public:
    PacketTools(QWidget* window, QTableWidget* table, const PacketLogger& logger, Dialogs& dialogs);

signals:
    void newResult(const QString& text); ///< for the result line of the window

private:
    QAction* addAction(const QString& name, const QString& text, void (PacketTools::*slot)());
    void showMenu(const QPoint& position);
    int currentRow() const;
    void copyRow();
    void copyAllRows();
    void save();
    void copyRows(const QVector<int>& rows) const;

    QWidget* dialogParent;
    QTableWidget* table;
    const PacketLogger& logger;
    Dialogs& dialogs;
    QAction* copyAction;
    QAction* copyAllAction;
    QAction* saveAction;
};
