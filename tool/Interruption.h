#pragma once

#include <QObject>

class QSocketNotifier;

/// The wish that the program ends: Ctrl+C, or the system's request. While an object of this class lives the signals end
/// nothing by themselves. An object within the life of another one shares its wish, so that a command that does several
/// things one after the other misses none in between. GUI thread or that of the only event loop.
class Interruption : public QObject
{
    Q_OBJECT

public:
    explicit Interruption(QObject* parent = nullptr);
    ~Interruption() override;
    Q_DISABLE_COPY_MOVE(Interruption)

    bool isRequested();

    /// Waits until a descriptor has bytes, or its end. False if the wish came first, or was there already; without an
    /// object of this class it never does.
    static bool waitForBytes(int descriptor);

signals:
    void requested(); ///< once for each signal

private:
    void read();

    Interruption* const outer; ///< which has the signals then
    QSocketNotifier* notifier = nullptr;
    bool wasRequested = false;
};
