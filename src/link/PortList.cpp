#include "link/PortList.h"

#include "link/Port.h"

#include <QSerialPortInfo>

#include <algorithm>
#include <chrono>
#include <utility>

namespace
{

QStringList namesOfSystem()
{
    QStringList names;
    const QList<QSerialPortInfo> infos = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo& info : infos) {
        names.append(info.portName());
    }
    return names;
}

} // namespace

PortList::PortList(Names portNames, Transmitter::BootParser bootParser, QObject* parent)
    : QObject(parent), names(portNames ? std::move(portNames) : namesOfSystem), parseBootAnswer(std::move(bootParser)),
      timer(this)
{
    connect(&timer, &QTimer::timeout, this, &PortList::update);
}

PortList::~PortList()
{
    for (Port* const port : std::as_const(list)) {
        port->stop();
    }
    qDeleteAll(list);
}

void PortList::start()
{
    timer.start(std::chrono::seconds(1));
    update();
}

void PortList::update()
{
    const QStringList present = names();
    for (const QString& name : present) {
        const bool known =
            std::any_of(list.cbegin(), list.cend(), [&name](const Port* port) { return port->name() == name; });
        if (!known) {
            add(name);
        }
    }
    emit updated();
}

void PortList::add(const QString& name)
{
    auto* const port = new Port(name, parseBootAnswer, this);
    list.append(port);
    emit added(port);
    port->start();
}

Port* PortList::portOf(const Transmitter* worker) const
{
    const auto found =
        std::find_if(list.cbegin(), list.cend(), [worker](const Port* port) { return port->worker() == worker; });
    return found != list.cend() ? *found : nullptr;
}

void PortList::keepOnly(const Port& port)
{
    timer.stop();
    for (Port* const other : std::as_const(list)) {
        if (other != &port) {
            other->stop();
        }
    }
}
