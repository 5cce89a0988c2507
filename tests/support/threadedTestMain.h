#pragma once

#include "link/endProcess.h"

#include <QApplication>
#include <QTest>

/// main() of a test in which a port's thread may outlive its link, which ends as the program's own main() does.
#define HUBN_THREADED_TEST_MAIN(TestObject)                                                                            \
    int main(int argc, char* argv[])                                                                                   \
    {                                                                                                                  \
        int exitCode = 0;                                                                                              \
        {                                                                                                              \
            const QApplication application(argc, argv);                                                                \
            QCoreApplication::setAttribute(Qt::AA_Use96Dpi);                                                           \
            TestObject test;                                                                                           \
            QTEST_SET_MAIN_SOURCE_PATH                                                                                 \
            exitCode = QTest::qExec(&test, argc, argv);                                                                \
        }                                                                                                              \
        endProcess(exitCode);                                                                                          \
    }
