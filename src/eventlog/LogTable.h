#pragma once

#include <QList>
#include <QString>
#include <QVector>

struct EventOfTable;
class QSqlRecord;

/// The one table of a log, in the working file and in every saved one: its columns in their order, and what is made
/// from them. A column that is added to the list in LogTable.cpp is created, written, checked, named and shown.
namespace logtable
{

/// @name Widths that are no number of pixels
/// @{
constexpr int hidden = 0; ///< the view doesn't show the column
constexpr int rest = -1;  ///< what the others leave, for the one column of free text
/// @}

struct Column
{
    const char* name;
    const char* type; ///< in SQL
    QString (*heading)();
    void (*write)(const EventOfTable& row, QString& statement); ///< appends the row's value as SQL has it, and a comma
    int width;                                                  ///< in the view
};

const QVector<Column>& columns();

/// The column of the events' details, whose width is the rest.
int columnOfDetails();

const QString& name();
QString createStatement();

/// Writes all rows. Texts go in as they stand: the statement knows no escaping.
QString insertStatement(const QList<EventOfTable>& rows);

/// Whether a table of these columns can be shown and can take rows. Further columns behind those of a log do no harm,
/// if a row can be written without them.
bool fits(const QSqlRecord& otherColumns);

} // namespace logtable
