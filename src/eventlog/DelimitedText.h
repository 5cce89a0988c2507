#pragma once

#include <QString>
#include <QVector>

class QAbstractItemModel;

/// Cells of a table as text that spreadsheets take.
namespace delimited
{

enum class Form
{
    Tabs,  ///< for the clipboard: tabs between cells, a line feed behind a row
    Commas ///< for a file, by RFC 4180: commas between cells, carriage return and line feed behind a row
};

/// A line of headings and one for each row, with the columns in the given order. A cell that holds what separates cells
/// or rows, or a quotation mark, is quoted.
QString text(const QAbstractItemModel& model, const QVector<int>& rows, const QVector<int>& columns, Form form);

/// Writes a text as a file in UTF-8 with the mark by which spreadsheets tell it. The file is written whole or not at
/// all; one of that name stays as it was if it can't be. Returns what went wrong, nothing if all went well.
QString save(const QString& text, const QString& fileName);

} // namespace delimited
