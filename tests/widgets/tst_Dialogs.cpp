#include "widgets/Dialogs.h"

#include <QAbstractButton>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <functional>
#include <memory>

/// The real dialogs, answered by their own buttons and fields.
class tst_Dialogs : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void openingBeginsInTheWorkingDirectory();
    void openingReturnsTheFileThatIsChosen();
    void openingTakesNoFileThatIsNotThere();
    void cancelledNothingIsReturned();
    void savingBeginsInTheWorkingDirectory();
    void savingAddsTheSuffixOfTheFilter_data();
    void savingAddsTheSuffixOfTheFilter();
    void savingAsksBeforeItOverwrites();
    void errorsAreTold();

private:
    /// Does something to a dialog as soon as it is open. Each dialog is dealt with once, in the order of the calls.
    template <typename Dialog>
    void inDialog(const std::function<void(Dialog&)>& act)
    {
        steps.append([act] {
            auto* const dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
            if (dialog == nullptr || !dialog->isVisible()) {
                return false;
            }
            act(*dialog);
            return true;
        });
    }

    static QString path(const QString& name)
    {
        return QDir::current().filePath(name);
    }
    static void enter(QFileDialog& dialog, const QString& name)
    {
        dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(name);
        QMetaObject::invokeMethod(&dialog, "accept", Qt::QueuedConnection); // it may ask a question of its own
    }
    static void writeFile(const QString& name)
    {
        QFile file(name);
        QVERIFY(file.open(QIODevice::WriteOnly));
    }

    Dialogs dialogs;
    QString before;
    std::unique_ptr<QTemporaryDir> folder;
    QTimer timer;
    QList<std::function<bool()>> steps;
};

void tst_Dialogs::initTestCase()
{
    before = QDir::currentPath();
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    connect(&timer, &QTimer::timeout, this, [this] {
        if (!steps.isEmpty()) {
            if (steps.first()()) {
                steps.removeFirst();
            }
        }
    });
}

void tst_Dialogs::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir::setCurrent(folder->path()));
    timer.start(5);
}

void tst_Dialogs::cleanup()
{
    timer.stop();
    const int left = steps.size();
    steps.clear();
    QDir::setCurrent(before);
    folder.reset();
    QCOMPARE(left, 0);
}

void tst_Dialogs::openingBeginsInTheWorkingDirectory()
{
    inDialog<QFileDialog>([](QFileDialog& dialog) {
        QCOMPARE(dialog.directory(), QDir::current());
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Load"));
        QCOMPARE(dialog.nameFilters(), QStringList{QStringLiteral("*.cfg")});
        QCOMPARE(dialog.acceptMode(), QFileDialog::AcceptOpen);
        QCOMPARE(dialog.fileMode(), QFileDialog::ExistingFile);
        dialog.reject();
    });
    dialogs.openFileName(nullptr, QStringLiteral("Load"), QStringLiteral("*.cfg"));
}

void tst_Dialogs::openingReturnsTheFileThatIsChosen()
{
    writeFile(QStringLiteral("a.cfg"));
    inDialog<QFileDialog>([](QFileDialog& dialog) { enter(dialog, QStringLiteral("a.cfg")); });
    QCOMPARE(dialogs.openFileName(nullptr, QStringLiteral("Load"), QStringLiteral("*.cfg")),
             path(QStringLiteral("a.cfg")));
}

void tst_Dialogs::openingTakesNoFileThatIsNotThere()
{
    inDialog<QFileDialog>([](QFileDialog& dialog) { enter(dialog, QStringLiteral("none.cfg")); });
    inDialog<QMessageBox>([](QMessageBox& box) { box.button(QMessageBox::Ok)->click(); });
    inDialog<QFileDialog>([](QFileDialog& dialog) { dialog.reject(); });
    QVERIFY(dialogs.openFileName(nullptr, QStringLiteral("Load"), QStringLiteral("*.cfg")).isEmpty());
}

void tst_Dialogs::cancelledNothingIsReturned()
{
    writeFile(QStringLiteral("a.cfg"));
    const auto cancel = [](QFileDialog& dialog) {
        dialog.selectFile(QStringLiteral("a.cfg"));
        dialog.reject();
    };
    inDialog<QFileDialog>(cancel);
    QVERIFY(dialogs.openFileName(nullptr, QStringLiteral("Load"), QStringLiteral("*.cfg")).isEmpty());
    inDialog<QFileDialog>(cancel);
    QVERIFY(dialogs.saveFileName(nullptr, QStringLiteral("Save"), QStringLiteral("*.cfg")).isEmpty());
}

void tst_Dialogs::savingBeginsInTheWorkingDirectory()
{
    inDialog<QFileDialog>([](QFileDialog& dialog) {
        QCOMPARE(dialog.directory(), QDir::current());
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Save"));
        QCOMPARE(dialog.nameFilters(), QStringList{QStringLiteral("*.db")});
        QCOMPARE(dialog.acceptMode(), QFileDialog::AcceptSave);
        dialog.reject();
    });
    dialogs.saveFileName(nullptr, QStringLiteral("Save"), QStringLiteral("*.db"));
}

void tst_Dialogs::savingAddsTheSuffixOfTheFilter_data()
{
    QTest::addColumn<QString>("entered");
    QTest::addColumn<QString>("returned");
    QTest::newRow("none") << QStringLiteral("site") << QStringLiteral("site.cfg");
    QTest::newRow("the same") << QStringLiteral("site.cfg") << QStringLiteral("site.cfg");
    QTest::newRow("another") << QStringLiteral("site.old") << QStringLiteral("site.old");
}

void tst_Dialogs::savingAddsTheSuffixOfTheFilter()
{
    QFETCH(const QString, entered);
    QFETCH(const QString, returned);
    inDialog<QFileDialog>([entered](QFileDialog& dialog) { enter(dialog, entered); });
    QCOMPARE(dialogs.saveFileName(nullptr, QStringLiteral("Save"), QStringLiteral("*.cfg")), path(returned));
}

/// The question concerns the name with its suffix, which the user hasn't typed.
void tst_Dialogs::savingAsksBeforeItOverwrites()
{
    writeFile(QStringLiteral("site.cfg"));
    const auto enterSite = [](QFileDialog& dialog) { enter(dialog, QStringLiteral("site")); };
    const auto answer = [](QMessageBox::StandardButton button) {
        return [button](QMessageBox& box) {
            QVERIFY2(box.text().contains(QStringLiteral("site.cfg")), qPrintable(box.text()));
            box.button(button)->click();
        };
    };
    inDialog<QFileDialog>(enterSite);
    inDialog<QMessageBox>(answer(QMessageBox::No));
    inDialog<QFileDialog>(enterSite);
    inDialog<QMessageBox>(answer(QMessageBox::Yes));
    QCOMPARE(dialogs.saveFileName(nullptr, QStringLiteral("Save"), QStringLiteral("*.cfg")),
             path(QStringLiteral("site.cfg")));
}

void tst_Dialogs::errorsAreTold()
{
    QWidget window;
    inDialog<QMessageBox>([&window](QMessageBox& box) {
        QCOMPARE(box.icon(), QMessageBox::Critical);
        QCOMPARE(box.windowTitle(), QStringLiteral("Fault"));
        QCOMPARE(box.text(), QStringLiteral("No room"));
        QCOMPARE(box.standardButtons(), QMessageBox::StandardButtons(QMessageBox::Ok));
        QCOMPARE(box.parentWidget(), &window);
        box.button(QMessageBox::Ok)->click();
    });
    dialogs.critical(&window, QStringLiteral("Fault"), QStringLiteral("No room"));
}

QTEST_MAIN(tst_Dialogs)
#include "tst_Dialogs.moc"
