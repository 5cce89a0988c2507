#include "model/StateFamily.h"

#include <algorithm>
#include <iterator>

namespace scriptRules
{

namespace
{

template <typename Fits>
const StateFamily* firstFamily(Fits fits)
{
    const auto* const found = std::find_if(std::begin(stateFamilies), std::end(stateFamilies), fits);
    return found == std::end(stateFamilies) ? nullptr : found;
}

} // namespace

const StateFamily* familyOf(const ParamItemPtr& state)
{
    return firstFamily([&](const StateFamily& family) { return state && state->name == family.name(); });
}

const StateFamily* familyOfClass(quint8 terminalClass)
{
    return firstFamily([&](const StateFamily& family) { return family.terminalClass == terminalClass; });
}

StateKind kindOf(const ParamItemPtr& state)
{
    if (const StateFamily* family = familyOf(state)) {
        return family->kind;
    }
    if (!state || state->name == texts::placeholderNotActive()) {
        return StateKind::NotActive;
    }
    return state->name == texts::otherState() ? StateKind::Other : StateKind::Plain;
}

} // namespace scriptRules
