#pragma once

#include <QObject>
#include <QString>

class QTableWidget;

/// Writes a line into a table as long as it has no rows, in the middle, over as many lines as it takes.
///
/// It is painted, and no part of what the table holds. Owned by the table; GUI thread only.
class EmptyTableText : public QObject
{
    Q_OBJECT

public:
    EmptyTableText(QTableWidget* emptyTable, QString line);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QTableWidget* table;
    QString text;
};
