#pragma once

#include "link/message.h"

#include <deque>
#include <functional>
#include <optional>

/// The requests that wait for a Transmitter's line. The largest priority leaves first. Plain; one thread.
class RequestQueue
{
public:
    /// Whether a request has to go on waiting.
    using IsHeldBack = std::function<bool(const message&)>;

    bool isEmpty() const
    {
        return waiting.empty();
    }

    /// One that is equal to a waiting one is dropped.
    void add(const message& request);

    /// Takes out the first one that may go; nothing if there is none.
    std::optional<message> take(const IsHeldBack& isHeldBack);

private:
    std::deque<message> waiting; ///< a binary max-heap on the priority, as std::push_heap keeps it
};
