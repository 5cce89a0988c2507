#pragma once

#include "link/message.h"
#include "texts/texts.h"

#include <QByteArrayList>
#include <QObject>
#include <QStringList>

#include <algorithm>

/// What a link tells, or a form of it, in order, one line each, with the data that came with it. Whoever is to be
/// recorded is connected to the slots.
class EventRecorder : public QObject
{
public:
    /// The events since the last call.
    QStringList take()
    {
        QStringList taken;
        taken.swap(events);
        return taken;
    }

    int count(const QString& beginning) const
    {
        return int(std::count_if(events.cbegin(), events.cend(),
                                 [&beginning](const QString& event) { return event.startsWith(beginning); }));
    }

    bool has(const QString& beginning) const
    {
        return count(beginning) != 0;
    }

    void recordEnabling(bool enable)
    {
        events.append(QStringLiteral("enable %1").arg(enable));
    }

    void recordOutputs(const QByteArrayList& list)
    {
        outputs = list;
        events.append(QStringLiteral("outputs %1").arg(list.size()));
    }

    void recordScripts(const QByteArrayList& list)
    {
        scripts = list;
        events.append(QStringLiteral("scripts %1").arg(list.size()));
    }

    void recordLog(const QByteArrayList& list, bool end)
    {
        logRecords.append(list);
        events.append(QStringLiteral("log %1 %2").arg(list.size()).arg(end));
    }

    void recordLogNotNecessary()
    {
        events.append(QStringLiteral("log not necessary"));
    }

    void recordTerminals(const QByteArrayList& list)
    {
        terminals = list;
        events.append(QStringLiteral("terminals %1").arg(list.size()));
    }

    void recordTime(const QString& time, bool correct)
    {
        events.append(QStringLiteral("time %1 %2").arg(correct).arg(time));
    }

    void recordResult(const QString& result)
    {
        events.append(QStringLiteral("result ") + result);
    }

    void recordFirmware(const message& answer)
    {
        events.append(QStringLiteral("firmware %1 %2").arg(answer.requestType()).arg(answer.bootType()));
    }

    QStringList events;
    QByteArrayList outputs;
    QByteArrayList scripts;
    QByteArrayList logRecords;
    QByteArrayList terminals;
};

/// Events without the results, those that repeat each other told once.
inline QStringList stepsOf(const QStringList& events)
{
    QStringList steps;
    for (const QString& event : events) {
        if (!event.startsWith(QStringLiteral("result")) && (steps.isEmpty() || steps.constLast() != event)) {
            steps.append(event);
        }
    }
    return steps;
}

/// The steps from the search for terminals to the log, with what suitableAnswer() gives.
inline QStringList stepsOfTheChain()
{
    const auto send = [](int type) { return QStringLiteral("send %1 at 57600").arg(type); };
    return {send(12),
            send(13),
            send(14),
            send(15),
            send(16),
            send(19),
            QStringLiteral("terminals 2"),
            send(7),
            QStringLiteral("outputs 70"),
            send(8),
            QStringLiteral("scripts 32"),
            send(4),
            send(3),
            QStringLiteral("log 4 0"),
            send(3),
            QStringLiteral("log 1 1")};
}

inline QStringList resultsOfTheChain()
{
    const QString result = QStringLiteral("result ");
    return {result + texts::resultReadStarted(), result + texts::resultLogStarted(),
            result + texts::resultReadOutputsOk() + QLatin1Char('\n') + texts::resultReadScriptsOk(),
            result + texts::resultLogOk()};
}
