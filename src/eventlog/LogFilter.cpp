#include "eventlog/LogFilter.h"

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

/// LIKE takes the 26 letters of ASCII in either case.
QString likePattern(QString text)
{
    text.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    text.replace(QLatin1Char('%'), QLatin1String("\\%"));
    text.replace(QLatin1Char('_'), QLatin1String("\\_"));
    return literal(QLatin1Char('%') + text + QLatin1Char('%')) + QLatin1String(" ESCAPE '\\'");
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

QString conditionOfText(const QString& text)
{
    const bool otherLetters = hasOtherLetters(text);
    const QString pattern = otherLetters ? globPattern(text) : likePattern(text);
    QStringList conditions;
    for (const SearchedColumn& searched : searchedColumns) {
        const QLatin1String column(searched.name);
        // A text of ASCII alone, as most are, holds no other letters: as many bytes as characters.
        QString condition =
            otherLetters ? QStringLiteral("length(CAST(%1 AS BLOB)) > length(%1) AND %1 GLOB ").arg(column) + pattern
                         : column + QLatin1String(" LIKE ") + pattern;
        if (searched.characters != nullptr && !isMadeOf(text, searched.characters)) {
            condition.prepend(QLatin1String(searched.isInWords) + QLatin1String(" AND "));
        }
        conditions.append(condition);
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
    const qint64 days = QDate(2000, 1, 1).daysTo(day);
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
        ranges.append({begin, end});
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
