#include "eventlog/SqlModel.h"

#include "eventlog/LogTable.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QThread>

QVariant SqlModel::data(const QModelIndex& index, int role) const
{
    if (role == Qt::TextAlignmentRole && index.column() != logtable::columnOfDetails()) {
        return int(Qt::AlignHCenter | Qt::AlignVCenter);
    }
    return QSqlTableModel::data(index, role);
}

QVariant SqlModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical && role == Qt::DisplayRole) {
        const QModelIndex number = index(section, 0);
        return number.model() != nullptr ? data(number) : QVariant();
    }
    return QSqlTableModel::headerData(section, orientation, role);
}

int SqlModel::rowCount(const QModelIndex& parent) const
{
    return shownRows && !parent.isValid() ? shownRows->size() : QSqlTableModel::rowCount(parent);
}

QModelIndex SqlModel::indexInQuery(const QModelIndex& item) const
{
    return QSqlTableModel::indexInQuery(shownRows ? createIndex(shownRows->value(item.row(), -1), item.column())
                                                  : item);
}

void SqlModel::setFilter(const QString& condition)
{
    Q_ASSERT(QThread::currentThread() == thread());
    isFiltering = true;
    QSqlTableModel::setFilter(condition); // which selects
    isFiltering = false;
}

bool SqlModel::select()
{
    Q_ASSERT(QThread::currentThread() == thread());
    beginResetModel();
    const bool chosen = isFiltering && holdsTheTable() && choose();
    bool good = chosen;
    if (!chosen) {
        shownRows.reset();
        good = QSqlTableModel::select();
        changesAtSelect.reset();
        if (good && filter().isEmpty()) {
            changesAtSelect = changesOfTheTable();
        }
    }
    endResetModel();
    return good;
}

/// Whether the rows of the last select() are the table as it stands.
bool SqlModel::holdsTheTable() const
{
    return changesAtSelect && *changesAtSelect == changesOfTheTable();
}

/// How many rows this connection has written or deleted since it was opened.
int SqlModel::changesOfTheTable() const
{
    QSqlQuery query(database());
    const bool known = query.exec(QStringLiteral("SELECT total_changes()")) && query.next();
    return known ? query.value(0).toInt() : -1;
}

bool SqlModel::choose()
{
    shownRows.reset();
    if (filter().isEmpty()) {
        return true;
    }
    while (canFetchMore()) {
        fetchMore();
    }
    shownRows = chosenRows();
    return shownRows.has_value();
}

/// Where the condition holds among the rows at hand; nothing if these aren't those of the table.
std::optional<QVector<int>> SqlModel::chosenRows() const
{
    // One digit for each row in a single text: to step through as many results takes as long as to find them. The
    // table is walked as select() has walked it.
    const QString digits = QStringLiteral("group_concat(CASE WHEN (%1) THEN '1' ELSE '0' END, '')").arg(filter());
    QSqlQuery query(database());
    query.setForwardOnly(true);
    if (!query.exec(QStringLiteral("SELECT %1 FROM %2 NOT INDEXED").arg(digits, tableName())) || !query.next()) {
        return QVector<int>(); // the rows stay at hand for the next filter
    }
    const QString marks = query.value(0).toString();
    if (marks.size() != QSqlTableModel::rowCount()) {
        return std::nullopt;
    }
    QVector<int> rows;
    for (int row = marks.indexOf(QLatin1Char('1')); row >= 0; row = marks.indexOf(QLatin1Char('1'), row + 1)) {
        rows.append(row);
    }
    return rows;
}

void SqlModel::forgetViews()
{
    const QModelIndexList indexes = persistentIndexList();
    for (const QModelIndex& index : indexes) {
        changePersistentIndex(index, QModelIndex());
    }
}
