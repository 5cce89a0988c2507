#pragma once

#include <QApplication>

#include <memory>

/// Makes the application of a program with windows, which draws everything in the scale that the desktop asks for:
/// 1.5 times as large where its fonts have a resolution of 144, sharp icons included.
///
/// To be called first in main(), whose arguments have to live as long as the application. Environment variables of Qt
/// such as QT_SCALE_FACTOR have the effect that they have on any program.
std::unique_ptr<QApplication> scaledApplication(int& argc, char* argv[]);
