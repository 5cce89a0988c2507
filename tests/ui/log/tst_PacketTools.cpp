#include "support/ScriptedDialogs.h"
#include "ui/log/PacketLogger.h"
#include "ui/log/PacketTools.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QFile>
#include <QHelpEvent>
#include <QMenu>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolTip>
#include <QVBoxLayout>

#include <initializer_list>

/// What the user hands on of the packets, and what a packet says of itself.
class tst_PacketTools : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void keysCopyTheSelectedRowWithHeadings();
    void menuCopiesAllRows();
    void menuSavesAllPacketsAndTheyAreReadBack();
    void savingThatFailsIsTold();
    void nothingIsSavedWithoutAName();
    void menuOffersNothingWithoutPackets();
    void toolTipTellsThePacketInWords();
    void answerIsToldByItsOwnRequest();

private:
    QDateTime time(int second) const
    {
        return QDateTime(QDate(2026, 3, 9), QTime(7, 5, second, 12));
    }
    void exchange(int second, const char* request, const char* answer)
    {
        logger->logRequest(time(second), QByteArray::fromHex(request), false);
        logger->logAnswer(time(second).addMSecs(30), QByteArray::fromHex(answer), false);
    }
    void clickRow(int row)
    {
        QTest::mouseClick(table->viewport(), Qt::LeftButton, Qt::NoModifier,
                          table->visualItemRect(table->item(row, 0)).center());
    }
    /// Opens the menu of a right click and chooses an entry. False if it can't be chosen.
    bool chooseFromMenu(const char* actionName)
    {
        bool chosen = false;
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
            auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (menu == nullptr) {
                return;
            }
            poll.stop();
            const QList<QAction*> actions = menu->actions();
            for (QAction* const action : actions) {
                if (action->objectName() == QLatin1String(actionName) && action->isEnabled()) {
                    chosen = true;
                    QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier, menu->actionGeometry(action).center());
                    return;
                }
            }
            menu->close();
        });
        poll.start(1);
        QContextMenuEvent rightClick(QContextMenuEvent::Mouse, QPoint(20, 20),
                                     table->viewport()->mapToGlobal(QPoint(20, 20)));
        QApplication::sendEvent(table->viewport(), &rightClick);
        return chosen;
    }

    std::unique_ptr<QWidget> window;
    QTableWidget* table = nullptr;
    std::unique_ptr<PacketLogger> logger;
    std::unique_ptr<ScriptedDialogs> dialogs;
    QStringList results;
    QTemporaryDir directory;
};

void tst_PacketTools::init()
{
    dialogs = std::make_unique<ScriptedDialogs>();
    results.clear();
    window = std::make_unique<QWidget>();
    auto* const layout = new QVBoxLayout(window.get());
    table = new QTableWidget;
    auto* const stop = new QPushButton;
    auto* const clear = new QPushButton;
    auto* const periodic = new QCheckBox;
    for (QWidget* const widget : std::initializer_list<QWidget*>{table, stop, clear, periodic}) {
        layout->addWidget(widget);
    }
    logger = std::make_unique<PacketLogger>(table, stop, clear, periodic);
    auto* const tools = new PacketTools(window.get(), table, *logger, *dialogs);
    connect(tools, &PacketTools::newResult, this, [this](const QString& text) { results.append(text); });
    window->resize(900, 500);
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    table->setFocus();
}

void tst_PacketTools::cleanup()
{
    window.reset();
    logger.reset();
}

void tst_PacketTools::keysCopyTheSelectedRowWithHeadings()
{
    exchange(1, "c186010001052be8", "");
    exchange(2, "c18601000106b0da", "c20601");
    QApplication::clipboard()->setText(QStringLiteral("kept"));
    QTest::keyClick(table, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("kept"));
    clickRow(1);
    QTest::keyClick(table, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QApplication::clipboard()->text(),
             QStringLiteral("Time of request\tRequest\tTime of answer\tAnswer\n"
                            "09/03/26 07:05:01:012\tc1 86 01 00 01 05 2b e8 \t09/03/26 07:05:01:042\t"
                            "-----<No answer>-----\n"));
}

void tst_PacketTools::menuCopiesAllRows()
{
    exchange(1, "c186010001052be8", "");
    exchange(2, "c18601000106b0da", "c20601");
    QVERIFY(chooseFromMenu("actionCopyPackets"));
    QCOMPARE(QApplication::clipboard()->text().count(QLatin1Char('\n')), 3);
    clickRow(0);
    QVERIFY(chooseFromMenu("actionCopyPacket"));
    QCOMPARE(QApplication::clipboard()->text().count(QLatin1Char('\n')), 2);
}

void tst_PacketTools::menuSavesAllPacketsAndTheyAreReadBack()
{
    exchange(1, "c186010001052be8", "");
    logger->clear(); // its row stays, empty
    exchange(2, "c186010001052be8", "");
    logger->logRequest(time(3), QByteArray::fromHex("c18601000106b0da"), false); // on its way
    exchange(4, "c186010001052be8", "c20601ff");
    const QString file = directory.filePath(QStringLiteral("packets.txt"));
    dialogs->saveAnswers.append(file);
    QVERIFY(chooseFromMenu("actionSavePackets"));
    QCOMPARE(dialogs->questions, QStringList(QStringLiteral("Save packets|*.txt")));
    QCOMPARE(results, QStringList(QStringLiteral("Saving packets to file %1\nSUCCESSFUL COMPLETE").arg(file)));
    QFile saved(file);
    QVERIFY(saved.open(QIODevice::ReadOnly));
    const auto packets = packettext::toPackets(QString::fromUtf8(saved.readAll()));
    QVERIFY(packets.has_value());
    QCOMPARE(packets->size(), 5);
    QCOMPARE(packets->at(0).time, time(2));
    QCOMPARE(packets->at(0).bytes, QByteArray::fromHex("c186010001052be8"));
    QCOMPARE(packets->at(1).direction, Packet::Answer);
    QVERIFY(packets->at(1).bytes.isEmpty());
    QCOMPARE(packets->at(2).time, time(3));
    QCOMPARE(packets->at(4).time, time(4).addMSecs(30));
    QCOMPARE(packets->at(4).bytes, QByteArray::fromHex("c20601ff"));
}

void tst_PacketTools::savingThatFailsIsTold()
{
    exchange(1, "c186010001052be8", "");
    const QString file = directory.filePath(QStringLiteral("none/packets.txt"));
    dialogs->saveAnswers.append(file);
    QVERIFY(chooseFromMenu("actionSavePackets"));
    QCOMPARE(results.size(), 1);
    QVERIFY(results.first().startsWith(QStringLiteral("ERROR saving packets to file %1\n").arg(file)));
}

void tst_PacketTools::nothingIsSavedWithoutAName()
{
    exchange(1, "c186010001052be8", "");
    QVERIFY(chooseFromMenu("actionSavePackets"));
    QCOMPARE(dialogs->questions.size(), 1);
    QVERIFY(results.isEmpty());
}

void tst_PacketTools::menuOffersNothingWithoutPackets()
{
    for (const char* const action : {"actionCopyPacket", "actionCopyPackets", "actionSavePackets"}) {
        QVERIFY(!chooseFromMenu(action));
    }
}

void tst_PacketTools::toolTipTellsThePacketInWords()
{
    exchange(1, "c186010001052be8", "c20601000800563412250509208a7c");
    QCOMPARE(table->item(0, 1)->toolTip(),
             QStringLiteral("<p>c1 86 01 00 01 05 2b e8 </p>Request: read the clock<br>to coordinator 1<br>"
                            "checksum E82B, right"));
    QVERIFY(table->item(0, 3)->toolTip().contains(QStringLiteral("Answer to: read the clock")));
    const QPoint place = table->visualItemRect(table->item(0, 1)).center();
    QHelpEvent rest(QEvent::ToolTip, place, table->viewport()->mapToGlobal(place));
    QApplication::sendEvent(table->viewport(), &rest);
    QTRY_VERIFY(QToolTip::isVisible());
    QCOMPARE(QToolTip::text(), table->item(0, 1)->toolTip());
    QToolTip::hideText();
}

void tst_PacketTools::answerIsToldByItsOwnRequest()
{
    exchange(1, "c186010001052be8", "");
    exchange(2, "c18601000206 00355a", "");
    QVERIFY(table->item(1, 3)->toolTip().endsWith(QStringLiteral("</p>No answer")));
    QVERIFY(table->item(1, 3)->toolTip().startsWith(QStringLiteral("<p>-----&lt;No answer&gt;-----</p>")));
    QVERIFY(table->item(0, 1)->toolTip().contains(QStringLiteral("read the state of the log")));
    QVERIFY(table->item(1, 1)->toolTip().contains(QStringLiteral("read the clock")));
}

QTEST_MAIN(tst_PacketTools)

#include "tst_PacketTools.moc"
