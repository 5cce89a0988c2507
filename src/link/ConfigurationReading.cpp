#include "link/ConfigurationReading.h"

#include "link/message.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "texts/texts.h"

namespace
{

constexpr int lastHeadUnitOutput = 7;
constexpr int lastTerminalOutput = 1;
constexpr int lastTerminal = 31;
constexpr int lastScript = 31;
constexpr int stepCount = 102;

} // namespace

void ConfigurationReading::start()
{
    emit begun(QString(), 0, stepCount);
    readOutput(0, 0);
    emit shown();
    emit resultReady(texts::resultReadStarted());
    if (!hasPort()) {
        emit nothingSent();
    }
}

void ConfigurationReading::readOutput(quint8 address, quint8 number)
{
    if (!hasPort()) {
        return;
    }
    emit textChanged(texts::busyReadingOutputs());
    emit requestReady(protocol_HUBN_NX_Q::requestReadConfig(coordinator(), address, number));
}

void ConfigurationReading::readScript(quint8 number)
{
    if (!hasPort()) {
        return;
    }
    emit textChanged(texts::busyReadingScripts());
    emit requestReady(protocol_HUBN_NX_Q::requestReadScript(coordinator(), number));
}

bool ConfigurationReading::handles(int requestType) const
{
    return requestType == protocol_HUBN_NX_Q::Read_Config || requestType == protocol_HUBN_NX_Q::Read_Script;
}

void ConfigurationReading::takeAnswer(const message& answer, bool failed)
{
    if (answer.requestType() == protocol_HUBN_NX_Q::Read_Config) {
        answerReadConfig(answer, failed);
    } else {
        answerReadScript(answer, failed);
    }
}

void ConfigurationReading::answerReadConfig(const message& answer, bool failed)
{
    const quint8 address = answer.address();
    const quint8 number = answer.number();
    emit stepDone();
    if (address == 0 && number == 0) {
        readConfigList.clear();
        errorsConfig = 0;
    }
    if (failed) {
        ++errorsConfig;
    } else {
        readConfigList.append(QByteArray(1, char(address)) + char(number) + answer.payload());
    }
    if (number < (address == 0 ? lastHeadUnitOutput : lastTerminalOutput)) {
        readOutput(address, quint8(number + 1));
    } else if (address < lastTerminal) {
        readOutput(quint8(address + 1), 0);
    } else {
        emit outputsRead(readConfigList);
        readConfigList.clear();
        readScript(0);
    }
}

void ConfigurationReading::answerReadScript(const message& answer, bool failed)
{
    const quint8 number = answer.number();
    emit stepDone();
    if (number == 0) {
        readScriptList.clear();
        errorsScript = 0;
    }
    if (failed) {
        ++errorsScript;
    } else {
        readScriptList.append(char(number) + answer.payload());
    }
    if (number < lastScript) {
        readScript(quint8(number + 1));
        return;
    }
    emit scriptsRead(readScriptList);
    readScriptList.clear();
    emit resultReady(outcome(texts::resultReadOutputsOk(), texts::resultReadOutputsErrors(), errorsConfig) +
                     QLatin1Char('\n') +
                     outcome(texts::resultReadScriptsOk(), texts::resultReadScriptsErrors(), errorsScript));
    errorsConfig = 0;
    errorsScript = 0;
}
