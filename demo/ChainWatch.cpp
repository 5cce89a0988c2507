#include "ChainWatch.h"

#include "link/FormChoiceCoordinator.h"
#include "link/FormWaiting.h"
#include "texts/texts.h"
#include "ui/window/MainWindow.h"

#include <QLabel>
#include <QTableView>

#include <cstdio>

namespace
{
constexpr int lookInterval = 50;
constexpr qint64 longestChain = 180000;
} // namespace

ChainWatch::ChainWatch(MainWindow& mainWindow)
    : window(mainWindow), resultLine(window.findChild<QLabel*>(QStringLiteral("labelResult"))),
      countRows(window.findChild<QLabel*>(QStringLiteral("labelCountRows"))),
      log(window.findChild<QTableView*>(QStringLiteral("tableViewLogEvents"))),
      busyForm(window.findChild<FormWaiting*>()), output(stdout)
{
    // The window has heard the result before: it was the first to connect.
    connect(window.findChild<FormChoiceCoordinator*>(), &FormChoiceCoordinator::sig_sendResultOperation, this,
            &ChainWatch::hearResult);
    connect(&timer, &QTimer::timeout, this, &ChainWatch::look);
    timer.start(lookInterval);
    running.start();
}

bool ChainWatch::isBusy() const
{
    return busyForm->isVisible();
}

void ChainWatch::hearResult(const QString& text)
{
    look();
    if (text == texts::resultLogOk() || text.startsWith(texts::resultLogErrors()) || text == texts::resultLogError()) {
        logOutcome = text;
    }
}

/// Not every line comes from the coordinator form; files and database have theirs.
void ChainWatch::look()
{
    if (resultLine->text() != printed) {
        printed = resultLine->text();
        output << printed << Qt::endl;
    }
    if (!ended && (hasEnded() || running.hasExpired(longestChain))) {
        ended = true;
        emit chainEnded(fault());
    }
}

/// The busy form goes a moment before the database's thread has the rows ready for the table; then they are counted.
bool ChainWatch::hasEnded() const
{
    return !logOutcome.isEmpty() && !isBusy() && !countRows->text().isEmpty();
}

QString ChainWatch::fault() const
{
    if (logOutcome.isEmpty()) {
        return QStringLiteral("the automatic chain has not ended");
    }
    if (logOutcome != texts::resultLogOk()) {
        return logOutcome;
    }
    if (resultLine->text() != texts::resultReadOutputsOk() + QLatin1Char('\n') + texts::resultReadScriptsOk()) {
        return resultLine->text();
    }
    return log->model() != nullptr && log->model()->rowCount() > 0 ? QString()
                                                                   : QStringLiteral("the table of events is empty");
}
