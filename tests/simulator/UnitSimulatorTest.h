#pragma once

#include "simulator/UnitSimulator.h"
#include "support/AnswerFrames.h"

#include <QElapsedTimer>
#include <QSerialPort>
#include <QtTest>

#include <memory>

using frames::hex;

constexpr int patience = 20000; ///< ms

constexpr const char* whoAreYou = "C1 06 01 00 01 61 5C 47";
constexpr const char* itIsMe = "C2 06 01 00 05 00 67 12 02 06 0D AE"; // serial number 4711, version 6.02
constexpr const char* logFirst = "C1 86 01 00 01 06 B0 DA";
constexpr const char* logNext = "C1 86 01 80 01 06 5C D6";
constexpr const char* readScript0 = "C1 86 01 00 02 02 00 55 3D";
constexpr const char* scriptEmpty =
    "C2 86 01 00 16 00 00 00 FF 00 10 00 00 00 01 01 00 00 01 01 F0 00 00 00 00 00 00 FC FB";
constexpr const char* writeOutput51 = "C1 86 01 00 06 01 05 01 03 03 07 C7 2A";
constexpr const char* readOutput51 = "C1 86 01 00 03 01 05 01 FB 99";
constexpr const char* output51 = "C2 86 01 00 04 00 03 03 07 73 22";
constexpr const char* output51Empty = "C2 86 01 00 02 00 00 8B A6";
constexpr const char* accepted = "C2 86 01 00 01 00 FB B3";
constexpr const char* outOfRange = "C2 86 01 00 01 02 E9 90";
constexpr const char* enterBoot = "C1 06 00 00 01 6F 99 B2"; // to whoever is there
constexpr const char* entered = "C2 06 01 00 01 00 AE 39";
constexpr const char* bootHello = "FA 03 02 C2 F9";
constexpr const char* bootErase = "FA 03 03 4B E8";
constexpr const char* bootBegin = "FA 05 04 12 34 91 DF";
constexpr const char* bootStart = "FA 03 01 59 CB";
constexpr const char* bootOk = "FA 03 00 D0 DA";
constexpr const char* bootWriteError = "FA 03 01 59 CB";

inline QByteArray bootBlock(int number, const QByteArray& content)
{
    return '\xFA' + frames::withChecksum(char(content.size() + 4) + QByteArray("\x05") + char(number) + content);
}

/// The data of an answer without reserved bytes.
inline QByteArray dataOf(const QByteArray& answer)
{
    return answer.mid(6, answer.size() - 8);
}

/// Compares what the unit sends after a request, to the byte.
#define COMPARE_ANSWER(request, expected)                                                                              \
    do {                                                                                                               \
        const QByteArray wanted = (expected);                                                                          \
        QCOMPARE(ask((request), wanted.size()).toHex(' '), wanted.toHex(' '));                                         \
    } while (false)

/// Talks to the unit through a serial port, in bytes written out by hand.
class UnitSimulatorTest : public QObject
{
protected:
    std::unique_ptr<UnitSimulator> unit;
    std::unique_ptr<QSerialPort> port;

    void start(const UnitState& state, UnitSimulator::Place place = UnitSimulator::OnOwnThread)
    {
        port.reset();
        unit = std::make_unique<UnitSimulator>(state, place);
        QVERIFY2(unit->isValid(), qPrintable(unit->errorString()));
        port = std::make_unique<QSerialPort>();
        QVERIFY2(open(), qPrintable(port->errorString()));
    }
    void end()
    {
        port.reset();
        unit.reset();
    }

    bool open()
    {
        port->close();
        port->setPortName(unit->portName());
        return port->open(QIODevice::ReadWrite) && port->setBaudRate(57600);
    }

    /// Sends a request and waits until the unit has dealt with it.
    void tell(const QByteArray& request)
    {
        const int before = unit->requestCount();
        port->write(request);
        QTRY_COMPARE_WITH_TIMEOUT(unit->requestCount(), before + 1, patience);
    }

    /// What the unit sends after `request`, as far as it is as long as `expectedLength`.
    QByteArray ask(const QByteArray& request, int expectedLength)
    {
        port->write(request);
        QByteArray answer;
        QElapsedTimer time;
        time.start();
        while (answer.size() < expectedLength && !time.hasExpired(patience)) {
            QTest::qWait(0);
            port->waitForReadyRead(5);
            answer += port->readAll();
        }
        return answer;
    }
};
