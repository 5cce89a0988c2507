#include "firmware/Loading.h"
#include "texts/texts.h"
#include "ui/window/FirmwareLoading.h"
#include "ui/window/WindowTest.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

/// The two ways to load firmware, up to the load itself.
class tst_FirmwareLoading : public WindowTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void cancelledInTheFileDialogNothingBegins();
    void aFileThatCannotBeReadBeginsNothing();
    void theFileIsAskedForAndLoaded();

private:
    FirmwarePort port()
    {
        FirmwarePort port;
        port.send = [this](const message&) { ++sent; };
        port.setRunning = [this](bool on) { running.append(on); };
        return port;
    }
    FirmwareLoading* loading() const
    {
        return window->findChild<FirmwareLoading*>();
    }
    /// The load on a port of the coordinator form, then that on the current port. Returns the questions for a file.
    QStringList loadBoth()
    {
        const QSignalSpy current(loading(), &FirmwareLoading::runningOnCurrentPort);
        loading()->loadOnPort(port());
        loading()->loadOnCurrentPort();
        for (const QList<QVariant>& call : current) {
            runningOnCurrent.append(call.first().toBool());
        }
        return dialogs->questions;
    }

    int sent = 0;
    QList<bool> running;
    QList<bool> runningOnCurrent;
};

void tst_FirmwareLoading::init()
{
    begin();
    sent = 0;
    running.clear();
    runningOnCurrent.clear();
}

void tst_FirmwareLoading::cleanup()
{
    window.reset();
}

void tst_FirmwareLoading::cancelledInTheFileDialogNothingBegins()
{
    const QString question = texts::firmwareChooseFile() + QStringLiteral("|*.crypt");
    QCOMPARE(loadBoth(), QStringList({question, question}));
    QCOMPARE(sent, 0);
    QVERIFY(running.isEmpty());
    QVERIFY(runningOnCurrent.isEmpty());
    QVERIFY(dialogs->boxes.isEmpty());
}

void tst_FirmwareLoading::aFileThatCannotBeReadBeginsNothing()
{
    dialogs->openAnswers = QStringList({QStringLiteral("none.crypt"), QStringLiteral("none.crypt")});
    loadBoth();
    QCOMPARE(dialogs->boxes.size(), 2);
    QCOMPARE(sent, 0);
    QVERIFY(running.isEmpty());
    QVERIFY(runningOnCurrent.isEmpty());
}

void tst_FirmwareLoading::theFileIsAskedForAndLoaded()
{
    const QTemporaryDir folder;
    QFile image(folder.filePath(QStringLiteral("image.crypt")));
    QVERIFY(image.open(QIODevice::WriteOnly));
    QCOMPARE(image.write(QByteArray(600, 'x')), qint64(600));
    image.close();
    dialogs->openAnswers = QStringList(image.fileName());
    // Aborted as soon as it has sent its first request, and closed.
    FirmwarePort aborting = port();
    aborting.send = [this](const message&) {
        ++sent;
        const QWidgetList widgets = QApplication::topLevelWidgets();
        for (QWidget* dialog : widgets) {
            if (qobject_cast<Loading*>(dialog) != nullptr) {
                QMetaObject::invokeMethod(dialog, "on_ButtonAbort_clicked", Qt::QueuedConnection);
                QMetaObject::invokeMethod(dialog, "reject", Qt::QueuedConnection);
            }
        }
    };
    loading()->loadOnPort(aborting);
    QCOMPARE(sent, 1);
    QCOMPARE(running, QList<bool>({true, false}));
}

QTEST_MAIN(tst_FirmwareLoading)
#include "tst_FirmwareLoading.moc"
