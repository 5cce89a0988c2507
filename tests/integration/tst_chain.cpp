#include "simulator/LogGenerator.h"
#include "support/Eventually.h"
#include "support/WindowOverUnit.h"
#include "support/threadedTestMain.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QFile>
#include <QListWidget>
#include <QTabWidget>
#include <QTableView>
#include <QTableWidget>
#include <QTreeWidget>
#include <QtTest>

namespace
{

/// Output record of the unit: state byte and script numbers.
QByteArray output(int state, const QByteArray& scripts)
{
    return QByteArray(1, char(state)) + scripts;
}

UnitState installation()
{
    UnitState state;
    state.address = 3;
    state.terminals = {UnitTerminal::make(1, 1, 1, 0x11, 0x10), UnitTerminal::make(5, 2, 1, 0x41, 0x20, 8),
                       UnitTerminal::make(9, 3, 1, 0x21, 0x10), UnitTerminal::make(17, 2, 1, 0x41, 0x20, 8),
                       UnitTerminal::make(30, 4, 1, 0x31, 0x10)};
    state.outputs[0][0] = output(1, QByteArrayLiteral("\x03\x04"));
    state.outputs[5][1] = output(3, QByteArrayLiteral("\x07\x03"));
    state.outputs[8][0] = output(0, QByteArrayLiteral("\x01"));
    state.scripts[3] = QByteArray::fromHex("012a0100153e3008010145170101f0000011000000");
    state.scripts[4] = state.scripts[3];
    state.log.append(LogGenerator(7, LogGenerator::Plausible, state.terminals)
                         .history(50, QDateTime(QDate(2026, 3, 9), QTime(12, 0))));
    return state;
}

/// The types of the requests in order, without those of the watch and without repetitions in a row.
QList<int> steps(const UnitSimulator& unit)
{
    QList<int> types;
    const QVector<UnitRequest> requests = unit.requests();
    for (const UnitRequest& request : requests) {
        const bool ofTheWatch = request.requestType == 2 || request.requestType == 9;
        if (!ofTheWatch && (types.isEmpty() || types.last() != request.requestType)) {
            types.append(request.requestType);
        }
    }
    return types;
}

} // namespace

/// The whole program over a simulated unit: the automatic chain, each operation of the user after it, and what the
/// user is told.
class tst_chain : public QObject
{
    Q_OBJECT

private slots:
    void theChainReadsEverythingAndShowsIt();
    void theLineAboutTheScriptsStaysAfterTheChain();
    void readingByHandStopsAfterTheScripts();
    void readingSendsItsReadsFirstAndTheTimeSecond();
    void writingAndLogSendTheTimeFirst();
    void nothingSetsTheTimeWithoutTheUsersWish();
    void aChangeToTheLogTabSendsNoTimeAndReadsOnlyAChangedLog();
    void writingBringsTheModelToTheUnit();
    void defaultSettingsAreToldAsOneOperation();
    void statusBarFollowsTheWatch();
    void theLoggerShowsTheTraffic();
    void packetsOfAnotherPortGoAboveTheOldOnes();
};

void tst_chain::theChainReadsEverythingAndShowsIt()
{
    WindowOverUnit over(installation());
    QVERIFY(over.waitForChain());
    QCOMPARE(steps(over.unit), (QList<int>{10, 12, 13, 14, 15, 16, 18, 19, 20, 21, 7, 1, 7, 8, 1, 4, 3}));

    // Outputs without scripts of terminals that aren't reported leave nothing behind.
    const auto* const tree = over.get<QTreeWidget>("treeWidget");
    QCOMPARE(tree->topLevelItemCount(), 5); // head unit, 5, 8, 17 and the row to add a terminal
    QCOMPARE(over.get<QListWidget>("listWidgetAllScript")->count(), 32);
    QCOMPARE(over.get<QListWidget>("listWidgetActivateScript")->count(), 2);
    QCOMPARE(over.label("labelTitleParamRelay")->text(), QStringLiteral("HUBN-NX-Q (Internal relay 1)"));
    const auto* const view = over.get<QTableView>("tableViewLogEvents");
    QTRY_VERIFY(view->model() != nullptr); // the rows come a moment after the busy form has gone
    QVERIFY(view->model()->rowCount() >= 50);
    QCOMPARE(over.label("labelCountRows")->text(),
             QStringLiteral("Count of rows in log - %1").arg(view->model()->rowCount()));
}

void tst_chain::theLineAboutTheScriptsStaysAfterTheChain()
{
    WindowOverUnit over(installation());
    QVERIFY(over.waitForChain());
    QCOMPARE(over.told.last(), texts::resultLogOk());
    QCOMPARE(over.result(), texts::resultReadOutputsOk() + QLatin1Char('\n') + texts::resultReadScriptsOk());
}

void tst_chain::readingByHandStopsAfterTheScripts()
{
    WindowOverUnit over(installation());
    QVERIFY(over.waitForChain());
    QVERIFY(over.read());
    QCOMPARE(over.result(), texts::resultReadOutputsOk() + QLatin1Char('\n') + texts::resultReadScriptsOk());
    QCOMPARE(over.unit.requestCount(4), 0);
    QVERIFY(!over.isBusy());
}

void tst_chain::readingSendsItsReadsFirstAndTheTimeSecond()
{
    WindowOverUnit over(installation());
    QVERIFY(over.waitForChain());
    QTRY_VERIFY(over.get<QAction>("actionSyncTime")->isEnabled());
    QVERIFY(over.read());
    QCOMPARE(steps(over.unit), (QList<int>{7, 1, 7, 8}));
}

void tst_chain::writingAndLogSendTheTimeFirst()
{
    WindowOverUnit over(installation());
    QVERIFY(over.waitForChain());
    QVERIFY(over.write());
    QCOMPARE(steps(over.unit), (QList<int>{1, 5, 6}));
    QVERIFY(over.readLog());
    QCOMPARE(steps(over.unit), (QList<int>{1, 4, 3}));
}

void tst_chain::nothingSetsTheTimeWithoutTheUsersWish()
{
    WindowOverUnit over(installation());
    over.get<QAction>("actionSyncTime")->setChecked(false);
    QVERIFY(over.waitForChain());
    QCOMPARE(over.unit.requestCount(1), 0);
    QVERIFY(over.read());
    QCOMPARE(over.unit.requestCount(1), 0);
    QVERIFY(over.write());
    QCOMPARE(over.unit.requestCount(1), 0);
    QVERIFY(over.readLog());
    QCOMPARE(over.unit.requestCount(1), 0);
    over.dialogs.saveAnswers = QStringList{QStringLiteral("DefaultSetting_EN.cfg")};
    over.trigger("actionSave");
    over.told.clear();
    over.trigger("actionFactorySetting");
    QVERIFY(over.waitFor({texts::resultWriteScriptsOk()}));
    QCOMPARE(over.unit.requestCount(1), 0);
    QVERIFY(QFile::remove(QStringLiteral("DefaultSetting_EN.cfg")));
}

void tst_chain::aChangeToTheLogTabSendsNoTimeAndReadsOnlyAChangedLog()
{
    WindowOverUnit over(installation());
    QVERIFY(over.waitForChain());
    auto* const tabs = over.get<QTabWidget>("tabWidget");
    QTRY_VERIFY(!over.label("labelCountRows")->text().isEmpty());
    const QString count = over.label("labelCountRows")->text();

    over.unit.clearRequests();
    over.told.clear();
    tabs->setCurrentIndex(1);
    QVERIFY(over.waitFor({texts::resultLogUnchanged()}));
    QCOMPARE(over.unit.requestCount(4), 1);
    QCOMPARE(over.unit.requestCount(3), 0);
    QCOMPARE(over.unit.requestCount(1), 0);
    QTRY_COMPARE(over.label("labelCountRows")->text(), count);

    tabs->setCurrentIndex(0);
    over.unit.change([](UnitState& state) {
        LogGenerator more(8, LogGenerator::Plausible, state.terminals);
        state.log.append(more.history(3, QDateTime(QDate(2026, 3, 10), QTime(8, 0))));
    });
    over.unit.clearRequests();
    over.told.clear();
    tabs->setCurrentIndex(1);
    QVERIFY(over.waitFor({texts::resultLogOk()}));
    QVERIFY(over.unit.requestCount(3) > 0);
    QCOMPARE(over.unit.requestCount(1), 0);
    QTRY_VERIFY(!over.label("labelCountRows")->text().isEmpty());
    QVERIFY(over.label("labelCountRows")->text() != count);
}

void tst_chain::writingBringsTheModelToTheUnit()
{
    WindowOverUnit over(installation());
    QVERIFY(over.waitForChain());
    const UnitState before = over.unit.state();
    QVERIFY(over.write());
    QCOMPARE(over.result(), texts::resultWriteOutputsOk() + QLatin1Char('\n') + texts::resultWriteScriptsOk());
    QVERIFY(over.unit.state().outputs == before.outputs);
    QVERIFY(over.unit.state().scripts == before.scripts);

    // Another script for the output on show: the first of the list of all.
    over.get<QListWidget>("listWidgetAllScript")->setCurrentRow(5);
    over.get<QAbstractButton>("pushButtonAddScript")->click();
    QVERIFY(over.write());
    QCOMPARE(over.unit.state().outputs[0][0], output(1, QByteArrayLiteral("\x03\x04\x05")));
    over.get<QListWidget>("listWidgetActivateScript")->setCurrentRow(0);
    over.get<QAbstractButton>("pushButtonDeleteScript")->click();
    QVERIFY(over.write());
    QCOMPARE(over.unit.state().outputs[0][0], output(1, QByteArrayLiteral("\x04\x05")));
}

void tst_chain::defaultSettingsAreToldAsOneOperation()
{
    WindowOverUnit over(installation());
    QVERIFY(over.waitForChain());
    QFile::remove(QStringLiteral("DefaultSetting_EN.cfg"));
    over.trigger("actionFactorySetting");
    QCOMPARE(over.result(), texts::resultDefaultsError());
    QCOMPARE(over.dialogs.boxes.size(), 1);
    QCOMPARE(over.dialogs.boxes.first().title, QStringLiteral("File not found"));
    QCOMPARE(over.dialogs.boxes.first().text,
             QStringLiteral("Default settings file is missing (DefaultSetting_EN.cfg)"));

    over.dialogs.saveAnswers = QStringList{QStringLiteral("DefaultSetting_EN.cfg")};
    over.trigger("actionSave");
    QVERIFY(QFile::exists(QStringLiteral("DefaultSetting_EN.cfg")));
    over.told.clear();
    over.trigger("actionFactorySetting");
    QCOMPARE(over.result(), texts::resultDefaultsStarted());
    QVERIFY(over.waitFor({texts::resultWriteScriptsOk()}));
    QCOMPARE(over.result(), texts::resultDefaultsOk());

    over.unit.setFaults({UnitFault(UnitFault::Refuse).onRequest(6).from(4).times(4)});
    over.told.clear();
    over.trigger("actionFactorySetting");
    QVERIFY(over.waitFor({texts::resultWriteScriptsErrors()}));
    QCOMPARE(over.result(), texts::resultDefaultsError());
    QFile::remove(QStringLiteral("DefaultSetting_EN.cfg"));
}

void tst_chain::statusBarFollowsTheWatch()
{
    WindowOverUnit over(installation());
    QVERIFY(over.waitForChain());
    const auto lamp = [&] { return over.label("labelIconPort")->pixmap(Qt::ReturnByValue).toImage(); };
    const auto icon = [](const char* name) {
        return QPixmap(QLatin1String(":/icons/icons/") + QLatin1String(name)).toImage();
    };
    QTRY_COMPARE(lamp(), icon("green.png"));
    QCOMPARE(over.label("labelPortName")->text(), QStringLiteral("<b>%1</b>").arg(over.unit.portName()));
    QCOMPARE(over.label("labelBaudrate")->text(), QStringLiteral("<b>57600</b>"));
    QCOMPARE(over.label("labelCoordinator")->text(), QStringLiteral("Coordinator <b>3</b>"));
    QCOMPARE(over.label("labelSerial")->text(), QStringLiteral("<b>4711</b>"));
    QCOMPARE(over.label("labelVersion")->text(), QStringLiteral("<b>6.02</b>"));
    QTRY_VERIFY(over.label("labelDeviceTime")->text().contains(QLatin1Char(',')));

    over.unit.unplug();
    QTRY_COMPARE(lamp(), icon("red.png"));
    QVERIFY(over.unit.plugIn());
    QTRY_COMPARE_WITH_TIMEOUT(lamp(), icon("green.png"), 20000);
}

void tst_chain::theLoggerShowsTheTraffic()
{
    WindowOverUnit over(installation());
    over.get<QCheckBox>("checkBoxPeriodicRequest")->setChecked(false);
    QVERIFY(over.waitForChain());
    QVERIFY(over.read());
    const auto* const table = over.get<QTableWidget>("tableLogger");
    const QVector<UnitRequest> requests = over.unit.requests();
    const auto last = std::find_if(requests.crbegin(), requests.crend(),
                                   [](const UnitRequest& request) { return request.requestType == 8; });
    QVERIFY(last != requests.crend());
    QCOMPARE(table->item(0, 1)->text(), QString::fromLatin1(last->frame.toHex(' ')) + QLatin1Char(' '));
    QCOMPARE(table->item(0, 3)->text(), QString::fromLatin1(last->answer.toHex(' ')) + QLatin1Char(' '));
}

void tst_chain::packetsOfAnotherPortGoAboveTheOldOnes()
{
    UnitState state = installation();
    UnitSimulator first(state);
    state.address = 5;
    UnitSimulator second(state);
    ScriptedDialogs dialogs;
    WindowSeams seams;
    seams.portNames = [&] { return QStringList{first.portName(), second.portName()}; };
    seams.dialogs = &dialogs;
    MainWindow window(seams);
    window.show();
    auto* const form = window.findChild<FormChoiceCoordinator*>();
    auto* const ports = form->findChild<QTableWidget*>();
    const auto* const logger = window.findChild<QTableWidget*>(QStringLiteral("tableLogger"));
    const auto* const count = window.findChild<QLabel*>(QStringLiteral("labelCountRows"));
    const auto isDone = [&] {
        return !count->text().isEmpty() && !window.findChild<FormWaiting*>()->isVisible() &&
               ports->item(0, 5)->text() == texts::portCoordinatorConnected() &&
               ports->item(1, 5)->text() == texts::portCoordinatorConnected();
    };
    QVERIFY(eventually(isDone, 60000));
    const int former = form->currentAddress();

    ports->setCurrentCell(former == 3 ? 1 : 0, 2);
    const int rows = logger->rowCount();
    const QString newest = logger->item(0, 1)->text();
    form->on_buttonChoicePort_clicked();
    QCOMPARE(int(form->currentAddress()), former == 3 ? 5 : 3);
    const QString address = QString::number(form->currentAddress()).rightJustified(2, QLatin1Char('0'));
    QTRY_VERIFY(logger->rowCount() > rows + 5);
    QCOMPARE(logger->item(logger->rowCount() - rows, 1)->text(), newest);
    // The third byte of a request is the address.
    QCOMPARE(logger->item(0, 1)->text().mid(6, 2), address);
    QVERIFY(newest.mid(6, 2) != address);
    QTRY_VERIFY_WITH_TIMEOUT(isDone(), 60000);
}

HUBN_THREADED_TEST_MAIN(tst_chain)
#include "tst_chain.moc"
