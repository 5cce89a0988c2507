#include "link/RequestQueue.h"

#include <algorithm>
#include <utility>

namespace
{

bool hasSmallerPriority(const message& left, const message& right)
{
    return left.priority() < right.priority();
}

} // namespace

void RequestQueue::add(const message& request)
{
    if (std::find(waiting.cbegin(), waiting.cend(), request) == waiting.cend()) {
        waiting.push_back(request);
        std::push_heap(waiting.begin(), waiting.end(), hasSmallerPriority);
    }
}

std::optional<message> RequestQueue::take(const IsHeldBack& isHeldBack)
{
    if (waiting.empty()) {
        return {};
    }
    std::optional<message> taken;
    if (!isHeldBack(waiting.front())) {
        std::pop_heap(waiting.begin(), waiting.end(), hasSmallerPriority);
        taken = std::move(waiting.back());
        waiting.pop_back();
        return taken;
    }
    const auto held =
        std::partition(waiting.begin(), waiting.end(), [&](const message& request) { return !isHeldBack(request); });
    const auto next = std::max_element(waiting.begin(), held, hasSmallerPriority);
    if (next != held) {
        taken = std::move(*next);
        waiting.erase(next);
    }
    std::make_heap(waiting.begin(), waiting.end(), hasSmallerPriority);
    return taken;
}
