#pragma once

#include <QIODevice>

/// The standard input, whose reading ends early if somebody wishes the program to end (see Interruption): a wait for
/// bytes in the kernel or in Qt begins anew after a signal.
///
/// It gives what is there, be it a part of a line, and waits only if that is nothing. One thread.
class StandardInput : public QIODevice
{
    Q_OBJECT

public:
    StandardInput();

    bool isSequential() const override;

protected:
    qint64 readData(char* data, qint64 mostBytes) override;
    qint64 writeData(const char* data, qint64 bytes) override;
};
