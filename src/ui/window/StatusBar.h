#pragma once

#include <QWidget>

class ElidedLabel;
class QFrame;
class QLabel;
class QStatusBar;
class QString;
class ResultLabel;

/// The four framed sections of the main window's status bar: port, coordinator, device time, result of the last
/// operation.
///
/// The bar owns the labels, and the main window holds the one instance. GUI thread only.
class StatusBar
{
public:
    /// What the lamp of the current port says. The numbers are those that the coordinator form sends.
    enum PortLamp : quint8
    {
        LampNotConnected = 0, ///< watched, and the coordinator doesn't answer
        LampConnected = 1,    ///< watched, and it answers
        LampUnwatched = 2,    ///< not watched; any other number shows the same
    };

    explicit StatusBar(QStatusBar* bar);

    /// The width that there is for a window. Where it is too small for all sections, the result gives way.
    void setRoom(int width);

    /// The address may be noCoordinator.
    void showPort(uchar lamp, const QString& portName, const QString& baudrate, uchar address, const QString& serial,
                  const QString& version);
    void showDeviceTime(const QString& time);
    void showResult(const QString& result);

    QString result() const; ///< the result on show

private:
    QFrame* portSection() const;
    QFrame* coordinatorSection() const;
    QFrame* timeSection() const;
    QFrame* resultSection() const;
    void fitResult();

    QLabel* labelIconPort;
    QLabel* labelBaudrate;
    ElidedLabel* labelPortName;
    QLabel* labelCoordinator;
    QLabel* labelSerial;
    QLabel* labelVersion;
    ResultLabel* labelResult;
    QLabel* labelDeviceTime;
    QFrame* sectionTime;
    QFrame* sectionResult;
    int room = QWIDGETSIZE_MAX;
};
