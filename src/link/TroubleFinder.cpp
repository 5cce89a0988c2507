#include "link/TroubleFinder.h"

TroubleFinder::TroubleFinder()
{
    qRegisterMetaType<PortTrouble>("PortTrouble");
}

void TroubleFinder::find(int number, const QString& portName, bool isGone)
{
    emit found(number, PortTrouble::of(portName, isGone));
}
