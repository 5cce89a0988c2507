#pragma once

#include "link/DeviceOperation.h"

#include <QByteArrayList>

/// Reads all outputs, 8 of the head unit and 2 of each address 1 to 31, and then all 32 scripts: 102 steps.
///
/// A step that fails is counted and leaves no element in its list. The busy state is left on at the end: whoever
/// takes the scripts knows whether something follows.
class ConfigurationReading : public DeviceOperation
{
    Q_OBJECT

public:
    using DeviceOperation::DeviceOperation;

    void start();
    void readOutput(quint8 address, quint8 number);
    void readScript(quint8 number);

    bool handles(int requestType) const override;
    void takeAnswer(const message& answer, bool failed) override;

signals:
    /// Address byte, number byte and record of each output.
    void outputsRead(const QByteArrayList& outputs);
    /// Number byte and record of each script.
    void scriptsRead(const QByteArrayList& scripts);

private:
    void answerReadConfig(const message& answer, bool failed);
    void answerReadScript(const message& answer, bool failed);

    QByteArrayList readConfigList;
    QByteArrayList readScriptList;
    quint16 errorsConfig = 0;
    quint16 errorsScript = 0;
};
