// One run of the program over a simulated unit that ends by closing its window: an operation and a moment are drawn
// from a seed. tools/close-anytime starts it many times; all that counts is how the process ends.

#include "link/FormChoiceCoordinator.h"
#include "link/endProcess.h"
#include "simulator/LogGenerator.h"
#include "simulator/UnitSimulator.h"
#include "support/ScriptedDialogs.h"
#include "ui/window/MainWindow.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTimer>

#include <array>
#include <cstdio>

namespace
{

constexpr int longestRun = 2500; ///< ms from the start of the operation to the closing
constexpr int longestEnd = 5000; ///< ms from there to the end of the event loop
constexpr int tooLate = 3;       ///< exit code of a process that would have gone on

UnitState busyUnit(quint32 seed)
{
    UnitState state;
    state.terminals = {UnitTerminal::make(1, 1, 1, 0x11, 0x10), UnitTerminal::make(5, 2, 1, 0x41, 0x20, 8),
                       UnitTerminal::make(30, 4, 1, 0x31, 0x10)};
    state.log = LogRing(LogRing::maximumCapacity);
    state.log.append(LogGenerator(seed, LogGenerator::Plausible, state.terminals)
                         .history(4000, QDateTime(QDate(2026, 3, 9), QTime(12, 0))));
    return state;
}

/// File dialogs answer by themselves; message boxes stand until the window closes.
class HalfScriptedDialogs : public ScriptedDialogs
{
public:
    void critical(QWidget* parent, const QString& title, const QString& text) override
    {
        Dialogs::critical(parent, title, text); // a real one; clazy:exclude=skipped-base-method
    }
};

class Run
{
public:
    explicit Run(quint32 seed) : random(seed), unit(busyUnit(seed)), window(seams())
    {
        window.showMaximized();
    }

    Q_DISABLE_COPY_MOVE(Run)
    ~Run() = default;

    /// Draws what happens when, and returns what it is.
    QByteArray begin()
    {
        const Operation& operation = operations.at(random.bounded(quint32(operations.size())));
        if (operation.atStart) {
            operation.start(*this);
            closeIn(random.bounded(longestRun));
        } else {
            startWhenIdle(operation);
        }
        return operation.name;
    }

private:
    struct Operation
    {
        const char* name;
        bool atStart; ///< happens beside the automatic chain; the others wait for its end
        void (*start)(Run& run);
    };

    static const std::array<Operation, 16> operations;

    WindowSeams seams()
    {
        WindowSeams made;
        made.portNames = [this, name = unit.portName()] { return hasPort ? QStringList{name} : QStringList(); };
        made.dialogs = &dialogs;
        return made;
    }

    void closeIn(int ms)
    {
        QTimer::singleShot(ms, &window, [this] {
            window.close();
            QTimer::singleShot(longestEnd, &window, [] { QCoreApplication::exit(tooLate); });
        });
    }

    /// The chain has ended when its row count is on show.
    void startWhenIdle(const Operation& operation)
    {
        auto* const poll = new QTimer(&window);
        QObject::connect(poll, &QTimer::timeout, &window, [this, poll, &operation] {
            if (unit.requestCount(3) > 0 && QApplication::activeModalWidget() == nullptr) {
                poll->stop();
                // Some operations return only when their dialog has closed.
                closeIn(random.bounded(longestRun));
                operation.start(*this);
            }
        });
        poll->start(20);
    }

    void trigger(const char* action)
    {
        window.findChild<QAction*>(QLatin1String(action))->trigger();
    }

    QRandomGenerator random;
    HalfScriptedDialogs dialogs;
    UnitSimulator unit;
    bool hasPort = true;
    MainWindow window;
};

const std::array<Run::Operation, 16> Run::operations{{
    {"automatic chain", true, [](Run&) {}},
    {"automatic chain over a wire", true, [](Run& run) { run.unit.setPace(UnitSimulator::OfTheWire); }},
    {"unit that never answers", true, [](Run& run) { run.unit.setFaults({UnitFault(UnitFault::LoseRequest)}); }},
    {"lost answers", true,
     [](Run& run) { run.unit.setFaults({UnitFault(UnitFault::LoseAnswer).withChance(0.3)}, run.random.generate()); }},
    {"port that can't be opened", true, [](Run& run) { run.unit.unplug(); }},
    {"port that vanishes and comes back", true,
     [](Run& run) {
         run.unit.setFaults({UnitFault(UnitFault::Unplug).from(5 + run.random.bounded(100)).times(1).value(400)});
     }},
    {"coordinator form open", false, [](Run& run) { run.trigger("actionSelectCoordinator"); }},
    {"reading", false, [](Run& run) { run.trigger("actionRead"); }},
    {"writing", false, [](Run& run) { run.trigger("actionWrite"); }},
    {"reading of the log", false, [](Run& run) { run.trigger("actionReadLog"); }},
    {"change to the log tab", false,
     [](Run& run) {
         run.unit.growLog(5);
         run.window.findChild<QTabWidget*>(QStringLiteral("tabWidget"))->setCurrentIndex(1);
     }},
    {"add-terminal form open", false, [](Run& run) { run.window.sl_runFormForAddGroupRelay(); }},
    {"saving and loading of a log", false,
     [](Run& run) {
         run.dialogs.saveAnswers = QStringList{QStringLiteral("saved.db")};
         run.dialogs.openAnswers = QStringList{QStringLiteral("saved.db")};
         run.trigger("actionSaveLog");
         run.trigger("actionLoadLog");
     }},
    {"firmware on its way", false,
     [](Run& run) {
         QFile image(QStringLiteral("image.crypt"));
         image.open(QIODevice::WriteOnly);
         image.write(QByteArray(50000, 'F'));
         image.close();
         run.dialogs.openAnswers = QStringList{image.fileName()};
         run.unit.setPace(UnitSimulator::OfTheWire);
         run.trigger("actionFirmware");
     }},
    {"message box open", false, [](Run& run) { run.trigger("actionFactorySetting"); }},
    {"log of a thousand blocks", true,
     [](Run& run) {
         run.unit.change([](UnitState& state) {
             state.log.append(LogGenerator(1, LogGenerator::Everything).history(8000, QDateTime::currentDateTime()));
         });
     }},
}};

} // namespace

int main(int argc, char* argv[])
{
    int exitCode = 0;
    {
        const QApplication application(argc, argv);
        const QTemporaryDir directory;
        QDir::setCurrent(directory.path());
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
        Run run(argc > 1 ? QByteArray(argv[1]).toUInt() : 0);
        std::puts(run.begin().constData());
        exitCode = QApplication::exec();
    }
    endProcess(exitCode);
}
