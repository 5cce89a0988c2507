#include "model/RelayInfo.h"
#include "support/ScriptedDialogs.h"
#include "ui/window/ConfigurationFiles.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

/// The three operations on configuration files: what they ask, what they show and in which order.
class tst_ConfigurationFiles : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void savingAsksForAFileAndTellsSuccessWithItsName();
    void savingThatFailsTellsTheErrorWithTheFileName();
    void aCancelledQuestionEndsTheOperation();
    void loadingReplacesTheModelBeforeItTellsSuccess();
    void loadingWithErrorsTellsTheirNumberOnTheFirstLine();
    void loadingAMissingFileLeavesTheModel();
    void loadingADirectoryLeavesTheModel();
    void defaultSettingsAreReadAndGoToTheDevice();
    void defaultSettingsKeepTheUsersComment();
    void missingDefaultSettingsShowTheBoxAndLeaveTheModel();
    void defaultSettingsThatCannotBeOpenedDoNotReachTheDevice();

private:
    void watch(ConfigurationFiles& files);
    void write(const QString& name, const QByteArray& bytes) const;

    std::unique_ptr<QTemporaryDir> directory;
    QString formerDirectory;
    QSharedPointer<RelayInfo> model;
    std::unique_ptr<ScriptedDialogs> dialogs;
    QStringList happened; ///< the signals in their order
};

void tst_ConfigurationFiles::init()
{
    formerDirectory = QDir::currentPath();
    directory = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir::setCurrent(directory->path()));
    model = QSharedPointer<RelayInfo>::create();
    dialogs = std::make_unique<ScriptedDialogs>();
    happened.clear();
}

void tst_ConfigurationFiles::cleanup()
{
    QVERIFY(QDir::setCurrent(formerDirectory));
    directory.reset();
}

void tst_ConfigurationFiles::watch(ConfigurationFiles& files)
{
    connect(&files, &ConfigurationFiles::result, this, [this](const QString& text) { happened.append(text); });
    connect(&files, &ConfigurationFiles::modelReplaced, this, [this] { happened.append(QStringLiteral("(model)")); });
    connect(&files, &ConfigurationFiles::commentReplaced, this,
            [this](const QString& text) { happened.append(QStringLiteral("(comment) ") + text); });
    connect(&files, &ConfigurationFiles::writeRequested, this, [this] { happened.append(QStringLiteral("(write)")); });
}

void tst_ConfigurationFiles::write(const QString& name, const QByteArray& bytes) const
{
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

void tst_ConfigurationFiles::savingAsksForAFileAndTellsSuccessWithItsName()
{
    ConfigurationFiles files(model, dialogs.get(), nullptr);
    watch(files);
    dialogs->saveAnswers = QStringList{QStringLiteral("hall.cfg")};
    files.save();
    QCOMPARE(dialogs->questions, QStringList{QStringLiteral("Save configuration|*.cfg")});
    QCOMPARE(happened,
             (QStringList{QStringLiteral("Saving configuration of outputs and scripts of work of executive terminals "
                                         "to file started..."),
                          QStringLiteral("Saving configuration of outputs and scripts of work of executive terminals "
                                         "to file SUCCESSFUL COMPLETE\nhall.cfg")}));
    QVERIFY(QFile::exists(QStringLiteral("hall.cfg")));
}

void tst_ConfigurationFiles::savingThatFailsTellsTheErrorWithTheFileName()
{
    ConfigurationFiles files(model, dialogs.get(), nullptr);
    watch(files);
    dialogs->saveAnswers = QStringList{QStringLiteral("nowhere/hall.cfg")};
    files.save();
    QCOMPARE(happened.last(),
             QStringLiteral("ERROR saving configuration of outputs and scripts of work of executive terminals to file"
                            "\nnowhere/hall.cfg"));
    QVERIFY(dialogs->boxes.isEmpty());
}

void tst_ConfigurationFiles::aCancelledQuestionEndsTheOperation()
{
    ConfigurationFiles files(model, dialogs.get(), nullptr);
    watch(files);
    files.save();
    files.load();
    QCOMPARE(dialogs->questions,
             (QStringList{QStringLiteral("Save configuration|*.cfg"), QStringLiteral("Load configuration|*.cfg")}));
    QCOMPARE(happened, QStringList());
}

void tst_ConfigurationFiles::loadingReplacesTheModelBeforeItTellsSuccess()
{
    write(QStringLiteral("a.cfg"), "[Comment]\r\nHall\r\n\r\n[Scripts]\r\nScript[3].Name=Siren\r\n");
    ConfigurationFiles files(model, dialogs.get(), nullptr);
    watch(files);
    dialogs->openAnswers = QStringList{QStringLiteral("a.cfg")};
    files.load();
    QCOMPARE(happened,
             (QStringList{QStringLiteral("Loading configuration of outputs and scripts of work of executive terminals "
                                         "from file started..."),
                          QStringLiteral("(model)"), QStringLiteral("(comment) Hall\n"),
                          QStringLiteral("Loading configuration of outputs and scripts of work of executive terminals "
                                         "from file SUCCESSFUL COMPLETE\na.cfg")}));
    QCOMPARE(model->findScript(3)->name, QStringLiteral("Siren"));
}

void tst_ConfigurationFiles::loadingWithErrorsTellsTheirNumberOnTheFirstLine()
{
    write(QStringLiteral("a.cfg"), "nonsense\r\nScript[40].Mode=1\r\n");
    ConfigurationFiles files(model, dialogs.get(), nullptr);
    watch(files);
    dialogs->openAnswers = QStringList{QStringLiteral("a.cfg")};
    files.load();
    QCOMPARE(happened.last(),
             QStringLiteral("Loading configuration of outputs and scripts of work of executive terminals from file "
                            "COMPLETE WITH ERROR  (Number of error = 2)\na.cfg"));
}

void tst_ConfigurationFiles::loadingAMissingFileLeavesTheModel()
{
    model->findScript(0)->name = QStringLiteral("Mine");
    ConfigurationFiles files(model, dialogs.get(), nullptr);
    watch(files);
    dialogs->openAnswers = QStringList{QStringLiteral("gone.cfg")};
    files.load();
    QCOMPARE(happened.last(),
             QStringLiteral("ERROR loading configuration of outputs and scripts of work of executive terminals from "
                            "file\ngone.cfg"));
    QCOMPARE(model->findScript(0)->name, QStringLiteral("Mine"));
}

void tst_ConfigurationFiles::loadingADirectoryLeavesTheModel()
{
    QVERIFY(QDir().mkdir(QStringLiteral("directory.cfg")));
    model->findScript(0)->name = QStringLiteral("Mine");
    ConfigurationFiles files(model, dialogs.get(), nullptr);
    watch(files);
    dialogs->openAnswers = QStringList{QStringLiteral("directory.cfg")};
    files.load();
    QVERIFY(happened.last().startsWith(QStringLiteral("ERROR loading configuration")));
    QCOMPARE(model->findScript(0)->name, QStringLiteral("Mine"));
}

void tst_ConfigurationFiles::defaultSettingsAreReadAndGoToTheDevice()
{
    write(QStringLiteral("DefaultSetting_EN.cfg"), "[Scripts]\r\nScript[0].Name=Fire\r\n");
    ConfigurationFiles files(model, dialogs.get(), nullptr);
    watch(files);
    files.setDefaults();
    QCOMPARE(happened, (QStringList{QStringLiteral("Loading default settings started..."), QStringLiteral("(model)"),
                                    QStringLiteral("(write)")}));
    QCOMPARE(model->findScript(0)->name, QStringLiteral("Fire"));
    QVERIFY(dialogs->questions.isEmpty());
}

void tst_ConfigurationFiles::defaultSettingsKeepTheUsersComment()
{
    write(QStringLiteral("DefaultSetting_EN.cfg"), "[Comment]\r\nDefaults\r\n[Configuration]\r\n");
    model->setComment(QStringLiteral("Hall, floor 2"));
    ConfigurationFiles files(model, dialogs.get(), nullptr);
    files.setDefaults();
    QCOMPARE(model->comment(), QStringLiteral("Hall, floor 2"));
}

void tst_ConfigurationFiles::missingDefaultSettingsShowTheBoxAndLeaveTheModel()
{
    model->findScript(0)->name = QStringLiteral("Mine");
    model->addGroup(QStringLiteral("Siren"), 5);
    ConfigurationFiles files(model, dialogs.get(), nullptr);
    watch(files);
    files.setDefaults();
    QCOMPARE(dialogs->boxes.size(), 1);
    QCOMPARE(dialogs->boxes.first().title, QStringLiteral("File not found"));
    QCOMPARE(dialogs->boxes.first().text, QStringLiteral("Default settings file is missing (DefaultSetting_EN.cfg)"));
    QCOMPARE(happened, (QStringList{QStringLiteral("Loading default settings started..."),
                                    QStringLiteral("ERROR default settings")}));
    QCOMPARE(model->findScript(0)->name, QStringLiteral("Mine"));
    QCOMPARE(model->groups().size(), 2);
}

void tst_ConfigurationFiles::defaultSettingsThatCannotBeOpenedDoNotReachTheDevice()
{
    QVERIFY(QDir().mkdir(QStringLiteral("DefaultSetting_EN.cfg")));
    ConfigurationFiles files(model, dialogs.get(), nullptr);
    watch(files);
    files.setDefaults();
    QCOMPARE(happened, (QStringList{QStringLiteral("Loading default settings started..."),
                                    QStringLiteral("ERROR default settings")}));
}

QTEST_GUILESS_MAIN(tst_ConfigurationFiles)
#include "tst_ConfigurationFiles.moc"
