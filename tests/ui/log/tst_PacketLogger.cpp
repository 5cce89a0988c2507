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

    void the_table_looks_as_it_should();
    void controls_carry_their_captions();
    void request_fills_the_first_two_columns_of_a_new_top_row();
    void bytes_are_written_in_two_lower_case_digits_and_a_blank_each_data();
    void bytes_are_written_in_two_lower_case_digits_and_a_blank_each();
    void answer_goes_to_the_top_row();
    void a_second_answer_replaces_the_first();
    void no_bytes_are_told_as_no_answer();
    void an_answer_without_any_row_is_lost();
    void stop_leaves_out_request_and_answer();
    void a_stop_between_request_and_answer_loses_the_answer();
    void the_stop_button_changes_its_caption();
    void periodic_packets_can_be_left_out();
    void a_filtered_answer_leaves_the_cells_empty();
    void a_periodic_answer_does_not_overwrite_an_operation();
    void the_newest_2000_requests_are_kept();
    void clearing_keeps_the_rows_and_they_count();
    void packets_of_another_port_go_above_the_old_ones();
    void a_packet_into_a_full_table_is_quick();

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

void tst_PacketLogger::the_table_looks_as_it_should()
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

void tst_PacketLogger::controls_carry_their_captions()
{
    QCOMPARE(stopButton->text(), QStringLiteral("Stop"));
    QCOMPARE(clearButton->text(), QStringLiteral("Clear"));
}

void tst_PacketLogger::request_fills_the_first_two_columns_of_a_new_top_row()
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

void tst_PacketLogger::bytes_are_written_in_two_lower_case_digits_and_a_blank_each_data()
{
    QTest::addColumn<QByteArray>("packet");
    QTest::addColumn<QString>("text");
    QTest::newRow("leading zeros") << QByteArray::fromHex("0001") << "00 01 ";
    QTest::newRow("lower case") << QByteArray::fromHex("ABCDEF") << "ab cd ef ";
    QTest::newRow("unsigned above 127") << QByteArray::fromHex("80FF") << "80 ff ";
    QTest::newRow("one byte") << QByteArray::fromHex("0A") << "0a ";
}

void tst_PacketLogger::bytes_are_written_in_two_lower_case_digits_and_a_blank_each()
{
    QFETCH(const QByteArray, packet);
    QFETCH(const QString, text);
    logger->logRequest(someTime(), packet, false);
    logger->logAnswer(someTime(), packet, false);
    QCOMPARE(cell(0, 1), text);
    QCOMPARE(cell(0, 3), text);
}

void tst_PacketLogger::answer_goes_to_the_top_row()
{
    logger->logRequest(someTime(), bytes(1), false);
    logger->logRequest(someTime(), bytes(2), false);
    logger->logAnswer(someTime().addSecs(1), QByteArrayLiteral("\x10"), false);
    QCOMPARE(cell(0, 2), QStringLiteral("09/03/26 07:05:05:012"));
    QCOMPARE(cell(0, 3), QStringLiteral("10 "));
    QCOMPARE(cell(1, 3), QString());
}

void tst_PacketLogger::a_second_answer_replaces_the_first()
{
    logger->logRequest(someTime(), bytes(1), false);
    logger->logAnswer(someTime(), QByteArrayLiteral("\x10"), false);
    logger->logAnswer(someTime(), QByteArrayLiteral("\x11"), false);
    QCOMPARE(table->rowCount(), 1);
    QCOMPARE(cell(0, 3), QStringLiteral("11 "));
}

void tst_PacketLogger::no_bytes_are_told_as_no_answer()
{
    logger->logRequest(someTime(), bytes(1), false);
    logger->logAnswer(someTime(), {}, false);
    QCOMPARE(cell(0, 2), QStringLiteral("09/03/26 07:05:04:012"));
    QCOMPARE(cell(0, 3), QStringLiteral("-----<No answer>-----"));
}

void tst_PacketLogger::an_answer_without_any_row_is_lost()
{
    logger->logAnswer(someTime(), bytes(1), false);
    QCOMPARE(table->rowCount(), 0);
}

void tst_PacketLogger::stop_leaves_out_request_and_answer()
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

void tst_PacketLogger::a_stop_between_request_and_answer_loses_the_answer()
{
    logger->logRequest(someTime(), bytes(1), false);
    stopButton->setChecked(true);
    logger->logAnswer(someTime(), bytes(1), false);
    stopButton->setChecked(false);
    QCOMPARE(cell(0, 2), QString());
    QCOMPARE(cell(0, 3), QString());
}

void tst_PacketLogger::the_stop_button_changes_its_caption()
{
    logger->showStopped(true);
    QCOMPARE(stopButton->text(), QStringLiteral("Start"));
    logger->showStopped(false);
    QCOMPARE(stopButton->text(), QStringLiteral("Stop"));
}

void tst_PacketLogger::periodic_packets_can_be_left_out()
{
    logger->logRequest(someTime(), bytes(1), true);
    QCOMPARE(table->rowCount(), 1);
    periodicBox->setChecked(false);
    logger->logRequest(someTime(), bytes(2), true);
    QCOMPARE(table->rowCount(), 1);
    logger->logRequest(someTime(), bytes(3), false);
    QCOMPARE(table->rowCount(), 2);
}

void tst_PacketLogger::a_filtered_answer_leaves_the_cells_empty()
{
    logger->logRequest(someTime(), bytes(1), true);
    periodicBox->setChecked(false);
    logger->logAnswer(someTime(), bytes(1), true);
    QCOMPARE(cell(0, 2), QString());
    QCOMPARE(cell(0, 3), QString());
}

void tst_PacketLogger::a_periodic_answer_does_not_overwrite_an_operation()
{
    periodicBox->setChecked(false);
    logger->logRequest(someTime(), bytes(1), false);
    logger->logAnswer(someTime(), QByteArrayLiteral("\x10"), false);
    logger->logAnswer(someTime(), QByteArrayLiteral("\x20"), true);
    QCOMPARE(cell(0, 3), QStringLiteral("10 "));
}

void tst_PacketLogger::the_newest_2000_requests_are_kept()
{
    for (int i = 0; i < 2001; ++i) {
        logger->logRequest(someTime(), bytes(i), false);
    }
    QCOMPARE(table->rowCount(), 2000);
    QCOMPARE(cell(0, 1), QStringLiteral("32 30 30 30 ")); // "2000"
    QCOMPARE(cell(1999, 1), QStringLiteral("31 "));       // "1": "0" is gone
}

void tst_PacketLogger::clearing_keeps_the_rows_and_they_count()
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

void tst_PacketLogger::packets_of_another_port_go_above_the_old_ones()
{
    logger->logRequest(someTime(), QByteArrayLiteral("\xA1"), false);
    logger->logRequest(someTime(), QByteArrayLiteral("\xB2"), false);
    QCOMPARE(cell(0, 1), QStringLiteral("b2 "));
    QCOMPARE(cell(1, 1), QStringLiteral("a1 "));
}

void tst_PacketLogger::a_packet_into_a_full_table_is_quick()
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
    qInfo("median %.3f ms", static_cast<double>(costs.at(150)) / 1e6);
    // The bench holds the real bar; this one only tells a cost that grows with the rows from one that doesn't matter.
    QVERIFY(costs.at(150) < 5'000'000);
}

QTEST_MAIN(tst_PacketLogger)
#include "tst_PacketLogger.moc"
