#include "simulator/UnitSimulatorTest.h"

/// What a fault does to requests, answers and the cable.
class tst_UnitSimulatorFaults : public UnitSimulatorTest
{
    Q_OBJECT

private slots:
    void init()
    {
        start(UnitState());
    }
    void cleanup()
    {
        end();
    }

    void faults_data();
    void faults();
    void lostRequestIsNotDone();
    void lostAnswerIsDoneAllTheSame();
    void refusedWriteIsNotDone();
    void changedAnswerHasARightChecksum();
    void damagedAnswerDiffersInOneBit();
    void splitAnswerComesInPieces();
    void lateAnswerComesLate();
    void formerAnswerComesAgain();
    void sameSeedSameFaults();
    void unplugsAtTheNthRequestAndComesBack();
    void unplugsWithinAnAnswer();
    void staysUnpluggedUntilPluggedIn();

    void answerThatAFaultDelaysComesAllTheSame();
};

void tst_UnitSimulatorFaults::faults_data()
{
    QTest::addColumn<UnitFault>("fault");
    QTest::addColumn<QByteArray>("hit");
    const auto row = [](const char* name, const UnitFault& fault, const char* answer) {
        QTest::newRow(name) << fault << hex(answer);
    };
    row("refusal", UnitFault(UnitFault::Refuse).value(2), "C2 06 01 00 01 02 BC 1A");
    row("refusal by default", UnitFault(UnitFault::Refuse), "C2 06 01 00 01 01 27 28");
    row("wrong checksum", UnitFault(UnitFault::BadChecksum), "C2 06 01 00 05 00 67 12 02 06 0C AE");
    row("given noise before", UnitFault(UnitFault::NoiseBefore).bytes(hex("FF C2")),
        "FF C2 C2 06 01 00 05 00 67 12 02 06 0D AE");
    row("given noise behind", UnitFault(UnitFault::NoiseAfter).bytes(hex("C0 01")),
        "C2 06 01 00 05 00 67 12 02 06 0D AE C0 01");
    row("noise of its own later", UnitFault(UnitFault::NoiseLater).bytes(hex("AB")).value(5),
        "C2 06 01 00 05 00 67 12 02 06 0D AE AB");
    row("other data", UnitFault(UnitFault::ReplaceAnswer).bytes(hex("00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00")),
        "C2 06 01 00 11 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 69 03");
    row("no data", UnitFault(UnitFault::ReplaceAnswer), "C2 06 01 00 01 00 AE 39");
    row("in pieces", UnitFault(UnitFault::SplitAnswer).amount(12).value(1), itIsMe);
    row("late", UnitFault(UnitFault::DelayAnswer).value(5), itIsMe);
    row("wrong bit", UnitFault(UnitFault::DamageAnswer).amount(2).value(4), "C2 06 11 00 05 00 67 12 02 06 0D AE");
    row("broken off", UnitFault(UnitFault::BreakOff).amount(3), "C2 06 01");
    row("broken off, the rest later", UnitFault(UnitFault::BreakOff).amount(3).value(5), itIsMe);
    row("twice", UnitFault(UnitFault::RepeatAnswer),
        "C2 06 01 00 05 00 67 12 02 06 0D AE C2 06 01 00 05 00 67 12 02 06 0D AE");
}

/// The second of three requests is hit.
void tst_UnitSimulatorFaults::faults()
{
    QFETCH(UnitFault, fault);
    QFETCH(QByteArray, hit);
    unit->setFaults({fault.onRequest(9).from(2).times(1)});
    COMPARE_ANSWER(hex(whoAreYou), hex(itIsMe));
    COMPARE_ANSWER(hex(whoAreYou), hit);
    COMPARE_ANSWER(hex(readScript0), hex(scriptEmpty));
    COMPARE_ANSWER(hex(whoAreYou), hex(itIsMe));
}

void tst_UnitSimulatorFaults::lostRequestIsNotDone()
{
    unit->setFaults({UnitFault(UnitFault::LoseRequest).onRequest(5).times(1)});
    tell(hex(writeOutput51));
    COMPARE_ANSWER(hex(readOutput51), hex(output51Empty));
    QVERIFY(!unit->requests().first().heard);
}

void tst_UnitSimulatorFaults::lostAnswerIsDoneAllTheSame()
{
    unit->setFaults({UnitFault(UnitFault::LoseAnswer).onRequest(5).times(1)});
    tell(hex(writeOutput51));
    COMPARE_ANSWER(hex(readOutput51), hex(output51));
    QVERIFY(unit->requests().first().heard);
    QVERIFY(unit->requests().first().answer.isEmpty());
}

void tst_UnitSimulatorFaults::refusedWriteIsNotDone()
{
    unit->setFaults({UnitFault(UnitFault::Refuse).onRequest(5).value(2)});
    COMPARE_ANSWER(hex(writeOutput51), hex(outOfRange));
    COMPARE_ANSWER(hex(readOutput51), hex(output51Empty));
}

void tst_UnitSimulatorFaults::changedAnswerHasARightChecksum()
{
    unit->change([](UnitState& state) { state.outputs[5][1] = QByteArray(20, '\x09'); });
    unit->setFaults({UnitFault(UnitFault::ChangeAnswer).onRequest(7).from(2)});
    const QByteArray right = dataOf(ask(hex(readOutput51), 28));
    QCOMPARE(right, QByteArray(20, '\x09'));
    for (int count = 0; count < 5; ++count) {
        port->write(hex(readOutput51));
        QTRY_COMPARE_WITH_TIMEOUT(unit->requestCount(), count + 2, patience);
        QTRY_VERIFY_WITH_TIMEOUT(!unit->requests().last().answer.isEmpty(), patience);
        QByteArray frame = unit->requests().last().answer.left(1);
        const QByteArray stuffed = unit->requests().last().answer.mid(1);
        for (int index = 0; index < stuffed.size(); ++index) {
            const bool escape = stuffed.at(index) == '\xC0';
            frame += escape ? char(stuffed.at(++index) ^ '\xC0') : stuffed.at(index);
        }
        QCOMPARE(frame, frames::withChecksum(frame.chopped(2)));
        int differences = 0;
        for (int index = 0; index < right.size(); ++index) {
            differences += frame.at(6 + index) == right.at(index) ? 0 : 1;
        }
        QCOMPARE(differences, 1);
    }
}

void tst_UnitSimulatorFaults::damagedAnswerDiffersInOneBit()
{
    unit->setFaults({UnitFault(UnitFault::DamageAnswer).from(2)});
    const QByteArray right = ask(hex(readScript0), hex(scriptEmpty).size());
    for (int count = 0; count < 10; ++count) {
        const QByteArray wrong = ask(hex(readScript0), right.size());
        QCOMPARE(wrong.size(), right.size());
        uint bits = 0;
        for (int index = 0; index < right.size(); ++index) {
            bits += qPopulationCount(quint8(right.at(index) ^ wrong.at(index)));
        }
        QCOMPARE(bits, 1U);
    }
}

void tst_UnitSimulatorFaults::splitAnswerComesInPieces()
{
    unit->setFaults({UnitFault(UnitFault::SplitAnswer).amount(4).value(60)});
    int pieces = 0;
    // Fewer than four where this process slept through a gap, and one where it slept through all of them.
    for (int run = 0; run < 10 && pieces < 2; ++run) {
        pieces = 0;
        QByteArray answer;
        QElapsedTimer time;
        time.start();
        port->write(hex(whoAreYou));
        while (answer.size() < hex(itIsMe).size() && port->waitForReadyRead(patience)) {
            answer += port->readAll();
            ++pieces;
        }
        QCOMPARE(answer, hex(itIsMe));
        QVERIFY2(time.elapsed() >= 180, qPrintable(QString::number(time.elapsed())));
    }
    QVERIFY(pieces >= 2);
}

void tst_UnitSimulatorFaults::lateAnswerComesLate()
{
    unit->setFaults({UnitFault(UnitFault::DelayAnswer).value(150)});
    QElapsedTimer time;
    time.start();
    COMPARE_ANSWER(hex(whoAreYou), hex(itIsMe));
    QVERIFY2(time.elapsed() >= 150, qPrintable(QString::number(time.elapsed())));
}

void tst_UnitSimulatorFaults::formerAnswerComesAgain()
{
    unit->setFaults({UnitFault(UnitFault::FormerAnswer).from(2).times(1),
                     UnitFault(UnitFault::FormerAnswer).value(1).from(3).times(1)});
    COMPARE_ANSWER(hex(whoAreYou), hex(itIsMe));
    COMPARE_ANSWER(hex(readScript0), hex(itIsMe) + hex(scriptEmpty));
    COMPARE_ANSWER(hex(whoAreYou), hex(scriptEmpty));
    COMPARE_ANSWER(hex(whoAreYou), hex(itIsMe));
}

void tst_UnitSimulatorFaults::sameSeedSameFaults()
{
    const QVector<UnitFault> faults{UnitFault(UnitFault::DamageAnswer).withChance(0.5),
                                    UnitFault(UnitFault::NoiseBefore).withChance(0.3),
                                    UnitFault(UnitFault::LoseAnswer).withChance(0.2)};
    const auto answers = [&](quint32 seed) {
        unit->clearRequests();
        unit->setFaults(faults, seed);
        for (int count = 1; count <= 40; ++count) {
            tell(hex(whoAreYou));
        }
        QByteArrayList all;
        const QVector<UnitRequest> requests = unit->requests();
        for (const UnitRequest& request : requests) {
            all.append(request.answer);
        }
        return all;
    };
    const QByteArrayList first = answers(7);
    QCOMPARE(first.size(), 40);
    QVERIFY(first.contains(QByteArray()));
    QVERIFY(first.contains(hex(itIsMe)));
    QCOMPARE(answers(7), first);
    QVERIFY(answers(8) != first);
}

void tst_UnitSimulatorFaults::unplugsAtTheNthRequestAndComesBack()
{
    unit->setFaults({UnitFault(UnitFault::Unplug).onRequest(9).from(3).times(1).value(50)});
    QSignalSpy changes(unit.get(), &UnitSimulator::pluggedInChanged);
    COMPARE_ANSWER(hex(whoAreYou), hex(itIsMe));
    COMPARE_ANSWER(hex(whoAreYou), hex(itIsMe));
    port->write(hex(whoAreYou));
    QTRY_COMPARE_WITH_TIMEOUT(port->error(), QSerialPort::ResourceError, patience);
    QTRY_COMPARE_WITH_TIMEOUT(changes.size(), 2, patience);
    QCOMPARE(changes.at(0).at(0).toBool(), false);
    QCOMPARE(changes.at(1).at(0).toBool(), true);
    QVERIFY2(open(), qPrintable(port->errorString()));
    COMPARE_ANSWER(hex(whoAreYou), hex(itIsMe));
    QCOMPARE(unit->requestCount(9), 4);
    QVERIFY(!unit->requests().at(2).heard);
}

void tst_UnitSimulatorFaults::unplugsWithinAnAnswer()
{
    unit->setFaults({UnitFault(UnitFault::Unplug).amount(5).times(1)});
    port->write(hex(writeOutput51));
    QTRY_COMPARE_WITH_TIMEOUT(unit->isPluggedIn(), false, patience);
    QVERIFY(unit->requests().first().heard);
    QVERIFY(unit->plugIn());
    QVERIFY2(open(), qPrintable(port->errorString()));
    COMPARE_ANSWER(hex(readOutput51), hex(output51)); // it was done before the cable came off
}

void tst_UnitSimulatorFaults::staysUnpluggedUntilPluggedIn()
{
    const QString name = unit->portName();
    unit->unplug();
    QVERIFY(!unit->isPluggedIn());
    QTRY_COMPARE_WITH_TIMEOUT(port->error(), QSerialPort::ResourceError, patience);
    QVERIFY(!open());
    QVERIFY(unit->plugIn());
    QCOMPARE(unit->portName(), name);
    QVERIFY(open());
    COMPARE_ANSWER(hex(whoAreYou), hex(itIsMe));
}

void tst_UnitSimulatorFaults::answerThatAFaultDelaysComesAllTheSame()
{
    unit->setFaults({UnitFault(UnitFault::DelayAnswer).onRequest(5).value(100)});
    COMPARE_ANSWER(hex(writeOutput51) + hex(whoAreYou), hex(itIsMe) + hex(accepted));
}

QTEST_GUILESS_MAIN(tst_UnitSimulatorFaults)
#include "tst_UnitSimulatorFaults.moc"
