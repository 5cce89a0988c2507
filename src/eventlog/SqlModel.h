#pragma once

#include <QSqlTableModel>

/// The event table for the log view: all cells but the details are centred, and the row header shows the number that
/// the event was written with instead of its position.
///
/// DataBase creates it, on its thread, on the default connection, and owns it. All changes happen on that thread; a
/// view of the GUI thread may be attached only while no change is under way, with all rows fetched.
class SqlModel : public QSqlTableModel
{
    Q_OBJECT

public:
    SqlModel();

    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    /// Cuts what a detached view has left of its interest in the model (its last pressed or hovered cell), so that a
    /// later change on the database thread has nothing to tell the GUI thread. Called while no change is under way.
    void forgetViews();
};
