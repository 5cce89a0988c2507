// Any text as packets in hexadecimal that the tool's "decode" puts into words: none is lost, and the words are the same
// as lines and as JSON.

#include "fuzz/fuzz.h"
#include "fuzz/mending.h"
#include "fuzz/toolOutput.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments)
{
    return fuzz::startTool(count, arguments);
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maximum, unsigned seed)
{
    return fuzz::mutateLines(data, size, maximum, seed);
}

namespace
{

/// What stands in lines of a packet's report: its bytes, and its words below them.
void demandSameWords(const QJsonArray& packets, const QStringList& lines)
{
    int line = 0;
    for (const QJsonValue& value : packets) {
        const QJsonObject packet = value.toObject();
        const QJsonArray words = packet.value(QLatin1String("words")).toArray();
        fuzz::demand(!words.isEmpty(), QStringLiteral("no words"));
        const QString bytes = packet.value(QLatin1String("bytes")).toString();
        fuzz::demand(lines.value(line).endsWith(bytes.isEmpty() ? QStringLiteral("-") : bytes),
                     QStringLiteral("other bytes without JSON"));
        ++line;
        for (const QJsonValue& word : words) {
            fuzz::demand(lines.value(line).trimmed() == word.toString().trimmed(),
                         QStringLiteral("other words without JSON"));
            ++line;
        }
        ++line; // an empty one keeps packets apart
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QStringList packets{QStringLiteral("decode"), QStringLiteral("--")};
    packets += QString::fromUtf8(fuzz::bytesOf(data, size)).remove(QChar::Null).split(QLatin1Char('\n'));
    const fuzz::ToolOutput asLines = fuzz::runTool(packets);
    const fuzz::ToolOutput asJson = fuzz::runTool(QStringList{QStringLiteral("--json")} + packets);
    const QJsonDocument report = QJsonDocument::fromJson(asJson.results);
    fuzz::demand(asJson.exitCode == asLines.exitCode, QStringLiteral("another exit code as JSON"));
    fuzz::demand(report.isArray() || asJson.exitCode == ExitCode::BadInput, QStringLiteral("no report"));
    if (report.isArray()) {
        demandSameWords(report.array(), QString::fromUtf8(asLines.results).split(QLatin1Char('\n')));
    }
    return 0;
}
