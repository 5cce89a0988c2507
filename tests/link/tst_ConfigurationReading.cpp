#include "Answers.h"
#include "OperationRecorder.h"
#include "link/ConfigurationReading.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "texts/texts.h"

#include <QtTest>

namespace
{

/// A reading with everything that it has reported.
struct Reading
{
    Reading()
    {
        operation.setCoordinator(3);
        QObject::connect(&operation, &ConfigurationReading::outputsRead, &recorder, [this](const QByteArrayList& list) {
            outputs = list;
            recorder.events.append(QStringLiteral("outputs"));
        });
        QObject::connect(&operation, &ConfigurationReading::scriptsRead, &recorder, [this](const QByteArrayList& list) {
            scripts = list;
            recorder.events.append(QStringLiteral("scripts"));
        });
    }

    /// Answers every request in turn. Returns how many there were.
    template <typename Answer>
    int run(Answer answer)
    {
        operation.start();
        int next = 0;
        for (; next < recorder.requests.size(); ++next) {
            const message request = recorder.requests.at(next);
            const message given = answer(request);
            operation.takeAnswer(given, given.timedOut());
        }
        return next;
    }

    ConfigurationReading operation;
    OperationRecorder recorder{operation};
    QByteArrayList outputs;
    QByteArrayList scripts;
};

QByteArray payloadFor(const message& request)
{
    return QByteArray("r") + char(request.address()) + char(request.number());
}

QString bothLines(const QString& first, const QString& second)
{
    return QStringLiteral("result ") + first + QLatin1Char('\n') + second;
}

} // namespace

class tst_ConfigurationReading : public QObject
{
    Q_OBJECT

private slots:
    void sendsBeforeItShowsTheBusyForm();
    void withoutAPortShowsTheBusyFormAndSendsNothing();
    void readsAllOutputsThenAllScripts();
    void endsWithTheListsThenTheResultAndTheBusyFormUp();
    void runsThroughAllStepsWhenEachFails();
    void leavesOutWhatFailed();
    void countsAfreshInTheNextReading();
    void anAbandonedReadingLeavesNothingBehind();
    void singleStepsNeedAPort();
    void handlesItsOwnTypes();
};

void tst_ConfigurationReading::sendsBeforeItShowsTheBusyForm()
{
    Reading reading;
    reading.operation.start();
    QCOMPARE(reading.recorder.take(),
             QStringList({QStringLiteral("begun 0..102 "),
                          QStringLiteral("text Reading configuration of outputs of\nexecutive terminals is in "
                                         "progress..."),
                          QStringLiteral("send 7"), QStringLiteral("shown"),
                          QStringLiteral("result Reading configuration of outputs and scripts of work of executive "
                                         "terminals started...")}));
    QCOMPARE(reading.recorder.requests.at(0).request(), protocol_HUBN_NX_Q::requestReadConfig(3, 0, 0).request());
}

void tst_ConfigurationReading::withoutAPortShowsTheBusyFormAndSendsNothing()
{
    ConfigurationReading operation;
    OperationRecorder recorder(operation);
    operation.start();
    QCOMPARE(recorder.take(),
             QStringList({QStringLiteral("begun 0..102 "), QStringLiteral("shown"),
                          QStringLiteral("result ") + texts::resultReadStarted(), QStringLiteral("nothing sent")}));
}

void tst_ConfigurationReading::readsAllOutputsThenAllScripts()
{
    Reading reading;
    QCOMPARE(reading.run([](const message& request) { return answers::good(request, payloadFor(request)); }), 102);

    QByteArrayList outputs;
    int index = 0;
    for (int address = 0; address <= 31; ++address) {
        for (int number = 0; number <= (address == 0 ? 7 : 1); ++number) {
            const message& request = reading.recorder.requests.at(index);
            QCOMPARE(request.request(),
                     protocol_HUBN_NX_Q::requestReadConfig(3, quint8(address), quint8(number)).request());
            const QByteArray place = QByteArray(1, char(address)) + char(number);
            outputs.append(place + "r" + place);
            ++index;
        }
    }
    QCOMPARE(index, 70);
    QCOMPARE(reading.outputs, outputs);
    QCOMPARE(reading.scripts.size(), 32);
    for (int number = 0; number < 32; ++number) {
        const message& request = reading.recorder.requests.at(70 + number);
        QCOMPARE(request.request(), protocol_HUBN_NX_Q::requestReadScript(3, quint8(number)).request());
        QCOMPARE(reading.scripts.at(number), QByteArray(1, char(number)) + "r" + '\0' + char(number));
    }
}

void tst_ConfigurationReading::endsWithTheListsThenTheResultAndTheBusyFormUp()
{
    Reading reading;
    reading.run([](const message& request) { return answers::good(request, payloadFor(request)); });
    const QStringList events = reading.recorder.take();
    QCOMPARE(events.count(QStringLiteral("step")), 102);
    QVERIFY(!events.contains(QStringLiteral("hidden")));

    const int outputs = events.indexOf(QStringLiteral("outputs"));
    QCOMPARE(events.mid(outputs - 1, 4),
             QStringList({QStringLiteral("step"), QStringLiteral("outputs"),
                          QStringLiteral("text Reading scripts of work of\nexecutive terminals is in progress..."),
                          QStringLiteral("send 8")}));
    QCOMPARE(events.mid(events.size() - 3),
             QStringList({QStringLiteral("step"), QStringLiteral("scripts"),
                          bothLines(QStringLiteral("Reading configuration of outputs SUCCESSFUL COMPLETE"),
                                    QStringLiteral("Reading scripts of work of executive terminals SUCCESSFUL "
                                                   "COMPLETE"))}));
}

void tst_ConfigurationReading::runsThroughAllStepsWhenEachFails()
{
    Reading reading;
    reading.outputs = {QByteArray("untouched")};
    QCOMPARE(reading.run([](const message& request) { return answers::timedOut(request); }), 102);
    QVERIFY(reading.outputs.isEmpty());
    QVERIFY(reading.scripts.isEmpty());
    QCOMPARE(reading.recorder.events.last(),
             bothLines(QStringLiteral("Reading configuration of outputs WAS COMPLETED WITH ERROR (Number of error = "
                                      "70)"),
                       QStringLiteral("Reading scripts of work of executive terminals WAS COMPLETED WITH ERROR "
                                      "(Number of error = 32)")));
}

void tst_ConfigurationReading::leavesOutWhatFailed()
{
    Reading reading;
    reading.run([](const message& request) {
        const bool isLost = request.requestType() == protocol_HUBN_NX_Q::Read_Config &&
                            (request.address() == 0 || request.address() == 31) && request.number() == 0;
        return isLost ? answers::timedOut(request) : answers::good(request, payloadFor(request));
    });
    QCOMPARE(reading.outputs.size(), 68);
    QCOMPARE(reading.outputs.first().left(2), QByteArray::fromHex("0001"));
    QCOMPARE(reading.outputs.last().left(2), QByteArray::fromHex("1f01"));
    QCOMPARE(reading.recorder.events.last(),
             bothLines(texts::resultReadOutputsErrors() + QStringLiteral(" (Number of error = 2)"),
                       texts::resultReadScriptsOk()));
}

void tst_ConfigurationReading::countsAfreshInTheNextReading()
{
    Reading reading;
    reading.run([](const message& request) { return answers::timedOut(request); });
    reading.recorder.requests.clear();
    reading.run([](const message& request) { return answers::good(request, payloadFor(request)); });
    QCOMPARE(reading.outputs.size(), 70);
    QCOMPARE(reading.scripts.size(), 32);
    QCOMPARE(reading.recorder.events.last(), bothLines(texts::resultReadOutputsOk(), texts::resultReadScriptsOk()));
}

void tst_ConfigurationReading::anAbandonedReadingLeavesNothingBehind()
{
    Reading reading;
    reading.operation.start();
    reading.operation.takeAnswer(answers::good(reading.recorder.requests.at(0), "left behind"), false);
    reading.operation.takeAnswer(answers::timedOut(reading.recorder.requests.at(1)), true);
    reading.operation.takeAnswer(answers::timedOut(protocol_HUBN_NX_Q::requestReadScript(3, 1)), true);
    reading.recorder.requests.clear();
    reading.run([](const message& request) { return answers::good(request, payloadFor(request)); });
    QCOMPARE(reading.outputs.size(), 70);
    QCOMPARE(reading.scripts.size(), 32);
    QCOMPARE(reading.recorder.events.last(), bothLines(texts::resultReadOutputsOk(), texts::resultReadScriptsOk()));
}

void tst_ConfigurationReading::singleStepsNeedAPort()
{
    ConfigurationReading operation;
    OperationRecorder recorder(operation);
    operation.readOutput(1, 0);
    operation.readScript(5);
    QCOMPARE(recorder.take(), QStringList());
    operation.setCoordinator(2);
    operation.readOutput(1, 1);
    operation.readScript(5);
    QCOMPARE(recorder.requests.size(), 2);
    QCOMPARE(recorder.requests.at(0).request(), protocol_HUBN_NX_Q::requestReadConfig(2, 1, 1).request());
    QCOMPARE(recorder.requests.at(1).request(), protocol_HUBN_NX_Q::requestReadScript(2, 5).request());
}

void tst_ConfigurationReading::handlesItsOwnTypes()
{
    const ConfigurationReading operation;
    for (int type = 0; type < 30; ++type) {
        QCOMPARE(operation.handles(type), type == 7 || type == 8);
    }
}

QTEST_GUILESS_MAIN(tst_ConfigurationReading)
#include "tst_ConfigurationReading.moc"
