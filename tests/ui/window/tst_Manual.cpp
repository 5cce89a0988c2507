#include "firmware/Loading.h"
#include "link/FormWaiting.h"
#include "texts/texts.h"
#include "ui/log/EventView.h"
#include "ui/tree/FormAddingTerminal.h"
#include "ui/window/FirmwareLoading.h"
#include "ui/window/Manual.h"
#include "ui/window/WindowTest.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QStandardItemModel>
#include <QTemporaryDir>

#include <utility>

/// F1: which file is the manual, and what the window does with it. What would open it is this test.
class tst_Manual : public WindowTest
{
    Q_OBJECT

public slots:
    /// What the desktop is asked to open.
    void open(const QUrl& url)
    {
        opened.append(url);
    }

private slots:
    void init();
    void cleanup();

    void theInstalledOneComesBeforeThatOfTheSources();
    void theFirstFileThatIsThereIsTaken();
    void inTheTreeThatItWasBuiltFromItIsFound();
    void f1OpensIt();
    void f1OpensItInTheFormThatComesFirst();
    void f1OpensItWhereATerminalIsAdded();
    void f1OpensItInAnOpenedEvent();
    void f1OpensItWhileFirmwareIsLoaded();
    void f1DoesNothingWhileTheProgramIsBusy();
    void withoutItTheUserReadsWhereItWasLookedFor();

private:
    QString file(const QString& name) const
    {
        return directory->filePath(name);
    }
    void make(const QString& name) const
    {
        QFile made(file(name));
        QVERIFY(made.open(QIODevice::WriteOnly));
    }

    static void press(Qt::Key key, QWidget* where)
    {
        where->activateWindow();
        QTRY_COMPARE(QApplication::activeWindow(), where); // a window counts as active while one over it is
        QTest::keyClick(where, key);
    }

    std::unique_ptr<QTemporaryDir> directory;
    QList<QUrl> opened;
};

void tst_Manual::init()
{
    directory = std::make_unique<QTemporaryDir>();
    opened.clear();
    QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "open");
    begin({file(QStringLiteral("manual.html")), file(QStringLiteral("manual.md"))});
}

void tst_Manual::cleanup()
{
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
    window.reset();
}

void tst_Manual::theInstalledOneComesBeforeThatOfTheSources()
{
    const QStringList places = manual::places(QStringLiteral("/somewhere/bin"));
    QCOMPARE(places.size(), 2);
    QCOMPARE(places.first(), QStringLiteral("/somewhere/share/doc/hubn-manager/manual.html"));
    QVERIFY(places.last().endsWith(QLatin1String("docs/manual.md")));
}

void tst_Manual::theFirstFileThatIsThereIsTaken()
{
    const QStringList files{file(QStringLiteral("a")), file(QStringLiteral("b")), file(QStringLiteral("c"))};
    QCOMPARE(manual::firstOf(files), QString());
    make(QStringLiteral("c"));
    QCOMPARE(manual::firstOf(files), files.at(2));
    make(QStringLiteral("b"));
    QCOMPARE(manual::firstOf(files), files.at(1));
    // A directory of that name is none.
    QVERIFY(QDir().mkpath(files.at(0)));
    QCOMPARE(manual::firstOf(files), files.at(1));
}

void tst_Manual::inTheTreeThatItWasBuiltFromItIsFound()
{
    const QString found = manual::firstOf(manual::places(QCoreApplication::applicationDirPath()));
    QVERIFY2(found.endsWith(QLatin1String("docs/manual.md")), qPrintable(found));
}

void tst_Manual::f1OpensIt()
{
    make(QStringLiteral("manual.md"));
    form()->hide();
    press(Qt::Key_F1, window.get());
    QCOMPARE(opened, {QUrl::fromLocalFile(file(QStringLiteral("manual.md")))});
    make(QStringLiteral("manual.html"));
    press(Qt::Key_F1, window.get());
    QCOMPARE(opened.last(), QUrl::fromLocalFile(file(QStringLiteral("manual.html"))));
    QVERIFY(dialogs->boxes.isEmpty());
}

void tst_Manual::f1OpensItInTheFormThatComesFirst()
{
    make(QStringLiteral("manual.html"));
    QVERIFY(form()->isVisible());
    press(Qt::Key_F1, form());
    QCOMPARE(opened, {QUrl::fromLocalFile(file(QStringLiteral("manual.html")))});
    QVERIFY(dialogs->boxes.isEmpty());
}

void tst_Manual::f1OpensItWhereATerminalIsAdded()
{
    make(QStringLiteral("manual.html"));
    form()->hide();
    auto* const adding = window->findChild<FormAddingTerminal*>();
    adding->show();
    press(Qt::Key_F1, adding);
    QCOMPARE(opened.size(), 1);
    QVERIFY(adding->isVisible());
}

void tst_Manual::f1OpensItInAnOpenedEvent()
{
    make(QStringLiteral("manual.html"));
    form()->hide();
    const QStandardItemModel log(1, 18);
    auto* const event = new EventView(log, 0, window.get());
    event->show();
    press(Qt::Key_F1, event);
    QCOMPARE(opened.size(), 1);
}

void tst_Manual::f1OpensItWhileFirmwareIsLoaded()
{
    make(QStringLiteral("manual.html"));
    form()->hide();
    QFile image(file(QStringLiteral("image.crypt")));
    QVERIFY(image.open(QIODevice::WriteOnly));
    QCOMPARE(image.write(QByteArray(600, 'x')), qint64(600));
    image.close();
    dialogs->openAnswers = QStringList(image.fileName());
    FirmwarePort port;
    port.setRunning = [](bool) {};
    bool isPressed = false;
    port.send = [this, &isPressed](const message&) {
        if (std::exchange(isPressed, true)) {
            return;
        }
        // The dialog is only about to be shown.
        const auto pressAndClose = [] {
            QWidget* const dialog = QApplication::activeModalWidget();
            QVERIFY(qobject_cast<Loading*>(dialog) != nullptr);
            press(Qt::Key_F1, dialog);
            QMetaObject::invokeMethod(dialog, "on_ButtonAbort_clicked", Qt::QueuedConnection);
            QMetaObject::invokeMethod(dialog, "reject", Qt::QueuedConnection);
        };
        QMetaObject::invokeMethod(this, pressAndClose, Qt::QueuedConnection);
    };
    window->findChild<FirmwareLoading*>()->loadOnPort(port);
    QCOMPARE(opened.size(), 1);
}

void tst_Manual::f1DoesNothingWhileTheProgramIsBusy()
{
    make(QStringLiteral("manual.html"));
    form()->hide();
    auto* const busy = window->findChild<FormWaiting*>();
    busy->show();
    press(Qt::Key_F1, busy);
    QVERIFY(opened.isEmpty());
    busy->hide();
}

void tst_Manual::withoutItTheUserReadsWhereItWasLookedFor()
{
    press(Qt::Key_F1, form());
    QVERIFY(opened.isEmpty());
    QCOMPARE(dialogs->boxes.size(), 1);
    QCOMPARE(dialogs->boxes.first().title, texts::manualTitle());
    QVERIFY(dialogs->boxes.first().text.contains(file(QStringLiteral("manual.html"))));
    QVERIFY(dialogs->boxes.first().text.contains(file(QStringLiteral("manual.md"))));
}

QTEST_MAIN(tst_Manual)
#include "tst_Manual.moc"
