#include "LinkRecorder.h"

#include <QtTest>

namespace
{

using Protocol = protocol_HUBN_NX_Q;

} // namespace

/// A link that no user chooses for: a program takes a port, asks what it wants to know, and breaks off.
class tst_LinkWithoutUser : public QObject
{
    Q_OBJECT

private slots:
    void aFoundCoordinatorIsNotChosen();
    void theFirstIsChosenOnceThatIsWanted();
    void aUsedPortIsTheCurrentOneAndNothingIsAsked();
    void aUsedPortWithoutACoordinatorAllowsNoOperations();
    void usingAnotherPortMovesTheOperations();
    void theSearchForTerminalsTellsThem();
    void withoutAPortTheSearchForTerminalsIsDropped();
    void aFailedReadingThatIsReadAgainIsNoFailedStep();
    void aSearchThatNeverAgreesEndsAtItsLimit();

    void abandonedOperationsSendNothingMore();
    void abandonedOperationsAreNeitherResentNorTold();
    void afterAbandoningNothingBegins();
    void aClockThatIsBeingSetTellsItsEndAllTheSame();
};

void tst_LinkWithoutUser::aFoundCoordinatorIsNotChosen()
{
    LinkRecorder recorder({portA});
    recorder.link.setChoosingFirst(false);
    recorder.take();
    letFind(recorder.port());
    QVERIFY(recorder.link.currentPort() == nullptr);
    QCOMPARE(recorder.state(), StateCoordinatorConnected);
    QVERIFY(!recorder.has(QStringLiteral("enable")));
    QVERIFY(!recorder.has(QStringLiteral("send 12")));
    QVERIFY(!recorder.isBusy);
}

void tst_LinkWithoutUser::theFirstIsChosenOnceThatIsWanted()
{
    LinkRecorder recorder({portA});
    recorder.link.setChoosingFirst(false);
    letFind(recorder.port());
    recorder.link.setChoosingFirst(true);
    QVERIFY(recorder.link.currentPort() == nullptr);
    // By the watch.
    message check = Protocol::requestCheckCoordinator(1);
    check.setRequestType(Protocol::Check_Coordinator);
    recorder.port()->takeAnswer(answers::good(check, identity));
    QCOMPARE(recorder.link.currentPort(), recorder.port());
    QVERIFY(recorder.has(QStringLiteral("send 12")));
}

void tst_LinkWithoutUser::aUsedPortIsTheCurrentOneAndNothingIsAsked()
{
    LinkRecorder recorder({portA});
    recorder.link.setChoosingFirst(false);
    letFind(recorder.port(), 3, 9600);
    recorder.take();
    int choices = 0;
    connect(&recorder.link, &CoordinatorLink::chosen, &recorder, [&choices] { ++choices; });
    recorder.link.use(*recorder.port());
    QCOMPARE(recorder.link.currentPort(), recorder.port());
    QCOMPARE(int(recorder.link.currentAddress()), 3);
    QCOMPARE(recorder.link.currentBaudrate(), 9600);
    QCOMPARE(recorder.take(),
             QStringList({QStringLiteral("enable 1"), QStringLiteral("status 2 %1 - 3 4711 6.02").arg(portA)}));
    QVERIFY(!recorder.isBusy);
    QCOMPARE(choices, 0);
}

void tst_LinkWithoutUser::aUsedPortWithoutACoordinatorAllowsNoOperations()
{
    LinkRecorder recorder({portA});
    recorder.take();
    recorder.link.use(*recorder.port());
    QCOMPARE(recorder.link.currentPort(), recorder.port());
    QCOMPARE(recorder.link.currentAddress(), noCoordinator);
    QVERIFY(recorder.has(QStringLiteral("enable 0")));
}

void tst_LinkWithoutUser::usingAnotherPortMovesTheOperations()
{
    LinkRecorder recorder({portA, portB});
    recorder.link.setChoosingFirst(false);
    letFind(recorder.port(0), 1);
    letFind(recorder.port(1), 2);
    recorder.link.use(*recorder.port(0));
    recorder.link.use(*recorder.port(1));
    recorder.sent.clear();
    recorder.link.readScript(4);
    QCOMPARE(recorder.sent.size(), 1);
    QCOMPARE(recorder.sent.constFirst().port, recorder.port(1));
    QCOMPARE(recorder.sent.constFirst().request.request(), Protocol::requestReadScript(2, 4).request());
}

void tst_LinkWithoutUser::theSearchForTerminalsTellsThem()
{
    LinkRecorder recorder({portA});
    recorder.link.setChoosingFirst(false);
    letFind(recorder.port());
    recorder.link.use(*recorder.port());
    recorder.sent.clear();
    recorder.link.searchTerminals();
    while (!recorder.has(QStringLiteral("terminals"))) {
        QVERIFY(!recorder.sent.isEmpty());
        recorder.port()->takeAnswer(suitableAnswer(recorder.sent.takeFirst().request));
    }
    QCOMPARE(recorder.terminals.size(), 2);
    QVERIFY(recorder.sent.isEmpty());
}

void tst_LinkWithoutUser::withoutAPortTheSearchForTerminalsIsDropped()
{
    LinkRecorder recorder;
    recorder.link.searchTerminals();
    QCOMPARE(recorder.sent.size(), 1);
    QVERIFY(recorder.sent.constFirst().port == nullptr);
}

void tst_LinkWithoutUser::aFailedReadingThatIsReadAgainIsNoFailedStep()
{
    LinkRecorder recorder({portA});
    recorder.link.setChoosingFirst(false);
    letFind(recorder.port());
    recorder.link.use(*recorder.port());
    int failures = 0;
    connect(&recorder.link, &CoordinatorLink::stepFailed, &recorder, [&failures] { ++failures; });
    recorder.link.searchTerminals();
    const auto fail = [&recorder] {
        message last = recorder.sent.constLast().request;
        last.setAttempts(0);
        recorder.port()->takeAnswer(answers::timedOut(last));
    };
    recorder.port()->takeAnswer(answers::good(recorder.sent.constLast().request, QByteArray::fromHex("01")));
    fail();
    QCOMPARE(failures, 0);
    fail(); // and this one confirms that there is nothing
    QCOMPARE(failures, 1);
}

void tst_LinkWithoutUser::aSearchThatNeverAgreesEndsAtItsLimit()
{
    LinkRecorder recorder({portA});
    recorder.link.setChoosingFirst(false);
    letFind(recorder.port());
    recorder.link.use(*recorder.port());
    QVector<int> unconfirmed;
    connect(&recorder.link, &CoordinatorLink::stepUnconfirmed, &recorder,
            [&unconfirmed](const message& answer) { unconfirmed.append(answer.requestType()); });
    recorder.link.searchTerminals(4);
    for (int reading = 1; reading <= 4; ++reading) {
        const message request = recorder.sent.constLast().request;
        QCOMPARE(request.requestType(), int(Protocol::Busy_Channel_System));
        recorder.port()->takeAnswer(answers::good(request, QByteArray(1, char(reading))));
    }
    QCOMPARE(unconfirmed, QVector<int>{Protocol::Busy_Channel_System});
    QCOMPARE(recorder.sent.constLast().request.requestType(), int(Protocol::Busy_Channel_Sensor));
}

void tst_LinkWithoutUser::abandonedOperationsSendNothingMore()
{
    LinkRecorder recorder({portA});
    letFind(recorder.port());
    recorder.link.readConfiguration();
    const message request = recorder.sent.constLast().request;
    recorder.take();
    recorder.link.abandonOperations();
    recorder.port()->takeAnswer(suitableAnswer(request));
    // Its answer counts, and no other follows.
    QCOMPARE(recorder.busySteps, 1);
    QCOMPARE(recorder.take(), QStringList());
}

void tst_LinkWithoutUser::abandonedOperationsAreNeitherResentNorTold()
{
    LinkRecorder recorder({portA});
    letFind(recorder.port());
    recorder.link.readConfiguration();
    message request = recorder.sent.constLast().request;
    int failures = 0;
    connect(&recorder.link, &CoordinatorLink::stepFailed, &recorder, [&failures] { ++failures; });
    recorder.take();
    recorder.link.abandonOperations();
    recorder.port()->takeAnswer(answers::timedOut(request));
    request.setAttempts(0);
    recorder.port()->takeAnswer(answers::timedOut(request));
    QCOMPARE(recorder.take(), QStringList());
    QCOMPARE(recorder.busySteps, 0);
    QCOMPARE(failures, 0);
}

void tst_LinkWithoutUser::afterAbandoningNothingBegins()
{
    LinkRecorder recorder({portA});
    letFind(recorder.port());
    recorder.link.abandonOperations();
    recorder.sent.clear();
    recorder.link.searchTerminals();
    recorder.link.readConfiguration();
    recorder.link.readLog();
    recorder.link.setDeviceTime();
    recorder.link.writeConfiguration({QByteArray(4, '\0')}, {QByteArray(22, '\0')});
    recorder.link.send(Protocol::requestReadScript(1, 0));
    QVERIFY(recorder.sent.isEmpty());
}

void tst_LinkWithoutUser::aClockThatIsBeingSetTellsItsEndAllTheSame()
{
    LinkRecorder recorder({portA});
    letFind(recorder.port());
    recorder.link.setDeviceTime();
    const message request = recorder.sent.constLast().request;
    QStringList ends;
    connect(&recorder.link, &CoordinatorLink::deviceTimeWritten, &recorder,
            [&ends](bool accepted) { ends.append(accepted ? QStringLiteral("taken") : QStringLiteral("not taken")); });
    recorder.link.abandonOperations();
    recorder.port()->takeAnswer(answers::good(request));
    QCOMPARE(ends, QStringList{QStringLiteral("taken")});
}

QTEST_GUILESS_MAIN(tst_LinkWithoutUser)
#include "tst_LinkWithoutUser.moc"
