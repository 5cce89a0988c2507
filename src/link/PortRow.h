#pragma once

class Port;
class QCheckBox;
class QPushButton;
class QTableWidgetItem;
class QWidget;

/// One serial port in the coordinator form: its table row and its controls. All that is known of the port is the
/// Port's; the row shows it.
///
/// Created for a port when it is first seen, and kept by the coordinator form as long as that lives; GUI thread. The
/// table owns the items and the controls.
struct PortRow
{
    explicit PortRow(Port* shownPort);

    /// Shows what has changed.
    void refresh() const;

    void nameControls() const;

    Port* port;
    QTableWidgetItem* itemPortName;
    QTableWidgetItem* itemBaudrate;
    QTableWidgetItem* itemCoordinator;
    QTableWidgetItem* itemSerial;
    QTableWidgetItem* itemVersion;
    QTableWidgetItem* itemState;
    QTableWidgetItem* itemControls; ///< shows nothing; names the cell of the controls to a screen reader
    QWidget* cellWidget;            ///< the three controls
    QCheckBox* checkBoxCheck;
    QPushButton* buttonConnect;
    QPushButton* buttonFirmware;
};
