#pragma once

#include "EventRecorder.h"
#include "InventedPorts.h"
#include "link/CoordinatorLink.h"

/// Answers the search of a port, so that its coordinator is found at this address.
inline void letFind(Port* port, quint8 address = 1, int baudrate = 57600)
{
    message broadcast = CoordinatorSearch::begin();
    broadcast.setBaudrate(baudrate);
    port->setState(StateSearching);
    port->takeAnswer(answers::good(broadcast));
    port->takeAnswer(searchAnswer(address, baudrate));
}

/// A link over ports that the test names, with everything that it tells, in order, one line each.
///
/// As long as the event loop doesn't run, nothing that a worker does reaches the link: a test that stays out of the
/// event loop is alone with it.
class LinkRecorder : public EventRecorder
{
public:
    struct Sent
    {
        Port* port;
        message request;
    };

    explicit LinkRecorder(QStringList portNames = {}, CoordinatorSeams seams = {},
                          Transmitter::BootParser parseBootAnswer = {})
        : names(std::move(portNames)), link(withPorts(std::move(seams)), std::move(parseBootAnswer))
    {
        connect(&link, &CoordinatorLink::portAdded, this, &LinkRecorder::recordPort);
        recordChoice();
        recordBusyState();
        recordResults();
        link.start();
    }

    Port* port(int index = 0) const
    {
        return link.ports().at(index);
    }

    const PortInfo& info(int index = 0) const
    {
        return port(index)->info();
    }

    StatePort state(int index = 0) const
    {
        return info(index).state;
    }

    /// Rate of the line, address, serial number and version of a port's coordinator; "-" where there is none.
    static QString identityOf(const Port& port)
    {
        const PortInfo& info = port.info();
        const QString rate = info.lineBaudrate ? QString::number(*info.lineBaudrate) : QStringLiteral("-");
        return info.coordinator ? QStringLiteral("%1 %2 %3 %4")
                                      .arg(rate)
                                      .arg(info.coordinator->address)
                                      .arg(info.coordinator->serial)
                                      .arg(info.coordinator->versionText())
                                : rate + QStringLiteral(" - - -");
    }

    QString identityOf(int index = 0) const
    {
        return identityOf(*port(index));
    }

    QStringList names; ///< may change at any time
    QVector<Sent> sent;
    bool isBusy = false;
    QString busyText;
    int busyMaximum = -1;
    int busySteps = -1;

private:
    CoordinatorSeams withPorts(CoordinatorSeams seams)
    {
        seams.portNames = [this] { return names; };
        return seams;
    }

    void recordPort(Port* added)
    {
        connect(added, &Port::initRequested, this,
                [this](Transmitter*, const QString& name) { events.append(QStringLiteral("init ") + name); });
        connect(added, &Port::openRequested, this,
                [this](Transmitter*, const QString& name) { events.append(QStringLiteral("open ") + name); });
        connect(added, &Port::closeRequested, this, [this] { events.append(QStringLiteral("close")); });
        connect(added, &Port::sendRequested, this,
                [this, added](Transmitter*, const message& request) { recordSent(added, request); });
    }

    void recordSent(Port* receiver, const message& request)
    {
        sent.append({receiver, request});
        events.append(QStringLiteral("send %1 at %2").arg(request.requestType()).arg(request.baudrate()));
    }

    void recordChoice()
    {
        using Link = CoordinatorLink;
        connect(&link, &Link::requestDropped, this, [this](const message& request) { recordSent(nullptr, request); });
        connect(&link, &Link::statusReported, this, [this](PortStatus status) {
            const Port& current = *link.currentPort();
            events.append(QStringLiteral("status %1 %2 ").arg(int(status)).arg(current.name()) + identityOf(current));
        });
        connect(&link, &Link::operationsEnabled, this, &LinkRecorder::recordEnabling);
    }

    void recordBusyState()
    {
        using Link = CoordinatorLink;
        connect(&link, &Link::busyBegun, this, [this](const QString& text, int minimum, int maximum) {
            busyText = text;
            busySteps = minimum;
            busyMaximum = maximum;
        });
        connect(&link, &Link::busyTextChanged, this, [this](const QString& text) { busyText = text; });
        connect(&link, &Link::busyMaximumChanged, this, [this](int maximum) { busyMaximum = maximum; });
        connect(&link, &Link::busyStepDone, this, [this] { ++busySteps; });
        connect(&link, &Link::busyShown, this, [this] { isBusy = true; });
        connect(&link, &Link::busyHidden, this, [this] { isBusy = false; });
    }

    void recordResults()
    {
        using Link = CoordinatorLink;
        connect(&link, &Link::outputsRead, this, &LinkRecorder::recordOutputs);
        connect(&link, &Link::scriptsRead, this, &LinkRecorder::recordScripts);
        connect(&link, &Link::logRead, this, &LinkRecorder::recordLog);
        connect(&link, &Link::logNotNecessary, this, &LinkRecorder::recordLogNotNecessary);
        connect(&link, &Link::terminalsFound, this, &LinkRecorder::recordTerminals);
        connect(&link, &Link::deviceTimeRead, this, &LinkRecorder::recordTime);
        connect(&link, &Link::resultReady, this, &LinkRecorder::recordResult);
        connect(&link, &Link::firmwareAnswered, this, &LinkRecorder::recordFirmware);
    }

public:
    CoordinatorLink link;
};
