#pragma once

#include "link/DeviceOperation.h"
#include "link/message.h"

#include <QObject>
#include <QStringList>
#include <QVector>

/// Everything that an operation does, in order, one word or line each; requests as "send TYPE".
class OperationRecorder : public QObject
{
public:
    explicit OperationRecorder(DeviceOperation& operation)
    {
        connect(&operation, &DeviceOperation::requestReady, this, [this](const message& request) {
            events.append(QStringLiteral("send %1").arg(request.requestType()));
            requests.append(request);
        });
        connect(&operation, &DeviceOperation::begun, this, [this](const QString& text, int minimum, int maximum) {
            events.append(QStringLiteral("begun %1..%2 ").arg(minimum).arg(maximum) + text);
        });
        connect(&operation, &DeviceOperation::textChanged, this,
                [this](const QString& text) { events.append(QStringLiteral("text ") + text); });
        connect(&operation, &DeviceOperation::maximumChanged, this,
                [this](int maximum) { events.append(QStringLiteral("maximum %1").arg(maximum)); });
        connect(&operation, &DeviceOperation::stepDone, this, [this] { events.append(QStringLiteral("step")); });
        connect(&operation, &DeviceOperation::shown, this, [this] { events.append(QStringLiteral("shown")); });
        connect(&operation, &DeviceOperation::hidden, this, [this] { events.append(QStringLiteral("hidden")); });
        connect(&operation, &DeviceOperation::nothingSent, this,
                [this] { events.append(QStringLiteral("nothing sent")); });
        connect(&operation, &DeviceOperation::resultReady, this,
                [this](const QString& result) { events.append(QStringLiteral("result ") + result); });
    }

    /// The events since the last call.
    QStringList take()
    {
        QStringList taken;
        taken.swap(events);
        return taken;
    }

    QStringList events;
    QVector<message> requests;
};
