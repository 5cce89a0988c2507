#pragma once

#include "eventlog/EventOfTable.h"
#include "properties.h"

#include <QByteArrayList>
#include <QDate>
#include <QTime>

#include <algorithm>

/// What units and users can have, drawn by rapidcheck, as bytes of their own making.
namespace drawn
{

inline char bcd(int value)
{
    return char(value / 10 * 16 + value % 10);
}

inline int below(int limit)
{
    return *rc::gen::inRange(0, limit);
}

/// A name without blanks at its ends and without "=", which the reader of files would cut.
inline rc::Gen<QString> name()
{
    static const std::u16string letters = u"abcXYZ019 .,;:[]()%№#\"'&<>\\/-+äжд日\t";
    return rc::gen::map(rc::gen::container<std::u16string>(rc::gen::elementOf(letters)),
                        [](const std::u16string& drawn) {
                            return QLatin1Char('n') + QString::fromStdU16String(drawn).left(12) + QLatin1Char('m');
                        });
}

/// Outputs of the head unit, all of them, and of some terminals, in the order of addresses and numbers.
inline rc::Gen<QByteArrayList> outputs()
{
    return rc::gen::exec([] {
        QByteArrayList records;
        for (int address = 0; address < 32; ++address) {
            const int count = address == 0 ? 8 : std::max(0, below(16) - 7);
            for (int number = 0; number < count; ++number) {
                QByteArray record = QByteArray(1, char(address)) + char(number) + char(below(4));
                for (int left = below(5); left > 0; --left) {
                    record.append(char(below(32)));
                }
                records.append(record);
            }
        }
        return records;
    });
}

/// All scripts, with every value one that a script can have.
inline rc::Gen<QByteArrayList> scripts(int lastDay, int lastMonth)
{
    return rc::gen::exec([lastDay, lastMonth] {
        QByteArrayList records;
        for (int number = 0; number < 32; ++number) {
            QByteArray record;
            record.append(char(number));
            record.append(*rc::gen::element('\0', '\1', '\2', '\3', '\7')); // mode
            record.append(char(below(256)));                                // duration and delay
            record.append(char(below(256)));                                // state
            record.append(char(below(64) << 1));                            // faults
            record.append(char(16 + below(240)));                           // channels and filters
            record.append(char(below(128)));                                // days
            for (int period = 0; period < 2; ++period) {
                record.append(bcd(below(60)));
                record.append(bcd(below(24)));
                record.append(bcd(1 + below(lastDay)));
                record.append(bcd(1 + below(lastMonth)));
            }
            for (int left = 3 + 4; left > 0; --left) { // model and addresses
                record.append(char(below(256)));
            }
            records.append(record);
        }
        return records;
    });
}

/// An event of no known code, which is shown with its bytes.
struct Event
{
    QDate date;
    QTime time;
    int terminalClass = 0;
    int version = 0;
    quint8 type = 0;
    quint8 characteristic = 0;
    quint8 signal = 0;
    quint8 noise = 0;
    int code = 0;
    quint8 address = 0;
    QByteArray data;

    /// The bits of the year stand above the minute, the hour, the day and the month, the highest first.
    QByteArray record() const
    {
        const int year = quint8(bcd(date.year() - 2000));
        QByteArray bytes;
        for (const int byte : {(year & 0x80) | bcd(time.minute()), (year & 0x60) << 1 | bcd(time.hour()),
                               (year & 0x18) << 3 | bcd(date.day()), (year & 0x07) << 5 | bcd(date.month()),
                               terminalClass << 4 | version, int(type), int(characteristic), int(signal), int(noise),
                               code, int(address)}) {
            bytes.append(char(byte));
        }
        return bytes + data;
    }
};

inline void showValue(const Event& event, std::ostream& stream)
{
    stream << event.record().toHex(' ').constData();
}

inline rc::Gen<Event> event()
{
    return rc::gen::exec([] {
        Event event;
        event.date = QDate(2000, 1, 1).addDays(below(36525));
        event.time = QTime(0, 0).addSecs(60 * below(1440));
        event.terminalClass = below(8);
        event.version = below(16);
        event.type = *rc::gen::arbitrary<quint8>();
        event.characteristic = *rc::gen::arbitrary<quint8>();
        event.signal = *rc::gen::arbitrary<quint8>();
        event.noise = *rc::gen::arbitrary<quint8>();
        event.code = 4 + below(124);
        event.address = *rc::gen::arbitrary<quint8>();
        for (int i = 0; i < 5; ++i) {
            event.data.append(char(below(256)));
        }
        return event;
    });
}

/// Rows with texts of any letters but the apostrophe, which the statement doesn't know to write.
inline rc::Gen<QList<EventOfTable>> rowsOfLog()
{
    return rc::gen::exec([] {
        const auto text = [] { return (*name()).remove(QLatin1Char('\'')); };
        QList<EventOfTable> rows;
        for (int left = below(30); left > 0; --left) {
            EventOfTable row;
            row.numberEvent = quint16(below(65536));
            row.sortDateTime = *rc::gen::arbitrary<quint32>();
            row.dateInDays = quint16(below(65536));
            row.codeEvent = *rc::gen::arbitrary<quint8>();
            row.source = text();
            row.event = text() + QLatin1String("?:a @b $c");
            row.information = text() + QLatin1Char('\n') + text();
            rows.append(row);
        }
        return rows;
    });
}

} // namespace drawn
