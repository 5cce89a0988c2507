#include "eventlog/LogTable.h"

#include "eventlog/EventOfTable.h"
#include "texts/texts.h"

#include <QLatin1String>
#include <QSqlField>
#include <QSqlRecord>
#include <QStringList>

#include <algorithm>
#include <charconv>
#include <iterator>

namespace logtable
{

namespace
{

constexpr QLatin1String comma(", ", 2);

// A value comes with its comma, one piece instead of two of some hundred thousand; the last of a row gives it back.

template <auto Field>
void number(const EventOfTable& row, QString& statement)
{
    char digits[12];
    char* end = std::to_chars(std::begin(digits), std::end(digits), quint32(row.*Field)).ptr;
    end = std::copy(comma.begin(), comma.end(), end);
    statement += QLatin1String(std::begin(digits), end);
}

template <auto Field>
void text(const EventOfTable& row, QString& statement)
{
    statement += QLatin1Char('\'');
    statement += row.*Field;
    statement += QLatin1String("', ");
}

QStringList namesOfColumns()
{
    QStringList names;
    for (const Column& column : columns()) {
        names.append(QLatin1String(column.name));
    }
    return names;
}

} // namespace

const QVector<Column>& columns()
{
    using Row = EventOfTable;
    static const QVector<Column> list = {
        {"NumberEvent", "INTEGER", &texts::columnNumber, &number<&Row::numberEvent>, hidden},
        {"SortDateTime", "INTEGER", &texts::columnSortDateTime, &number<&Row::sortDateTime>, hidden},
        {"DateInDays", "INTEGER", &texts::columnDateInDays, &number<&Row::dateInDays>, hidden},
        {"TimeInMinute", "INTEGER", &texts::columnTimeInMinutes, &number<&Row::timeInMinute>, hidden},
        {"Class", "INTEGER", &texts::columnClass, &number<&Row::classTerminal>, hidden},
        {"Version", "INTEGER", &texts::columnVersion, &number<&Row::version>, hidden},
        {"Type", "INTEGER", &texts::columnType, &number<&Row::type>, hidden},
        {"Characteristic", "INTEGER", &texts::columnCharacteristic, &number<&Row::characteristic>, hidden},
        {"AddressTerminal", "INTEGER", &texts::columnAddress, &number<&Row::addressTerminal>, hidden},
        {"NumberChannel", "INTEGER", &texts::columnChannel, &number<&Row::numberChannel>, hidden},
        {"CodeEvent", "INTEGER", &texts::columnCode, &number<&Row::codeEvent>, hidden},
        {"Date", "VARCHAR(20)", &texts::columnDate, &text<&Row::date>, 90},
        {"Time", "VARCHAR(20)", &texts::columnTime, &text<&Row::time>, 90},
        {"SignalLevel", "INTEGER", &texts::columnSignal, &number<&Row::signalLevel>, 72},
        {"NoiseLevel", "INTEGER", &texts::columnNoise, &number<&Row::noiseLevel>, 72},
        {"Event", "TEXT", &texts::columnEvent, &text<&Row::event>, 130},
        {"Source", "TEXT", &texts::columnSource, &text<&Row::source>, 143},
        {"Information", "TEXT", &texts::columnDetails, &text<&Row::information>, rest},
    };
    return list;
}

int columnOfDetails()
{
    static const auto place =
        std::find_if(columns().begin(), columns().end(), [](const Column& column) { return column.width == rest; });
    return int(place - columns().begin());
}

const QString& name()
{
    static const QString text = QStringLiteral("EventLogTable");
    return text;
}

QString createStatement()
{
    QStringList definitions;
    for (const Column& column : columns()) {
        definitions.append(QStringLiteral("%1 %2 NULL").arg(QLatin1String(column.name), QLatin1String(column.type)));
    }
    return QStringLiteral("CREATE TABLE %1 (%2 )").arg(name(), definitions.join(QLatin1Char(',')));
}

QString insertStatement(const QList<EventOfTable>& rows)
{
    QString statement = QStringLiteral("INSERT INTO %1 ( %2 ) VALUES ").arg(name(), namesOfColumns().join(comma));
    // A batch is half a megabyte of small pieces, which nothing should move while it grows.
    constexpr int lengthOfRow = 256;
    statement.reserve(statement.size() + rows.size() * lengthOfRow);
    for (const EventOfTable& row : rows) {
        statement += QLatin1Char('(');
        for (const Column& column : columns()) {
            column.write(row, statement);
        }
        statement.chop(comma.size());
        statement += QLatin1String("), ");
    }
    statement.chop(comma.size());
    return statement;
}

bool fits(const QSqlRecord& otherColumns)
{
    const QStringList names = namesOfColumns();
    bool same = otherColumns.count() >= names.size();
    for (int index = 0; index < otherColumns.count() && same; ++index) {
        const QSqlField column = otherColumns.field(index);
        const bool mayBeLeftOut = column.requiredStatus() != QSqlField::Required || !column.defaultValue().isNull();
        same = index < names.size() ? column.name().compare(names.at(index), Qt::CaseInsensitive) == 0 : mayBeLeftOut;
    }
    return same;
}

} // namespace logtable
