#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

class QSocketNotifier;

/// A pair of pseudo-terminals that stands in for a serial cable with a device at its far end. The near end is opened by
/// QSerialPort under portName(); the far end is read and written here.
///
/// Everything is non-blocking. The object lives on the thread that owns it and may be moved to another one. Bytes pass
/// unchanged: the pair starts in raw mode, without echo.
///
/// The name stays the same for the object's life. While unplugged the near end can't be opened, and whoever has it open
/// meets an input/output error, which QSerialPort reports as ResourceError; after plugIn() it opens again. Destroying
/// the object is a hang-up: the name is gone for good.
class PseudoTerminal : public QObject
{
    Q_OBJECT
public:
    explicit PseudoTerminal(QObject* parent = nullptr);
    ~PseudoTerminal() override;

    /// False when the system gave no pair; errorString() then says why and every other call does nothing.
    bool isValid() const;
    QString errorString() const;

    /// "pts/N", the name by which QSerialPort opens the near end; empty if not valid. No two objects of a process have
    /// the same one, not even one after the other.
    QString portName() const;

    /// All bytes that the near end has written and nobody has read yet; empty if there are none.
    QByteArray read();

    /// The near end has written something that nobody has read yet.
    bool hasInput() const;

    /// Returns how many of the bytes were taken. Fewer than given when nobody reads the near end and its buffer of
    /// some kilobytes is full; 0 while unplugged.
    int write(const QByteArray& bytes);

    /// The rate to which the near end has set its line, in bits per second; 0 if it is not one of the usual rates.
    int baudRate() const;

    bool isPluggedIn() const;
    /// Bytes on their way in either direction are lost.
    void unplug();
    /// True if the near end can be opened now.
    bool plugIn();

signals:
    /// The near end has written. Emitted on this object's thread, again and again until read() has emptied the pair.
    void readyRead();

private:
    Q_DISABLE_COPY_MOVE(PseudoTerminal)

    void fail(const char* operation);
    bool openNearEnd();
    void setLocked(bool locked);

    int farEnd = -1;
    int nearEnd = -1; // kept open, so that the far end doesn't see an end of file between two openings of the port
    bool pluggedIn = false;
    QByteArray nearEndPath;
    QString error;
    QSocketNotifier* notifier = nullptr;
};
