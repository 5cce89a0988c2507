#include "widgets/scaledApplication.h"

#include <QtGlobal>

#include <algorithm>
#include <vector>

namespace
{

constexpr double leastScale = 1.1; ///< that somebody may have asked for

/// Where no resolution of fonts is set, an X server is asked for its millimetres. They are rounded, or those of the
/// screen itself, and would make all of the program a hair larger, or smaller than it should ever be.
bool nobodyAskedForScale()
{
    bool isSet = false;
    const double ofUser = qEnvironmentVariable("QT_SCALE_FACTOR").toDouble(&isSet);
    const double scale = qApp->devicePixelRatio() / (isSet && ofUser > 0 ? ofUser : 1);
    return !qFuzzyCompare(scale, 1) && scale < leastScale;
}

} // namespace

std::unique_ptr<QApplication> scaledApplication(int& argc, char* argv[])
{
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    // The application takes from the arguments those that are meant for it.
    const std::vector<char*> arguments(argv, argv + argc);
    auto application = std::make_unique<QApplication>(argc, argv);
    if (nobodyAskedForScale()) {
        application.reset();
        QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling, false);
        argc = int(arguments.size());
        std::copy(arguments.cbegin(), arguments.cend(), argv);
        application = std::make_unique<QApplication>(argc, argv);
    }
    return application;
}
