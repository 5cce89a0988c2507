#pragma once

#include "model/ParamItem.h"
#include "model/ScriptInfo.h"

#include <QList>
#include <QSharedPointer>
#include <QString>

/// One output (relay) of a terminal or of the head unit.
struct RelayInformation
{
    quint8 number = 255; ///< 0 to 7 on its terminal; 255 for an output without a number
    QString name;
    ParamItemPtr startState;               ///< row of the output states; null after a file named none that exists
    bool returnStartState = false;         ///< after a script ends the output goes back to startState
    QList<ScriptInfoPtr> activatedScripts; ///< the scripts that may drive this output, in the order given
};

using RelayInformationPtr = QSharedPointer<RelayInformation>;

inline RelayInformationPtr makeOutput(quint8 number, const QString& name, const ParamItemPtr& startState)
{
    auto output = RelayInformationPtr::create();
    output->number = number;
    output->name = name;
    output->startState = startState;
    return output;
}

/// One executive terminal, or the head unit, with its outputs.
struct GroupRelay
{
    quint16 address = 65535; ///< terminal address; compared as a signed number in sorting
    QString name;
    QList<RelayInformationPtr> outputs;
    bool expand = false;    ///< the node is open in the tree
    bool connected = false; ///< the head unit reports this terminal
};

using GroupRelayPtr = QSharedPointer<GroupRelay>;
