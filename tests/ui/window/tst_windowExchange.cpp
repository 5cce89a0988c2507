#include "texts/texts.h"
#include "ui/scripts/Setting_Script_Widget.h"
#include "ui/tree/FormAddingTerminal.h"
#include "ui/tree/Tree_Relay_Widget.h"
#include "ui/window/WindowTest.h"

#include <QComboBox>
#include <QDockWidget>
#include <QFile>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTextEdit>
#include <QTreeWidget>

namespace
{

QByteArray bytes(const char* hexadecimal)
{
    return QByteArray::fromHex(hexadecimal);
}

/// A terminal of class 2 with two outputs, as the unit reports it; no model of the catalogue.
QByteArray terminal(int address)
{
    return QByteArray(1, char(address)) + bytes("2FFFFF00000000");
}

/// The record of an output with scripts.
QByteArray output(int address, int number, const QByteArray& scripts, int state = 0)
{
    QByteArray record;
    for (const int byte : {address, number, state}) {
        record.append(char(byte));
    }
    return record + scripts;
}

/// The record of a script that is triggered by a fire alarm and pulses (1 s).
QByteArray script(int number)
{
    return QByteArray(1, char(number)) + bytes("0200010010000000010100000101F0000000000000");
}

} // namespace

/// What the coordinator form reports goes into the model and the views; what the user chooses in the tree steers the
/// lists and the titles. The window is without any port: the tests speak for the form.
class tst_windowExchange : public WindowTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void atStartTheFirstOutputOfTheHeadUnitIsWorkedOn();
    void terminalsRebuildTheTreeAndBeginTheChain();
    void theChainGoesOnToTheLogAndKeepsTheBusyForm();
    void readingByHandEndsWithTheScripts();
    void outputsWithoutScriptsOfUnknownTerminalsLeaveNothing();
    void aListWithGapsIsAppliedAsFarAsItGoes();
    void scriptsSelectTheFirstActiveOne();
    void scriptsSelectTheFirstOfAllIfNoneIsActive();
    void choosingAnOutputChangesTitlesAndLists();
    void anOutputThatIsNullIsIgnored();
    void aNewNameShowsInTheTitles();
    void namesOfAnyLengthLeaveTheWidthOfTheWindow();
    void theScriptDockShowsAnAmpersand();
    void aScriptWithoutTriggerTurnsGreyInTheLists();
    void aModelAddedByHandIsOfferedAfterARestart();
    void theScriptDockShowsTheScriptInBoldAndItsColour();
    void theAddTerminalFormAddsToTheTree();
    void hidingTheHeadUnitChangesNothing();
    void hidingTheCurrentTerminalSelectsItsPredecessor();
    void hidingATerminalBehindOneWithoutOutputsGoesToTheHeadUnit();
    void aSelectedTerminalWithoutOutputsLeavesTheOutputBeforeInWork();
    void hidingAnotherTerminalKeepsTheSelection();
    void hidingDisconnectedTerminalsLeavesTheReportedOnes();
    void theCommentGoesIntoTheFileAndComesBack();

    void readingAndWritingSetTheTimeOnlyIfAsked_data();
    void readingAndWritingSetTheTimeOnlyIfAsked();
    void writingSendsTheTimeBeforeTheRecords();
    void theLogSendsTheTimeBeforeItsReading();
    void aChangeToTheLogTabReadsWithoutTheTime();
    void aChangeToTheLogTabDoesNothingWhileTheLogIsDisabled();

private:
    QString title() const
    {
        return get<QLabel>("labelTitleParamRelay")->text();
    }
    QTreeWidget* tree() const
    {
        return get<QTreeWidget>("treeWidget");
    }
    /// Terminals in the tree, without the row that adds one.
    int terminals() const
    {
        return tree()->topLevelItemCount() - 1;
    }
    int selectedTerminal() const
    {
        return tree()->selectedItems().isEmpty() ? -1 : tree()->indexOfTopLevelItem(tree()->selectedItems().first());
    }
    void readEverything() const
    {
        emit form()->sig_sendListTerminalsOnForm({terminal(5), terminal(9)});
        emit form()->sig_sendReadConfigOnForm(
            {output(0, 0, bytes("0307")), output(5, 1, bytes("04")), output(9, 0, {}), output(12, 0, bytes("01"))});
        emit form()->sig_sendReadScriptOnForm({script(3), script(4), script(7)});
    }
    /// Terminals 5 and 9 with an output each, and between them one that has none.
    void loadFileWithAnEmptyTerminal()
    {
        QFile file(QStringLiteral("hand-made.cfg"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[Configuration]\r\nNumberOfDevices=4\r\n"
                   "ExecutiveTerminal[1].Address=5\r\nExecutiveTerminal[1].NumberOfOutputs=1\r\n"
                   "ExecutiveTerminal[1].Output[0].Number=0\r\n"
                   "ExecutiveTerminal[2].Address=7\r\nExecutiveTerminal[2].NumberOfOutputs=0\r\n"
                   "ExecutiveTerminal[3].Address=9\r\nExecutiveTerminal[3].NumberOfOutputs=1\r\n"
                   "ExecutiveTerminal[3].Output[0].Number=0\r\n");
        file.close();
        dialogs->openAnswers = QStringList{file.fileName()};
        action("actionLoad")->trigger();
        QVERIFY(file.remove());
        QCOMPARE(terminals(), 4);
    }
    GroupRelayPtr groupChosenAt(int index) const
    {
        GroupRelayPtr chosen;
        const auto connection =
            connect(window->findChild<Tree_Relay_Widget*>(), &Tree_Relay_Widget::sig_changeRelay, window.get(),
                    [&](const RelayInformationPtr&, const GroupRelayPtr& group) { chosen = group; });
        tree()->setCurrentItem(tree()->topLevelItem(index));
        disconnect(connection);
        return chosen;
    }

    QStringList order; ///< what the window asked for, first to last
};

void tst_windowExchange::init()
{
    order.clear();
    begin();
}

void tst_windowExchange::cleanup()
{
    window.reset();
}

void tst_windowExchange::atStartTheFirstOutputOfTheHeadUnitIsWorkedOn()
{
    QCOMPARE(title(), QStringLiteral("HUBN-NX-Q (Internal relay 1)"));
    QCOMPARE(get<QLabel>("labelTitleActivateScript")->text(),
             QStringLiteral("Active scripts for\nHUBN-NX-Q (Internal relay 1)"));
    QCOMPARE(terminals(), 1);
    QCOMPARE(selectedTerminal(), 0);
    QCOMPARE(get<QListWidget>("listWidgetActivateScript")->count(), 0);
    QCOMPARE(get<QListWidget>("listWidgetAllScript")->count(), 32);
    QCOMPARE(get<QListWidget>("listWidgetAllScript")->currentRow(), 0);
    QCOMPARE(window->findChild<Setting_Script_Widget*>()->currentScript()->number, 0);
}

void tst_windowExchange::terminalsRebuildTheTreeAndBeginTheChain()
{
    QSignalSpy lists(window.get(), &MainWindow::sig_updateConnectList);
    QSignalSpy told(form(), &FormChoiceCoordinator::sig_sendResultOperation);
    emit form()->sig_sendListTerminalsOnForm({terminal(9), terminal(5)});
    QCOMPARE(terminals(), 3);
    QCOMPARE(selectedTerminal(), 0);
    QCOMPARE(lists.size(), 1);
    QCOMPARE(told.first().first().toString(), texts::resultReadStarted());
}

void tst_windowExchange::theChainGoesOnToTheLogAndKeepsTheBusyForm()
{
    QSignalSpy log(window.get(), &MainWindow::sig_ReadLogEvents);
    QSignalSpy hidden(window.get(), &MainWindow::sig_HideFormWaiting);
    readEverything();
    QCOMPARE(log.size(), 1);
    QCOMPARE(hidden.size(), 0);

    // The line about the scripts stays in view; the next log reading is one by hand.
    emit form()->sig_sendResultOperation(texts::resultReadScriptsOk());
    emit form()->sig_sendResultOperation(texts::resultLogOk());
    QCOMPARE(get<QLabel>("labelResult")->text(), texts::resultReadScriptsOk());
    emit form()->sig_sendResultOperation(texts::resultLogOk());
    QCOMPARE(get<QLabel>("labelResult")->text(), texts::resultLogOk());
    emit form()->sig_sendReadScriptOnForm({});
    QCOMPARE(log.size(), 1);
    QCOMPARE(hidden.size(), 1);
}

void tst_windowExchange::readingByHandEndsWithTheScripts()
{
    QSignalSpy log(window.get(), &MainWindow::sig_ReadLogEvents);
    QSignalSpy hidden(window.get(), &MainWindow::sig_HideFormWaiting);
    emit form()->sig_sendReadConfigOnForm({output(0, 0, bytes("03"))});
    QCOMPARE(hidden.size(), 0);
    emit form()->sig_sendReadScriptOnForm({script(3)});
    QCOMPARE(hidden.size(), 1);
    QCOMPARE(log.size(), 0);
}

void tst_windowExchange::outputsWithoutScriptsOfUnknownTerminalsLeaveNothing()
{
    readEverything();
    // Head unit, 5, 9 and 12: the last one isn't reported, but has a script.
    QCOMPARE(terminals(), 4);
    emit form()->sig_sendReadConfigOnForm({output(12, 0, {}, 1)});
    QCOMPARE(terminals(), 3);
}

void tst_windowExchange::aListWithGapsIsAppliedAsFarAsItGoes()
{
    readEverything();
    emit form()->sig_sendReadConfigOnForm({output(5, 1, bytes("04"))});
    emit form()->sig_sendReadScriptOnForm({script(31)});
    QCOMPARE(terminals(), 3);
    QCOMPARE(get<QListWidget>("listWidgetActivateScript")->count(), 0);
    QCOMPARE(get<QListWidget>("listWidgetAllScript")->count(), 32);
    // What was named is there.
    const GroupRelayPtr named = groupChosenAt(1);
    QCOMPARE(int(named->address), 5);
    QVERIFY(named->outputs.at(0)->activatedScripts.isEmpty());
    QCOMPARE(named->outputs.at(1)->activatedScripts.size(), 1);
    QCOMPARE(int(named->outputs.at(1)->activatedScripts.first()->number), 4);
    // A script that wasn't named is back at its defaults: nothing in it, so it is grey.
    auto* const all = get<QListWidget>("listWidgetAllScript");
    QVERIFY(all->itemWidget(all->item(3))->styleSheet().contains(QStringLiteral("rgba(187, 187, 187, 150)")));
    QVERIFY(!all->itemWidget(all->item(31))->styleSheet().contains(QStringLiteral("rgba(187, 187, 187, 150)")));
}

void tst_windowExchange::scriptsSelectTheFirstActiveOne()
{
    readEverything();
    QCOMPARE(get<QListWidget>("listWidgetActivateScript")->count(), 2);
    QCOMPARE(get<QListWidget>("listWidgetActivateScript")->currentRow(), 0);
    QCOMPARE(get<QListWidget>("listWidgetAllScript")->currentRow(), 3);
    QCOMPARE(window->findChild<Setting_Script_Widget*>()->currentScript()->number, 3);
}

void tst_windowExchange::scriptsSelectTheFirstOfAllIfNoneIsActive()
{
    get<QListWidget>("listWidgetAllScript")->setCurrentRow(17);
    emit form()->sig_sendReadScriptOnForm({script(0)});
    QCOMPARE(get<QListWidget>("listWidgetAllScript")->currentRow(), 0);
    QCOMPARE(window->findChild<Setting_Script_Widget*>()->currentScript()->number, 0);
}

void tst_windowExchange::choosingAnOutputChangesTitlesAndLists()
{
    readEverything();
    tree()->setCurrentItem(tree()->topLevelItem(1)->child(1));
    QCOMPARE(title(), QStringLiteral("2f ff ff #5(Output 2)"));
    QCOMPARE(get<QLabel>("labelTitleActivateScript")->text(),
             QStringLiteral("Active scripts for\n2f ff ff #5(Output 2)"));
    QCOMPARE(get<QListWidget>("listWidgetActivateScript")->count(), 1);
    QCOMPARE(window->findChild<Setting_Script_Widget*>()->currentScript()->number, 4);
    // A terminal stands for its first output.
    tree()->setCurrentItem(tree()->topLevelItem(1));
    QCOMPARE(title(), QStringLiteral("2f ff ff #5(Output 1)"));
    QCOMPARE(get<QListWidget>("listWidgetActivateScript")->count(), 0);
}

void tst_windowExchange::anOutputThatIsNullIsIgnored()
{
    readEverything();
    const GroupRelayPtr group = groupChosenAt(1);
    QVERIFY(!group.isNull());
    const QString before = title();
    window->sl_SetNewRelay({}, group);
    window->sl_SetNewRelay(group->outputs.first(), {});
    QCOMPARE(title(), before);
    const ScriptInfoPtr edited = window->findChild<Setting_Script_Widget*>()->currentScript();
    edited->marked = true;
    window->sl_SetNewRelay(group->outputs.first(), group);
    QVERIFY(!edited->marked);
}

void tst_windowExchange::aNewNameShowsInTheTitles()
{
    readEverything();
    const GroupRelayPtr group = groupChosenAt(1);
    group->name = QStringLiteral("Hall");
    group->outputs.first()->name = QStringLiteral("<b>Siren</b>");
    emit window->findChild<Tree_Relay_Widget*>()->sig_changeNameDevOrOutput();
    QCOMPARE(title(), QStringLiteral("Hall #5(<b>Siren</b> 1)"));
    QCOMPARE(get<QLabel>("labelTitleParamRelay")->textFormat(), Qt::PlainText);
    QCOMPARE(get<QLabel>("labelTitleActivateScript")->textFormat(), Qt::PlainText);
}

void tst_windowExchange::namesOfAnyLengthLeaveTheWidthOfTheWindow()
{
    readEverything();
    const int width = window->minimumSizeHint().width();
    const GroupRelayPtr group = groupChosenAt(1);
    group->name = QString(200, QLatin1Char('W'));
    group->outputs.first()->name = QString(200, QLatin1Char('M'));
    window->sl_RefreshNameDevOrOutput();
    QVERIFY(title().startsWith(group->name));
    // The layouts follow one after the other, each a layer further out.
    for (const QWidget* layer = get<QLabel>("labelTitleParamRelay"); layer != nullptr; layer = layer->parentWidget()) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    }
    QCOMPARE(window->minimumSizeHint().width(), width);
}

void tst_windowExchange::theScriptDockShowsAnAmpersand()
{
    auto* const dock = get<QDockWidget>("dockScript");
    const auto picture = [&](const QString& name) {
        window->sl_changeTitleSettingScript(name);
        QCoreApplication::sendPostedEvents();
        const QImage whole = dock->grab().toImage();
        return whole.copy(0, 0, whole.width(), dock->widget()->y());
    };
    const QImage blank = picture(QString());
    const auto widthOf = [&](const QString& name) {
        const QImage titled = picture(name);
        int left = titled.width();
        int right = 0;
        for (int x = 0; x < titled.width(); ++x) {
            const QRect column(x, 0, 1, titled.height());
            if (titled.copy(column) != blank.copy(column)) {
                left = qMin(left, x);
                right = x;
            }
        }
        return right - left;
    };
    QVERIFY(widthOf(QStringLiteral("R&D")) > widthOf(QStringLiteral("RD")));
    QCOMPARE(dock->windowTitle(), QStringLiteral("RD"));
}

void tst_windowExchange::aScriptWithoutTriggerTurnsGreyInTheLists()
{
    readEverything();
    const QString grey = QStringLiteral("rgba(187, 187, 187, 150)");
    auto* const all = get<QListWidget>("listWidgetAllScript");
    auto* const active = get<QListWidget>("listWidgetActivateScript");
    all->setCurrentRow(3);
    QVERIFY(!all->itemWidget(all->item(3))->styleSheet().contains(grey));
    auto* const states = get<QComboBox>("comboStateChannel");
    QCOMPARE(states->itemText(0), QStringLiteral("Not active"));
    states->setCurrentIndex(0);
    QVERIFY(window->findChild<Setting_Script_Widget*>()->currentScript()->notActive);
    QVERIFY(all->itemWidget(all->item(3))->styleSheet().contains(grey));
    QVERIFY(active->itemWidget(active->item(0))->styleSheet().contains(grey));
}

void tst_windowExchange::aModelAddedByHandIsOfferedAfterARestart()
{
    const QString name = QStringLiteral("Devices_EN.csv");
    QFile catalogue(name);
    QVERIFY(catalogue.open(QIODevice::Append));
    const QByteArray rest = QByteArrayLiteral(";0x2; 0x9; 0x77; 0x9; Siren; Lamp\n");
    catalogue.write("Hand-made sounder" + rest);
    catalogue.close();
    cleanup();
    init();
    const QString model = QStringLiteral("Hand-made sounder");
    QVERIFY(get<QComboBox>("comboBoxSelectType")->findText(model, Qt::MatchStartsWith) >= 0);
    window->sl_runFormForAddGroupRelay();
    QVERIFY(get<QComboBox>("comboBoxTerminals")->findText(model) >= 0);
    // Without the file the built-in table is back.
    QVERIFY(QFile::remove(name));
    cleanup();
    init();
    QCOMPARE(get<QComboBox>("comboBoxSelectType")->findText(model, Qt::MatchStartsWith), -1);
}

void tst_windowExchange::theScriptDockShowsTheScriptInBoldAndItsColour()
{
    readEverything();
    const auto* const dock = get<QDockWidget>("dockScript");
    QVERIFY(dock->windowTitle().contains(QStringLiteral("№4")));
    QCOMPARE(dock->font().family(), QStringLiteral("MS Shell Dlg 2"));
    QCOMPARE(dock->font().pointSize(), 8);
    QCOMPARE(dock->font().weight(), 75);
    QVERIFY(!window->findChild<Setting_Script_Widget*>()->font().bold());

    const auto* const all = get<QListWidget>("listWidgetAllScript");
    const QString row = all->itemWidget(all->item(3))->styleSheet();
    const QString color =
        row.mid(row.indexOf(QStringLiteral("rgba"))).section(QLatin1Char(')'), 0, 0) + QLatin1Char(')');
    QCOMPARE(dock->styleSheet(), QStringLiteral("QDockWidget::title { text-align: center; background: %1; "
                                                "padding-top: 5px; padding-bottom: 5px;}")
                                     .arg(color));
}

void tst_windowExchange::theAddTerminalFormAddsToTheTree()
{
    auto* const adding = window->findChild<FormAddingTerminal*>();
    QVERIFY(!adding->isVisible());
    get<QPushButton>("pushButtonAddGroup")->click();
    QVERIFY(adding->isVisible());
    emit adding->sig_addNewGroupRelay(QStringLiteral("Cellar"), 4, {QStringLiteral("Lamp"), QStringLiteral("Pump")});
    QCOMPARE(terminals(), 2);
    QCOMPARE(selectedTerminal(), 1);
    QCOMPARE(title(), QStringLiteral("Cellar #4(Lamp 1)"));
}

void tst_windowExchange::hidingTheHeadUnitChangesNothing()
{
    readEverything();
    const GroupRelayPtr headUnit = groupChosenAt(1) ? groupChosenAt(0) : GroupRelayPtr();
    QVERIFY(!headUnit.isNull());
    tree()->setCurrentItem(tree()->topLevelItem(0)->child(3));
    emit window->findChild<Tree_Relay_Widget*>()->sig_deleteGroupRelay(headUnit);
    QCOMPARE(terminals(), 4);
    QCOMPARE(title(), QStringLiteral("HUBN-NX-Q (Internal relay 4)"));
}

void tst_windowExchange::hidingTheCurrentTerminalSelectsItsPredecessor()
{
    readEverything();
    const GroupRelayPtr second = groupChosenAt(2);
    QCOMPARE(second->address, quint16(9));
    emit window->findChild<Tree_Relay_Widget*>()->sig_deleteGroupRelay(second);
    QCOMPARE(terminals(), 3);
    QCOMPARE(selectedTerminal(), 1);
    QCOMPARE(title(), QStringLiteral("2f ff ff #5(Output 1)"));
}

void tst_windowExchange::hidingATerminalBehindOneWithoutOutputsGoesToTheHeadUnit()
{
    loadFileWithAnEmptyTerminal();
    const GroupRelayPtr last = groupChosenAt(3);
    QCOMPARE(last->address, quint16(9));
    emit window->findChild<Tree_Relay_Widget*>()->sig_deleteGroupRelay(last);
    QCOMPARE(terminals(), 3);
    QCOMPARE(selectedTerminal(), 0);
    QCOMPARE(title(), QStringLiteral("HUBN-NX-Q (Internal relay 1)"));
    // What is added now goes to the output that the titles name.
    get<QListWidget>("listWidgetAllScript")->setCurrentRow(4);
    get<QPushButton>("pushButtonAddScript")->click();
    QVERIFY(last->outputs.constFirst()->activatedScripts.isEmpty());
    QVERIFY(!groupChosenAt(1).isNull());
    QCOMPARE(groupChosenAt(0)->outputs.constFirst()->activatedScripts.size(), 1);
}

void tst_windowExchange::aSelectedTerminalWithoutOutputsLeavesTheOutputBeforeInWork()
{
    loadFileWithAnEmptyTerminal();
    const GroupRelayPtr last = groupChosenAt(3);
    const QString before = title();
    QVERIFY(groupChosenAt(2).isNull());
    QCOMPARE(selectedTerminal(), 2);
    QCOMPARE(title(), before);
    const auto nodeStyle = [this] { return tree()->itemWidget(tree()->topLevelItem(3)->child(0), 0)->styleSheet(); };
    const QString grey = nodeStyle();
    get<QListWidget>("listWidgetAllScript")->setCurrentRow(4);
    get<QPushButton>("pushButtonAddScript")->click();
    QCOMPARE(last->outputs.constFirst()->activatedScripts.size(), 1);
    QVERIFY(nodeStyle() != grey);
    get<QListWidget>("listWidgetActivateScript")->setCurrentRow(0);
    get<QPushButton>("pushButtonDeleteScript")->click();
    QCOMPARE(last->outputs.constFirst()->activatedScripts.size(), 0);
    QCOMPARE(nodeStyle(), grey);
}

void tst_windowExchange::hidingAnotherTerminalKeepsTheSelection()
{
    readEverything();
    const GroupRelayPtr second = groupChosenAt(2);
    QVERIFY(!groupChosenAt(3).isNull());
    emit window->findChild<Tree_Relay_Widget*>()->sig_deleteGroupRelay(second);
    QCOMPARE(terminals(), 3);
    QCOMPARE(selectedTerminal(), 2);
    QCOMPARE(title(), QStringLiteral("New executive terminal #12(Output 1)"));
}

void tst_windowExchange::hidingDisconnectedTerminalsLeavesTheReportedOnes()
{
    readEverything();
    QCOMPARE(groupChosenAt(3)->address, quint16(12));
    emit window->findChild<Tree_Relay_Widget*>()->sig_deleteDisconnectedGroupRelays();
    QCOMPARE(terminals(), 3);
    QCOMPARE(selectedTerminal(), 2);
    QCOMPARE(title(), QStringLiteral("2f ff ff #9(Output 1)"));
}

void tst_windowExchange::theCommentGoesIntoTheFileAndComesBack()
{
    auto* const comment = get<QTextEdit>("textEditComment");
    comment->setPlainText(QStringLiteral("Hall, floor 2\n<b>north</b>"));
    dialogs->saveAnswers = QStringList{QStringLiteral("comment.cfg")};
    action("actionSave")->trigger();
    comment->setPlainText(QStringLiteral("something else"));
    dialogs->openAnswers = QStringList{QStringLiteral("comment.cfg")};
    action("actionLoad")->trigger();
    QCOMPARE(comment->toPlainText().trimmed(), QStringLiteral("Hall, floor 2\n<b>north</b>"));
    QFile::remove(QStringLiteral("comment.cfg"));
}

void tst_windowExchange::readingAndWritingSetTheTimeOnlyIfAsked_data()
{
    QTest::addColumn<bool>("isChecked");
    QTest::addColumn<bool>("isEnabled");
    QTest::addColumn<int>("times");
    QTest::newRow("asked for") << true << true << 1;
    QTest::newRow("not asked for") << false << true << 0;
    QTest::newRow("the unit's time can't be read") << true << false << 0;
}

void tst_windowExchange::readingAndWritingSetTheTimeOnlyIfAsked()
{
    QFETCH(const bool, isChecked);
    QFETCH(const bool, isEnabled);
    QFETCH(const int, times);
    action("actionSyncTime")->setChecked(isChecked);
    emit form()->sig_sendDeviceTimeOnForm(QStringLiteral("time"), isEnabled);
    for (const char* name : {"actionRead", "actionWrite", "actionReadLog"}) {
        QSignalSpy time(window.get(), &MainWindow::sig_WriteRealTime);
        action(name)->trigger();
        QCOMPARE(time.size(), times);
    }
    for (const char* name : {"actionLoad", "actionSave", "actionLoadLog", "actionSaveLog", "actionFirmware"}) {
        QSignalSpy time(window.get(), &MainWindow::sig_WriteRealTime);
        action(name)->trigger();
        QCOMPARE(time.size(), 0);
    }
}

void tst_windowExchange::writingSendsTheTimeBeforeTheRecords()
{
    connect(window.get(), &MainWindow::sig_WriteRealTime, this, [this] { order.append(QStringLiteral("time")); });
    connect(window.get(), &MainWindow::sig_WriteConfigAndScript, this,
            [this](const QByteArrayList& outputs, const QByteArrayList& scripts) {
                order.append(QStringLiteral("%1 outputs, %2 scripts").arg(outputs.size()).arg(scripts.size()));
            });
    action("actionWrite")->trigger();
    QCOMPARE(order, (QStringList{QStringLiteral("time"), QStringLiteral("8 outputs, 32 scripts")}));
}

void tst_windowExchange::theLogSendsTheTimeBeforeItsReading()
{
    connect(window.get(), &MainWindow::sig_WriteRealTime, this, [this] { order.append(QStringLiteral("time")); });
    connect(window.get(), &MainWindow::sig_ReadLogEvents, this, [this] { order.append(QStringLiteral("log")); });
    action("actionReadLog")->trigger();
    QCOMPARE(order, (QStringList{QStringLiteral("time"), QStringLiteral("log")}));
}

void tst_windowExchange::aChangeToTheLogTabReadsWithoutTheTime()
{
    QSignalSpy time(window.get(), &MainWindow::sig_WriteRealTime);
    QSignalSpy log(window.get(), &MainWindow::sig_ReadLogEvents);
    auto* const tabs = get<QTabWidget>("tabWidget");
    tabs->setCurrentIndex(2);
    QCOMPARE(log.size(), 0);
    tabs->setCurrentIndex(1);
    QCOMPARE(log.size(), 1);
    QCOMPARE(time.size(), 0);
}

void tst_windowExchange::aChangeToTheLogTabDoesNothingWhileTheLogIsDisabled()
{
    emit form()->sig_sendEnableOperationOnForm(false);
    QSignalSpy log(window.get(), &MainWindow::sig_ReadLogEvents);
    get<QTabWidget>("tabWidget")->setCurrentIndex(1);
    QCOMPARE(log.size(), 0);
}

QTEST_MAIN(tst_windowExchange)
#include "tst_windowExchange.moc"
