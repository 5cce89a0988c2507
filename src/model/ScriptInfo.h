#pragma once

#include "model/ParamItem.h"
#include "model/TerminalType.h"
#include "texts/texts.h"

#include <QList>
#include <QSharedPointer>
#include <QString>
#include <QVector>

/// One of the 32 scripts of the head unit: when which state is reported, by whom and when, and what the output does.
///
/// RelayInfo owns the scripts and replaces their fields in place, so a pointer to one stays good for the life of the
/// model. The editors write straight into the fields.
struct ScriptInfo
{
    /// The items of activateFilter.
    enum Filter
    {
        ByType,
        ByAddress,
        ByTime,
        ByDate
    };

    quint8 number = 255; ///< 0 to 31; shown to the user plus one
    QString name = texts::defaultScriptName();
    ParamItemPtr mode;         ///< row of the modes
    ParamItemPtr delay;        ///< row of the delays
    ParamItemPtr duration;     ///< row of the durations
    ParamItemPtr stateChannel; ///< row of the channel states, or a private row named "<Other>"
    ParamItems stateTerminal;  ///< rows of the terminal states, in table order
    QList<bool> activateFilter = {false, false, false, false};
    QList<bool> daysOfWeek = {false, false, false, false, false, false, false}; ///< Monday to Sunday
    QList<int> timeFilter = {0, 0, 0, 0};                       ///< minute and hour of begin, minute and hour of end
    QList<int> dateFilter = {1, 1, 1, 1};                       ///< day and month of begin, day and month of end
    TerminalTypePtr terminalFilter = TerminalTypePtr::create(); ///< row of the catalogue, or the script's own record
    QList<bool> addressFilter = QVector<bool>(32).toList();     ///< item i is address i + 1, item 31 the head unit
    QList<bool> numberChannels = {true, false, false, false};   ///< empty once the editor set the state "Not active"
    bool marked = false;                                        ///< mark of the script's row in the script table
    bool notActive = true;                                      ///< the script has no trigger
};

using ScriptInfoPtr = QSharedPointer<ScriptInfo>;
