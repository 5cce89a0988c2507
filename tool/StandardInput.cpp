#include "tool/StandardInput.h"

#include "tool/Interruption.h"

#include <cerrno>

#include <unistd.h>

StandardInput::StandardInput()
{
    open(QIODevice::ReadOnly);
}

bool StandardInput::isSequential() const
{
    return true;
}

qint64 StandardInput::readData(char* data, qint64 mostBytes)
{
    while (Interruption::waitForBytes(STDIN_FILENO)) {
        const ssize_t bytes = ::read(STDIN_FILENO, data, size_t(mostBytes));
        if (bytes > 0) {
            return bytes;
        }
        if (bytes == 0 || errno != EINTR) {
            break;
        }
    }
    return -1;
}

qint64 StandardInput::writeData(const char* /*data*/, qint64 /*bytes*/)
{
    return -1;
}
