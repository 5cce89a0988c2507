#pragma once

#include "link/Transmitter.h"

#include <QObject>
#include <QStringList>
#include <QTimer>
#include <QVector>

#include <functional>

class Port;

/// All serial ports that were seen since start(), in order of discovery; one that disappears stays. New ones are looked
/// for once a second.
///
/// Part of a CoordinatorLink, on its thread. It owns the ports; its end closes them side by side, within
/// Port::closingTime for all of them together.
class PortList : public QObject
{
    Q_OBJECT

public:
    /// Gives the names of the serial ports; an empty function stands for those of the system.
    using Names = std::function<QStringList()>;

    PortList(Names portNames, Transmitter::BootParser bootParser, QObject* parent = nullptr);
    ~PortList() override;
    Q_DISABLE_COPY_MOVE(PortList)

    void start();
    const QVector<Port*>& ports() const
    {
        return list;
    }

    /// The port with this worker, which may be gone; null if there is none.
    Port* portOf(const Transmitter* worker) const;

    /// Ends all ports but this one, and looks for no new ones.
    void keepOnly(const Port& port);

public slots:
    void update();

signals:
    /// A new port, which is started when all have heard of it.
    void added(Port* port);
    void updated();

private:
    void add(const QString& name);

    const Names names;
    const Transmitter::BootParser parseBootAnswer;
    QVector<Port*> list;
    QTimer timer;
};
