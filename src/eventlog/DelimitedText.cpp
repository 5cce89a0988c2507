#include "eventlog/DelimitedText.h"

#include "domain/saveWhole.h"

#include <QAbstractItemModel>

#include <algorithm>

namespace delimited
{

namespace
{

QString quoted(QString cell, QChar separator)
{
    const bool isPlain = std::none_of(cell.cbegin(), cell.cend(), [separator](QChar character) {
        return character == separator || character == QLatin1Char('"') || character == QLatin1Char('\n') ||
               character == QLatin1Char('\r');
    });
    if (isPlain) {
        return cell;
    }
    cell.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + cell + QLatin1Char('"');
}

} // namespace

QString text(const QAbstractItemModel& model, const QVector<int>& rows, const QVector<int>& columns, Form form)
{
    const QLatin1Char separator(form == Form::Tabs ? '\t' : ',');
    const QLatin1String lineEnd(form == Form::Tabs ? "\n" : "\r\n");
    QString result;
    const auto append = [&](int place, const QString& cell) {
        if (place > 0) {
            result += separator;
        }
        result += quoted(cell, separator);
    };
    for (int i = 0; i < columns.size(); ++i) {
        append(i, model.headerData(columns.at(i), Qt::Horizontal).toString());
    }
    result += lineEnd;
    for (const int row : rows) {
        for (int i = 0; i < columns.size(); ++i) {
            append(i, model.index(row, columns.at(i)).data().toString());
        }
        result += lineEnd;
    }
    return result;
}

QString save(const QString& text, const QString& fileName)
{
    return saveWhole(QByteArrayLiteral("\xEF\xBB\xBF") + text.toUtf8(), fileName);
}

} // namespace delimited
