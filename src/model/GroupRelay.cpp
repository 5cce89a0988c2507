#include "model/GroupRelay.h"

RelayInformationPtr makeOutput(quint8 number, const QString& name, const ParamItemPtr& startState)
{
    auto output = RelayInformationPtr::create();
    output->number = number;
    output->name = name;
    output->startState = startState;
    return output;
}
