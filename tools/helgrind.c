/* Tells helgrind what Qt's queues order. Qt locks by atomic operations that helgrind doesn't know; so it is told that what was
 * done before an event was posted comes before what its receiver does, and what was done before a semaphore was released before
 * what follows its acquisition. To be loaded before the program that is watched: see tools/races. */
#include <valgrind/helgrind.h>
#include <valgrind/valgrind.h>

#define OF_QT(name) I_WRAP_SONAME_FNNAME_ZU(libQt5CoreZdsoZd5, name)

typedef void* Pointer;

/* QCoreApplication::postEvent(QObject*, QEvent*, int) */
void OF_QT(_ZN16QCoreApplication9postEventEP7QObjectP6QEventi)(Pointer receiver, Pointer event, long priority)
{
    OrigFn original;
    VALGRIND_GET_ORIG_FN(original);
    ANNOTATE_HAPPENS_BEFORE(event);
    CALL_FN_v_WWW(original, receiver, event, priority);
}

/* QObject::event(QEvent*) */
long OF_QT(_ZN7QObject5eventEP6QEvent)(Pointer object, Pointer event)
{
    OrigFn original;
    long isRecognised;
    VALGRIND_GET_ORIG_FN(original);
    ANNOTATE_HAPPENS_AFTER(event);
    CALL_FN_W_WW(isRecognised, original, object, event);
    return isRecognised;
}

/* QSemaphore::release(int) */
void OF_QT(_ZN10QSemaphore7releaseEi)(Pointer semaphore, long count)
{
    OrigFn original;
    VALGRIND_GET_ORIG_FN(original);
    ANNOTATE_HAPPENS_BEFORE(semaphore);
    CALL_FN_v_WW(original, semaphore, count);
}

/* QSemaphore::acquire(int) */
void OF_QT(_ZN10QSemaphore7acquireEi)(Pointer semaphore, long count)
{
    OrigFn original;
    VALGRIND_GET_ORIG_FN(original);
    CALL_FN_v_WW(original, semaphore, count);
    ANNOTATE_HAPPENS_AFTER(semaphore);
}
