#pragma once

#include <QByteArray>
#include <QList>
#include <QMetaMethod>
#include <QMetaType>
#include <QObject>
#include <QStringList>
#include <QThread>
#include <QVector>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <functional>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

/// Whether an assertion ends the program at a call. It is made in a copy of the process, which says nothing.
inline bool endsByAssertion(const std::function<void()>& call)
{
    const pid_t child = fork();
    if (child == 0) {
        alarm(20);                       // another thread may have held a lock that the call needs
        qInstallMessageHandler(nullptr); // the test's own would make a failed test of it
        std::signal(SIGABRT, SIG_DFL);
        const rlimit noCore = {0, 0};
        setrlimit(RLIMIT_CORE, &noCore);
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, STDOUT_FILENO);
        dup2(nowhere, STDERR_FILENO);
        call();
        _exit(0);
    }
    int status = 0;
    pid_t ended = -1;
    do {
        ended = waitpid(child, &status, 0);
    } while (ended == -1 && errno == EINTR);
    return child > 0 && ended == child && WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT;
}

/// The slots of a worker's class that let themselves be called from a thread that isn't the worker's. It has to be on
/// the caller's thread and is so again at the end. A slot's first argument may be the worker that it is for; the types
/// of the others have to be registered.
inline QStringList slotsForAnyThread(QObject* worker)
{
    worker->moveToThread(nullptr); // to none, since it could not be called back from another
    const auto callSlot = [&worker](const QMetaMethod& slot) {
        QVector<void*> arguments = {nullptr};
        for (int i = 0; i < slot.parameterCount(); ++i) {
            const int type = slot.parameterType(i);
            Q_ASSERT_X(type != QMetaType::UnknownType, slot.methodSignature().constData(), "an unregistered type");
            const bool isReceiver = QMetaType::typeFlags(type).testFlag(QMetaType::PointerToQObject);
            // Zeros, since a number stays as it is found. It is the copied process alone that comes here.
            void* const memory = std::calloc(1, std::size_t(QMetaType::sizeOf(type)));
            arguments.append(isReceiver ? static_cast<void*>(&worker) : QMetaType::construct(type, memory, nullptr));
        }
        QMetaObject::metacall(worker, QMetaObject::InvokeMetaMethod, slot.methodIndex(), arguments.data());
    };
    QStringList result;
    const QMetaObject& type = *worker->metaObject();
    for (int i = type.methodOffset(); i < type.methodCount(); ++i) {
        const QMetaMethod method = type.method(i);
        if (method.methodType() == QMetaMethod::Slot && !endsByAssertion([&] { callSlot(method); })) {
            result.append(QString::fromLatin1(method.methodSignature()));
        }
    }
    worker->moveToThread(QThread::currentThread());
    return result;
}

/// The signals and slots of a worker's class that take something which another thread could share, a pointer or a
/// reference to what isn't constant. One to the worker itself says who is meant and is no such thing.
inline QStringList methodsThatShare(const QMetaObject& type)
{
    QStringList result;
    for (int i = type.methodOffset(); i < type.methodCount(); ++i) {
        const QMetaMethod method = type.method(i);
        const QList<QByteArray> arguments = method.parameterTypes();
        const bool shares = std::any_of(arguments.cbegin(), arguments.cend(), [&type](const QByteArray& argument) {
            return (argument.endsWith('*') && argument != QByteArray(type.className()) + '*') || argument.endsWith('&');
        });
        if (shares) {
            result.append(QString::fromLatin1(method.methodSignature()));
        }
    }
    return result;
}
