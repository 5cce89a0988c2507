#pragma once

#include "model/ParamTables.h"

/// Builds the tables. Each call makes rows of its own.
ParamTables makeParamTables();

/// The translucent grey of what is unset: the row "Not active", the blank terminal type.
QColor unsetColor();

/// The blank picture of rows and states that have no picture of their own.
QString emptyIcon();

/// First row with a code, else null.
ParamItemPtr findByCode(const ParamItems& rows, int code);

/// The rows whose code has a bit in common with a mask, in table order.
ParamItems rowsOfMask(const ParamItems& rows, int mask);

/// The codes of all rows in one mask.
int maskOf(const ParamItems& rows);
