#include "simulator/UnitSimulator.h"

#include "simulator/UnitWorker.h"

#include <algorithm>

UnitSimulator::UnitSimulator(const UnitState& state, Place place, QObject* parent)
    : QObject(parent), worker(new UnitWorker(state))
{
    qRegisterMetaType<UnitRequest>();
    connect(worker, &UnitWorker::requestReceived, this, &UnitSimulator::requestReceived);
    connect(worker, &UnitWorker::pluggedInChanged, this, &UnitSimulator::pluggedInChanged);
    connect(worker, &UnitWorker::stateChanged, this, &UnitSimulator::stateChanged);
    if (place == OnOwnThread) {
        worker->moveToThread(&thread);
        connect(&thread, &QThread::finished, worker, &QObject::deleteLater);
        thread.setObjectName(QStringLiteral("simulated unit"));
        thread.start();
    }
}

UnitSimulator::~UnitSimulator()
{
    if (thread.isRunning()) {
        thread.quit();
        thread.wait();
    } else {
        delete worker;
    }
}

bool UnitSimulator::isValid() const
{
    return worker->line().isValid(); // settled in the constructor
}

QString UnitSimulator::errorString() const
{
    return worker->line().errorString();
}

QString UnitSimulator::portName() const
{
    return worker->line().portName();
}

UnitState UnitSimulator::state() const
{
    UnitState copy;
    onWorker([&] { copy = worker->unitState(); });
    return copy;
}

void UnitSimulator::setState(const UnitState& state)
{
    change([&state](UnitState& present) { present = state; });
}

void UnitSimulator::change(const std::function<void(UnitState&)>& edit)
{
    onWorker([&] { worker->edit(edit); });
}

void UnitSimulator::setPace(Pace pace, int thinkingTime)
{
    onWorker([&] { worker->setPace(pace, thinkingTime); });
}

void UnitSimulator::setFaults(const QVector<UnitFault>& faults, quint32 seed)
{
    onWorker([&] { worker->setFaults(faults, seed); });
}

QVector<UnitRequest> UnitSimulator::requests() const
{
    QVector<UnitRequest> copy;
    onWorker([&] {
        copy = worker->requestsSeen();
        copy.detach(); // on its thread, which writes on into what nobody shares any more
    });
    return copy;
}

int UnitSimulator::requestCount(int requestType) const
{
    const QVector<UnitRequest> all = requests();
    return int(std::count_if(all.begin(), all.end(), [requestType](const UnitRequest& request) {
        return requestType == 0 || request.requestType == requestType;
    }));
}

int UnitSimulator::bootRequestCount(int bootType) const
{
    const QVector<UnitRequest> all = requests();
    return int(std::count_if(all.begin(), all.end(),
                             [bootType](const UnitRequest& request) { return request.bootType == bootType; }));
}

void UnitSimulator::clearRequests()
{
    onWorker([&] { worker->forgetRequests(); });
}

void UnitSimulator::unplug()
{
    onWorker([&] { worker->unplug(); });
}

bool UnitSimulator::plugIn()
{
    bool done = false;
    onWorker([&] { done = worker->plugIn(); });
    return done;
}

bool UnitSimulator::isPluggedIn() const
{
    bool pluggedIn = false;
    onWorker([&] { pluggedIn = worker->line().isPluggedIn(); });
    return pluggedIn;
}

void UnitSimulator::sendRaw(const QByteArray& bytes)
{
    onWorker([&] { worker->sendRaw(bytes); });
}

void UnitSimulator::growLog(int interval, quint32 seed)
{
    onWorker([&] { worker->growLog(interval, seed); });
}

void UnitSimulator::onWorker(const std::function<void()>& call) const
{
    if (worker->thread() == QThread::currentThread()) {
        call();
    } else {
        QMetaObject::invokeMethod(worker, call, Qt::BlockingQueuedConnection);
    }
}
