#include "link/StatePort.h"

#include "texts/texts.h"

#include <iterator>

namespace
{

struct Row
{
    QString (*text)();
    bool autoDisconnect;
    bool showControls;
};

// By the number of the state.
constexpr Row rows[] = {
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

} // namespace

StatePortTraits statePortTraits(StatePort state)
{
    const int number = state;
    if (number < 0 || number >= int(std::size(rows))) {
        return {QStringLiteral("???"), false, true};
    }
    const Row& row = rows[number];
    return {row.text(), row.autoDisconnect, row.showControls};
}
