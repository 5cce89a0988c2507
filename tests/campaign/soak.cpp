// Hours of the window over a simulated unit: readings, writings, edits, the log, files, a cable that comes and goes.
// What grows or is left behind by any of it shows in the figures that are printed every minute. "./campaign soak"
// starts it.

#include "link/endProcess.h"
#include "model/RelayInfo.h"
#include "simulator/LogGenerator.h"
#include "support/RandomUnit.h"
#include "support/WindowOverUnit.h"
#include "widgets/scaledApplication.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRandomGenerator>
#include <QTabWidget>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeWidget>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <ctime>
#include <vector>

#include <malloc.h>

namespace
{

constexpr int warmUp = 10;           ///< minutes until everything that keeps a limited past is full
constexpr int span = 10;             ///< minutes that are compared with as many others
constexpr double mayGrow = 2.0;      ///< MB after that
constexpr double mayIdle = 3.0;      ///< percent of a processor
constexpr int longestStep = 60000;   ///< ms
constexpr int idleTime = 10000;      ///< ms in each minute in which nobody does anything
constexpr int logCapacity = 2000;    ///< of a ring that is full, so that new events replace old ones
constexpr int eventInterval = 15000; ///< ms

std::atomic_int unexpectedLines{0}; // NOLINT(cppcoreguidelines-avoid-non-const-global-variables): of the handler below

/// What the program tells an engineer on the debug stream is expected; a warning is not.
void countWarnings(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text)
{
    if (type != QtDebugMsg && type != QtInfoMsg) {
        ++unexpectedLines;
        std::fprintf(stderr, "%s\n", qPrintable(text));
    }
}

struct Resources
{
    double memory = 0;   ///< MB that the program has asked for and not given back
    double resident = 0; ///< MB that the system keeps for it, without what is mapped from files
    int descriptors = 0;
    int threads = 0;
    int lockFiles = 0;

    static Resources now()
    {
        Resources result;
        const struct mallinfo2 heap = mallinfo2();
        result.memory = double(heap.uordblks + heap.hblkhd) / 1024 / 1024;
        QFile status(QStringLiteral("/proc/self/status"));
        if (status.open(QIODevice::ReadOnly)) {
            const QList<QByteArray> lines = status.readAll().split('\n');
            for (const QByteArray& line : lines) {
                if (line.startsWith("RssAnon:")) {
                    result.resident = line.mid(8).trimmed().split(' ').constFirst().toDouble() / 1024;
                }
            }
        }
        result.descriptors =
            int(QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::System).size());
        result.threads =
            int(QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size());
        result.lockFiles = lockFilesOfThisProcess();
        return result;
    }

private:
    static int lockFilesOfThisProcess()
    {
        int count = 0;
        const QDir folder(QStringLiteral("/var/lock"));
        const QStringList names = folder.entryList({QStringLiteral("LCK..*")}, QDir::Files);
        for (const QString& name : names) {
            QFile file(folder.filePath(name));
            count += int(file.open(QIODevice::ReadOnly) &&
                         file.readAll().trimmed().startsWith(QByteArray::number(QCoreApplication::applicationPid())));
        }
        return count;
    }
};

void wait(int time)
{
    QEventLoop loop; // not a poll, whose own ticks would count as the program's
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

/// Percent of a processor that the whole process takes while nobody does anything.
double idleShare()
{
    QElapsedTimer wall;
    wall.start();
    const std::clock_t before = std::clock();
    wait(idleTime);
    return double(std::clock() - before) / CLOCKS_PER_SEC * 1e5 / double(wall.elapsed());
}

class Soak
{
public:
    explicit Soak(quint32 seed) : random(seed), over(fullUnit(seed))
    {
        over.unit.growLog(eventInterval, seed);
    }

    Q_DISABLE_COPY_MOVE(Soak)
    ~Soak() = default;

    bool begin()
    {
        return over.waitForChain(longestStep);
    }

    /// One step of an engineer, drawn; the name of one that came to no end, otherwise nothing.
    QByteArray step()
    {
        const Step& drawn = steps.at(random.bounded(quint32(steps.size())));
        ++done;
        return (this->*drawn.run)() ? QByteArray() : QByteArray(drawn.name);
    }

    int stepsDone() const
    {
        return done;
    }

    /// The simulated unit keeps what it was asked, without end.
    void forgetRequests()
    {
        over.unit.clearRequests();
    }

private:
    struct Step
    {
        const char* name;
        bool (Soak::*run)();
    };

    static UnitState fullUnit(quint32 seed)
    {
        UnitState state = RandomUnit(seed).draw();
        state.log = LogRing(logCapacity);
        state.log.append(LogGenerator(seed, LogGenerator::Plausible, state.terminals)
                             .history(logCapacity + 100, QDateTime(QDate(2026, 3, 9), QTime(12, 0))));
        return state;
    }

    bool read()
    {
        return over.read();
    }

    bool write()
    {
        return over.write();
    }

    bool readLog()
    {
        return over.readLog();
    }

    bool edit()
    {
        auto* const scripts = over.get<QListWidget>("listWidgetAllScript");
        for (int times = 0; times < 20; ++times) {
            scripts->setCurrentRow(random.bounded(scripts->count()));
            auto* const name = over.get<QLineEdit>("lineEditNameScript");
            name->setText(QStringLiteral("Script %1").arg(random.bounded(1000)));
            over.get<QPushButton>(random.bounded(2) == 0 ? "pushButtonAddScript" : "pushButtonDeleteScript")->click();
            wait(10);
        }
        return true;
    }

    bool walkTheTree()
    {
        auto* const tree = over.get<QTreeWidget>("treeWidget");
        tree->expandAll();
        for (int times = 0; times < 40; ++times) {
            QTreeWidgetItem* item = tree->topLevelItem(random.bounded(tree->topLevelItemCount()));
            if (item->childCount() > 0) {
                item = item->child(random.bounded(item->childCount()));
            }
            tree->setCurrentItem(item);
            wait(10);
        }
        return true;
    }

    bool saveAndLoad()
    {
        over.dialogs.saveAnswers = QStringList{QStringLiteral("soak.cfg")};
        over.dialogs.openAnswers = QStringList{QStringLiteral("soak.cfg")};
        over.trigger("actionSave");
        over.trigger("actionLoad");
        over.dialogs.questions.clear();
        over.dialogs.boxes.clear();
        return QFile::exists(QStringLiteral("soak.cfg"));
    }

    bool turnTabs()
    {
        auto* const tabs = over.get<QTabWidget>("tabWidget");
        for (int tab = tabs->count() - 1; tab >= 0; --tab) {
            tabs->setCurrentIndex(tab);
            if (!eventually([this] { return !over.isBusy(); }, longestStep)) {
                return false;
            }
        }
        return true;
    }

    /// The watch sees it go, and finds it again by itself.
    bool pullTheCable()
    {
        const auto isConnected = [this] {
            return over.form()->findChild<QTableWidget*>()->item(0, 5)->text() == texts::portCoordinatorConnected();
        };
        over.unit.unplug();
        if (!eventually([&] { return !isConnected(); }, longestStep)) {
            return false;
        }
        wait(random.bounded(3000));
        return over.unit.plugIn() && eventually([&] { return isConnected() && !over.isBusy(); }, longestStep);
    }

    static constexpr std::array<Step, 8> steps{{{"read", &Soak::read},
                                                {"write", &Soak::write},
                                                {"read the log", &Soak::readLog},
                                                {"edit", &Soak::edit},
                                                {"walk the tree", &Soak::walkTheTree},
                                                {"save and load", &Soak::saveAndLoad},
                                                {"turn the tabs", &Soak::turnTabs},
                                                {"pull the cable", &Soak::pullTheCable}}};

    QRandomGenerator random;
    WindowOverUnit over;
    int done = 0;
};

void print(qint64 minutes, int steps, const Resources& resources, double idle)
{
    std::printf(
        "%4lld min  %6d steps  %7.2f MB in use  %7.2f MB resident  %3d descriptors  %2d threads  %d lock files  "
        "idle %4.2f %%\n",
        static_cast<long long>(minutes), steps, resources.memory, resources.resident, resources.descriptors,
        resources.threads, resources.lockFiles, idle);
    std::fflush(stdout);
}

/// Judged by the middle of the last ten minutes beside that of the ten after the warm-up: a single minute tells what
/// happened to be shown in it.
double growth(const std::vector<Resources>& minutes, double Resources::*value)
{
    const auto middle = [&](std::size_t from) {
        std::vector<double> values;
        for (std::size_t i = from; i < from + span; ++i) {
            values.push_back(minutes.at(i).*value);
        }
        std::nth_element(values.begin(), values.begin() + span / 2, values.end());
        return values.at(span / 2);
    };
    return minutes.size() < warmUp + 2 * span ? 0 : middle(minutes.size() - span) - middle(warmUp);
}

bool isWell(const char* what, bool well)
{
    std::printf("%s: %s\n", what, well ? "well" : "NOT WELL");
    return well;
}

bool judge(const std::vector<Resources>& minutes, const std::vector<double>& idle)
{
    const Resources first = minutes.at(std::min<std::size_t>(warmUp, minutes.size() - 1));
    const Resources last = minutes.back();
    std::vector<double> shares = idle;
    std::nth_element(shares.begin(), shares.begin() + std::ptrdiff_t(shares.size() / 2), shares.end());
    const double share = shares.at(shares.size() / 2);
    std::printf("memory in use grew by %.2f MB, resident memory by %.2f MB, idle took %.2f %% of a processor, %d lines "
                "were not expected\n",
                growth(minutes, &Resources::memory), growth(minutes, &Resources::resident), share,
                unexpectedLines.load());
    bool well = true;
    if (minutes.size() < warmUp + 2 * span) {
        std::printf("memory: the run was too short to tell\n");
    } else {
        well = isWell("memory", growth(minutes, &Resources::memory) < mayGrow);
    }
    well = isWell("descriptors", last.descriptors <= first.descriptors) && well;
    well = isWell("threads", last.threads <= first.threads) && well;
    well = isWell("lock files", last.lockFiles <= 1) && well;
    well = isWell("idle", share < mayIdle) && well;
    return isWell("standard error", unexpectedLines == 0) && well;
}

bool soakFor(int minutes, quint32 seed)
{
    Soak soak(seed);
    if (!soak.begin()) {
        std::printf("the unit was not found\n");
        return false;
    }
    std::vector<Resources> seen;
    std::vector<double> idle;
    QElapsedTimer clock;
    clock.start();
    for (int minute = 1; minute <= minutes; ++minute) {
        while (clock.elapsed() < minute * 60000LL - idleTime) {
            if (const QByteArray stuck = soak.step(); !stuck.isEmpty()) {
                std::printf("stuck: %s, step %d\n", stuck.constData(), soak.stepsDone());
                return false;
            }
            // A program's event loop does it after each event of a user; here steps are no events of one.
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            wait(500);
        }
        idle.push_back(idleShare());
        soak.forgetRequests();
        seen.push_back(Resources::now());
        print(minute, soak.stepsDone(), seen.back(), idle.back());
    }
    return judge(seen, idle);
}

} // namespace

/// Arguments: minutes, seed.
int main(int argc, char* argv[])
{
    bool well = false;
    {
        const auto application = scaledApplication(argc, argv);
        const QStringList arguments = QCoreApplication::arguments();
        const QTemporaryDir directory;
        QDir::setCurrent(directory.path());
        qInstallMessageHandler(countWarnings);
        well = soakFor(qMax(1, arguments.value(1, QStringLiteral("240")).toInt()),
                       arguments.value(2, QStringLiteral("1")).toUInt());
    }
    endProcess(well ? 0 : 1);
}
