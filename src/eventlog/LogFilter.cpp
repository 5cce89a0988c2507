#include "eventlog/LogFilter.h"

#include "eventlog/dayZero.h"
#include "texts/texts.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace
{

constexpr int greatestAddress = 255;

/// A column that is searched. Most texts can stand in a date or a time only where it is told in words: where the unit
/// gave none, which the numbers beside it say at a fraction of the cost.
struct SearchedColumn
{
    const char* name;
    const char* characters; ///< that it is made of, unless it is told in words
    const char* isInWords;
};

/// In this order since the first ones hold what is looked for most often.
constexpr SearchedColumn searchedColumns[] = {
    {"Event", nullptr, nullptr},
    {"Source", nullptr, nullptr},
    {"Information", nullptr, nullptr},
    {"Date", "0123456789.", "DateInDays = 0"},
    {"Time", "0123456789:", "TimeInMinute NOT BETWEEN 0 AND 611"}, // 23 * 24 + 59
};

/// The two columns that are read as one, for a text with a blank in it.
constexpr SearchedColumn dateAndTime = {"Date || ' ' || Time",
                                        "0123456789.: ", "(DateInDays = 0 OR TimeInMinute NOT BETWEEN 0 AND 611)"};

bool isMadeOf(const QString& text, const char* characters)
{
    const QLatin1String all(characters);
    return std::all_of(text.begin(), text.end(), [all](QChar character) { return all.contains(character); });
}

QString literal(QString text)
{
    return QLatin1Char('\'') + text.replace(QLatin1Char('\''), QLatin1String("''")) + QLatin1Char('\'');
}

QString alternatives(const QStringList& conditions)
{
    return QLatin1Char('(') + conditions.join(QLatin1String(" OR ")) + QLatin1Char(')');
}

/// LIKE takes the 26 letters of ASCII in either case. To look for an escape too costs it time with every cell.
QString likePattern(QString text)
{
    const int length = text.size();
    text.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    text.replace(QLatin1Char('%'), QLatin1String("\\%"));
    text.replace(QLatin1Char('_'), QLatin1String("\\_"));
    const QLatin1String escape(text.size() > length ? " ESCAPE '\\'" : "");
    return literal(QLatin1Char('%') + text + QLatin1Char('%')) + escape;
}

/// The pattern of a text with other letters, each as the set of its two cases. It takes longer than that of LIKE.
QString globPattern(const QString& text)
{
    QString pattern(QLatin1Char('*'));
    for (const QChar character : text) {
        const QChar lower = character.toLower();
        const QChar upper = character.toUpper();
        if (lower != upper) {
            pattern += QLatin1Char('[') + QString(lower) + upper + QLatin1Char(']');
        } else if (character == QLatin1Char('*') || character == QLatin1Char('?') || character == QLatin1Char('[')) {
            pattern += QLatin1Char('[') + QString(character) + QLatin1Char(']');
        } else {
            pattern += character;
        }
    }
    return literal(pattern + QLatin1Char('*'));
}

bool hasOtherLetters(const QString& text)
{
    return std::any_of(text.begin(), text.end(), [](QChar character) {
        return character.unicode() > 0x7F && character.toLower() != character.toUpper();
    });
}

QString conditionOfColumn(const SearchedColumn& searched, const QString& text)
{
    const QLatin1String column(searched.name);
    // A text of ASCII alone, as most are, holds no other letters: as many bytes as characters.
    QString condition =
        hasOtherLetters(text)
            ? QStringLiteral("length(CAST(%1 AS BLOB)) > length(%1) AND %1 GLOB ").arg(column) + globPattern(text)
            : column + QLatin1String(" LIKE ") + likePattern(text);
    if (searched.characters != nullptr && !isMadeOf(text, searched.characters)) {
        condition.prepend(QLatin1String(searched.isInWords) + QLatin1String(" AND "));
    }
    return condition;
}

/// One event begins with a Cyrillic letter that looks like the Latin one that the user types.
QString asItLooks(QString text)
{
    constexpr QChar cyrillicCapital(0x0421);
    constexpr QChar cyrillicSmall(0x0441);
    return text.replace(cyrillicCapital, QLatin1Char('C')).replace(cyrillicSmall, QLatin1Char('c'));
}

QString conditionOfText(const QString& text)
{
    QStringList conditions;
    for (const SearchedColumn& searched : searchedColumns) {
        conditions.append(conditionOfColumn(searched, text));
    }
    if (text.contains(QLatin1Char(' '))) {
        conditions.append(conditionOfColumn(dateAndTime, text));
    }
    if (asItLooks(texts::eventTerminalConnection()).contains(asItLooks(text), Qt::CaseInsensitive)) {
        conditions.append(QLatin1String("Event = ") + literal(texts::eventTerminalConnection()));
    }
    return alternatives(conditions);
}

QString conditionOfAddresses(const QList<AddressRange>& addresses)
{
    QStringList conditions;
    for (const AddressRange& range : addresses) {
        conditions.append(QStringLiteral("AddressTerminal BETWEEN %1 AND %2").arg(range.first).arg(range.second));
    }
    return alternatives(conditions);
}

QString conditionOfKinds(const QSet<EventKind>& kinds)
{
    QStringList conditions;
    for (const EventKind kind : kinds) {
        conditions.append(kind == EventKind::Other ? QStringLiteral("CodeEvent NOT BETWEEN 0 AND 3")
                                                   : QStringLiteral("CodeEvent = %1").arg(static_cast<int>(kind)));
    }
    return alternatives(conditions);
}

QString conditionOfDay(const QDate& day, const char* comparison)
{
    const qint64 days = dayZero().daysTo(day);
    return QStringLiteral("DateInDays %1 %2").arg(QLatin1String(comparison)).arg(days);
}

} // namespace

std::optional<QList<AddressRange>> addressRanges(const QString& text)
{
    static const QRegularExpression separators(QStringLiteral("[,;\\s]+"));
    static const QRegularExpression part(QStringLiteral("^(\\d{0,3})(-?)(\\d{0,3})$"));
    QString joined = text;
    joined.replace(QRegularExpression(QStringLiteral("\\s*-\\s*")), QStringLiteral("-"));
    QList<AddressRange> ranges;
    const QStringList words = joined.split(separators, Qt::SkipEmptyParts);
    for (const QString& word : words) {
        const QRegularExpressionMatch match = part.match(word);
        const QString first = match.captured(1);
        const QString last = match.captured(3);
        const bool isSpan = !match.captured(2).isEmpty();
        if (!match.hasMatch() || (first.isEmpty() && last.isEmpty()) || (!isSpan && !last.isEmpty())) {
            return std::nullopt;
        }
        const int begin = first.toInt();
        const int end = isSpan ? (last.isEmpty() ? greatestAddress : last.toInt()) : begin;
        ranges.append({std::min(begin, end), std::max(begin, end)}); // "5-3" is what "3-5" is
    }
    return ranges;
}

QString LogFilter::condition() const
{
    QStringList conditions;
    if (!text.isEmpty()) {
        conditions.append(conditionOfText(text));
    }
    if (!addresses.isEmpty()) {
        conditions.append(conditionOfAddresses(addresses));
    }
    if (!kinds.isEmpty()) {
        conditions.append(conditionOfKinds(kinds));
    }
    if (firstDay.isValid()) {
        conditions.append(conditionOfDay(firstDay, ">="));
    }
    if (lastDay.isValid()) {
        conditions.append(conditionOfDay(lastDay, "<="));
    }
    return conditions.join(QLatin1String(" AND "));
}
