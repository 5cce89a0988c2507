#include "eventlog/EventFields.h"

#include "domain/terminals.h"
#include "eventlog/LogTable.h"
#include "eventlog/dayZero.h"
#include "texts/texts.h"

#include <QAbstractItemModel>
#include <QDate>
#include <QLatin1String>
#include <QStringList>

#include <iterator>

namespace
{

using Text = QString (*)();

constexpr Text classes[terminalClasses] = {&texts::classSystem, &texts::classSensor, &texts::classExecutive,
                                           &texts::classInterface, &texts::classAnalog};

constexpr Text codes[] = {&texts::codePowerUp, &texts::codeChannel, &texts::codeStatus, &texts::codeMode};

struct Feature
{
    int bit;
    Text text;
};

constexpr Feature features[] = {
    {0x08, &texts::featureAlwaysConnected},
    {0x04, &texts::featureSound},
    {0x02, &texts::featureExternalPower},
    {0x01, &texts::featureReservePower},
};

QString hexadecimal(int value)
{
    return QStringLiteral("0x%1").arg(value, 2, 16, QLatin1Char('0'));
}

template <std::size_t Count>
QString wordOf(int value, const Text (&words)[Count])
{
    return value >= 0 && value < static_cast<int>(Count) ? words[value]() : texts::eventFieldUnknown();
}

QString meaningOfType(int value)
{
    QStringList words(hexadecimal(value));
    for (const Feature& feature : features) {
        if ((value & feature.bit) != 0) {
            words.append(feature.text());
        }
    }
    return words.join(QLatin1String(", "));
}

/// By the names of the columns: what isn't here says it all by its value.
struct Meaning
{
    const char* column;
    QString (*text)(int);
};

constexpr Meaning meanings[] = {
    {"SortDateTime", [](int) { return texts::eventFieldSorting(); }},
    {"DateInDays", [](int days) { return dayZero().addDays(days).toString(QStringLiteral("dd.MM.yyyy")); }},
    {"TimeInMinute", [](int) { return texts::eventFieldMinutes(); }},
    {"Class", [](int value) { return wordOf(value, classes); }},
    {"Type", &meaningOfType},
    {"Characteristic",
     [](int value) { return hexadecimal(value) + QLatin1String(", ") + texts::eventFieldChannels().arg(value >> 4); }},
    {"AddressTerminal", [](int value) { return value == 0 ? texts::eventFieldHeadUnit() : QString(); }},
    {"NumberChannel", [](int value) { return value == 0 ? texts::eventFieldNoChannel() : QString(); }},
    {"CodeEvent", [](int value) { return wordOf(value, codes); }},
};

QString meaningOf(const char* column, const QVariant& value)
{
    for (const Meaning& meaning : meanings) {
        if (qstrcmp(meaning.column, column) == 0) {
            bool isNumber = false;
            const int number = value.toInt(&isNumber);
            return isNumber ? meaning.text(number) : texts::eventFieldUnknown();
        }
    }
    return {};
}

} // namespace

QList<EventField> fieldsOfEvent(const QAbstractItemModel& log, int row)
{
    QList<EventField> fields;
    const QVector<logtable::Column>& columns = logtable::columns();
    for (int column = 0; column < columns.size(); ++column) {
        const QVariant value = log.index(row, column).data();
        fields.append({columns.at(column).heading(), value.toString(), meaningOf(columns.at(column).name, value)});
    }
    return fields;
}
