#include "link/DeviceTime.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "tool/Console.h"
#include "tool/UnitSession.h"
#include "tool/commandList.h"

#include <QCommandLineParser>
#include <QDateTime>
#include <QEventLoop>
#include <QJsonDocument>

namespace
{

/// Between a clock that was just set and this PC's.
constexpr qint64 mostSecondsAfterSetting = 5;

QCommandLineOption setOption()
{
    return {QStringLiteral("set"), QStringLiteral("Set the clock to this PC's first.")};
}

ExitCode interrupted(Console& console, const QString& whatIsDone = {})
{
    console.error(QStringLiteral("interrupted") + whatIsDone);
    return ExitCode::Interrupted;
}

QString clockWasSet()
{
    return QStringLiteral("; the clock was set");
}

/// The answer to a question for the time, the last attempt's if none went well. Nothing if interrupted.
std::optional<message> askForTime(UnitSession& unit)
{
    message result;
    QEventLoop loop;
    QObject::connect(&unit.port(), &Port::answered, &loop, [&](const message& answer) {
        if (answer.requestType() != protocol_HUBN_NX_Q::Read_Time) {
            return;
        }
        result = answer;
        if (answer.isAnswered() || !answer.hasAttempts()) {
            loop.quit();
            return;
        }
        message again = answer;
        again.prepareRetry();
        unit.link().send(again);
    });
    message request = protocol_HUBN_NX_Q::requestDeviceTime(unit.link().currentAddress());
    request.setBaudrate(unit.link().currentBaudrate());
    unit.link().send(request);
    return unit.wait(loop) ? std::make_optional(result) : std::nullopt;
}

QString differenceText(qint64 seconds)
{
    if (seconds == 0) {
        return QStringLiteral("as this PC's");
    }
    const qint64 amount = qAbs(seconds);
    QString text = QStringLiteral("%1 s").arg(amount % 60);
    if (amount >= 60) {
        text.prepend(QStringLiteral("%1 min ").arg(amount / 60 % 60));
    }
    if (amount >= 3600) {
        text.prepend(QStringLiteral("%1 h ").arg(amount / 3600 % 24));
    }
    if (amount >= 86400) {
        text.prepend(QStringLiteral("%1 days ").arg(amount / 86400));
    }
    return text + (seconds > 0 ? QStringLiteral(" ahead of this PC") : QStringLiteral(" behind this PC"));
}

/// Done, or why the clock wasn't set, which has been told.
ExitCode setClock(UnitSession& unit, Console& console)
{
    bool isAccepted = false;
    QEventLoop loop;
    QObject::connect(&unit.link(), &CoordinatorLink::deviceTimeWritten, &loop, [&](bool accepted) {
        isAccepted = accepted;
        loop.quit();
    });
    unit.link().setDeviceTime();
    if (!unit.wait(loop)) {
        console.noteSoFar({{QStringLiteral("set"), isAccepted}});
        return interrupted(console, isAccepted ? clockWasSet()
                                               : QStringLiteral("; the unit has not said that it took the time"));
    }
    if (!isAccepted) {
        console.error(QStringLiteral("the unit did not take the time"));
        return ExitCode::WithErrors;
    }
    return ExitCode::Done;
}

ExitCode time(const QCommandLineParser& commandLine, const QStringList& /*arguments*/, Console& console)
{
    UnitSession unit(commandLine, console);
    if (const ExitCode found = unit.open(); found != ExitCode::Done) {
        return found;
    }
    if (commandLine.isSet(setOption())) {
        if (const ExitCode set = setClock(unit, console); set != ExitCode::Done) {
            return set;
        }
        console.noteSoFar({{QStringLiteral("set"), true}});
    }
    const std::optional<message> answer = askForTime(unit);
    if (!answer) {
        return interrupted(console, commandLine.isSet(setOption()) ? clockWasSet() : QString());
    }
    const QDateTime here = QDateTime::currentDateTime();
    const devicetime::Shown shown = devicetime::fromAnswer(*answer);
    if (!shown.correct) {
        console.error(answer->isErrorAnswer()
                          ? QStringLiteral("the unit doesn't tell its time: ") + UnitSession::reasonOf(*answer)
                          : QStringLiteral("the unit's time makes no sense: ") + shown.text);
        return ExitCode::WithErrors;
    }
    const QDateTime there = devicetime::valueOf(*answer);
    const qint64 difference = here.secsTo(there);
    if (!there.isValid()) {
        console.error(QStringLiteral("the unit's time makes no sense: ") + shown.text);
        return ExitCode::WithErrors;
    }
    if (console.isJson()) {
        QJsonObject object = unit.identity();
        object.insert(QStringLiteral("time"), there.toString(Qt::ISODate));
        object.insert(QStringLiteral("secondsAhead"), difference);
        console.result(QJsonDocument(object));
    } else {
        console.result(QStringLiteral("%1, %2").arg(shown.text, differenceText(difference)));
    }
    if (commandLine.isSet(setOption()) && qAbs(difference) > mostSecondsAfterSetting) {
        console.error(QStringLiteral("the unit took the time, but doesn't keep it"));
        return ExitCode::WithErrors;
    }
    return ExitCode::Done;
}

} // namespace

Command timeCommand()
{
    Command command;
    command.name = QStringLiteral("time");
    command.summary = QStringLiteral("Tells the unit's clock and how far it is from this PC's");
    command.example = QStringLiteral("hubn-tool time --set");
    command.options = {setOption()};
    command.run = time;
    return command;
}
