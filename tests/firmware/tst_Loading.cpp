#include "firmware/LoadingBench.h"
#include "link/protocol_HUBN_NX_Q.h"

#include <QHelpEvent>
#include <QToolTip>
#include <QtTest>

namespace
{

/// A path without a place to break, of so many letters.
QString longName(int letters)
{
    return QStringLiteral("/tmp/") + QString(letters - 11, QLatin1Char('x')) + QStringLiteral(".crypt");
}

/// Whether a letter of a label's text is to be seen: whether the label looks different with another one.
bool shows(QLabel* label, int at)
{
    const QString text = label->text();
    const QImage before = label->grab().toImage();
    QString changed = text;
    changed[at] = QLatin1Char('W');
    label->setText(changed);
    const QImage after = label->grab().toImage();
    label->setText(text);
    return before != after;
}

} // namespace

Q_DECLARE_METATYPE(Reply)

class tst_Loading : public QObject
{
    Q_OBJECT

private slots:
    void looksAsItStarts();
    void beginsWithTheWayIntoTheBootloader();
    void noAddressIsSentAsZero_data();
    void noAddressIsSentAsZero();
    void runsToItsEndAndCloses();
    void goesOnWhateverTheUnitSaysToTheSwitch_data();
    void goesOnWhateverTheUnitSaysToTheSwitch();
    void barCountsTheSteps();
    void resendsAtMostThreeTimes();
    void commandsAroundTheImageMayGoUnanswered_data();
    void commandsAroundTheImageMayGoUnanswered();
    void imageEndsTheRun_data();
    void imageEndsTheRun();
    void everyKindOfBlockEndsTheRun_data();
    void everyKindOfBlockEndsTheRun();
    void silenceEndsAtTheHeadOfTheImage();
    void retryThatSucceedsGoesOn();
    void abortKeepsTheDialog();
    void lateAnswersChangeNothing_data();
    void lateAnswersChangeNothing();
    void repeatBeginsAnew();
    void answersOfAFormerRunAreNotTaken();
    void answersOfOthersAreNotTaken();
    void closesAfterAFailure();
    void closingInTheMiddleIsAnAbort();
    void escapeLeavesARunAlone();
    void escapeClosesAfterAnEnd();
    void longFileNameIsWhole();
    void fileNameWithoutRoomIsElidedInTheMiddle();
    void comingBackFromAnIconIsNoNewStart();
    void execReturnsWhenItIsOver();
};

void tst_Loading::looksAsItStarts()
{
    const Bench bench;
    QCOMPARE(bench.dialog->windowTitle(), QStringLiteral("Loading firmware"));
    QCOMPARE(bench.dialog->size(), QSize(402, 244));
    QCOMPARE(bench.dialog->minimumSize(), bench.dialog->maximumSize());
    QVERIFY(bench.dialog->testAttribute(Qt::WA_DeleteOnClose));
    QCOMPARE(bench.fileLabel()->text(), fileName());
    QVERIFY(bench.fileLabel()->wordWrap());
    QCOMPARE(bench.fileLabel()->alignment(), Qt::AlignCenter);
    QCOMPARE(bench.bar()->alignment(), Qt::AlignCenter);
    QCOMPARE(bench.bar()->format(), QStringLiteral("Programming... %p%"));
    QCOMPARE(bench.bar()->text(), QStringLiteral("Programming... 0%"));
    QCOMPARE(bench.bar()->styleSheet(), QStringLiteral("color: black"));
    QCOMPARE(bench.bar()->value(), 0);
    QCOMPARE(bench.bar()->maximum(), 7);
    QCOMPARE(bench.abortButton()->text(), QStringLiteral("Abort"));
    QVERIFY(bench.repeatButton()->isHidden());
    QCOMPARE(bench.repeatButton()->text(), QStringLiteral("Повторить"));
    QTRY_VERIFY(bench.abortButton()->width() > bench.dialog->width() * 3 / 4);
    const std::initializer_list<const QWidget*> controls = {bench.fileLabel(), bench.bar(), bench.abortButton(),
                                                            bench.repeatButton()};
    for (const QWidget* widget : controls) {
        QCOMPARE(widget->font().family(), QStringLiteral("Calibri"));
        QCOMPARE(widget->font().pointSize(), 12);
    }
}

void tst_Loading::beginsWithTheWayIntoTheBootloader()
{
    const Bench bench;
    QCOMPARE(bench.sent.size(), 1);
    QCOMPARE(bench.sent.constFirst().requestType(), 22);
    QCOMPARE(bench.sent.constFirst().request(), protocol_HUBN_NX_Q::requestSwitchToBoot(4).request());
    QCOMPARE(bench.sent.constFirst().baudrate(), 9600);
    QCOMPARE(bench.results, QStringList{QStringLiteral("Loading firmware started")});
}

void tst_Loading::noAddressIsSentAsZero_data()
{
    QTest::addColumn<int>("address");
    QTest::addColumn<int>("sent");
    QTest::newRow("255 stands for none") << 255 << 0;
    QTest::newRow("254 is an address") << 254 << 254;
    QTest::newRow("0") << 0 << 0;
}

void tst_Loading::noAddressIsSentAsZero()
{
    QFETCH(const int, address);
    QFETCH(const int, sent);
    const Bench bench(300, quint8(address));
    QCOMPARE(bench.sent.constFirst().request(), protocol_HUBN_NX_Q::requestSwitchToBoot(quint8(sent)).request());
}

void tst_Loading::runsToItsEndAndCloses()
{
    Bench bench(132);
    QList<int> types;
    while (bench.dialog->isVisible()) {
        types.append(bench.sent.constLast().bootType());
        if (types.size() == 5) {
            QCOMPARE(bench.bar()->value(), 3);
        }
        bench.reply(Reply::Good);
    }
    QCOMPARE(types, (QList<int>{0, 2, 3, 4, 5, 6, 1}));
    QCOMPARE(bench.results,
             (QStringList{QStringLiteral("Loading firmware started"), withFile("Loading firmware COMPLETED")}));
    QCOMPARE(bench.bar()->format(), QStringLiteral("Programming completed"));
    QCOMPARE(bench.bar()->value(), bench.bar()->maximum());
    QCOMPARE(bench.bar()->styleSheet(), QStringLiteral("color: black; font-weight:bold;"));
    QTRY_VERIFY(bench.dialog.isNull());
    QCOMPARE(bench.sent.size(), 7);
}

void tst_Loading::goesOnWhateverTheUnitSaysToTheSwitch_data()
{
    QTest::addColumn<Reply>("reply");
    QTest::newRow("accepted") << Reply::Good;
    QTest::newRow("refused") << Reply::Refused;
    QTest::newRow("silent") << Reply::Silent;
    QTest::newRow("port error") << Reply::PortError;
}

void tst_Loading::goesOnWhateverTheUnitSaysToTheSwitch()
{
    QFETCH(const Reply, reply);
    Bench bench;
    bench.reply(reply);
    QCOMPARE(bench.sent.size(), 2);
    QCOMPARE(bench.sent.constLast().bootType(), 2);
    QCOMPARE(bench.bar()->value(), 0);
}

void tst_Loading::barCountsTheSteps()
{
    Bench bench(300);
    bench.reply(Reply::Good);
    bench.reply(Reply::Good);
    QCOMPARE(bench.bar()->value(), 1);
    bench.reply(Reply::Silent);
    QCOMPARE(bench.bar()->value(), 1);
    bench.reply(Reply::Good);
    QCOMPARE(bench.bar()->value(), 2);
    QCOMPARE(bench.bar()->text(), QStringLiteral("Programming... 28%"));
}

void tst_Loading::resendsAtMostThreeTimes()
{
    Bench bench;
    bench.runTo(4);
    const int before = bench.sent.size();
    const message first = bench.sent.constLast();
    bench.replyToAll(Reply::Damaged);
    QCOMPARE(bench.sent.size(), before + 3);
    for (int i = 1; i <= 3; ++i) {
        const message& again = bench.sent.at(before - 1 + i);
        QCOMPARE(again.request(), first.request());
        QCOMPARE(int(again.attempts()), 3 - i);
        QCOMPARE(again.parseStatus(), int(PacketNotParsed));
        QVERIFY(again.rawAnswer().isEmpty());
    }
    bench.compareFailed(QStringLiteral("Programming error"));
}

void tst_Loading::commandsAroundTheImageMayGoUnanswered_data()
{
    QTest::addColumn<int>("bootType");
    QTest::addColumn<Reply>("reply");
    for (const int bootType : {2, 3, 1}) {
        QTest::addRow("%d, silent", bootType) << bootType << Reply::Silent;
        QTest::addRow("%d, refused", bootType) << bootType << Reply::Refused;
        QTest::addRow("%d, write error", bootType) << bootType << Reply::WriteError;
    }
}

void tst_Loading::commandsAroundTheImageMayGoUnanswered()
{
    QFETCH(const int, bootType);
    QFETCH(const Reply, reply);
    Bench bench;
    bench.runTo(bootType);
    const int value = bench.bar()->value();
    const int before = bench.sent.size();
    for (int i = 0; i < 4; ++i) {
        bench.reply(reply);
    }
    if (bootType == 1) {
        QVERIFY(!bench.dialog->isVisible());
        QCOMPARE(bench.results.constLast(), withFile("Loading firmware COMPLETED"));
        QCOMPARE(bench.sent.size(), before + 3);
    } else {
        QCOMPARE(bench.bar()->value(), value + 1);
        QCOMPARE(bench.sent.size(), before + 4);
        QCOMPARE(bench.sent.constLast().bootType(), bootType + 1);
        QCOMPARE(int(bench.sent.constLast().attempts()), 3);
    }
}

void tst_Loading::imageEndsTheRun_data()
{
    QTest::addColumn<Reply>("reply");
    QTest::addColumn<QString>("text");
    QTest::newRow("port error") << Reply::PortError << QStringLiteral("Port's error");
    QTest::newRow("silent") << Reply::Silent << QStringLiteral("Device not responding");
    QTest::newRow("write error") << Reply::WriteError << QStringLiteral("Write error");
    QTest::newRow("refused") << Reply::Refused << QStringLiteral("Programming error");
    QTest::newRow("damaged") << Reply::Damaged << QStringLiteral("Programming error");
}

void tst_Loading::imageEndsTheRun()
{
    QFETCH(const Reply, reply);
    QFETCH(const QString, text);
    Bench bench;
    bench.runTo(5);
    bench.replyToAll(reply);
    bench.compareFailed(text);
    QCOMPARE(bench.results.constLast(), withFile("ERROR PROGRAMMING firmware"));
    const QString style = bench.bar()->styleSheet();
    QVERIFY(style.contains(QStringLiteral("color: white")));
    QVERIFY(style.contains(QStringLiteral("font-weight: bold")));
    QVERIFY(style.indexOf(QStringLiteral("rgba(255, 200, 0, 255)")) <
            style.indexOf(QStringLiteral("rgba(255, 0, 0, 255)")));
    QVERIFY(style.contains(QStringLiteral("rgba(255, 200, 0, 255)")));
}

void tst_Loading::everyKindOfBlockEndsTheRun_data()
{
    QTest::addColumn<int>("bootType");
    for (const int bootType : {4, 5, 6}) {
        QTest::addRow("%d", bootType) << bootType;
    }
}

void tst_Loading::everyKindOfBlockEndsTheRun()
{
    QFETCH(const int, bootType);
    Bench bench;
    bench.runTo(bootType);
    bench.replyToAll(Reply::WriteError);
    bench.compareFailed(QStringLiteral("Write error"));
    QCOMPARE(bench.sent.constLast().bootType(), bootType);
}

void tst_Loading::silenceEndsAtTheHeadOfTheImage()
{
    Bench bench;
    bench.replyToAll(Reply::Silent);
    QList<int> types;
    for (const message& mess : qAsConst(bench.sent)) {
        types.append(mess.bootType());
    }
    QCOMPARE(types, (QList<int>{0, 2, 2, 2, 2, 3, 3, 3, 3, 4, 4, 4, 4}));
    bench.compareFailed(QStringLiteral("Device not responding"));
}

void tst_Loading::retryThatSucceedsGoesOn()
{
    Bench bench;
    bench.runTo(5);
    bench.reply(Reply::Silent);
    bench.reply(Reply::WriteError);
    bench.reply(Reply::Damaged);
    bench.reply(Reply::GoodToo);
    QCOMPARE(bench.bar()->value(), 4);
    QCOMPARE(int(bench.sent.constLast().attempts()), 3);
    bench.replyToAll(Reply::GoodToo);
    QCOMPARE(bench.results.constLast(), withFile("Loading firmware COMPLETED"));
}

void tst_Loading::abortKeepsTheDialog()
{
    Bench bench;
    bench.runTo(5);
    bench.abortButton()->click();
    bench.compareFailed(QStringLiteral("Programming aborted"));
    QCOMPARE(bench.results.constLast(), withFile("Loading firmware ABORTED by user"));
    // Both buttons have their half.
    QCoreApplication::sendPostedEvents();
    QVERIFY(qAbs(bench.abortButton()->width() - bench.repeatButton()->width()) <= 1);
}

void tst_Loading::lateAnswersChangeNothing_data()
{
    QTest::addColumn<int>("bootType");
    QTest::addColumn<Reply>("reply");
    for (const int bootType : {0, 2, 4, 5, 6, 1}) {
        QTest::addRow("good answer to %d", bootType) << bootType << Reply::Good;
        QTest::addRow("no answer to %d", bootType) << bootType << Reply::Silent;
    }
}

void tst_Loading::lateAnswersChangeNothing()
{
    QFETCH(const int, bootType);
    QFETCH(const Reply, reply);
    Bench bench;
    bench.runTo(bootType);
    bench.abortButton()->click();
    const int sent = bench.sent.size();
    const int results = bench.results.size();
    bench.reply(reply);
    QCOMPARE(bench.sent.size(), sent);
    QCOMPARE(bench.results.size(), results);
    bench.compareFailed(QStringLiteral("Programming aborted"));
}

void tst_Loading::repeatBeginsAnew()
{
    Bench bench(132);
    bench.runTo(6);
    bench.abortButton()->click();
    bench.sent.clear();
    bench.repeatButton()->click();
    QCOMPARE(bench.sent.size(), 1);
    QCOMPARE(bench.sent.constFirst().requestType(), 22);
    QCOMPARE(bench.bar()->text(), QStringLiteral("Programming... 0%"));
    QCOMPARE(bench.bar()->value(), 0);
    QCOMPARE(bench.bar()->maximum(), 6);
    QCOMPARE(bench.abortButton()->text(), QStringLiteral("Abort"));
    QVERIFY(bench.repeatButton()->isHidden());
    bench.replyToAll(Reply::Good);
    QList<int> types;
    for (const message& mess : qAsConst(bench.sent)) {
        types.append(mess.bootType());
    }
    QCOMPARE(types, (QList<int>{0, 2, 3, 4, 5, 6, 1}));
    QCOMPARE(bench.results.constLast(), withFile("Loading firmware COMPLETED"));
    QCOMPARE(bench.results.count(QStringLiteral("Loading firmware started")), 2);
}

void tst_Loading::answersOfAFormerRunAreNotTaken()
{
    Bench bench;
    bench.runTo(5);
    const message inFlight = bench.sent.constLast();
    bench.abortButton()->click();
    bench.repeatButton()->click();
    bench.sent.clear();
    bench.dialog->sl_receiveMessage(answerTo(inFlight));
    QVERIFY(bench.sent.isEmpty());
    // Two answers to the way into the bootloader start one sequence only.
    const message enter = answerTo(protocol_HUBN_NX_Q::requestSwitchToBoot(4));
    bench.dialog->sl_receiveMessage(enter);
    bench.dialog->sl_receiveMessage(enter);
    QCOMPARE(bench.sent.size(), 1);
    QCOMPARE(bench.sent.constFirst().bootType(), 2);
}

void tst_Loading::answersOfOthersAreNotTaken()
{
    Bench bench;
    bench.reply(Reply::Good);
    const int sent = bench.sent.size();
    bench.dialog->sl_receiveMessage(answerTo(protocol_HUBN_NX_Q::requestDeviceTime(1)));
    bench.dialog->sl_receiveMessage(message());
    QCOMPARE(bench.sent.size(), sent);
}

void tst_Loading::closesAfterAFailure()
{
    Bench bench;
    bench.runTo(4);
    bench.replyToAll(Reply::Silent);
    const QStringList results = bench.results;
    bench.abortButton()->click();
    QVERIFY(!bench.dialog->isVisible());
    QTRY_VERIFY(bench.dialog.isNull());
    QCOMPARE(bench.results, results);
}

void tst_Loading::closingInTheMiddleIsAnAbort()
{
    Bench bench;
    bench.runTo(5);
    bench.dialog->close();
    QCOMPARE(bench.results.constLast(), withFile("Loading firmware ABORTED by user"));
    QTRY_VERIFY(bench.dialog.isNull());
}

void tst_Loading::escapeLeavesARunAlone()
{
    Bench bench;
    bench.runTo(5);
    QWidget* const receivers[] = {bench.dialog, bench.abortButton()};
    for (QWidget* receiver : receivers) {
        QTest::keyClick(receiver, Qt::Key_Escape);
        QVERIFY(bench.dialog->isVisible());
        QCOMPARE(bench.abortButton()->text(), QStringLiteral("Abort"));
    }
    QCOMPARE(bench.results.size(), 1);
    bench.replyToAll(Reply::Good);
    QCOMPARE(bench.results.constLast(), withFile("Loading firmware COMPLETED"));
}

void tst_Loading::escapeClosesAfterAnEnd()
{
    Bench bench;
    bench.runTo(5);
    bench.abortButton()->click();
    QTest::keyClick(bench.dialog, Qt::Key_Escape);
    QCOMPARE(bench.results.size(), 2);
    QTRY_VERIFY(bench.dialog.isNull());
}

void tst_Loading::longFileNameIsWhole()
{
    const Bench bench(300, 4, 9600, longName(100));
    QLabel* label = bench.fileLabel();
    QVERIFY(label->fontMetrics().horizontalAdvance(label->text()) > label->width());
    QVERIFY(shows(label, 0));
    QVERIFY(shows(label, label->text().size() / 2));
    QVERIFY(shows(label, label->text().size() - 1));
}

void tst_Loading::fileNameWithoutRoomIsElidedInTheMiddle()
{
    const Bench bench(300, 4, 9600, longName(1000));
    QLabel* label = bench.fileLabel();
    QVERIFY(shows(label, 0));
    QVERIFY(!shows(label, label->text().size() / 2));
    QVERIFY(shows(label, label->text().size() - 1));
    QCOMPARE(bench.dialog->size(), QSize(402, 244));
    QVERIFY(label->geometry().bottom() < bench.bar()->y());

    QHelpEvent hover(QEvent::ToolTip, QPoint(2, 2), label->mapToGlobal(QPoint(2, 2)));
    QApplication::sendEvent(label, &hover);
    QVERIFY(QToolTip::text().remove(QChar(0x200B)).contains(label->text()));
    QToolTip::hideText();
}

void tst_Loading::comingBackFromAnIconIsNoNewStart()
{
    Bench bench;
    bench.runTo(5);
    const int sent = bench.sent.size();
    QShowEvent event;
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(bench.dialog, &event);
    QCOMPARE(bench.sent.size(), sent);
}

void tst_Loading::execReturnsWhenItIsOver()
{
    QPointer<Loading> dialog = new Loading;
    dialog->setParameters(1, 57600, fileName(), QByteArray(3, 'i'));
    QStringList results;
    connect(dialog, &Loading::sig_SendResultOperation, this, [&](const QString& text) { results.append(text); });
    // A device that answers at once, by the event loop.
    connect(dialog, &Loading::sig_SendMessage, dialog, [&](const message& mess) {
        const message answer = answerTo(mess);
        QTimer::singleShot(0, dialog, [&dialog, answer] { dialog->sl_receiveMessage(answer); });
    });
    QTimer::singleShot(30000, dialog, &QDialog::close);
    dialog->exec();
    QCOMPARE(results.constLast(), withFile("Loading firmware COMPLETED"));
    QVERIFY(dialog.isNull());
}

QTEST_MAIN(tst_Loading)
#include "tst_Loading.moc"
