#include "drawnRecords.h"
#include "eventlog/DataBase.h"
#include "eventlog/LogEvents.h"
#include "firmware/protocol_boot.h"
#include "link/DeviceTime.h"
#include "link/packetText.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "model/RelayInfo.h"
#include "properties.h"
#include "support/AnswerFrames.h"

#include <QFile>
#include <QSignalSpy>
#include <QtTest>

#include <algorithm>

using properties::bytes;
using Protocol = protocol_HUBN_NX_Q;

namespace
{

constexpr int mostData = 120; ///< of a frame, whose length is read as a signed byte

bool isReserved(char byte)
{
    return quint8(byte) >= 0xC0 && quint8(byte) <= 0xC2;
}

rc::Gen<QByteArray> bytesWithoutReservedOnes()
{
    return rc::gen::map(bytes(8), [](QByteArray drawn) {
        drawn.truncate(int(std::remove_if(drawn.begin(), drawn.end(), isReserved) - drawn.begin()));
        return drawn;
    });
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// All cells of a table, row by row.
QStringList cellsOf(SqlModel* table)
{
    QStringList cells;
    for (int row = 0; row < table->rowCount(); ++row) {
        for (int column = 0; column < table->columnCount(); ++column) {
            cells.append(table->index(row, column).data().toString());
        }
    }
    return cells;
}

} // namespace

/// What is made is what is read again: frames, records, files, events.
class tst_roundTrips : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void requestsAreReadAsTheyWereMade();
    void answersAreReadAmidNoise();
    void firmwareGoesOutWholeAndInOrder();
    void timesComeBack();
    void packetsComeBackFromText();
    void recordsComeBack();
    void configurationFilesComeBack();
    void eventsAreTheirRecords();
    void savedLogsComeBack();
};

void tst_roundTrips::initTestCase()
{
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    properties::setDefaults(200, 100);
}

void tst_roundTrips::requestsAreReadAsTheyWereMade()
{
    QVERIFY(rc::check("requests", [](quint8 address) {
        const QByteArray data = *bytes(mostData);
        RC_PRE(!data.isEmpty() && data.size() != 2); // with two the same command reads an output
        const QByteArray wire = Protocol::requestWriteConfig(address, data).request();
        RC_ASSERT(std::count_if(wire.cbegin() + 1, wire.cend(), [](char byte) { return quint8(byte) == 0xC1; }) == 0);
        RC_ASSERT(std::count_if(wire.cbegin(), wire.cend(), [](char byte) { return quint8(byte) == 0xC2; }) == 0);
        QByteArray frame;
        RC_ASSERT(Protocol::cutFrame(*bytes(8) + wire, Protocol::requestStart, frame) == PacketOk);
        RC_ASSERT(Protocol::requestType(frame) == int(Protocol::Write_Config));
        RC_ASSERT(quint8(frame.at(2)) == address);
        RC_ASSERT(Protocol::requestData(frame) == data);
    }));
}

void tst_roundTrips::answersAreReadAmidNoise()
{
    QVERIFY(rc::check("answers", [](quint8 address) {
        const quint8 code = *rc::gen::inRange<quint8>(0, 12); // greater ones are no codes
        const QByteArray data = *bytes(mostData);
        message received = Protocol::requestDeviceTime(address);
        received.setRawAnswer(*bytes(40) + frames::answer(code, data, address) + *bytesWithoutReservedOnes());
        const message answer = Protocol::parseAnswer(received);
        RC_ASSERT(answer.parseStatus() == int(PacketOk));
        RC_ASSERT(answer.answerCode() == int(code));
        RC_ASSERT(answer.payload() == data);
    }));
}

void tst_roundTrips::firmwareGoesOutWholeAndInOrder()
{
    QVERIFY(rc::check("firmware", [] {
        // Around the sizes of blocks, which are what matters.
        const QByteArray image = QByteArray(128 * *rc::gen::inRange(0, 5), 'x') + *bytes(130);
        RC_PRE(image.size() >= protocol_boot::smallestImage);
        protocol_boot boot;
        boot.setFirmware(image);
        QByteArray sent;
        int block = 0;
        while (boot.hasRequests()) {
            const message request = boot.takeNextRequest();
            const QByteArray packet = request.request();
            RC_ASSERT(packet.size() == quint8(packet.at(1)) + 2);
            RC_ASSERT(frames::withChecksum(packet.mid(1, packet.size() - 3)) == packet.mid(1));
            const QByteArray data = packet.mid(3, packet.size() - 5);
            if (request.bootType() == protocol_boot::ImageHead) {
                sent += data;
            } else if (request.bootType() == protocol_boot::FullBlock ||
                       request.bootType() == protocol_boot::LastBlock) {
                RC_ASSERT(quint8(data.at(0)) == quint8(block));
                RC_ASSERT((data.size() == 129) == (request.bootType() == protocol_boot::FullBlock));
                sent += data.mid(1);
                ++block;
            }
        }
        RC_ASSERT(sent == image);
    }));
}

void tst_roundTrips::timesComeBack()
{
    QVERIFY(rc::check("times", [] {
        const QDate day = QDate(2000, 1, 1).addDays(*rc::gen::inRange(0, 36525));
        const QTime time = QTime(0, 0).addSecs(*rc::gen::inRange(0, 86400));
        message answer;
        answer.setAnswerCode(0);
        answer.setPayload(devicetime::toBytes(QDateTime(day, time)));
        RC_ASSERT(devicetime::valueOf(answer).date() == day);
        RC_ASSERT(devicetime::valueOf(answer).time() == time);
        const devicetime::Shown shown = devicetime::fromAnswer(answer);
        RC_ASSERT(shown.correct);
        RC_ASSERT(shown.text.startsWith(time.toString(QStringLiteral("hh:mm:ss ")) +
                                        day.toString(QStringLiteral("dd.MM.yyyy, "))));
    }));
}

void tst_roundTrips::packetsComeBackFromText()
{
    const auto comeBack = [](const std::vector<quint32>& moments) {
        QList<Packet> packets;
        for (const quint32 moment : moments) {
            // At noon no clock is put forward.
            const QDateTime time(QDate(1990, 1, 1).addDays(int(moment % 40000)),
                                 QTime(12, 0).addMSecs(int(moment % 1000)));
            packets.append({time, moment % 2 == 0 ? Packet::Request : Packet::Answer, *bytes(20)});
        }
        const std::optional<QList<Packet>> read = packettext::toPackets(packettext::fromPackets(packets));
        RC_ASSERT(read.has_value());
        RC_ASSERT(read->size() == packets.size());
        for (int i = 0; i < packets.size(); ++i) {
            RC_ASSERT(read->at(i).time == packets.at(i).time);
            RC_ASSERT(int(read->at(i).direction) == int(packets.at(i).direction));
            RC_ASSERT(read->at(i).bytes == packets.at(i).bytes);
        }
    };
    QVERIFY(rc::check("packets", comeBack));
}

void tst_roundTrips::recordsComeBack()
{
    RelayInfo model;
    QVERIFY(rc::check("records", [&model] {
        const QByteArrayList outputs = *drawn::outputs();
        const QByteArrayList scripts = *drawn::scripts(31, 12);
        model.readTerminalRecords({});
        model.readOutputRecords(outputs);
        model.readScriptRecords(scripts);
        RC_ASSERT(model.makeOutputRecords() == outputs);
        RC_ASSERT(model.makeScriptRecords() == scripts);
    }));
}

void tst_roundTrips::configurationFilesComeBack()
{
    RelayInfo saved;
    RelayInfo loaded;
    const QString path = QStringLiteral("drawn.cfg");
    QVERIFY(rc::check("configuration files", [&] {
        saved.readTerminalRecords({});
        saved.readOutputRecords(*drawn::outputs());
        saved.readScriptRecords(*drawn::scripts(30, 11)); // files know no day 31 and no December
        const QList<GroupRelayPtr> groups = saved.groups();
        for (const GroupRelayPtr& group : groups) {
            group->name = *drawn::name();
            for (const RelayInformationPtr& output : std::as_const(group->outputs)) {
                output->name = *drawn::name();
            }
        }
        saved.scripts().at(*rc::gen::inRange(0, 32))->name = *drawn::name();
        saved.setComment(*drawn::name() + QLatin1Char('\n') + *drawn::name());

        RC_ASSERT(saved.saveToFile(path) == int(RelayInfo::FileOk));
        const QByteArray text = contentOf(path);
        RC_ASSERT(loaded.loadFromFile(path) == int(RelayInfo::FileOk));
        RC_ASSERT(loaded.errorCount() == 0);
        RC_ASSERT(loaded.makeOutputRecords() == saved.makeOutputRecords());
        RC_ASSERT(loaded.makeScriptRecords() == saved.makeScriptRecords());
        // The comment's last line has an end from now on.
        RC_ASSERT((loaded.comment() == saved.comment() + QLatin1Char('\n')));
        loaded.setComment(saved.comment());
        RC_ASSERT(loaded.saveToFile(path) == int(RelayInfo::FileOk));
        RC_ASSERT(contentOf(path) == text);
    }));
}

void tst_roundTrips::eventsAreTheirRecords()
{
    QVERIFY(rc::check("events", [] {
        const drawn::Event event = *drawn::event();
        LogEvents log;
        log.decodeEvents({event.record()});
        log.numberEvents();
        const QList<EventOfTable> rows = log.takeEvents(2);
        RC_ASSERT(rows.size() == 1);
        const EventOfTable& row = rows.first();
        RC_ASSERT(int(row.numberEvent) == 1);
        RC_ASSERT(int(row.dateInDays) == int(QDate(2000, 1, 1).daysTo(event.date)));
        RC_ASSERT((row.date == event.date.toString(QStringLiteral("dd.MM.yyyy"))));
        RC_ASSERT((row.time == event.time.toString(QStringLiteral("hh:mm"))));
        RC_ASSERT(int(row.classTerminal) == event.terminalClass);
        RC_ASSERT(int(row.version) == event.version);
        RC_ASSERT(int(row.type) == int(event.type));
        RC_ASSERT(int(row.characteristic) == int(event.characteristic));
        RC_ASSERT(int(row.addressTerminal) == int(event.address));
        RC_ASSERT(int(row.signalLevel) == int(event.signal));
        RC_ASSERT(int(row.noiseLevel) == int(event.noise));
        RC_ASSERT(int(row.codeEvent) == event.code);
        RC_ASSERT(row.information.toLatin1() == event.data.toHex(' '));
    }));
}

void tst_roundTrips::savedLogsComeBack()
{
    DataBase dataBase(QStringLiteral("Log"));
    SqlModel* shown = nullptr;
    connect(&dataBase, &DataBase::sig_ResultConnectDB, this,
            [&shown](ErrorDataBase, SqlModel* model) { shown = model; });
    connect(&dataBase, &DataBase::sig_ResultConnectOtherDB, this,
            [&shown](ErrorDataBase error, SqlModel* model) { shown = error == ErrorDataBaseNone ? model : nullptr; });
    const QString path = QStringLiteral("saved.db");
    QVERIFY(rc::check("saved logs", [&] {
        const QList<EventOfTable> rows = *drawn::rowsOfLog();
        dataBase.sl_connectToDataBase();
        if (!rows.isEmpty()) {
            dataBase.sl_insertIntoTable(rows);
        }
        dataBase.sl_refreshModel();
        RC_ASSERT(shown != nullptr);
        RC_ASSERT(shown->rowCount() == rows.size());
        for (int row = 0; row < rows.size(); ++row) {
            const auto cell = [shown, row](int column) { return shown->index(row, column).data().toString(); };
            RC_ASSERT((cell(0) == QString::number(rows.at(row).numberEvent)));
            RC_ASSERT((cell(shown->columnCount() - 3) == rows.at(row).event));
            RC_ASSERT((cell(shown->columnCount() - 2) == rows.at(row).source));
            RC_ASSERT((cell(shown->columnCount() - 1) == rows.at(row).information));
        }
        const QStringList cells = cellsOf(shown);
        dataBase.sl_SaveDataBase(path);
        dataBase.sl_connectToDataBase();
        shown = nullptr;
        dataBase.sl_connectOtherDataBase(path);
        dataBase.sl_refreshModel();
        RC_ASSERT(shown != nullptr);
        RC_ASSERT((cellsOf(shown) == cells));
    }));
    dataBase.sl_closeDataBase();
}

QTEST_GUILESS_MAIN(tst_roundTrips)
#include "tst_roundTrips.moc"
