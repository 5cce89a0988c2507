// Finding in a whole log: how soon a key is answered by the rows it leaves, and how long the window is still meanwhile.

#include "benchmarks/Figures.h"
#include "benchmarks/FullWindow.h"
#include "benchmarks/StandstillWatch.h"
#include "benchmarks/Units.h"

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTabWidget>
#include <QTableView>

#include <algorithm>

namespace
{

constexpr double stillnessOfHandingOn = 300;
constexpr int runs = 7; ///< a busy machine makes single ones twice as long

struct Key
{
    int key;
    const char* text;
};

// A word letter by letter, which ever fewer events hold, a letter too many, and back to the whole log.
constexpr Key keys[] = {{Qt::Key_A, "a"},        {Qt::Key_L, "l"},        {Qt::Key_A, "a"},
                        {Qt::Key_R, "r"},        {Qt::Key_M, "m"},        {Qt::Key_X, "x"},
                        {Qt::Key_Backspace, ""}, {Qt::Key_Backspace, ""}, {Qt::Key_Backspace, ""},
                        {Qt::Key_Backspace, ""}, {Qt::Key_Backspace, ""}, {Qt::Key_Backspace, ""}};

void readWholeLog(FullWindow& full)
{
    full.window.sl_ReceiveDataEvents(units::logRecords(units::wholeLog), true);
    while (full.log->model() == nullptr || full.log->model()->rowCount() < units::wholeLog) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    full.tabs->setCurrentIndex(1);
    FullWindow::settle();
}

/// Milliseconds from a key to the rows that it leaves, painted.
double answerTime(const FullWindow& full, QLineEdit* field, const Key& key)
{
    bool begun = false;
    QElapsedTimer clock;
    clock.start();
    QCoreApplication::postEvent(field,
                                new QKeyEvent(QEvent::KeyPress, key.key, Qt::NoModifier, QLatin1String(key.text)));
    while (!begun || full.log->model() == nullptr || !full.log->updatesEnabled()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        begun = begun || !full.log->updatesEnabled();
    }
    return static_cast<double>(clock.nsecsElapsed()) / 1e6;
}

/// The window's longest standstill while the user hands on all rows of a log, which the GUI thread does in one piece.
Figure handingOn(const FullWindow& full, const QString& what, const char* action, double bar)
{
    auto* const handOn = full.window.findChild<QAction*>(QLatin1String(action));
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        StandstillWatch watch;
        handOn->trigger();
        FullWindow::settle();
        times.push_back(watch.longest);
    }
    return timeFigure(QStringLiteral("rows of 32,767 records %1, the window still").arg(what), median(times),
                      QStringLiteral("%1 times").arg(runs), bar);
}

std::vector<Figure> run()
{
    FullWindow full;
    readWholeLog(full);
    const Figure copied = handingOn(full, QStringLiteral("copied"), "actionCopyAllRows", stillnessOfHandingOn);
    const Figure saved = handingOn(full, QStringLiteral("saved as CSV"), "actionSaveRows", stillnessOfHandingOn);
    full.window.findChild<QAction*>(QStringLiteral("actionFind"))->trigger();
    FullWindow::settle();
    auto* const field = full.window.findChild<QLineEdit*>(QStringLiteral("lineEditFind"));

    std::vector<std::vector<double>> times(std::size(keys));
    std::vector<double> standstills;
    for (int i = 0; i < runs; ++i) {
        StandstillWatch watch;
        for (std::size_t key = 0; key < std::size(keys); ++key) {
            times[key].push_back(answerTime(full, field, keys[key]));
        }
        standstills.push_back(watch.longest);
    }
    double worst = 0;
    for (const std::vector<double>& ofKey : times) {
        worst = std::max(worst, median(ofKey));
    }
    const QString reference = QStringLiteral("%1 keys, %2 times").arg(std::size(keys)).arg(runs);
    return {
        timeFigure(QStringLiteral("key to its rows among those of 32,767 records"), worst,
                   QStringLiteral("slowest of ") + reference, 50),
        timeFigure(QStringLiteral("longest standstill of the window meanwhile"), median(standstills), reference, 16),
        copied, saved};
}

const Benchmark findBenchmark(QStringLiteral("find"), run);

} // namespace
