#include "firmware/Loading.h"
#include "model/RelayInfo.h"
#include "support/Eventually.h"
#include "support/WindowOverUnit.h"
#include "support/threadedTestMain.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QFile>
#include <QListWidget>
#include <QProgressBar>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <memory>
#include <tuple>
#include <utility>

/// Rounds of work without a mouse: each step is a key, pressed where the focus is.
class tst_keysOnly : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aUnitIsChosenReadEditedWrittenAndSaved();
    void firmwareIsLoadedAndAborted();

private:
    static void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    static void type(const QString& text);
    static bool isAt(const char* name, const char* frame);
    void tabTo(const char* name, const char* frame = nullptr, Qt::Key key = Qt::Key_Tab);
    void replace(const QString& text);
    void choose(const QString& text);
    void activate() const;

    void chooseCoordinator();
    void renameOutput();
    void setOutput();
    void chooseScripts();
    void enterGeneral();
    void enterTrigger();
    void enterTypeFilter();
    void enterAddressesAndDays();
    void enterPeriods();
    void checkScript();

    std::unique_ptr<QTemporaryDir> directory;
    std::unique_ptr<WindowOverUnit> over;
};

void tst_keysOnly::init()
{
    directory = std::make_unique<QTemporaryDir>();
    over = std::make_unique<WindowOverUnit>();
    QVERIFY(over->waitForChain());
    activate();
}

void tst_keysOnly::cleanup()
{
    over.reset();
    directory.reset();
}

/// What a window manager does when another window closes, and the platform of the tests doesn't.
void tst_keysOnly::activate() const
{
    QApplication::setActiveWindow(nullptr);
    QApplication::setActiveWindow(over->window.get());
    QVERIFY(QApplication::focusWidget() != nullptr);
}

void tst_keysOnly::press(int key, Qt::KeyboardModifiers modifiers)
{
    QWidget* const target = QApplication::focusWidget();
    QVERIFY(target != nullptr);
    QTest::keyClick(target, Qt::Key(key), modifiers);
}

void tst_keysOnly::type(const QString& text)
{
    QTest::keyClicks(QApplication::focusWidget(), text);
}

/// Whether a control has the focus; some names stand in several frames.
bool tst_keysOnly::isAt(const char* name, const char* frame)
{
    const QWidget* const now = QApplication::focusWidget();
    if (now == nullptr || now->objectName() != QLatin1String(name)) {
        return false;
    }
    const QWidget* around = now;
    while (frame != nullptr && around != nullptr && around->objectName() != QLatin1String(frame)) {
        around = around->parentWidget();
    }
    return around != nullptr;
}

void tst_keysOnly::tabTo(const char* name, const char* frame, Qt::Key key)
{
    constexpr int longestWay = 150;
    for (int i = 0; i < longestWay && !isAt(name, frame); ++i) {
        press(key);
    }
    QVERIFY2(isAt(name, frame), name);
}

void tst_keysOnly::replace(const QString& text)
{
    press(Qt::Key_A, Qt::ControlModifier);
    type(text);
}

/// Goes through a combo box from its first row on.
void tst_keysOnly::choose(const QString& text)
{
    const auto* const combo = qobject_cast<QComboBox*>(QApplication::focusWidget());
    QVERIFY(combo != nullptr);
    press(Qt::Key_Home);
    for (int i = 0; i < combo->count() && combo->currentText() != text; ++i) {
        press(Qt::Key_Down);
    }
    QCOMPARE(combo->currentText(), text);
}

void tst_keysOnly::chooseCoordinator()
{
    over->told.clear();
    press(Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(over->form()->isVisible());
    QTRY_VERIFY(over->form()->isAncestorOf(QApplication::focusWidget()));
    press(Qt::Key_Return);
    QVERIFY(!over->form()->isVisible());
    QVERIFY(over->waitForChain());
    activate();
}

void tst_keysOnly::renameOutput()
{
    tabTo("treeWidget");
    press(Qt::Key_Home);
    press(Qt::Key_Plus); // opens the head unit
    press(Qt::Key_Down);
    press(Qt::Key_F2);
    replace(QStringLiteral("Gate"));
    press(Qt::Key_Return);
    QVERIFY(isAt("treeWidget", nullptr));
}

void tst_keysOnly::setOutput()
{
    press(Qt::Key_Tab);
    QVERIFY(isAt("comboStartState", nullptr));
    press(Qt::Key_End);
    press(Qt::Key_Tab);
    QVERIFY(isAt("checkReturn", nullptr));
    press(Qt::Key_Space);
}

/// The first two scripts, the second one in front, which then is the one that is edited.
void tst_keysOnly::chooseScripts()
{
    tabTo("listWidgetAllScript");
    press(Qt::Key_Home);
    press(Qt::Key_Insert);
    press(Qt::Key_Down);
    press(Qt::Key_Insert);
    tabTo("listWidgetActivateScript", nullptr, Qt::Key_Backtab);
    press(Qt::Key_End);
    press(Qt::Key_Up, Qt::AltModifier);
}

void tst_keysOnly::enterGeneral()
{
    press(Qt::Key_F2);
    QVERIFY(isAt("lineEditNameScript", nullptr));
    replace(QStringLiteral("Fire"));
    tabTo("comboModeWorkRelay");
    choose(texts::modePulsation1());
    tabTo("comboDelay");
    press(Qt::Key_End);
    tabTo("comboDuration");
    press(Qt::Key_End);
}

void tst_keysOnly::enterTrigger()
{
    tabTo("comboStateChannel");
    choose(texts::statePanicButton());
    tabTo("comboBoxPNB");
    press(Qt::Key_End);
    tabTo("radioShortPress");
    press(Qt::Key_Right);
    tabTo("buttonChannel3");
    press(Qt::Key_Space);
    tabTo("listStateDevice");
    press(Qt::Key_End);
    press(Qt::Key_Space);
}

void tst_keysOnly::enterTypeFilter()
{
    tabTo("checkBoxType");
    press(Qt::Key_Space);
    tabTo("comboBoxSelectType");
    choose(texts::placeholderOtherType());
    const std::pair<const char*, QString> numbers[] = {{"spinBoxClass", QStringLiteral("3")},
                                                       {"spinBoxVersion", QStringLiteral("a")},
                                                       {"spinBoxType", QStringLiteral("30")},
                                                       {"spinBoxCharacteristic", QStringLiteral("1f")}};
    for (const auto& [name, number] : numbers) {
        tabTo(name);
        replace(number);
    }
    for (const char* const name :
         {"checkBoxAlwaysConnect", "checkBoxSound", "checkBoxExternalPower", "checkBoxBattery"}) {
        tabTo(name);
        press(Qt::Key_Space);
    }
}

void tst_keysOnly::enterAddressesAndDays()
{
    for (const char* const name :
         {"checkBoxAddress", "ButtonAddressHUBN", "ButtonAddress5", "ButtonAddress31", "checkBoxMon", "checkBoxTue",
          "checkBoxWed", "checkBoxThu", "checkBoxFri", "checkBoxSat"}) {
        tabTo(name);
        press(Qt::Key_Space);
    }
}

void tst_keysOnly::enterPeriods()
{
    tabTo("checkBoxTime");
    press(Qt::Key_Space);
    const std::tuple<const char*, const char*, QString> times[] = {
        {"F_TimeBegin", "spinBoxHour", QStringLiteral("08")},
        {"F_TimeBegin", "spinBoxMinute", QStringLiteral("30")},
        {"F_TimeEnd", "spinBoxHour", QStringLiteral("17")},
        {"F_TimeEnd", "spinBoxMinute", QStringLiteral("45")}};
    for (const auto& [frame, field, number] : times) {
        tabTo(field, frame);
        replace(number);
    }
    tabTo("checkBoxDate");
    press(Qt::Key_Space);
    const std::tuple<const char*, QString, QString> dates[] = {
        {"F_DateBegin", QStringLiteral("05"), QStringLiteral("February")},
        {"F_DateEnd", QStringLiteral("20"), QStringLiteral("March")}};
    for (const auto& [frame, day, month] : dates) {
        tabTo("spinBoxDay", frame);
        replace(day);
        press(Qt::Key_Tab);
        choose(month);
    }
}

/// What the unit has got, read as the program reads it.
void tst_keysOnly::checkScript()
{
    RelayInfo read;
    QByteArrayList records;
    for (int number = 0; number < UnitState::scriptCount; ++number) {
        records.append(char(number) + over->unit.state().scripts.at(std::size_t(number)));
    }
    read.readScriptRecords(records);
    const ScriptInfo& script = *read.scripts().at(1);
    QCOMPARE(script.mode->name, texts::modePulsation1());
    QCOMPARE(script.delay, read.delays().constLast());
    QCOMPARE(script.duration, read.durations().constLast());
    QCOMPARE(script.stateChannel->name, texts::statePanicButton());
    QVERIFY(script.stateChannel->linked->code > 15); // a long press
    QCOMPARE(script.numberChannels, QList<bool>({true, false, true, false}));
    QCOMPARE(script.stateTerminal, ParamItems({read.terminalStates().constLast()}));
    QCOMPARE(script.activateFilter, QList<bool>({true, true, true, true}));
    const TerminalType& type = *script.terminalFilter;
    QCOMPARE(QList<int>({type.terminalClass, type.version, type.type, type.characteristic}),
             QList<int>({3, 0xa, 0x3f, 0x1f}));
    QCOMPARE(script.daysOfWeek, QList<bool>({true, true, true, true, true, true, false}));
    QCOMPARE(script.timeFilter, QList<int>({30, 8, 45, 17}));
    QCOMPARE(script.dateFilter, QList<int>({5, 2, 20, 3}));
    QCOMPARE(script.addressFilter.count(true), 3);
    QVERIFY(script.addressFilter.at(4) && script.addressFilter.at(30) && script.addressFilter.at(31));
}

void tst_keysOnly::aUnitIsChosenReadEditedWrittenAndSaved()
{
    chooseCoordinator();
    over->told.clear();
    press(Qt::Key_F5);
    QVERIFY(over->waitFor({texts::resultReadScriptsOk()}));
    activate();

    renameOutput();
    setOutput();
    chooseScripts();
    enterGeneral();
    enterTrigger();
    enterTypeFilter();
    enterAddressesAndDays();
    enterPeriods();

    over->told.clear();
    press(Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(over->waitFor({texts::resultWriteScriptsOk()}));
    activate();
    checkScript();
    // The first output has the two scripts in the new order.
    const QByteArray output = over->unit.state().outputs.at(0).at(0);
    QCOMPARE(output.mid(1).toHex(), QByteArray("0100"));

    const QString file = directory->filePath(QStringLiteral("site.cfg"));
    over->dialogs.saveAnswers.append(file);
    press(Qt::Key_S, Qt::ControlModifier);
    QFile saved(file);
    QVERIFY(saved.open(QIODevice::ReadOnly));
    const QByteArray content = saved.readAll();
    QVERIFY(content.contains("Gate"));
    QVERIFY(content.contains("Fire"));
}

void tst_keysOnly::firmwareIsLoadedAndAborted()
{
    QFile image(directory->filePath(QStringLiteral("unit.crypt")));
    QVERIFY(image.open(QIODevice::WriteOnly));
    image.write(QByteArray(20000, 'x'));
    image.close();
    over->dialogs.openAnswers.append(image.fileName());
    over->unit.setPace(UnitSimulator::OfTheWire); // long enough to be met half done

    QTimer user;
    QStringList buttons;
    connect(&user, &QTimer::timeout, this, [&buttons] {
        const auto* const dialog = qobject_cast<Loading*>(QApplication::activeWindow());
        const auto* const button = qobject_cast<QAbstractButton*>(QApplication::focusWidget());
        if (dialog == nullptr || button == nullptr) {
            return;
        }
        if (button->text() != texts::buttonAbort()) {
            buttons.append(button->text());
            press(Qt::Key_Escape);
        } else if (dialog->findChild<QProgressBar*>()->value() > 2) {
            buttons.append(button->text());
            press(Qt::Key_Escape); // no key that slips ends a load
            press(Qt::Key_Space);
        }
    });
    user.start(5);
    press(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    user.stop();
    QCOMPARE(buttons, QStringList({texts::buttonAbort(), texts::buttonClose()}));
    QCOMPARE(over->result(), texts::resultFirmwareAborted() + QLatin1Char('\n') + image.fileName());
    QVERIFY(!over->unit.state().firmwareComplete);
}

HUBN_THREADED_TEST_MAIN(tst_keysOnly)
#include "tst_keysOnly.moc"
