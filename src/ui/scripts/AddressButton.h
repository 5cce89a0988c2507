#pragma once

#include "model/TerminalType.h"

#include <QString>

class PicturedButton;

/// One round button of the script editor's address filter, with all that its looks depend on.
struct AddressButton
{
    PicturedButton* button = nullptr;
    quint8 address = 0;            ///< terminal address; 0 is the head unit
    quint8 index = 0;              ///< position of the address in ScriptInfo::addressFilter
    bool selected = false;         ///< the address is in the filter
    bool filterOff = false;        ///< the filter by address is switched off; this only changes the shade
    ConnectedTerminalPtr terminal; ///< the terminal reported at this address, or null
    bool compatible = true;        ///< the terminal passes the filter by type
};

/// Green for a selected address; a ring around an address that a terminal reported, green if it fits the filter by
/// type and red if it doesn't. The head unit always has a ring.
QString addressButtonStyle(const AddressButton& button);

/// What the colours tell, in words.
QString addressButtonMeaning(const AddressButton& button);

/// Name and model numbers of a reported terminal, as rich text.
QString addressButtonToolTip(const ConnectedTerminal& terminal);
