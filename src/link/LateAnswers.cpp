#include "link/LateAnswers.h"

#include "link/message.h"
#include "link/protocol_HUBN_NX_Q.h"

#include <algorithm>
#include <utility>

namespace
{

using P = protocol_HUBN_NX_Q;

// Fewer bytes than this are no whole answer, of a unit or of a bootloader.
constexpr int shortestAnswer = 5;

// No answer has more, every byte of it stuffed.
constexpr int longestAnswer = 300;

bool isOfSearch(const message& request)
{
    return request.requestType() == P::Search_Address || request.requestType() == P::Search_Broadcast;
}

bool isResend(const message& request)
{
    return request.attempts() < message::fullAttempts;
}

} // namespace

LateAnswers::LateAnswers(Parser parser) : parse(std::move(parser))
{
}

void LateAnswers::ended(const message& request, Moment sent)
{
    QByteArray received = request.rawAnswer();
    if (!received.isEmpty()) {
        isMute = false;
    }
    // A damaged answer has come; of one that broke off the rest may follow.
    if (received.size() < shortestAnswer) {
        if (!isOfSearch(request)) {
            owed.append({request.request(), sent + quiet});
        }
    } else if (!owed.isEmpty()) {
        // One of them was the answer to this send.
        settle(takeAnswers(received) - 1);
    }
}

void LateAnswers::heardStray(const QByteArray& bytes, Moment now)
{
    if (bytes.isEmpty()) {
        return;
    }
    heardForeign(now);
    if (!owed.isEmpty()) {
        stray.append(bytes);
        settle(takeAnswers(stray));
    }
}

void LateAnswers::heardForeign(Moment now)
{
    passTime(now);
    isMute = false;
    isWaitSilent = false;
    // A unit that answers one request after the other may be late with each of them.
    for (Owed& answer : owed) {
        answer.comesBefore = std::max(answer.comesBefore, now + quiet);
    }
    if (end) {
        end = now + quiet;
    }
}

bool LateAnswers::belongTo(const message& inFlight, Moment now)
{
    passTime(now);
    return isOfSearch(inFlight) || inFlight.requestType() == P::Check_Coordinator || !isOwedToOthers(inFlight);
}

bool LateAnswers::letsGo(const message& next, Moment now)
{
    passTime(now);
    if (isMute || isOfSearch(next) || !isOwedToOthers(next)) {
        return true;
    }
    if (!end) {
        isWaitSilent = true;
        end = std::max_element(owed.cbegin(), owed.cend(), [](const Owed& left, const Owed& right) {
                  return left.comesBefore < right.comesBefore;
              })->comesBefore;
    }
    return false;
}

void LateAnswers::forget()
{
    *this = LateAnswers(parse);
}

void LateAnswers::passTime(Moment now)
{
    if (end && *end <= now) {
        isMute = isWaitSilent;
        end.reset();
    }
    const auto isPast = [now](const Owed& answer) { return answer.comesBefore <= now; };
    owed.erase(std::remove_if(owed.begin(), owed.end(), isPast), owed.end());
    settle(0);
}

bool LateAnswers::isOwedToOthers(const message& request) const
{
    // A continuing question for the log has the same bytes each time, and another answer.
    const bool isSameQuestion = isResend(request) || P::isOfWatch(request);
    return std::any_of(owed.cbegin(), owed.cend(), [&request, isSameQuestion](const Owed& answer) {
        return !isSameQuestion || answer.request != request.request();
    });
}

int LateAnswers::takeAnswers(QByteArray& bytes) const
{
    int count = 0;
    QByteArray begin;
    for (const char byte : std::as_const(bytes)) {
        message candidate;
        candidate.setRawAnswer(begin.append(byte));
        if (parse(candidate).isValid()) {
            ++count;
            begin.clear();
        }
    }
    bytes = begin.right(longestAnswer);
    return count;
}

void LateAnswers::settle(int answers)
{
    owed.remove(0, qBound(0, answers, owed.size()));
    if (owed.isEmpty()) {
        end.reset();
        stray.clear();
    }
}
