#include "campaign/WindowOperations.h"

#include "campaign/campaignUnit.h"
#include "firmware/Loading.h"
#include "support/UnitRecords.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QPushButton>
#include <QTableView>
#include <QTableWidget>

namespace
{

constexpr int connectingTime = 20000; ///< ms

QString configurationFile()
{
    return QStringLiteral("unit.cfg");
}

QString firmwareFile()
{
    return QStringLiteral("image.crypt");
}

Outcome worse(const Outcome& left, const Outcome& right)
{
    return left.verdict < right.verdict ? right : left;
}

Outcome wrong(const QString& what)
{
    return {Outcome::Wrong, what};
}

/// Of records, some of which are told as missing.
Outcome judgeRecords(const QByteArrayList& shown, const QByteArrayList& held, int errors, const QString& name)
{
    if (!isPartOf(shown, held)) {
        return wrong(name + QStringLiteral(" that aren't in the unit"));
    }
    if (shown.size() + errors != held.size()) {
        return wrong(
            QStringLiteral("%1 of %2 %3, %4 errors told").arg(shown.size()).arg(held.size()).arg(name).arg(errors));
    }
    return {errors == 0 ? Outcome::Right : Outcome::Counted, QStringLiteral("%1 %2 missing").arg(errors).arg(name)};
}

QStringList rowsOf(const QAbstractItemModel& model)
{
    QStringList rows;
    for (int row = 0; row < model.rowCount(); ++row) {
        QString text;
        for (int column = 0; column < model.columnCount(); ++column) {
            text += model.index(row, column).data().toString() + QLatin1Char('\t');
        }
        rows.append(text);
    }
    return rows;
}

} // namespace

// A window and its unit.

UnitState WindowOperation::before() const
{
    return campaignUnit();
}

void WindowOperation::prepare() const
{
}

void WindowOperation::makeWindow(const QVector<UnitFault>& faults)
{
    over.reset();
    received = {};
    over = std::make_unique<WindowOverUnit>(campaignUnit(), faults);
    over->window->setUpdatesEnabled(false); // nobody looks, and painting would take most of the time
    listen();
}

void WindowOperation::listen()
{
    using Choice = FormChoiceCoordinator;
    const Choice* const form = over->form();
    QObject::connect(form, &Choice::sig_sendListTerminalsOnForm, over->window.get(),
                     [this](const QByteArrayList& list) { received.terminals = list; });
    QObject::connect(form, &Choice::sig_sendReadConfigOnForm, over->window.get(),
                     [this](const QByteArrayList& list) { received.outputs = list; });
    QObject::connect(form, &Choice::sig_sendReadScriptOnForm, over->window.get(),
                     [this](const QByteArrayList& list) { received.scripts = list; });
    QObject::connect(form, &Choice::sig_sendReadLogOnForm, over->window.get(),
                     [this](const QByteArrayList& list) { received.logRecords += list; });
}

bool WindowOperation::makeReady()
{
    const auto isReady = [this] { return over->isConnected() && !over->isBusy(); };
    constexpr int windows = 5; // the machine may be busy
    for (int count = 0; count < windows; ++count) {
        if (over != nullptr && eventually(isReady, connectingTime)) {
            return true;
        }
        makeWindow({});
        over->waitForChain(stuckAfter);
    }
    return eventually(isReady, connectingTime);
}

QVector<UnitRequest> WindowOperation::learn()
{
    if (!makeReady() || attempt({}, 1, true).verdict != Outcome::Right) {
        over.reset();
        return {};
    }
    return over->unit.requests();
}

Outcome WindowOperation::run(const FaultCase& faultCase)
{
    if (!makeReady()) {
        over.reset();
        return {Outcome::Stuck, QStringLiteral("no connection before the fault")};
    }
    const Outcome ended = attempt({faultCase.fault}, faultCase.seed, faultCase.repeatsLostLogBlock());
    const Outcome outcome = ofMetFault(ended, faultCase, over->unit.requests());
    if (outcome.verdict != Outcome::Right) {
        over.reset(); // something may be left of the trouble
    }
    return outcome;
}

Outcome WindowOperation::attempt(const QVector<UnitFault>& faults, quint32 seed, bool repeatsLostLogBlock)
{
    UnitState state = before();
    state.repeatsLostLogBlock = repeatsLostLogBlock;
    over->unit.setState(state);
    prepare();
    received = {};
    over->told.clear();
    over->unit.clearRequests();
    over->unit.setFaults(faults, seed);
    const bool hasEnded = perform();
    over->unit.setFaults({});
    over->unit.plugIn();
    return hasEnded ? judge() : Outcome{Outcome::Stuck, over->told.join(QStringLiteral("; "))};
}

void WindowOperation::loadFile(const QString& path) const
{
    over->dialogs.openAnswers = QStringList{path};
    over->trigger("actionLoad");
}

// Judging.

QString WindowOperation::told(const QStringList& anyOf) const
{
    for (int i = over->told.size() - 1; i >= 0; --i) {
        for (const QString& text : anyOf) {
            if (over->told.at(i).contains(text)) {
                return over->told.at(i);
            }
        }
    }
    return {};
}

Outcome WindowOperation::judgeTerminals() const
{
    int missing = 0;
    QByteArrayList found = received.terminals;
    found.removeAll(QByteArray()); // a step that has failed
    const QVector<UnitTerminal> terminals = over->unit.state().terminals;
    for (const UnitTerminal& terminal : terminals) {
        missing += found.removeAll(terminal.infoRecord) == 1 ? 0 : 1;
    }
    if (!found.isEmpty()) {
        return wrong(QStringLiteral("a terminal that isn't there"));
    }
    return {missing == 0 ? Outcome::Right : Outcome::LeftOut, QStringLiteral("%1 terminals missing").arg(missing)};
}

Outcome WindowOperation::judgeReading() const
{
    const UnitState state = over->unit.state();
    const QString result = told({texts::resultReadScriptsOk(), texts::resultReadScriptsErrors()});
    if (over->result() != result) {
        return wrong(QStringLiteral("the window says: ") + over->result());
    }
    return worse(judgeRecords(received.outputs, outputsOf(state), errorsOn(result, 0), QStringLiteral("outputs")),
                 judgeRecords(received.scripts, scriptsOf(state), errorsOn(result, 1), QStringLiteral("scripts")));
}

Outcome WindowOperation::judgeLog()
{
    const QByteArrayList held = inBlocks(over->unit.state().log.records());
    const QString result =
        told({texts::resultLogOk(), texts::resultLogErrors(), texts::resultLogError(), texts::resultLogUnchanged()});
    if (result == texts::resultLogError()) {
        return isPartOf(received.logRecords, held) ? Outcome{Outcome::Counted, result}
                                                   : wrong(QStringLiteral("events that aren't in the log"));
    }
    const Outcome outcome = judgeRecords(received.logRecords, held, errorsOn(result), QStringLiteral("events"));
    return outcome.verdict == Outcome::Right ? judgeTable() : outcome;
}

Outcome WindowOperation::judgeTable()
{
    const auto* const view = over->get<QTableView>("tableViewLogEvents");
    if (!eventually([view] { return view->model() != nullptr; }, connectingTime)) {
        return {Outcome::Stuck, QStringLiteral("no table of the log")};
    }
    const QStringList rows = rowsOf(*view->model());
    if (trueRows.isEmpty() && rows.size() >= campaignUnit().log.size()) {
        trueRows = rows;
    }
    return rows == trueRows && !rows.isEmpty() ? Outcome()
                                               : wrong(QStringLiteral("other rows in the table of the log"));
}

// The automatic chain.

QVector<UnitRequest> WindowChain::learn()
{
    makeWindow({});
    if (!over->waitForChain(stuckAfter)) {
        return {};
    }
    // Of the first chain only the search before it; the others begin with a unit that is found.
    QVector<UnitRequest> requests;
    const QVector<UnitRequest> ofFirst = over->unit.requests();
    for (const UnitRequest& request : ofFirst) {
        constexpr int check = 9;
        constexpr int broadcast = 10;
        if (request.requestType != check && request.requestType != broadcast) {
            break;
        }
        requests.append(request);
    }
    const QVector<UnitRequest> ofChain = WindowOperation::learn();
    return ofChain.isEmpty() || !fileHolds(configurationFile(), campaignUnit()) ? QVector<UnitRequest>()
                                                                                : requests + ofChain;
}

Outcome WindowChain::run(const FaultCase& faultCase)
{
    isFirstChain = faultCase.step.isOfSearch();
    if (!isFirstChain) {
        return WindowOperation::run(faultCase);
    }
    makeWindow({faultCase.fault});
    Outcome outcome;
    if (!waitForSearch()) {
        outcome = {Outcome::Stuck, over->told.join(QStringLiteral("; "))};
    } else if (over->told.isEmpty()) {
        outcome = {Outcome::Counted, texts::portCoordinatorNotFound()};
    } else {
        outcome = judge();
    }
    over.reset();
    return outcome;
}

/// Waits for the end of the first chain, or until the form says for good that there is no coordinator: who doesn't tell
/// the own address isn't searched for again.
bool WindowChain::waitForSearch() const
{
    constexpr int forGood = 5000; // ms; a search that found nobody is repeated after one second
    QElapsedTimer sinceNotFound;
    const auto isOver = [this, &sinceNotFound] {
        const auto* const table = over->form()->findChild<QTableWidget*>();
        if (table->item(0, 5)->text() != texts::portCoordinatorNotFound()) {
            sinceNotFound.invalidate();
        } else if (!sinceNotFound.isValid()) {
            sinceNotFound.start();
        }
        return !over->told.isEmpty() || (sinceNotFound.isValid() && sinceNotFound.hasExpired(forGood));
    };
    return eventually(isOver, stuckAfter) && (over->told.isEmpty() || over->waitForChain(stuckAfter));
}

void WindowChain::prepare() const
{
    const QString path = QStringLiteral("other.cfg");
    if (!QFile::exists(path)) {
        saveConfiguration(otherUnit(), path);
    }
    loadFile(path);
}

bool WindowChain::perform()
{
    over->form()->on_buttonChoicePort_clicked();
    return over->waitForChain(stuckAfter);
}

Outcome WindowChain::judge()
{
    Outcome log = judgeLog();
    if (log.verdict == Outcome::Counted) {
        log.verdict = Outcome::LeftOut; // the line about outputs and scripts stays in view
    }
    const Outcome outcome = worse(worse(judgeTerminals(), judgeReading()), log);
    return outcome.verdict == Outcome::Right && !isFirstChain ? judgeModel() : outcome;
}

/// Whether the window has what it had without faults, by what it saves.
Outcome WindowChain::judgeModel()
{
    over->dialogs.saveAnswers = QStringList{configurationFile()};
    over->trigger("actionSave");
    const QByteArray file = contentOf(configurationFile());
    if (trueFile.isEmpty()) {
        trueFile = file;
    }
    return file == trueFile ? Outcome() : wrong(QStringLiteral("another configuration in the window"));
}

// A write.

UnitState WindowWrite::before() const
{
    return blankCampaignUnit();
}

void WindowWrite::prepare() const
{
    if (!QFile::exists(configurationFile())) {
        saveConfiguration(campaignUnit(), configurationFile());
    }
    loadFile(configurationFile());
}

bool WindowWrite::perform()
{
    over->trigger("actionWrite");
    return over->waitFor({texts::resultWriteScriptsOk(), texts::resultWriteScriptsErrors()}, stuckAfter);
}

Outcome WindowWrite::judge()
{
    const UnitState wanted = campaignUnit();
    const UnitState after = over->unit.state();
    const QString result = told({texts::resultWriteScriptsOk(), texts::resultWriteScriptsErrors()});
    const int outputErrors = errorsOn(result, 0);
    const int scriptErrors = errorsOn(result, 1);
    if (over->result() != result) {
        return wrong(QStringLiteral("the window says: ") + over->result());
    }
    if (differences(outputsOf(wanted), outputsOf(after)) > outputErrors ||
        differences(scriptsOf(wanted), scriptsOf(after)) > scriptErrors) {
        return wrong(QStringLiteral("the unit holds something else: ") + result);
    }
    return {outputErrors + scriptErrors == 0 ? Outcome::Right : Outcome::Counted, result};
}

// A reading of the log.

bool WindowLog::perform()
{
    over->trigger("actionReadLog");
    return over->waitForChain(stuckAfter);
}

Outcome WindowLog::judge()
{
    return judgeLog();
}

// A load of firmware.

bool WindowFirmware::perform()
{
    QFile file(firmwareFile());
    if (!file.open(QIODevice::WriteOnly) || file.write(campaignImage()) < 0) {
        return false;
    }
    file.close();
    QElapsedTimer clock;
    clock.start();
    bool isOverdue = false;
    // The action runs the dialog's own event loop, until the dialog is closed.
    QTimer user;
    QObject::connect(&user, &QTimer::timeout, &user, [&clock, &isOverdue] {
        const QWidgetList widgets = QApplication::topLevelWidgets();
        for (QWidget* const widget : widgets) {
            auto* const dialog = qobject_cast<Loading*>(widget);
            if (dialog == nullptr || !dialog->isVisible()) {
                continue;
            }
            const auto* const abort = dialog->findChild<QPushButton*>(QStringLiteral("ButtonAbort"));
            isOverdue = isOverdue || clock.hasExpired(stuckAfter);
            if (isOverdue || abort->text() == texts::buttonClose()) {
                dialog->close();
            }
        }
    });
    user.start(5);
    over->dialogs.openAnswers = QStringList{firmwareFile()};
    over->trigger("actionFirmware");
    return !isOverdue;
}

Outcome WindowFirmware::judge()
{
    const UnitState after = over->unit.state();
    const QString result = over->result();
    if (result.startsWith(texts::resultFirmwareError())) {
        return {Outcome::Counted, result};
    }
    const bool isWhole = after.firmwareComplete && after.firmware == campaignImage();
    return isWhole && result.startsWith(texts::resultFirmwareCompleted())
               ? Outcome()
               : wrong(QStringLiteral("another image in the unit: ") + result);
}
