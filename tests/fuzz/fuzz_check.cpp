// Any bytes as a configuration file that the tool's "check" looks through: what it tells of single lines adds up to
// what the window's loading counts, as lines and as JSON alike.

#include "fuzz/MemoryFile.h"
#include "fuzz/fuzz.h"
#include "fuzz/toolOutput.h"
#include "model/RelayInfo.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments)
{
    return fuzz::startTool(count, arguments);
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const MemoryFile file;
    static RelayInfo model;

    file.fill(fuzz::bytesOf(data, size));
    fuzz::demand(model.loadFromFile(file.path()) == RelayInfo::FileOk, QStringLiteral("the loading"));

    const fuzz::ToolOutput asJson = fuzz::runTool({QStringLiteral("--json"), QStringLiteral("check"), file.path()});
    const QJsonObject report = QJsonDocument::fromJson(asJson.results).object();
    const QJsonArray errors = report.value(QLatin1String("errors")).toArray();
    fuzz::demand(report.value(QLatin1String("count")).toInt(-1) == model.errorCount(),
                 QStringLiteral("the tool counts otherwise than the window"));
    int sum = 0;
    int lastLine = 0;
    for (const QJsonValue& value : errors) {
        const QJsonObject error = value.toObject();
        const int line = error.value(QLatin1String("line")).toInt();
        fuzz::demand(line >= lastLine && line > 0, QStringLiteral("lines out of order"));
        fuzz::demand(!error.value(QLatin1String("reason")).toString().isEmpty(), QStringLiteral("no reason"));
        sum += error.value(QLatin1String("count")).toInt();
        lastLine = line;
    }
    fuzz::demand(sum == model.errorCount(), QStringLiteral("the lines don't add up to the count"));
    const ExitCode expected = errors.isEmpty() ? ExitCode::Done : ExitCode::WithErrors;
    fuzz::demand(asJson.exitCode == expected, QStringLiteral("the exit code"));

    const fuzz::ToolOutput asLines = fuzz::runTool({QStringLiteral("check"), file.path()});
    fuzz::demand(asLines.exitCode == expected, QStringLiteral("another exit code without JSON"));
    fuzz::demand(asLines.results.count('\n') == errors.size(), QStringLiteral("not one line for each"));
    return 0;
}
