#include "firmware/FirmwareLoad.h"

#include "domain/terminals.h"
#include "firmware/protocol_boot.h"
#include "link/protocol_HUBN_NX_Q.h"

namespace
{

bool hasSucceeded(const message& answer)
{
    const bool accepted =
        answer.answerCode() == protocol_boot::Accepted || answer.answerCode() == protocol_boot::AcceptedToo;
    return answer.isAnswered() && accepted;
}

bool carriesImage(const message& answer)
{
    return answer.bootType() == protocol_boot::ImageHead || answer.bootType() == protocol_boot::FullBlock ||
           answer.bootType() == protocol_boot::LastBlock;
}

FirmwareLoad::End failureOf(const message& answer)
{
    if (answer.portFailed()) {
        return FirmwareLoad::End::PortError;
    }
    if (answer.timedOut()) {
        return FirmwareLoad::End::NotResponding;
    }
    return answer.answerCode() == protocol_boot::WriteError ? FirmwareLoad::End::WriteError
                                                            : FirmwareLoad::End::ProgrammingError;
}

} // namespace

FirmwareLoad::FirmwareLoad(QObject* parent) : QObject(parent), protocol(new protocol_boot(this))
{
}

void FirmwareLoad::setImage(const QByteArray& image)
{
    protocol->setFirmware(image);
    steps = protocol->requestCount();
}

void FirmwareLoad::start(quint8 address, int baudrate)
{
    protocol->buildRequests();
    running = true;
    message enterBoot = protocol_HUBN_NX_Q::requestSwitchToBoot(address == noCoordinator ? quint8(0) : address);
    enterBoot.setBaudrate(baudrate);
    send(enterBoot);
}

void FirmwareLoad::abort()
{
    if (running) {
        finish(End::Aborted);
    }
}

void FirmwareLoad::takeAnswer(const message& answer)
{
    // After an abort and a new start the answer to a request of the former load may still be under way.
    if (!running || answer.requestType() != awaitedRequestType || answer.bootType() != awaitedBootType) {
        return;
    }
    if (answer.requestType() == protocol_HUBN_NX_Q::Switch_To_Boot) {
        // Whatever the answer: a unit that keeps silent may be in its bootloader already.
        send(protocol->takeNextRequest());
        return;
    }
    const bool succeeded = hasSucceeded(answer);
    if (!succeeded && answer.hasAttempts()) {
        message again = answer;
        again.prepareRetry();
        send(again);
    } else if (succeeded || !carriesImage(answer)) {
        // The commands around the image may go unanswered.
        finishStep();
    } else {
        finish(failureOf(answer));
    }
}

void FirmwareLoad::send(const message& request)
{
    awaitedRequestType = request.requestType();
    awaitedBootType = request.bootType();
    emit requestReady(request);
}

void FirmwareLoad::finishStep()
{
    emit stepDone();
    if (protocol->hasRequests()) {
        send(protocol->takeNextRequest());
    } else {
        finish(End::Completed);
    }
}

void FirmwareLoad::finish(End end)
{
    running = false;
    emit ended(end);
}
