#pragma once

#include "tool/Command.h"

// One function for each command, in the file that is named after it.
Command checkCommand();
Command decodeCommand();
Command diffCommand();
Command firmwareCommand();
Command logCommand();
Command portsCommand();
Command readCommand();
Command reportCommand();
Command timeCommand();
Command writeCommand();
