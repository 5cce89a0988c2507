#pragma once

#include "model/GroupRelay.h"
#include "model/ScriptInfo.h"

#include <QByteArrayList>
#include <QList>

/// The records of the device for what the model holds, in the order of the lists. A field without a row is sent as 0.

QByteArrayList outputRecords(const QList<GroupRelayPtr>& groups); ///< one for each output
QByteArrayList scriptRecords(const QList<ScriptInfoPtr>& scripts);
