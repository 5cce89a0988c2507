#include "link/StatePort.h"

#include "texts/texts.h"

#include <iterator>

namespace
{

// By the number of the state.
constexpr StatePortTraits rows[] = {
    {texts::portConnecting, false, false},
    {texts::portOpenError, true, true},
    {texts::portOpenError, true, true},
    {texts::portNotFound, true, true},
    {texts::portSearching, false, false},
    {texts::portCoordinatorNotFound, true, true},
    {texts::portCoordinatorConnected, false, true},
    {texts::portCoordinatorLost, false, true},
    {texts::portDisabled, false, true},
};

constexpr StatePortTraits noState = {[] { return QStringLiteral("???"); }, false, true};

} // namespace

const StatePortTraits& statePortTraits(StatePort state)
{
    const int number = state;
    return number >= 0 && number < int(std::size(rows)) ? rows[number] : noState;
}
