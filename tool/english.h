#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// Words for people: lists, numbers and names as they stand in a sentence.
namespace english
{

/// What a user typed, made fit for one line of print: control characters become blanks, runs of blanks one, and what
/// would turn the writing direction of its surroundings is contained or left out.
QString tidied(const QString& userText);

/// A name that a user typed, or a word of the catalogue, in quotation marks.
QString quoted(const QString& name);

/// "a", "a and b", "a, b and c"; with a word of its own instead of "and".
QString list(const QStringList& items, const QString& word = QStringLiteral("and"));

/// "3", "5-7" with an en dash, for numbers in ascending order. Two in a row stay apart: "3", "4".
QStringList ranges(const QVector<int>& numbers);

/// "a" or "an" in front of a noun.
QString withArticle(const QString& noun);

/// With a capital letter, for the begin of a sentence.
QString capitalized(QString words);

/// "1 page", "2 pages".
QString counted(int count, const QString& noun);

} // namespace english
