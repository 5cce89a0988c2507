#pragma once

#include "Answers.h"
#include "link/CoordinatorSearch.h"
#include "link/protocol_HUBN_NX_Q.h"

#include <QCoreApplication>

// Names of no ports: what the workers report of them waits for an event loop. Of this process alone, since opening a
// port takes a lock by its name.
inline const QString portA = QStringLiteral("no-such-port-a-%1").arg(QCoreApplication::applicationPid());
inline const QString portB = QStringLiteral("no-such-port-b-%1").arg(QCoreApplication::applicationPid());

// Serial number 4711, version 6.02.
inline const QByteArray identity = QByteArray::fromHex("67120206");

/// A good answer to the search by address.
inline message searchAnswer(quint8 address, int baudrate = 57600)
{
    message request = protocol_HUBN_NX_Q::requestCheckCoordinator(address);
    request.setAddress(address);
    request.setBaudrate(baudrate);
    return answers::good(request, identity, address);
}

/// An answer with data that suit any request of an operation: two terminals, and a log of five records.
inline message suitableAnswer(const message& request)
{
    QByteArray payload = QByteArray::fromHex("00");
    switch (request.requestType()) {
    case protocol_HUBN_NX_Q::Read_Info_Log:
        payload = QByteArray::fromHex("e8030500");
        break;
    case protocol_HUBN_NX_Q::Read_Log:
        payload = QByteArray(16 * (quint8(request.request().at(3)) == 0 ? 4 : 1), 'e');
        break;
    case protocol_HUBN_NX_Q::Busy_Channel_Execute:
        payload = QByteArray::fromHex("05");
        break;
    case protocol_HUBN_NX_Q::Terminal_Execute_Info:
        payload = request.request();
        break;
    default:
        break;
    }
    return answers::good(request, payload);
}
