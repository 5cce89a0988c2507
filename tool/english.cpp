#include "tool/english.h"

namespace english
{

namespace
{

constexpr QChar isolateBegin(0x2068);
constexpr QChar isolateEnd(0x2069);

/// Marks that open or close a writing direction by themselves.
bool setsDirection(uint letter)
{
    return (letter >= 0x202A && letter <= 0x202E) || (letter >= 0x2066 && letter <= 0x2069);
}

bool runsLeft(uint letter)
{
    const QChar::Direction direction = QChar::direction(letter);
    return direction == QChar::DirR || direction == QChar::DirAL || direction == QChar::DirAN ||
           letter == 0x200F /* a mark that has no width */;
}

bool isUnprintable(uint letter)
{
    return QChar::category(letter) == QChar::Other_Control || QChar::isNonCharacter(letter);
}

} // namespace

QString tidied(const QString& userText)
{
    QString text;
    bool isMixed = false;
    const QVector<uint> letters = userText.toUcs4();
    for (const uint letter : letters) {
        if (isUnprintable(letter)) {
            text += QLatin1Char(' ');
        } else if (!setsDirection(letter)) {
            text += QString::fromUcs4(&letter, 1);
            isMixed = isMixed || runsLeft(letter);
        }
    }
    text = text.simplified();
    return isMixed ? isolateBegin + text + isolateEnd : text;
}

QString quoted(const QString& name)
{
    return QStringLiteral("\u201C%1\u201D").arg(tidied(name));
}

QString list(const QStringList& items, const QString& word)
{
    if (items.size() < 2) {
        return items.value(0);
    }
    const QStringList first = items.mid(0, items.size() - 1);
    return first.join(QStringLiteral(", ")) + QLatin1Char(' ') + word + QLatin1Char(' ') + items.last();
}

QStringList ranges(const QVector<int>& numbers)
{
    QStringList items;
    for (int i = 0; i < numbers.size();) {
        int last = i;
        while (last + 1 < numbers.size() && numbers.at(last + 1) == numbers.at(last) + 1) {
            ++last;
        }
        const int step = last - i < 2 ? 1 : last - i + 1;
        items.append(step == 1 ? QString::number(numbers.at(i))
                               : QStringLiteral("%1\u2013%2").arg(numbers.at(i)).arg(numbers.at(last)));
        i += step;
    }
    return items;
}

QString withArticle(const QString& noun)
{
    const bool hasVowel = !noun.isEmpty() && QStringLiteral("aeiou").contains(noun.at(0));
    return (hasVowel ? QStringLiteral("an ") : QStringLiteral("a ")) + noun;
}

QString capitalized(QString words)
{
    if (!words.isEmpty()) {
        words[0] = words.at(0).toUpper();
    }
    return words;
}

QString counted(int count, const QString& noun)
{
    return QStringLiteral("%1 %2%3").arg(QString::number(count), noun, count == 1 ? QString() : QStringLiteral("s"));
}

} // namespace english
