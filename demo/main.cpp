#include "ChainWatch.h"
#include "Pictures.h"
#include "link/endProcess.h"
#include "simulator/DemoInstallation.h"
#include "simulator/UnitClock.h"
#include "simulator/UnitSimulator.h"
#include "ui/window/MainWindow.h"
#include "widgets/Dialogs.h"
#include "widgets/ScreenRoom.h"
#include "widgets/scaledApplication.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QTextStream>

#include <cstdio>

namespace
{
constexpr int events = 1200;
constexpr QSize pictureSize(1366, 800);

const char* const explanation = R"(The Configuration Manager HUBN-NX-Q over a simulated unit.

The window is the program's own; its list of ports holds the simulated unit alone. Each line that the window reports is
printed. Files are read and written in the current directory; with --screenshots in a temporary one.)";

/// Who has pictures taken is asked nothing: the firmware is that of the scratch directory.
class PictureDialogs : public Dialogs
{
public:
    QString openFileName(QWidget* /*parent*/, const QString& /*caption*/, const QString& /*filter*/) override
    {
        constexpr int size = 32 * 1024; // of which a good part is left when the picture is taken
        QFile file(QStringLiteral("firmware.crypt"));
        const bool isWritten = file.open(QIODevice::WriteOnly) && file.write(QByteArray(size, '\x5A')) == size;
        return isWritten ? file.fileName() : QString();
    }
};

int complain(const QString& text)
{
    QTextStream(stderr) << QCoreApplication::applicationName() << ": " << text << Qt::endl;
    return 1;
}

/// The rules of the --fault options; false, with the reason printed, if one makes no sense.
bool readFaults(const QStringList& texts, QVector<UnitFault>& rules)
{
    for (const QString& text : texts) {
        QString reason;
        const std::optional<UnitFault> fault = UnitFault::fromText(text, &reason);
        if (!fault) {
            complain(QStringLiteral("--fault %1: %2").arg(text, reason));
            return false;
        }
        rules.append(*fault);
    }
    return true;
}

/// Waits for the chain to end, takes the pictures, and leaves with what came of it.
int runForPictures(MainWindow& window, ChainWatch& watch, const QDir& target)
{
    Pictures pictures(window, watch, target);
    QString fault;
    QObject::connect(&watch, &ChainWatch::chainEnded, &pictures, [&](const QString& chainFault) {
        fault = chainFault;
        pictures.takeAll();
    });
    QObject::connect(&pictures, &Pictures::taken, &pictures, [&](const QString& pictureFault) {
        fault = fault.isEmpty() ? pictureFault : fault;
        QCoreApplication::quit();
    });
    window.resize(pictureSize.boundedTo(screenRoom::forContents(&window).size()));
    window.show();
    QApplication::exec();
    return fault.isEmpty() ? 0 : complain(fault);
}

int run(int argc, char* argv[])
{
    const auto application = scaledApplication(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("hubn-manager-demo"));
    QCoreApplication::setApplicationVersion(QStringLiteral("2.1"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromUtf8(explanation));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption screenshots(
        QStringLiteral("screenshots"),
        QStringLiteral("Wait for the automatic reading to end, save pictures of everything there, and exit: with 0 if "
                       "all went well."),
        QStringLiteral("directory"));
    const QCommandLineOption faultOption(
        QStringLiteral("fault"),
        QStringLiteral("A fault of the unit, as hubn-unit-simulator takes it; may be given "
                       "more than once."),
        QStringLiteral("rule"));
    const QCommandLineOption debug(
        QStringLiteral("debug"), QStringLiteral("Print the program's diagnostic lines too, every packet among them."));
    parser.addOptions({screenshots, faultOption, debug});
    parser.process(*application);
    if (!parser.isSet(debug)) {
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    }

    QVector<UnitFault> faults;
    if (!readFaults(parser.values(faultOption), faults)) {
        return 1;
    }
    const QDir target(QDir(parser.value(screenshots)).absolutePath());
    const QTemporaryDir scratch;
    if (parser.isSet(screenshots) && !(target.mkpath(QStringLiteral(".")) && QDir::setCurrent(scratch.path()))) {
        return complain(QStringLiteral("can't use %1").arg(target.path()));
    }

    UnitSimulator unit(demoInstallation(1, events, UnitClock::now(0)));
    if (!unit.isValid()) {
        return complain(unit.errorString());
    }
    unit.setPace(UnitSimulator::OfTheWire);
    unit.setFaults(faults);

    WindowSeams seams;
    seams.portNames = [name = unit.portName()] { return QStringList{name}; };
    PictureDialogs pictureDialogs;
    seams.dialogs = parser.isSet(screenshots) ? &pictureDialogs : nullptr;
    MainWindow window(seams);
    ChainWatch watch(window);
    if (parser.isSet(screenshots)) {
        return runForPictures(window, watch, target);
    }
    window.showMaximized();
    return QApplication::exec();
}

} // namespace

int main(int argc, char* argv[])
{
    endProcess(run(argc, argv));
}
