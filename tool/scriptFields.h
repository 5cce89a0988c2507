#pragma once

#include "model/ParamItem.h"

#include <QString>
#include <QVector>

class RelayInfo;
struct ScriptInfo;

/// A value as the unit keeps it, by which values are compared, and as the engineer says it.
struct FieldValue
{
    QVector<int> stored;
    QString words;
};

/// Something that the unit keeps of a script.
struct ScriptField
{
    const char* what; ///< in words
    FieldValue (*valueOf)(const RelayInfo& model, const ScriptInfo& script);
};

/// All that the unit keeps of a script, in the order of the editor. Filters are kept also while they are off.
const QVector<ScriptField>& scriptFields();

/// "on" or "off".
FieldValue switchValue(bool isOn);

/// The value of a row of a table, by its code below a mask: null stands for 0.
FieldValue rowValue(const ParamItems& rows, const ParamItemPtr& row, int mask);
