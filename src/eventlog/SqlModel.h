#pragma once

#include <QSqlTableModel>
#include <QVector>

#include <optional>

/// The event table for the log view: all cells but the details are centred, and the row header shows the number that
/// the event was written with instead of its position.
///
/// A filter on a table whose rows are all held already chooses among them and reads none anew: a whole log takes the
/// longer part of a second to read and is searched in a few hundredths.
///
/// DataBase creates it, on its thread, on the default connection, and owns it. All changes happen on that thread; a
/// view of the GUI thread may be attached only while no change is under way, with all rows fetched.
class SqlModel : public QSqlTableModel
{
    Q_OBJECT

public:
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;

    /// Shows the rows for which an SQL condition holds, all of them if it is empty. One that SQL doesn't understand
    /// shows none.
    void setFilter(const QString& condition) override;
    bool select() override;

    /// Cuts what a detached view has left of its interest in the model (its last pressed or hovered cell), so that a
    /// later change on the database thread has nothing to tell the GUI thread. Called while no change is under way.
    void forgetViews();

protected:
    QModelIndex indexInQuery(const QModelIndex& item) const override;

private:
    bool holdsTheTable() const;
    bool choose();
    std::optional<QVector<int>> chosenRows() const;
    int changesOfTheTable() const;

    bool isFiltering = false;
    std::optional<int> changesAtSelect;    ///< of the table, when all of it was asked for
    std::optional<QVector<int>> shownRows; ///< of those that are held; none means all
};
