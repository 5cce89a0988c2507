#pragma once

#include "link/PortTrouble.h"

#include <QObject>

/// Finds out why a port can't be used, on whatever thread it lives on: that of the port's worker, which has nothing to
/// do with a port that can't be used, while the user's own thread has.
class TroubleFinder : public QObject
{
    Q_OBJECT

public:
    TroubleFinder();

    /// `isGone`: the device has been lost. The number comes back with what was found.
    void find(int number, const QString& portName, bool isGone);

signals:
    /// Emitted on the thread of the finder.
    void found(int number, const PortTrouble& trouble);
};
