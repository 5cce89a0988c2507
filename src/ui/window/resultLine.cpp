#include "ui/window/resultLine.h"

#include "texts/texts.h"

#include <algorithm>
#include <initializer_list>

namespace
{

bool hasText(const QString& line, const QString& text)
{
    return line.contains(text, Qt::CaseInsensitive);
}

bool hasAnyOf(const QString& line, std::initializer_list<QString> candidates)
{
    return std::any_of(candidates.begin(), candidates.end(), [&](const QString& text) { return hasText(line, text); });
}

} // namespace

std::optional<QString> nextResult(const QString& message, const QString& shown, bool& chainRunning)
{
    QString result = message;
    if (hasText(shown, texts::resultDefaultsStarted())) {
        if (hasText(message, texts::resultWriteStarted())) {
            return {};
        }
        if (hasText(message, texts::resultWriteOutputsOk()) && hasText(message, texts::resultWriteScriptsOk())) {
            result = texts::resultDefaultsOk();
        } else if (hasAnyOf(message, {texts::resultWriteOutputsErrors(), texts::resultWriteScriptsErrors()})) {
            result = texts::resultDefaultsError();
        }
    }
    if (chainRunning && hasAnyOf(result, {texts::resultLogError(), texts::resultLogErrors(), texts::resultLogOk()})) {
        chainRunning = false;
        return {};
    }
    return result;
}
