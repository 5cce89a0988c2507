#include "support/LoadingOverUnit.h"
#include "support/WindowOverUnit.h"
#include "support/threadedTestMain.h"

#include <QEventLoop>
#include <QFile>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

/// Plays the user of loading dialogs that run their own event loop: looks at the open one every few milliseconds.
class DialogUser : public QObject
{
    Q_OBJECT

public:
    explicit DialogUser(std::function<void(Loading*)> look)
    {
        connect(&timer, &QTimer::timeout, this, [this, look = std::move(look)] {
            const QWidgetList widgets = QApplication::topLevelWidgets();
            for (QWidget* const widget : widgets) {
                auto* const dialog = qobject_cast<Loading*>(widget);
                if (dialog != nullptr && dialog->isVisible()) {
                    seen.insert(barText(dialog));
                    overdue = overdue || sinceStart.hasExpired(firmwarePatience);
                    overdue ? void(dialog->close()) : look(dialog);
                }
            }
        });
        sinceStart.start();
        timer.start(3);
    }

    QSet<QString> seen; ///< what the bar has said
    bool overdue = false;

private:
    QTimer timer;
    QElapsedTimer sinceStart;
};

} // namespace

/// Firmware on its way to a simulated unit: the dialog over a worker, and the whole program.
class tst_firmware : public QObject
{
    Q_OBJECT

private slots:
    void init();

    // The dialog and a worker.
    void theImageArrivesInSpiteOfLossesAndDamage_data();
    void theImageArrivesInSpiteOfLossesAndDamage();
    void abortAtAnyStageAndRepeat_data();
    void abortAtAnyStageAndRepeat();
    void theLinkIsCutAndARepeatSucceeds_data();
    void theLinkIsCutAndARepeatSucceeds();
    void theUnitLosesItsPowerAndARepeatSucceeds();
    void aRefusedBlockIsAWriteError();
    void aUnitInItsBootloaderIsLoadedAtOnce();

    // The whole program.
    void theMenuLoadsTheCurrentPort();
    void theWatchRestsAndComesBack();
    void aSlowUnitEntersItsBootloaderAtItsOwnRate();
    void aDisconnectedRowLoadsItsPort();
    void aRowThatNeverFoundACoordinatorLoadsAtTheUsualRate();
    void cancelLeavesEverythingAsItWas();
    void aSmallFileIsRefused();
    void aSilentBootloaderEndsTheRun();
    void closingTheDialogBringsTheWatchBack();
    void withoutAPortAbortEndsIt();

private:
    QString file(const QByteArray& bytes) const;

    std::unique_ptr<QTemporaryDir> directory;
};

void tst_firmware::init()
{
    directory = std::make_unique<QTemporaryDir>();
    QVERIFY(directory->isValid());
    QVERIFY(QDir::setCurrent(directory->path()));
}

QString tst_firmware::file(const QByteArray& bytes) const
{
    QFile image(directory->filePath(QStringLiteral("image.crypt")));
    return image.open(QIODevice::WriteOnly) && image.write(bytes) == bytes.size() ? image.fileName() : QString();
}

void tst_firmware::theImageArrivesInSpiteOfLossesAndDamage_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {3, 129, 130, 131, 258, 32770, 32771, 200000}) {
        QTest::addRow("%d bytes", size) << size;
    }
}

void tst_firmware::theImageArrivesInSpiteOfLossesAndDamage()
{
    QFETCH(const int, size);
    const QByteArray image = randomImage(size);
    LoadingOverUnit over(
        {UnitFault(UnitFault::LoseRequest).withChance(0.05), UnitFault(UnitFault::DamageAnswer).withChance(0.05)},
        quint32(size));
    over.show(image);
    // Four losses of the same block in a row may end a run; the user then begins again.
    for (int run = 0; run < 5 && over.waitForEnd() && over.hasFailed(); ++run) {
        button(over.dialog, "ButtonRepeat")->click();
    }
    QVERIFY(over.dialog.isNull());
    QVERIFY(over.isComplete(image));
    if (size > 10000) {
        QVERIFY(over.unit.bootRequestCount(5) > size / 128);
    }
}

void tst_firmware::abortAtAnyStageAndRepeat_data()
{
    QTest::addColumn<int>("requestType");
    QTest::addColumn<int>("bootType");
    QTest::newRow("switch to the bootloader") << 22 << 0;
    for (const int bootType : {2, 3, 4, 5, 6, 1}) {
        QTest::addRow("boot request %d", bootType) << 0 << bootType;
    }
}

void tst_firmware::abortAtAnyStageAndRepeat()
{
    QFETCH(const int, requestType);
    QFETCH(const int, bootType);
    const QByteArray image = randomImage(700);
    UnitFault late(UnitFault::DelayAnswer);
    late.times(1).value(60);
    if (requestType != 0) {
        late.onRequest(requestType);
    } else {
        late.onBoot(bootType);
    }
    LoadingOverUnit over({late});
    int stage = 0;
    connect(&over.unit, &UnitSimulator::requestReceived, &over, [&](const UnitRequest& request) {
        if (stage == 0 && request.requestType == requestType && request.bootType == bootType) {
            // The answer is still to come, and meets the next run.
            stage = 1;
            button(over.dialog, "ButtonAbort")->click();
            QCOMPARE(barText(over.dialog), texts::firmwareAborted());
            button(over.dialog, "ButtonRepeat")->click();
        }
    });
    over.show(image);
    QVERIFY(over.waitForEnd());
    QVERIFY(over.dialog.isNull());
    QCOMPARE(stage, 1);
    QVERIFY(over.isComplete(image));
    QCOMPARE(over.results, (QStringList{texts::resultFirmwareStarted(),
                                        texts::resultFirmwareAborted() + QStringLiteral("\nimage.crypt"),
                                        texts::resultFirmwareStarted(),
                                        texts::resultFirmwareCompleted() + QStringLiteral("\nimage.crypt")}));
    // One sequence, not two of them interleaved.
    QCOMPARE(over.unit.bootRequestCount(6), bootType == 6 || bootType == 1 ? 2 : 1);
}

void tst_firmware::theLinkIsCutAndARepeatSucceeds_data()
{
    QTest::addColumn<int>("block");
    QTest::addColumn<int>("bytesOfTheAnswer");
    for (const int block : {1, 2, 5}) {
        QTest::addRow("before block %d", block) << block << -1;
        QTest::addRow("before the answer to block %d", block) << block << 0;
        QTest::addRow("within the answer to block %d", block) << block << 2;
        QTest::addRow("after block %d", block) << block << 5;
    }
}

void tst_firmware::theLinkIsCutAndARepeatSucceeds()
{
    QFETCH(const int, block);
    QFETCH(const int, bytesOfTheAnswer);
    const QByteArray image = randomImage(100000); // long enough for a cut that comes a moment after a block
    LoadingOverUnit over(
        {UnitFault(UnitFault::Unplug).onBoot(5).from(block).times(1).amount(bytesOfTheAnswer).value(0)});
    over.show(image);
    QVERIFY(over.waitForEnd());
    QVERIFY(over.hasFailed());
    QCOMPARE(barText(over.dialog), texts::firmwarePortError());
    QCOMPARE(over.results.constLast(), texts::resultFirmwareError() + QStringLiteral("\nimage.crypt"));

    // Without the cable a repeat fails as well.
    button(over.dialog, "ButtonRepeat")->click();
    QVERIFY(over.waitForEnd());
    QVERIFY(over.hasFailed());

    // The unit lies in its bootloader and doesn't hear the switch; the run goes on all the same.
    over.unit.plugIn();
    button(over.dialog, "ButtonRepeat")->click();
    QVERIFY(over.waitForEnd());
    QVERIFY(over.dialog.isNull());
    QVERIFY(over.isComplete(image));
}

void tst_firmware::theUnitLosesItsPowerAndARepeatSucceeds()
{
    const QByteArray image = randomImage(700);
    LoadingOverUnit over({UnitFault(UnitFault::LosePower).onBoot(5).from(3).times(1).value(900)});
    over.failAndRepeat(image);
}

void tst_firmware::aRefusedBlockIsAWriteError()
{
    const QByteArray image = randomImage(700);
    LoadingOverUnit over({UnitFault(UnitFault::Refuse).onBoot(5).from(2).times(4)});
    over.show(image);
    QVERIFY(over.waitForEnd());
    QVERIFY(over.hasFailed());
    QCOMPARE(barText(over.dialog), texts::firmwareWriteError());
    QCOMPARE(over.unit.bootRequestCount(5), 5);
    button(over.dialog, "ButtonRepeat")->click();
    QVERIFY(over.waitForEnd());
    QVERIFY(over.isComplete(image));
}

void tst_firmware::aUnitInItsBootloaderIsLoadedAtOnce()
{
    const QByteArray image = randomImage(300);
    LoadingOverUnit over;
    over.unit.change([](UnitState& state) { state.inBootloader = true; });
    over.show(image);
    QVERIFY(over.waitForEnd());
    QVERIFY(over.dialog.isNull());
    QVERIFY(over.isComplete(image));
    const QVector<UnitRequest> requests = over.unit.requests();
    QCOMPARE(requests.constFirst().requestType, 22);
    QVERIFY(!requests.constFirst().heard);
}

void tst_firmware::theMenuLoadsTheCurrentPort()
{
    const QByteArray image = randomImage(3000);
    UnitState state;
    state.address = 3;
    WindowOverUnit over(state);
    QVERIFY(over.waitForChain());
    over.unit.clearRequests();
    over.dialogs.openAnswers.append(file(image));
    QStringList shown;
    const DialogUser user([&](Loading* dialog) {
        QVERIFY(dialog->isModal());
        if (shown.isEmpty() || shown.constLast() != over.result()) {
            shown.append(over.result());
        }
    });
    over.trigger("actionFirmware");
    QVERIFY(!user.overdue);
    QVERIFY(over.unit.state().firmwareComplete);
    QVERIFY(!over.unit.state().inBootloader);
    QCOMPARE(over.unit.state().firmware, image);
    QVERIFY(shown.contains(QStringLiteral("Loading firmware started")));
    QCOMPARE(over.result(),
             QStringLiteral("Loading firmware COMPLETED\n") + directory->filePath(QStringLiteral("image.crypt")));
    QCOMPARE(over.dialogs.questions, QStringList{QStringLiteral("Selection file of firmware|*.crypt")});
    // To the address of the coordinator.
    const QVector<UnitRequest> requests = over.unit.requests();
    const auto enter = std::find_if(requests.cbegin(), requests.cend(),
                                    [](const UnitRequest& request) { return request.requestType == 22; });
    QVERIFY(enter != requests.cend());
    QCOMPARE(int(enter->frame.at(2)), 3);
    QCOMPARE(over.unit.requestCount(22), 1);
}

void tst_firmware::theWatchRestsAndComesBack()
{
    constexpr int watch = 9; // on the wire the watch looks like a search
    WindowOverUnit over;
    QVERIFY(over.waitForChain());
    over.dialogs.openAnswers.append(file(randomImage(700)));
    // Held long enough for two beats of the watch.
    over.unit.setFaults({UnitFault(UnitFault::LoseAnswer).onBoot(4)});
    QElapsedTimer sinceFailure;
    int watched = -1;
    const DialogUser user([&](Loading* dialog) {
        if (barText(dialog) != texts::firmwareNotResponding()) {
            return;
        }
        if (watched < 0) {
            watched = over.unit.requestCount(watch);
            sinceFailure.start();
        } else if (sinceFailure.hasExpired(2500)) {
            QCOMPARE(over.unit.requestCount(watch), watched);
            button(dialog, "ButtonAbort")->click();
        }
    });
    over.trigger("actionFirmware");
    QVERIFY(!user.overdue);
    QVERIFY(watched >= 0);
    QVERIFY(eventually([&] { return over.unit.requestCount(watch) >= watched + 2; }, firmwarePatience));
}

void tst_firmware::aSlowUnitEntersItsBootloaderAtItsOwnRate()
{
    const QByteArray image = randomImage(700);
    UnitState state;
    state.baudRates = {9600};
    WindowOverUnit over(state);
    QVERIFY(over.waitForChain());
    over.unit.clearRequests();
    over.dialogs.openAnswers.append(file(image));
    const DialogUser user([](Loading*) {});
    over.trigger("actionFirmware");
    QVERIFY(!user.overdue);
    QCOMPARE(over.unit.state().firmware, image);
    const QVector<UnitRequest> requests = over.unit.requests();
    for (const UnitRequest& request : requests) {
        QCOMPARE(request.baudRate, request.bootType != 0 ? 57600 : 9600);
    }
}

void tst_firmware::aDisconnectedRowLoadsItsPort()
{
    const QByteArray image = randomImage(700);
    WindowOverUnit over;
    QVERIFY(over.waitForChain());
    const QList<QPushButton*> buttons =
        over.form()->findChild<QTableWidget*>()->cellWidget(0, 6)->findChildren<QPushButton*>();
    const auto byText = [&buttons](const QString& text) {
        return *std::find_if(buttons.cbegin(), buttons.cend(), [&](QPushButton* b) { return b->text() == text; });
    };
    byText(QStringLiteral("Disconnect"))->click();
    over.unit.clearRequests();
    over.dialogs.openAnswers.append(file(image));
    const QString before = over.result();
    const DialogUser user([](Loading*) {});
    byText(QStringLiteral("Load Firmware"))->click();
    QVERIFY(!user.overdue);
    QVERIFY(user.seen.contains(QStringLiteral("Programming... %p%")));
    QVERIFY(over.unit.state().firmwareComplete);
    QCOMPARE(over.unit.state().firmware, image);
    QCOMPARE(over.unit.requests().constFirst().requestType, 22);
    QCOMPARE(int(over.unit.requests().constFirst().frame.at(2)), 0);
    QCOMPARE(over.unit.requests().constFirst().baudRate, 57600);
    // The window's result line isn't told.
    QCOMPARE(over.result(), before);
}

void tst_firmware::aRowThatNeverFoundACoordinatorLoadsAtTheUsualRate()
{
    // A load was broken off before: the unit waits in its bootloader and answers no search.
    UnitState state;
    state.inBootloader = true;
    const QByteArray image = randomImage(20000);
    WindowOverUnit over(state);
    const QList<QPushButton*> buttons =
        over.form()->findChild<QTableWidget*>()->cellWidget(0, 6)->findChildren<QPushButton*>();
    QPushButton* const load = *std::find_if(buttons.cbegin(), buttons.cend(), [](const QPushButton* button) {
        return button->text() == QLatin1String("Load Firmware");
    });
    // Between two searches, the next of which is due while the load runs.
    QTRY_VERIFY_WITH_TIMEOUT(load->isVisible(), 10000);
    over.unit.setPace(UnitSimulator::OfTheWire);
    over.unit.clearRequests();
    over.dialogs.openAnswers.append(file(image));
    const DialogUser user([](Loading*) {});
    load->click();
    QVERIFY(!user.overdue);
    QVERIFY(over.unit.state().firmwareComplete);
    QCOMPARE(over.unit.state().firmware, image);
    const QVector<UnitRequest> requests = over.unit.requests();
    QCOMPARE(requests.constFirst().requestType, 22);
    QCOMPARE(int(requests.constFirst().frame.at(2)), 0);
    QCOMPARE(requests.constFirst().baudRate, 57600);
    QCOMPARE(over.unit.requestCount(10), 0);
    // The unit has started again, and the search goes on and finds it.
    QVERIFY(over.waitForChain());
}

void tst_firmware::cancelLeavesEverythingAsItWas()
{
    WindowOverUnit over;
    QVERIFY(over.waitForChain());
    const QString before = over.result();
    QSignalSpy running(over.window.get(), &MainWindow::sig_LoadingFirmwareCurrentPort);
    const DialogUser user([](Loading* dialog) { dialog->close(); });
    over.trigger("actionFirmware");
    QCOMPARE(over.dialogs.questions.size(), 1);
    QVERIFY(over.dialogs.boxes.isEmpty());
    QVERIFY(running.isEmpty());
    QVERIFY(user.seen.isEmpty());
    QCOMPARE(over.result(), before);
    QCOMPARE(over.unit.requestCount(22), 0);
}

void tst_firmware::aSmallFileIsRefused()
{
    WindowOverUnit over;
    QVERIFY(over.waitForChain());
    over.dialogs.openAnswers.append(file("12"));
    const DialogUser user([](Loading* dialog) { dialog->close(); });
    over.trigger("actionFirmware");
    QCOMPARE(over.dialogs.boxes.size(), 1);
    QVERIFY(user.seen.isEmpty());
    QCOMPARE(over.unit.requestCount(22), 0);
}

void tst_firmware::aSilentBootloaderEndsTheRun()
{
    WindowOverUnit over;
    QVERIFY(over.waitForChain());
    over.unit.clearRequests();
    over.unit.setFaults({UnitFault(UnitFault::LoseAnswer)});
    over.dialogs.openAnswers.append(file(randomImage(700)));
    const DialogUser user([](Loading* dialog) {
        if (button(dialog, "ButtonAbort")->text() == texts::buttonClose()) {
            QCOMPARE(barText(dialog), QStringLiteral("Device not responding"));
            button(dialog, "ButtonAbort")->click();
        }
    });
    over.trigger("actionFirmware");
    QVERIFY(!user.overdue);
    QCOMPARE(over.unit.bootRequestCount(2), 4);
    QCOMPARE(over.unit.bootRequestCount(3), 4);
    QCOMPARE(over.unit.bootRequestCount(4), 4);
    QCOMPARE(over.unit.bootRequestCount(5), 0);
    QCOMPARE(over.result(),
             QStringLiteral("ERROR PROGRAMMING firmware\n") + directory->filePath(QStringLiteral("image.crypt")));
}

void tst_firmware::closingTheDialogBringsTheWatchBack()
{
    WindowOverUnit over;
    QVERIFY(over.waitForChain());
    QSignalSpy running(over.window.get(), &MainWindow::sig_LoadingFirmwareCurrentPort);
    over.dialogs.openAnswers.append(file(randomImage(200000)));
    const DialogUser user([&](Loading* dialog) {
        if (over.unit.bootRequestCount(5) > 3) {
            dialog->close();
        }
    });
    over.trigger("actionFirmware");
    QVERIFY(!user.overdue);
    QCOMPARE(over.result(),
             QStringLiteral("Loading firmware ABORTED by user\n") + directory->filePath(QStringLiteral("image.crypt")));
    QCOMPARE(running.size(), 2);
    QCOMPARE(running.constLast().constFirst().toBool(), false);
    // A unit that is left in its bootloader doesn't answer the watch, but is asked again.
    const int watched = over.unit.requestCount(9);
    QVERIFY(eventually([&] { return over.unit.requestCount(9) > watched; }, firmwarePatience));
}

void tst_firmware::withoutAPortAbortEndsIt()
{
    ScriptedDialogs dialogs;
    dialogs.openAnswers.append(file(randomImage(700)));
    WindowSeams seams;
    seams.portNames = [] { return QStringList(); };
    seams.dialogs = &dialogs;
    MainWindow window(seams);
    bool running = false;
    const DialogUser user([&running](Loading* dialog) {
        if (!running) {
            running = true;
            button(dialog, "ButtonAbort")->click();
            QCOMPARE(barText(dialog), texts::firmwareAborted());
            button(dialog, "ButtonAbort")->click();
        }
    });
    window.sl_LoadFirmWare();
    QVERIFY(!user.overdue);
    QVERIFY(running);
}

HUBN_THREADED_TEST_MAIN(tst_firmware)
#include "tst_firmware.moc"
