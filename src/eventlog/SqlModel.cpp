#include "eventlog/SqlModel.h"

#include "eventlog/LogTable.h"

SqlModel::SqlModel() = default;

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

void SqlModel::forgetViews()
{
    const QModelIndexList indexes = persistentIndexList();
    for (const QModelIndex& index : indexes) {
        changePersistentIndex(index, QModelIndex());
    }
}
