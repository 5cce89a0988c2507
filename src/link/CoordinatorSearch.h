#pragma once

#include "domain/terminals.h"
#include "link/message.h"

#include <QString>

/// What a coordinator says of itself.
struct CoordinatorInfo
{
    quint8 address = noCoordinator;
    quint16 serial = 0;
    quint16 version = 0; ///< major part in the high byte

    QString versionText() const; ///< "6.02"

    /// From a good answer to a search by address or to a check.
    static CoordinatorInfo fromAnswer(const message& answer);
};

/// The search for a coordinator on one port: a broadcast at each rate of the sweep until any bytes come back, then
/// the addresses 1 to 8 at that rate until one answers well.
///
/// The position is carried by the request itself, so there is no state here: each answer gives the next request or the
/// verdict. No step is resent; an unanswered request is one step of the sweep. Any thread.
class CoordinatorSearch
{
public:
    enum class Verdict
    {
        Going,    ///< send `request`
        Found,    ///< the answer is the coordinator's; `coordinator` tells which
        Silent,   ///< no byte came at any rate
        Nameless, ///< something is on the line, but no address answered
    };

    struct Step
    {
        Verdict verdict = Verdict::Going;
        message request;
        CoordinatorInfo coordinator;
    };

    /// The request that a search begins with.
    static message begin();

    /// What follows from an answer to begin() or to a request given by this function.
    static Step next(const message& answer);

    /// The question whether a coordinator is still there.
    static message check(quint8 address, int baudrate);

    /// Whether an answer comes from a coordinator that is there.
    static bool isPresent(const message& answer);
};
