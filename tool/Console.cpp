#include "tool/Console.h"

#include <QCoreApplication>
#include <QJsonArray>

Console::Console(QIODevice& results, QIODevice& errors, bool live)
    : resultStream(&results), errorStream(&errors), isLive(live)
{
    resultStream.setCodec("UTF-8");
    errorStream.setCodec("UTF-8");
}

Console::~Console()
{
    endProgress();
}

void Console::setInput(QIODevice& input, bool isTyped)
{
    inputDevice = &input;
    isTypedInput = isTyped;
}

bool Console::isInputTyped() const
{
    return isTypedInput;
}

std::optional<QString> Console::readLine()
{
    const QByteArray line = inputDevice != nullptr ? inputDevice->readLine() : QByteArray();
    return line.isEmpty() ? std::nullopt : std::optional(QString::fromUtf8(line));
}

void Console::setQuiet(bool on)
{
    isQuiet = on;
}

void Console::setJson(bool on)
{
    hasJson = on;
}

bool Console::isJson() const
{
    return hasJson;
}

void Console::result(const QString& line)
{
    endProgress();
    resultStream << line << Qt::endl;
}

void Console::result(const QJsonDocument& document)
{
    resultDocument = document;
}

void Console::noteSoFar(const QJsonObject& facts)
{
    for (auto fact = facts.begin(); fact != facts.end(); ++fact) {
        soFar.insert(fact.key(), fact.value());
    }
}

void Console::finish(ExitCode exitCode)
{
    const bool hasFailed = exitCode != ExitCode::Done && !toldErrors.isEmpty();
    if (!hasJson || (!resultDocument && !hasFailed)) {
        return;
    }
    QJsonDocument document = resultDocument.value_or(QJsonDocument(soFar));
    if (hasFailed && document.isObject()) {
        QJsonObject object = document.object();
        object.insert(QStringLiteral("error"), toldErrors.takeLast());
        if (!resultDocument && !toldErrors.isEmpty()) {
            object.insert(QStringLiteral("errors"), QJsonArray::fromStringList(toldErrors));
        }
        document.setObject(object);
    }
    endProgress();
    resultStream << QString::fromUtf8(document.toJson()) << Qt::flush;
}

void Console::note(const QString& line)
{
    if (!isQuiet) {
        endProgress();
        errorStream << line << Qt::endl;
    }
}

void Console::error(const QString& line)
{
    endProgress();
    errorStream << QCoreApplication::applicationName() << ": " << line << Qt::endl;
    toldErrors.append(line);
}

bool Console::isWhole()
{
    resultStream.flush();
    return resultStream.status() == QTextStream::Ok;
}

void Console::progress(const QString& text, int value, int maximum)
{
    if (!isLive || isQuiet) {
        return;
    }
    const QString share = maximum > 0 ? QStringLiteral(" %1 %").arg(qMin(value, maximum) * 100 / maximum) : QString();
    const QString line = text + share;
    if (line != shownProgress) {
        errorStream << "\r\033[K" << line << Qt::flush;
        shownProgress = line;
    }
}

void Console::endProgress()
{
    if (!shownProgress.isEmpty()) {
        errorStream << "\r\033[K" << Qt::flush;
        shownProgress.clear();
    }
}
