#include "link/ConfigurationWriting.h"

#include "link/message.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "texts/texts.h"

void ConfigurationWriting::start(const QByteArrayList& outputs, const QByteArrayList& scripts)
{
    writeConfigQueue = outputs;
    writeScriptQueue = scripts;
    errorsConfig = 0;
    errorsScript = 0;
    if (!hasPort()) {
        return;
    }
    emit begun(texts::busyWriting(), 0, writeConfigQueue.size() + writeScriptQueue.size());
    const bool sent = sendNext();
    emit shown();
    emit resultReady(texts::resultWriteStarted());
    if (!sent) {
        emit nothingSent();
    }
}

bool ConfigurationWriting::handles(int requestType) const
{
    return requestType == protocol_HUBN_NX_Q::Write_Config || requestType == protocol_HUBN_NX_Q::Write_Script;
}

void ConfigurationWriting::takeAnswer(const message& answer, bool failed)
{
    const bool isScript = answer.requestType() == protocol_HUBN_NX_Q::Write_Script;
    emit stepDone();
    if (failed) {
        ++(isScript ? errorsScript : errorsConfig);
    }
    if (!sendNext() && isScript) {
        finish();
    }
}

bool ConfigurationWriting::sendNext()
{
    if (!writeConfigQueue.isEmpty()) {
        emit requestReady(protocol_HUBN_NX_Q::requestWriteConfig(coordinator(), writeConfigQueue.takeFirst()));
        return true;
    }
    if (!writeScriptQueue.isEmpty()) {
        emit requestReady(protocol_HUBN_NX_Q::requestWriteScript(coordinator(), writeScriptQueue.takeFirst()));
        return true;
    }
    return false;
}

void ConfigurationWriting::finish()
{
    emit hidden();
    emit resultReady(outcome(texts::resultWriteOutputsOk(), texts::resultWriteOutputsErrors(), errorsConfig) +
                     QLatin1Char('\n') +
                     outcome(texts::resultWriteScriptsOk(), texts::resultWriteScriptsErrors(), errorsScript));
    errorsConfig = 0;
    errorsScript = 0;
    emit written();
}
