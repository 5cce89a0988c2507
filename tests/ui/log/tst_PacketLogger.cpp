#include "texts/texts.h"
#include "ui/log/PacketLogger.h"

#include <QCheckBox>
#include <QDateTime>
#include <QHeaderView>
#include <QPushButton>
#include <QTableWidget>
#include <QtTest>

#include <algorithm>
#include <vector>

namespace
{

const QDateTime& someTime()
{
    static const QDateTime time(QDate(2026, 3, 9), QTime(7, 5, 4, 12));
    return time;
}

QByteArray bytes(int number)
{
    return QByteArray::number(number);
}

} // namespace

class tst_PacketLogger : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void theTableLooksAsItShould();
    void controlsCarryTheirCaptions();
    void requestFillsTheFirstTwoColumnsOfANewTopRow();
    void bytesAreWrittenInTwoLowerCaseDigitsAndABlankEach_data();
    void bytesAreWrittenInTwoLowerCaseDigitsAndABlankEach();
    void answerGoesToTheTopRow();
    void aSecondAnswerReplacesTheFirst();
    void noBytesAreToldAsNoAnswer();
    void anAnswerWithoutAnyRowIsLost();
    void stopLeavesOutRequestAndAnswer();
    void aStopBetweenRequestAndAnswerLosesTheAnswer();
    void theStopButtonChangesItsCaption();
    void periodicPacketsCanBeLeftOut();
    void aFilteredAnswerLeavesTheCellsEmpty();
    void aPeriodicAnswerDoesNotOverwriteAnOperation();
    void theNewest2000RequestsAreKept();
    void clearingKeepsTheRowsAndTheyCount();
    void packetsOfAnotherPortGoAboveTheOldOnes();
    void aPacketIntoAFullTableIsQuick();

private:
    QString cell(int row, int column) const
    {
        const QTableWidgetItem* item = table->item(row, column);
        return item == nullptr ? QString() : item->text();
    }

    std::unique_ptr<QTableWidget> table;
    std::unique_ptr<QPushButton> stopButton;
    std::unique_ptr<QPushButton> clearButton;
    std::unique_ptr<QCheckBox> periodicBox;
    std::unique_ptr<PacketLogger> logger;
};

void tst_PacketLogger::init()
{
    table = std::make_unique<QTableWidget>();
    stopButton = std::make_unique<QPushButton>();
    stopButton->setCheckable(true);
    clearButton = std::make_unique<QPushButton>();
    periodicBox = std::make_unique<QCheckBox>();
    periodicBox->setChecked(true);
    logger = std::make_unique<PacketLogger>(table.get(), stopButton.get(), clearButton.get(), periodicBox.get());
    table->resize(800, 500);
    table->show();
}

void tst_PacketLogger::cleanup()
{
    logger.reset();
    table.reset();
}

void tst_PacketLogger::theTableLooksAsItShould()
{
    QCOMPARE(table->columnCount(), 4);
    const QStringList headers{QStringLiteral("Time of request"), QStringLiteral("Request"),
                              QStringLiteral("Time of answer"), QStringLiteral("Answer")};
    for (int column = 0; column < 4; ++column) {
        QCOMPARE(table->horizontalHeaderItem(column)->text(), headers.at(column));
    }
    QCOMPARE(table->horizontalHeader()->defaultAlignment(), Qt::AlignCenter);
    QCOMPARE(table->columnWidth(0), 140);
    QCOMPARE(table->columnWidth(1), 200);
    QCOMPARE(table->columnWidth(2), 140);
    QVERIFY(table->horizontalHeader()->stretchLastSection());
    QVERIFY(table->showGrid());
    QVERIFY(table->verticalHeader()->isHidden());
    QCOMPARE(table->selectionMode(), QAbstractItemView::SingleSelection);
    QCOMPARE(table->selectionBehavior(), QAbstractItemView::SelectRows);
    QCOMPARE(table->styleSheet(),
             QStringLiteral("selection-background-color: rgb(230,230,230); selection-color: black"));
    QCOMPARE(table->rowCount(), 0);
}

void tst_PacketLogger::controlsCarryTheirCaptions()
{
    QCOMPARE(stopButton->text(), QStringLiteral("Stop"));
    QCOMPARE(clearButton->text(), QStringLiteral("Clear"));
}

void tst_PacketLogger::requestFillsTheFirstTwoColumnsOfANewTopRow()
{
    logger->logRequest(someTime(), QByteArrayLiteral("\x01"), false);
    logger->logRequest(someTime().addMSecs(1), QByteArrayLiteral("\x02"), false);
    QCOMPARE(table->rowCount(), 2);
    QCOMPARE(cell(0, 0), QStringLiteral("09/03/26 07:05:04:013"));
    QCOMPARE(cell(0, 1), QStringLiteral("02 "));
    QCOMPARE(cell(0, 2), QString());
    QCOMPARE(cell(0, 3), QString());
    QCOMPARE(cell(1, 0), QStringLiteral("09/03/26 07:05:04:012"));
    QCOMPARE(cell(1, 1), QStringLiteral("01 "));
}

void tst_PacketLogger::bytesAreWrittenInTwoLowerCaseDigitsAndABlankEach_data()
{
    QTest::addColumn<QByteArray>("packet");
    QTest::addColumn<QString>("text");
    QTest::newRow("leading zeros") << QByteArray::fromHex("0001") << "00 01 ";
    QTest::newRow("lower case") << QByteArray::fromHex("ABCDEF") << "ab cd ef ";
    QTest::newRow("unsigned above 127") << QByteArray::fromHex("80FF") << "80 ff ";
    QTest::newRow("one byte") << QByteArray::fromHex("0A") << "0a ";
}

void tst_PacketLogger::bytesAreWrittenInTwoLowerCaseDigitsAndABlankEach()
{
    QFETCH(const QByteArray, packet);
    QFETCH(const QString, text);
    logger->logRequest(someTime(), packet, false);
    logger->logAnswer(someTime(), packet, false);
    QCOMPARE(cell(0, 1), text);
    QCOMPARE(cell(0, 3), text);
}

void tst_PacketLogger::answerGoesToTheTopRow()
{
    logger->logRequest(someTime(), bytes(1), false);
    logger->logRequest(someTime(), bytes(2), false);
    logger->logAnswer(someTime().addSecs(1), QByteArrayLiteral("\x10"), false);
    QCOMPARE(cell(0, 2), QStringLiteral("09/03/26 07:05:05:012"));
    QCOMPARE(cell(0, 3), QStringLiteral("10 "));
    QCOMPARE(cell(1, 3), QString());
}

void tst_PacketLogger::aSecondAnswerReplacesTheFirst()
{
    logger->logRequest(someTime(), bytes(1), false);
    logger->logAnswer(someTime(), QByteArrayLiteral("\x10"), false);
    logger->logAnswer(someTime(), QByteArrayLiteral("\x11"), false);
    QCOMPARE(table->rowCount(), 1);
    QCOMPARE(cell(0, 3), QStringLiteral("11 "));
}

void tst_PacketLogger::noBytesAreToldAsNoAnswer()
{
    logger->logRequest(someTime(), bytes(1), false);
    logger->logAnswer(someTime(), {}, false);
    QCOMPARE(cell(0, 2), QStringLiteral("09/03/26 07:05:04:012"));
    QCOMPARE(cell(0, 3), QStringLiteral("-----<No answer>-----"));
}

void tst_PacketLogger::anAnswerWithoutAnyRowIsLost()
{
    logger->logAnswer(someTime(), bytes(1), false);
    QCOMPARE(table->rowCount(), 0);
}

void tst_PacketLogger::stopLeavesOutRequestAndAnswer()
{
    logger->logRequest(someTime(), bytes(1), false);
    stopButton->setChecked(true);
    logger->logRequest(someTime(), bytes(2), false);
    logger->logAnswer(someTime(), bytes(2), false);
    QCOMPARE(table->rowCount(), 1);
    QCOMPARE(cell(0, 3), QString());
    stopButton->setChecked(false);
    logger->logRequest(someTime(), bytes(3), false);
    QCOMPARE(table->rowCount(), 2);
}

void tst_PacketLogger::aStopBetweenRequestAndAnswerLosesTheAnswer()
{
    logger->logRequest(someTime(), bytes(1), false);
    stopButton->setChecked(true);
    logger->logAnswer(someTime(), bytes(1), false);
    stopButton->setChecked(false);
    QCOMPARE(cell(0, 2), QString());
    QCOMPARE(cell(0, 3), QString());
}

void tst_PacketLogger::theStopButtonChangesItsCaption()
{
    logger->showStopped(true);
    QCOMPARE(stopButton->text(), QStringLiteral("Start"));
    logger->showStopped(false);
    QCOMPARE(stopButton->text(), QStringLiteral("Stop"));
}

void tst_PacketLogger::periodicPacketsCanBeLeftOut()
{
    logger->logRequest(someTime(), bytes(1), true);
    QCOMPARE(table->rowCount(), 1);
    periodicBox->setChecked(false);
    logger->logRequest(someTime(), bytes(2), true);
    QCOMPARE(table->rowCount(), 1);
    logger->logRequest(someTime(), bytes(3), false);
    QCOMPARE(table->rowCount(), 2);
}

void tst_PacketLogger::aFilteredAnswerLeavesTheCellsEmpty()
{
    logger->logRequest(someTime(), bytes(1), true);
    periodicBox->setChecked(false);
    logger->logAnswer(someTime(), bytes(1), true);
    QCOMPARE(cell(0, 2), QString());
    QCOMPARE(cell(0, 3), QString());
}

void tst_PacketLogger::aPeriodicAnswerDoesNotOverwriteAnOperation()
{
    periodicBox->setChecked(false);
    logger->logRequest(someTime(), bytes(1), false);
    logger->logAnswer(someTime(), QByteArrayLiteral("\x10"), false);
    logger->logAnswer(someTime(), QByteArrayLiteral("\x20"), true);
    QCOMPARE(cell(0, 3), QStringLiteral("10 "));
}

void tst_PacketLogger::theNewest2000RequestsAreKept()
{
    for (int i = 0; i < 2001; ++i) {
        logger->logRequest(someTime(), bytes(i), false);
    }
    QCOMPARE(table->rowCount(), 2000);
    QCOMPARE(cell(0, 1), QStringLiteral("32 30 30 30 ")); // "2000"
    QCOMPARE(cell(1999, 1), QStringLiteral("31 "));       // "1": "0" is gone
}

void tst_PacketLogger::clearingKeepsTheRowsAndTheyCount()
{
    for (int i = 0; i < 1999; ++i) {
        logger->logRequest(someTime(), bytes(i), false);
    }
    logger->clear();
    QCOMPARE(table->rowCount(), 1999);
    QCOMPARE(cell(0, 1), QString());
    logger->logRequest(someTime(), bytes(1), false);
    QCOMPARE(table->rowCount(), 2000);
    logger->logRequest(someTime(), bytes(2), false);
    QCOMPARE(table->rowCount(), 2000);
    QCOMPARE(cell(0, 1), QStringLiteral("32 "));
    QCOMPARE(cell(1, 1), QStringLiteral("31 "));
    QCOMPARE(cell(2, 1), QString());
}

void tst_PacketLogger::packetsOfAnotherPortGoAboveTheOldOnes()
{
    logger->logRequest(someTime(), QByteArrayLiteral("\xA1"), false);
    logger->logRequest(someTime(), QByteArrayLiteral("\xB2"), false);
    QCOMPARE(cell(0, 1), QStringLiteral("b2 "));
    QCOMPARE(cell(1, 1), QStringLiteral("a1 "));
}

void tst_PacketLogger::aPacketIntoAFullTableIsQuick()
{
    const QByteArray request(12, '\x5A');
    const QByteArray answer(76, '\xA5');
    for (int i = 0; i < 2000; ++i) {
        logger->logRequest(someTime(), request, false);
    }
    QVERIFY(QTest::qWaitForWindowExposed(table.get()));

    std::vector<qint64> costs;
    for (int i = 0; i < 300; ++i) {
        QElapsedTimer timer;
        timer.start();
        logger->logRequest(someTime(), request, false);
        logger->logAnswer(someTime(), answer, false);
        costs.push_back(timer.nsecsElapsed());
    }
    std::nth_element(costs.begin(), costs.begin() + 150, costs.end());
    qInfo("median %.3f ms", double(costs.at(150)) / 1e6);
    // The bench holds the real bar; this one only tells a cost that grows with the rows from one that doesn't matter.
    QVERIFY(costs.at(150) < 5'000'000);
}

QTEST_MAIN(tst_PacketLogger)
#include "tst_PacketLogger.moc"
