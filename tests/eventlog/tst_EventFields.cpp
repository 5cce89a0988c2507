#include "DataBaseTest.h"
#include "eventlog/EventFields.h"

class tst_EventFields : public DataBaseTest
{
    Q_OBJECT

private slots:
    void init()
    {
        begin();
    }
    void cleanup()
    {
        end();
    }

    void everyColumnIsNamedInItsOrder();
    void numbersAreToldInWords_data();
    void numbersAreToldInWords();

private:
    QList<EventField> fieldsOf(const EventOfTable& row)
    {
        const SqlModel* const model = connected();
        dataBase->sl_insertIntoTable({row});
        dataBase->sl_refreshModel();
        return fieldsOfEvent(*model, 0);
    }
};

void tst_EventFields::everyColumnIsNamedInItsOrder()
{
    const QList<EventField> fields = fieldsOf(eventRow(12));
    QStringList lines;
    for (const EventField& field : fields) {
        lines.append(field.name + QLatin1Char('|') + field.value + QLatin1Char('|') + field.meaning);
    }
    const QStringList expected = {
        QStringLiteral("Number|12|"),
        QStringLiteral("Days * 10000 + minutes|75730373|by which events are sorted"),
        QStringLiteral("Date in days|7573|25.09.2020"),
        QStringLiteral("Time in minutes|373|hour * 24 + minute"),
        QStringLiteral("Class|1|sensor"),
        QStringLiteral("Version|2|"),
        QStringLiteral("Type|3|0x03, Ext. power, Res. power"),
        QStringLiteral("Characteristic|4|0x04, number of channels: 0"),
        QStringLiteral("Address of terminal|5|"),
        QStringLiteral("Number of channel|6|"),
        QStringLiteral("Code of event|7|unknown"),
        QStringLiteral("Date|25.09.2020|"),
        QStringLiteral("Time|14:37|"),
        QStringLiteral("Signal level, dB|8|"),
        QStringLiteral("Noise, dB|9|"),
        QStringLiteral("Event|Alarm (fire)|"),
        QStringLiteral("Source of event|KV-NX (№5, channel 6)|"),
        QStringLiteral("Details|12°C (channel 1)\n13°C (channel 2)|"),
    };
    QCOMPARE(lines, expected);
}

void tst_EventFields::numbersAreToldInWords_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("meaning");
    const auto add = [](const char* name, int column, int number, const char* meaning) {
        QTest::newRow(name) << column << number << QString::fromUtf8(meaning);
    };
    add("system", 4, 0, "system");
    add("sensor", 4, 1, "sensor");
    add("executive", 4, 2, "executive terminal");
    add("interface", 4, 3, "interface");
    add("analog", 4, 4, "analog");
    add("damaged class", 4, 248, "unknown");
    add("no feature", 6, 0x30, "0x30");
    add("all features", 6, 0x4F, "0x4f, Always connected, Sound, Ext. power, Res. power");
    add("two channels", 7, 0x23, "0x23, number of channels: 2");
    add("head unit", 8, 0, "the head unit");
    add("terminal", 8, 7, "");
    add("no channel", 9, 0, "of no channel");
    add("channel", 9, 2, "");
    add("power-up", 10, 0, "power-up");
    add("channel event", 10, 1, "state of a channel");
    add("status", 10, 2, "change of status");
    add("mode", 10, 3, "change of mode");
    add("unknown code", 10, 255, "unknown");
}

void tst_EventFields::numbersAreToldInWords()
{
    QFETCH(int, column);
    QFETCH(int, number);
    QFETCH(QString, meaning);
    EventOfTable row = eventRow(1);
    const auto value = static_cast<quint8>(number);
    for (quint8* const field : {&row.classTerminal, &row.type, &row.characteristic, &row.addressTerminal,
                                &row.numberChannel, &row.codeEvent}) {
        *field = value;
    }
    const EventField field = fieldsOf(row).at(column);
    QCOMPARE(field.value, QString::number(number));
    QCOMPARE(field.meaning, meaning);
}

QTEST_GUILESS_MAIN(tst_EventFields)

#include "tst_EventFields.moc"
