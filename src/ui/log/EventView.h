#pragma once

#include <QDialog>

class QAbstractItemModel;

/// All that is kept of one event of the log, with names and meanings, for whoever doubts the decoding or reads the
/// details on a small screen.
///
/// It takes the event over when it is made and knows nothing of the log afterwards. It isn't modal and deletes itself
/// when it is closed. GUI thread only.
class EventView : public QDialog
{
    Q_OBJECT

public:
    EventView(const QAbstractItemModel& log, int row, QWidget* parent);
};
