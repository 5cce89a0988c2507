#include "texts/texts.h"
#include "ui/window/WindowTest.h"

#include <QDir>
#include <QFile>
#include <QListWidget>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTextEdit>
#include <QTreeWidget>

/// Configuration files in the window, without any port: what the menu's actions ask, load and show.
class tst_windowFiles : public WindowTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void aLoadedFileIsShownEverywhere();
    void theLoadedCommentIsSavedAgain();
    void loadingTwiceKeepsTheComment();
    void loadingWorksWhileTheDevicesActionsAreDisabled();
    void aFileThatIsMissingLeavesWhatIsShown();
    void defaultSettingsAreHandedToTheDevice();
    void defaultSettingsWithoutAPortKeepTheirFirstLine();
    void missingDefaultSettingsLeaveWhatIsShown();
    void requestsOfTheWindowReachTheDatabase();

private:
    void trigger(const char* name) const
    {
        action(name)->trigger();
    }
    static void write(const QString& name, const QByteArray& text)
    {
        QFile file(name);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(text), qint64(text.size()));
    }
    void load(const QString& name) const
    {
        dialogs->openAnswers.append(name);
        trigger("actionLoad");
    }

    std::unique_ptr<QTemporaryDir> directory;
    QString formerDirectory;
};

namespace
{

const QByteArray configuration = "[Comment]\r\nHall, floor 2\r\n\r\n[Configuration]\r\nNumberOfDevices=2\r\n"
                                 "ExecutiveTerminal[1].Name=Stairs\r\n"
                                 "ExecutiveTerminal[1].Address=5\r\n"
                                 "ExecutiveTerminal[1].NumberOfOutputs=1\r\n"
                                 "ExecutiveTerminal[1].Output[0].Name=Lamp\r\n"
                                 "ExecutiveTerminal[1].Output[0].Number=0\r\n"
                                 "ExecutiveTerminal[0].Output[0].ActivatedScripts=3; \r\n"
                                 "\r\n[Scripts]\r\nScript[0].Name=First\r\nScript[3].Name=Fire\r\n";

} // namespace

void tst_windowFiles::initTestCase()
{
    formerDirectory = QDir::currentPath();
}

void tst_windowFiles::init()
{
    directory = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir::setCurrent(directory->path()));
    begin();
}

void tst_windowFiles::cleanup()
{
    window.reset();
    QVERIFY(QDir::setCurrent(formerDirectory));
}

void tst_windowFiles::aLoadedFileIsShownEverywhere()
{
    write(QStringLiteral("a.cfg"), configuration);
    load(QStringLiteral("a.cfg"));
    QCOMPARE(result(), texts::resultLoadOk() + QStringLiteral("\na.cfg"));
    QCOMPARE(get<QTextEdit>("textEditComment")->toPlainText(), QStringLiteral("Hall, floor 2\n"));
    const auto* const tree = get<QTreeWidget>("treeWidget");
    QCOMPARE(tree->topLevelItemCount(), 3); // two terminals and the button that adds one
    QVERIFY(tree->topLevelItem(0)->isSelected());
    QCOMPARE(get<QLabel>("labelTitleParamRelay")->text(), QStringLiteral("HUBN-NX-Q (Internal relay 1)"));
    QCOMPARE(get<QListWidget>("listWidgetActivateScript")->count(), 1);
    QCOMPARE(get<QListWidget>("listWidgetActivateScript")->currentRow(), 0);
    const QListWidget* const all = get<QListWidget>("listWidgetAllScript");
    QCOMPARE(all->count(), 32);
    const auto* const label = qobject_cast<QLabel*>(all->itemWidget(all->item(3)));
    QVERIFY(label != nullptr);
    QVERIFY(label->text().endsWith(QStringLiteral("4. Fire")));
}

void tst_windowFiles::theLoadedCommentIsSavedAgain()
{
    write(QStringLiteral("a.cfg"), configuration);
    load(QStringLiteral("a.cfg"));
    get<QTextEdit>("textEditComment")->append(QStringLiteral("by hand"));
    dialogs->saveAnswers.append(QStringLiteral("b.cfg"));
    trigger("actionSave");
    QCOMPARE(result(), texts::resultSaveOk() + QStringLiteral("\nb.cfg"));
    QFile file(QStringLiteral("b.cfg"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    QVERIFY(text.startsWith("[Comment]\r\nHall, floor 2\r\n"));
    QVERIFY(text.contains("by hand\r\n\r\n[Configuration]\r\n"));
    QVERIFY(text.contains("ExecutiveTerminal[1].Name=Stairs\r\n"));
}

void tst_windowFiles::loadingTwiceKeepsTheComment()
{
    write(QStringLiteral("a.cfg"), configuration);
    QString file = QStringLiteral("a.cfg");
    for (int i = 0; i < 3; ++i) {
        load(file);
        QCOMPARE(get<QTextEdit>("textEditComment")->toPlainText(), QStringLiteral("Hall, floor 2\n"));
        file = QStringLiteral("%1.cfg").arg(i);
        dialogs->saveAnswers.append(file);
        trigger("actionSave");
    }
}

void tst_windowFiles::loadingWorksWhileTheDevicesActionsAreDisabled()
{
    emit window->findChild<FormChoiceCoordinator*>()->sig_sendEnableOperationOnForm(false);
    write(QStringLiteral("a.cfg"), configuration);
    load(QStringLiteral("a.cfg"));
    QCOMPARE(get<QTreeWidget>("treeWidget")->topLevelItemCount(), 3);
    for (const char* name : {"actionRead", "actionWrite", "actionFactorySetting"}) {
        QVERIFY(!action(name)->isEnabled());
    }
}

void tst_windowFiles::aFileThatIsMissingLeavesWhatIsShown()
{
    write(QStringLiteral("a.cfg"), configuration);
    load(QStringLiteral("a.cfg"));
    load(QStringLiteral("gone.cfg"));
    QCOMPARE(result(), texts::resultLoadError() + QStringLiteral("\ngone.cfg"));
    QCOMPARE(get<QTextEdit>("textEditComment")->toPlainText(), QStringLiteral("Hall, floor 2\n"));
    QCOMPARE(get<QTreeWidget>("treeWidget")->topLevelItemCount(), 3);
}

void tst_windowFiles::defaultSettingsAreHandedToTheDevice()
{
    write(QStringLiteral("DefaultSetting_EN.cfg"), configuration);
    get<QTextEdit>("textEditComment")->setPlainText(QStringLiteral("mine"));
    action("actionSyncTime")->setChecked(false);
    const QSignalSpy written(window.get(), &MainWindow::sig_WriteConfigAndScript);
    trigger("actionFactorySetting");
    QCOMPARE(written.size(), 1);
    const auto outputs = written.first().at(0).value<QByteArrayList>();
    QCOMPARE(outputs.size(), 9);
    QCOMPARE(outputs.first(), QByteArray::fromHex("00000003"));
    QCOMPARE(outputs.last(), QByteArray::fromHex("050000"));
    QCOMPARE(written.first().at(1).value<QByteArrayList>().size(), 32);
    QCOMPARE(get<QTreeWidget>("treeWidget")->topLevelItemCount(), 3);
    QCOMPARE(get<QTextEdit>("textEditComment")->toPlainText(), QStringLiteral("mine"));
}

void tst_windowFiles::defaultSettingsWithoutAPortKeepTheirFirstLine()
{
    write(QStringLiteral("DefaultSetting_EN.cfg"), configuration);
    trigger("actionFactorySetting");
    QCOMPARE(result(), QStringLiteral("Loading default settings started..."));
    QVERIFY(dialogs->boxes.isEmpty());
}

void tst_windowFiles::missingDefaultSettingsLeaveWhatIsShown()
{
    write(QStringLiteral("a.cfg"), configuration);
    load(QStringLiteral("a.cfg"));
    const QSignalSpy written(window.get(), &MainWindow::sig_WriteConfigAndScript);
    trigger("actionFactorySetting");
    QCOMPARE(result(), QStringLiteral("ERROR default settings"));
    QCOMPARE(dialogs->boxes.size(), 1);
    QCOMPARE(dialogs->boxes.first().text, QStringLiteral("Default settings file is missing (DefaultSetting_EN.cfg)"));
    QCOMPARE(written.size(), 0);
    QCOMPARE(get<QTreeWidget>("treeWidget")->topLevelItemCount(), 3);
}

void tst_windowFiles::requestsOfTheWindowReachTheDatabase()
{
    const QString copy = QStringLiteral("copy.db");
    emit window->sig_SaveOtherDB(copy);
    QTRY_VERIFY(QFile::exists(copy));
}

QTEST_MAIN(tst_windowFiles)
#include "tst_windowFiles.moc"
