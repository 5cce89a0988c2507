#pragma once

#include <QtGlobal>

class QByteArray;
class QCheckBox;
class QDateTime;
class QPushButton;
class QString;
class QTableWidget;

/// The packets of the current port, newest on top, in the table of the third tab. At most 2000 requests are kept.
///
/// Works on widgets of the main window's form, which owns them; the main window holds the one instance. GUI thread
/// only. A packet costs one insert at the top, however full the table is.
class PacketLogger
{
public:
    PacketLogger(QTableWidget* table, QPushButton* stopButton, QPushButton* clearButton, QCheckBox* periodicBox);
    Q_DISABLE_COPY_MOVE(PacketLogger)
    ~PacketLogger() = default;

    /// A request gets a row of its own. Periodic packets are left out while the user doesn't want them.
    void logRequest(const QDateTime& time, const QByteArray& request, bool periodic);

    /// An answer always goes to the newest row. No bytes mean that none came.
    void logAnswer(const QDateTime& time, const QByteArray& answer, bool periodic);

    void showStopped(bool stopped); ///< the stop button was pressed or released
    void clear();                   ///< empties the cells; the rows stay and keep counting towards the limit

private:
    bool isWanted(bool periodic) const;
    void setCell(int column, const QString& text);

    QTableWidget* table;
    QPushButton* stopButton;
    QCheckBox* periodicBox;
};
