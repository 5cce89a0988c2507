#include "link/CoordinatorSearch.h"

#include "link/protocol_HUBN_NX_Q.h"

#include <QtEndian>

namespace
{

constexpr quint8 firstAddress = 1;
constexpr quint8 lastAddress = 8;

// Third byte received, whatever stands before the frame.
constexpr int addressOffset = 2;

message broadcast(int baudrate)
{
    message request = protocol_HUBN_NX_Q::requestSearchCoordinator();
    request.setBaudrate(baudrate);
    return request;
}

message question(quint8 address, int baudrate)
{
    message request = protocol_HUBN_NX_Q::requestCheckCoordinator(address);
    request.setAddress(address);
    request.setBaudrate(baudrate);
    return request;
}

/// A number of two bytes, 0 if the payload doesn't hold both.
quint16 wordAt(const QByteArray& payload, int offset)
{
    return payload.size() >= offset + 2 ? qFromLittleEndian<quint16>(payload.constData() + offset) : quint16(0);
}

} // namespace

QString CoordinatorInfo::versionText() const
{
    return QStringLiteral("%1.%2").arg(version >> 8).arg(version & 0xFF, 2, 10, QLatin1Char('0'));
}

CoordinatorInfo CoordinatorInfo::fromAnswer(const message& answer)
{
    CoordinatorInfo info;
    info.address = quint8(answer.rawAnswer().at(addressOffset));
    info.serial = wordAt(answer.payload(), 0);
    info.version = wordAt(answer.payload(), 2);
    return info;
}

message CoordinatorSearch::begin()
{
    return broadcast(protocol_HUBN_NX_Q::nextBaudrate(0));
}

CoordinatorSearch::Step CoordinatorSearch::next(const message& answer)
{
    if (answer.requestType() == protocol_HUBN_NX_Q::Search_Broadcast) {
        // Any byte shows that somebody talks at this rate; what it says doesn't matter.
        if (!answer.rawAnswer().isEmpty()) {
            return {Verdict::Going, question(firstAddress, answer.baudrate()), {}};
        }
        const int baudrate = protocol_HUBN_NX_Q::nextBaudrate(answer.baudrate());
        return baudrate != 0 ? Step{Verdict::Going, broadcast(baudrate), {}} : Step{Verdict::Silent, {}, {}};
    }
    if (isPresent(answer)) {
        return {Verdict::Found, {}, CoordinatorInfo::fromAnswer(answer)};
    }
    if (answer.address() >= lastAddress) {
        return {Verdict::Nameless, {}, {}};
    }
    return {Verdict::Going, question(quint8(answer.address() + 1), answer.baudrate()), {}};
}

message CoordinatorSearch::check(quint8 address, int baudrate)
{
    message request = question(address, baudrate);
    request.setRequestType(protocol_HUBN_NX_Q::Check_Coordinator);
    return request;
}

bool CoordinatorSearch::isPresent(const message& answer)
{
    return !answer.isErrorAnswer() && answer.rawAnswer().size() > addressOffset;
}
