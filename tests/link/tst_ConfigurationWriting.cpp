#include "Answers.h"
#include "OperationRecorder.h"
#include "link/ConfigurationWriting.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "texts/texts.h"

#include <QtTest>

namespace
{

const QByteArrayList twoOutputs{QByteArray::fromHex("000001"), QByteArray::fromHex("01c102")};
const QByteArrayList twoScripts{QByteArray::fromHex("00aa"), QByteArray::fromHex("01bb")};

QString bothLines(const QString& first, const QString& second)
{
    return QStringLiteral("result ") + first + QLatin1Char('\n') + second;
}

QString started()
{
    return QStringLiteral("result Writing configuration of outputs and scripts of work of executive terminals "
                          "started...");
}

} // namespace

class tst_ConfigurationWriting : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void sendsTheFirstOutputBeforeItShowsTheBusyForm();
    void writesOutputsThenScriptsAndHidesTheBusyForm();
    void beginsWithTheScriptsIfThereAreNoOutputs();
    void goesOnAfterFailuresAndCountsThem();
    void countsAfreshInTheNextWriting();
    void withoutAPortDoesNothing();
    void withNothingToWriteHasNothingToWaitFor();
    void withoutScriptsEndsInSilenceAfterTheLastOutput();
    void handlesItsOwnTypes();

private:
    message request(int index) const
    {
        return recorder->requests.at(index);
    }

    std::unique_ptr<ConfigurationWriting> operation;
    std::unique_ptr<OperationRecorder> recorder;
};

void tst_ConfigurationWriting::init()
{
    operation = std::make_unique<ConfigurationWriting>();
    recorder = std::make_unique<OperationRecorder>(*operation);
    operation->setCoordinator(2);
}

void tst_ConfigurationWriting::sendsTheFirstOutputBeforeItShowsTheBusyForm()
{
    operation->start(twoOutputs, twoScripts);
    QCOMPARE(recorder->take(),
             QStringList({QStringLiteral("begun 0..4 Writing configuration of outputs of\nexecutive terminals and "
                                         "scripts of\nwork of executive terminals is in progress..."),
                          QStringLiteral("send 5"), QStringLiteral("shown"), started()}));
    QCOMPARE(request(0).request(), protocol_HUBN_NX_Q::requestWriteConfig(2, twoOutputs.at(0)).request());
}

void tst_ConfigurationWriting::writesOutputsThenScriptsAndHidesTheBusyForm()
{
    operation->start(twoOutputs, twoScripts);
    recorder->take();
    for (int i = 0; i < recorder->requests.size(); ++i) {
        operation->takeAnswer(answers::good(request(i)), false);
    }
    QCOMPARE(
        recorder->take(),
        QStringList({QStringLiteral("step"), QStringLiteral("send 5"), QStringLiteral("step"), QStringLiteral("send 6"),
                     QStringLiteral("step"), QStringLiteral("send 6"), QStringLiteral("step"), QStringLiteral("hidden"),
                     bothLines(QStringLiteral("Writing configuration of outputs SUCCESSFUL COMPLETE"),
                               QStringLiteral("Writing scripts of work of executive terminals SUCCESSFUL "
                                              "COMPLETE"))}));
    QCOMPARE(request(1).request(), protocol_HUBN_NX_Q::requestWriteConfig(2, twoOutputs.at(1)).request());
    QCOMPARE(request(2).request(), protocol_HUBN_NX_Q::requestWriteScript(2, twoScripts.at(0)).request());
    QCOMPARE(request(3).request(), protocol_HUBN_NX_Q::requestWriteScript(2, twoScripts.at(1)).request());
}

void tst_ConfigurationWriting::beginsWithTheScriptsIfThereAreNoOutputs()
{
    operation->start({}, twoScripts);
    QCOMPARE(recorder->take(), QStringList({QStringLiteral("begun 0..2 ") + texts::busyWriting(),
                                            QStringLiteral("send 6"), QStringLiteral("shown"), started()}));
}

void tst_ConfigurationWriting::goesOnAfterFailuresAndCountsThem()
{
    operation->start(twoOutputs, twoScripts);
    for (int i = 0; i < recorder->requests.size(); ++i) {
        // Both outputs and the first script fail.
        operation->takeAnswer(i < 3 ? answers::timedOut(request(i)) : answers::good(request(i)), i < 3);
    }
    QCOMPARE(recorder->requests.size(), 4);
    QCOMPARE(recorder->events.last(),
             bothLines(QStringLiteral("Writing configuration of outputs WAS COMPLETED WITH ERROR (Number of error = "
                                      "2)"),
                       QStringLiteral("Writing scripts of work of executive terminals WAS COMPLETED WITH ERROR "
                                      "(Number of error = 1)")));
}

void tst_ConfigurationWriting::countsAfreshInTheNextWriting()
{
    operation->start(twoOutputs, {});
    operation->takeAnswer(answers::timedOut(request(0)), true);
    // Abandoned, as by a change of the port.
    operation->start({}, twoScripts);
    operation->takeAnswer(answers::good(request(2)), false);
    operation->takeAnswer(answers::good(request(3)), false);
    QCOMPARE(recorder->events.last(), bothLines(texts::resultWriteOutputsOk(), texts::resultWriteScriptsOk()));
}

void tst_ConfigurationWriting::withoutAPortDoesNothing()
{
    ConfigurationWriting unconnected;
    OperationRecorder silence(unconnected);
    unconnected.start(twoOutputs, twoScripts);
    QCOMPARE(silence.take(), QStringList());
}

void tst_ConfigurationWriting::withNothingToWriteHasNothingToWaitFor()
{
    operation->start({}, {});
    QCOMPARE(recorder->take(), QStringList({QStringLiteral("begun 0..0 ") + texts::busyWriting(),
                                            QStringLiteral("shown"), started(), QStringLiteral("nothing sent")}));
}

void tst_ConfigurationWriting::withoutScriptsEndsInSilenceAfterTheLastOutput()
{
    operation->start(twoOutputs, {});
    operation->takeAnswer(answers::good(request(0)), false);
    recorder->take();
    operation->takeAnswer(answers::good(request(1)), false);
    QCOMPARE(recorder->take(), QStringList(QStringLiteral("step")));
}

void tst_ConfigurationWriting::handlesItsOwnTypes()
{
    for (int type = 0; type < 30; ++type) {
        QCOMPARE(operation->handles(type), type == 5 || type == 6);
    }
}

QTEST_GUILESS_MAIN(tst_ConfigurationWriting)
#include "tst_ConfigurationWriting.moc"
