#pragma once

#include <QObject>

class QSocketNotifier;

/// The wish that the program ends: Ctrl+C, or the system's request. While an object of this class lives the signals end
/// nothing by themselves. There is at most one; GUI thread or that of the only event loop.
class Interruption : public QObject
{
    Q_OBJECT

public:
    explicit Interruption(QObject* parent = nullptr);
    ~Interruption() override;
    Q_DISABLE_COPY_MOVE(Interruption)

    bool isRequested();

signals:
    void requested(); ///< once for each signal

private:
    void read();

    QSocketNotifier* notifier = nullptr;
    bool wasRequested = false;
};
