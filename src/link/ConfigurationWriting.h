#pragma once

#include "link/DeviceOperation.h"

#include <QByteArrayList>

/// Writes output records and then script records, one step each. A step that fails is counted.
class ConfigurationWriting : public DeviceOperation
{
    Q_OBJECT

public:
    using DeviceOperation::DeviceOperation;

    /// Writing without any script ends in silence after the last output: callers always supply scripts.
    void start(const QByteArrayList& outputs, const QByteArrayList& scripts);

    bool handles(int requestType) const override;
    void takeAnswer(const message& answer, bool failed) override;

signals:
    /// After the last script.
    void written();

private:
    /// Sends the next record; false if both queues are empty.
    bool sendNext();
    void finish();

    QByteArrayList writeConfigQueue;
    QByteArrayList writeScriptQueue;
    quint16 errorsConfig = 0;
    quint16 errorsScript = 0;
};
