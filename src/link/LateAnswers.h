#pragma once

#include <QByteArray>
#include <QVector>

#include <chrono>
#include <functional>
#include <optional>

class message;

/// Keeps the answers of one request from being taken for those of another.
///
/// Nothing on the wire ties an answer to its request. A unit that is late is asked again, and then answers twice; if
/// the next step went out meanwhile, it would get an answer to the one before, and so would every step behind it. So
/// each send that met silence owes an answer until that answer has come or can't come any more, and while one is owed
/// nothing else goes out. What comes in the meantime is nobody's.
///
/// A unit that is altogether silent would make every step wait. After one whole wait without a byte the line counts as
/// mute, and steps follow each other as ever; only, the first bytes that come then may belong to any of them: they are
/// nobody's either, and the step is sent again after the next quiet.
///
/// The search for a coordinator, where silence is an answer, neither owes nor waits. The watch's question may go out
/// while only answers to the same question are owed, and takes whatever wakes up a mute line: that somebody is there
/// again is all that it asks, and the next tick asks anew.
///
/// A plain value without a clock of its own; belongs to one Transmitter and its thread.
class LateAnswers
{
public:
    using Clock = std::chrono::steady_clock;
    using Moment = Clock::time_point;
    /// Judges the bytes in a message's rawAnswer.
    using Parser = std::function<message(const message&)>;

    /// After that much silence nothing comes any more: what is late is so by 2 s at the most, and needs its time on the
    /// wire.
    static constexpr std::chrono::milliseconds quiet{2150};

    explicit LateAnswers(Parser parser);

    /// A request has ended that was written at that moment.
    void ended(const message& request, Moment sent);

    /// Bytes came while no request was in flight.
    void heardStray(const QByteArray& bytes, Moment now);

    /// Bytes came that don't belong to the request in flight. Whose answer they are can't be told, so all are still
    /// owed.
    void heardForeign(Moment now);

    /// Whether bytes that come now are the answer to the request in flight.
    bool belongTo(const message& inFlight, Moment now);

    /// Whether a request may go out. If not, a wait has begun, or goes on.
    bool letsGo(const message& next, Moment now);

    /// When the wait ends if nothing comes; none if nobody waits.
    std::optional<Moment> waitEnd() const
    {
        return end;
    }

    /// The line has gone, and whatever was on it.
    void forget();

private:
    struct Owed
    {
        QByteArray request;
        Moment comesBefore;
    };

    void passTime(Moment now);
    bool isOwedToOthers(const message& request) const;
    /// Takes the answers out of the bytes; the begin of one is left. Returns how many there were.
    int takeAnswers(QByteArray& bytes) const;
    void settle(int answers);

    Parser parse;
    QVector<Owed> owed; ///< in order of sending
    std::optional<Moment> end;
    bool isWaitSilent = true; ///< no byte has come since the wait began
    bool isMute = false;
    QByteArray stray; ///< the begin of an answer that is nobody's
};
