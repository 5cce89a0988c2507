#pragma once

#include "link/packetText.h"

class QCheckBox;
class QPushButton;
class QTableWidget;

/// The packets of the current port, newest on top, in the table of the third tab. At most 2000 requests are kept. The
/// tool tip of a packet says in words what it is.
///
/// Works on widgets of the main window's form, which owns them; the main window holds the one instance. GUI thread
/// only. A packet costs one insert at the top, however full the table is.
class PacketLogger
{
public:
    PacketLogger(QTableWidget* packetTable, QPushButton* stop, QPushButton* clearButton, QCheckBox* periodic);
    Q_DISABLE_COPY_MOVE(PacketLogger)
    ~PacketLogger() = default;

    /// A request gets a row of its own. Periodic packets are left out while the user doesn't want them.
    void logRequest(const QDateTime& time, const QByteArray& request, bool periodic);

    /// An answer always goes to the newest row. No bytes mean that none came.
    void logAnswer(const QDateTime& time, const QByteArray& answer, bool periodic);

    void showStopped(bool stopped); ///< the stop button was pressed or released
    void clear();                   ///< empties the cells; the rows stay and keep counting towards the limit

    /// The packets in the table, the oldest first.
    QList<Packet> packets() const;

private:
    bool isWanted(bool periodic) const;
    void setPacket(int column, const Packet& packet, const QString& text);

    QTableWidget* table;
    QPushButton* stopButton;
    QCheckBox* periodicBox;
};
