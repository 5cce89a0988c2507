#pragma once

#include <QtGlobal>

#include <unistd.h>

/// As long as it lives permissions count, which root could ignore. The test asserts isOrdinary, owns it on its stack
/// and runs on one thread; files of a test have to be within the reach of everybody then, their directory included.
class OrdinaryUser
{
public:
    OrdinaryUser() : wasRoot(geteuid() == 0)
    {
        isOrdinary = !wasRoot || setresuid(nobody, nobody, 0) == 0;
    }
    ~OrdinaryUser()
    {
        if (wasRoot && setresuid(0, 0, 0) != 0) {
            qFatal("root has got lost");
        }
    }
    Q_DISABLE_COPY_MOVE(OrdinaryUser)

    bool isOrdinary = false;

private:
    static constexpr uid_t nobody = 65534;
    const bool wasRoot;
};
