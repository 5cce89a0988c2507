#include "firmware/Loading.h"
#include "firmware/protocol_boot.h"
#include "link/FormRecorder.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "simulator/DemoInstallation.h"
#include "simulator/UnitSimulator.h"
#include "support/Eventually.h"
#include "support/UnitRecords.h"
#include "support/threadedTestMain.h"
#include "texts/texts.h"

#include <QPointer>
#include <QRandomGenerator>
#include <QSet>
#include <QtTest>

namespace
{

using P = protocol_HUBN_NX_Q;

constexpr int patience = 300000; ///< ms; four times ten late steps, on a busy machine

const QDateTime& now()
{
    static const QDateTime moment(QDate(2026, 3, 9), QTime(12, 0));
    return moment;
}

/// An operation over a unit at the pace of the wire, some of whose answers come late: the case of a seed.
///
/// Whatever comes late, what is told as done is done, what is shown is the unit's, and what is missing is counted.
class Case
{
public:
    explicit Case(quint32 seed) : random(seed), unit(makeState())
    {
        unit.setPace(UnitSimulator::OfTheWire);
        recorder.names.append(unit.portName());
    }

    Q_DISABLE_COPY_MOVE(Case)
    ~Case() = default;

    /// Empty if nothing is wrong; otherwise what is.
    QString run()
    {
        const int operation = random.bounded(5);
        if (operation == 0) {
            beLate({12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 7, 8, 4, 3}, 40);
        }
        recorder.form.sl_updatePortList();
        if (!eventually([this] { return recorder.has(QStringLiteral("terminals")); }, patience)) {
            return QStringLiteral("no end of the search for terminals");
        }
        switch (operation) {
        case 0: {
            const QString fault = terminals() + reading();
            return fault.isEmpty() ? log() : fault;
        }
        case 1:
            beLate({7, 8}, 60);
            return reading();
        case 2:
            beLate({5, 6}, 60);
            return writing();
        case 3:
            beLate({4, 3}, 18);
            return log();
        default:
            beLate({22}, 1);
            return firmware();
        }
    }

private:
    UnitState makeState()
    {
        UnitState state = demoInstallation(random.generate(), 10 + random.bounded(60), now());
        state.repeatsLostLogBlock = false; // it takes what is late for lost
        return state;
    }

    /// Makes one to ten answers to requests of these types late by 125 ms to 2 s, each among the first `among` of its
    /// type.
    void beLate(const QVector<int>& types, int among)
    {
        constexpr int longestRun = 4;
        QVector<UnitFault> faults;
        QSet<QPair<int, int>> places; // two rules for one request would add up
        for (int count = random.bounded(1, 11); count > 0; --count) {
            UnitFault fault(UnitFault::DelayAnswer);
            int type = types.at(random.bounded(types.size()));
            int place = random.bounded(among / longestRun + 1);
            // A load has blocks, and requests around them.
            if (type == P::Switch_To_Boot && random.bounded(5) != 0) {
                type = -random.bounded(1, 7);
                place = random.bounded(3);
                fault.onBoot(-type);
            } else {
                fault.onRequest(type);
            }
            if (!places.contains({type, place})) {
                places.insert({type, place});
                faults.append(fault.from(1 + place * longestRun)
                                  .times(random.bounded(1, longestRun + 1))
                                  .value(random.bounded(125, 2001)));
            }
        }
        // What is refused for good has to be counted, whatever comes late beside it.
        if (types.contains(P::Write_Script)) {
            const int type = types.at(random.bounded(types.size()));
            faults.append(UnitFault(UnitFault::Refuse).onRequest(type).from(random.bounded(1, among)).times(4));
        }
        unit.setFaults(faults, random.generate());
    }

    QString lastResult() const
    {
        return recorder.events.filter(QStringLiteral("result ")).constLast().mid(7);
    }

    bool waitForResult(const QStringList& ends) const
    {
        return eventually(
            [&] {
                return std::any_of(ends.cbegin(), ends.cend(), [this](const QString& end) {
                    return recorder.has(QStringLiteral("result ") + end);
                });
            },
            patience);
    }

    QString terminals() const
    {
        const QVector<UnitTerminal> real = unit.state().terminals;
        for (const QByteArray& found : recorder.terminals) {
            const auto isFound = [&found](const UnitTerminal& terminal) { return terminal.infoRecord == found; };
            if (!found.isEmpty() && std::none_of(real.cbegin(), real.cend(), isFound)) {
                return QStringLiteral("a terminal that isn't there");
            }
        }
        return {};
    }

    QString reading()
    {
        recorder.form.sl_PreOperationReadConfigAndScript();
        if (!waitForResult({texts::resultReadOutputsOk(), texts::resultReadOutputsErrors()})) {
            return QStringLiteral("no end of the reading");
        }
        const UnitState state = unit.state();
        const QStringList lines = lastResult().split(QLatin1Char('\n'));
        if (!isPartOf(recorder.outputs, outputsOf(state)) || !isPartOf(recorder.scripts, scriptsOf(state))) {
            return QStringLiteral("shows what isn't in the unit");
        }
        const bool isCounted = recorder.outputs.size() + errorsOn(lines.value(0)) == outputsOf(state).size() &&
                               recorder.scripts.size() + errorsOn(lines.value(1)) == scriptsOf(state).size();
        return isCounted ? QString() : QStringLiteral("reading: ") + lines.join(QStringLiteral("; "));
    }

    QString writing()
    {
        const UnitState wanted = demoInstallation(random.generate(), 0, now());
        recorder.form.sl_PreOperationWriteConfigAndScript(outputsOf(wanted), scriptsOf(wanted));
        if (!waitForResult({texts::resultWriteOutputsOk(), texts::resultWriteOutputsErrors()})) {
            return QStringLiteral("no end of the writing");
        }
        const UnitState after = unit.state();
        const QStringList lines = lastResult().split(QLatin1Char('\n'));
        const bool isCounted = differences(outputsOf(wanted), outputsOf(after)) <= errorsOn(lines.value(0)) &&
                               differences(scriptsOf(wanted), scriptsOf(after)) <= errorsOn(lines.value(1));
        return isCounted ? QString() : QStringLiteral("writing: ") + lines.join(QStringLiteral("; "));
    }

    QString log()
    {
        recorder.form.sl_SendRequestBeginReadLog();
        if (!waitForResult({texts::resultLogOk(), texts::resultLogErrors(), texts::resultLogError()})) {
            return QStringLiteral("no end of the log");
        }
        const QByteArrayList real = inBlocks(unit.state().log.records());
        if (!isPartOf(recorder.logRecords, real)) {
            return QStringLiteral("events that aren't in the log");
        }
        const QString result = lastResult();
        const bool isCounted =
            result == texts::resultLogError() || recorder.logRecords.size() + errorsOn(result) == real.size();
        return isCounted ? QString()
                         : QStringLiteral("%1 of %2: %3").arg(recorder.logRecords.size()).arg(real.size()).arg(result);
    }

    QString firmware()
    {
        QByteArray image(random.bounded(3, 1500), '\0');
        for (char& value : image) {
            value = char(random.bounded(256));
        }
        QString told;
        const QPointer<Loading> loading = new Loading;
        QObject::connect(loading, &Loading::sig_SendMessage, &recorder.form,
                         &FormChoiceCoordinator::sl_SendRequestOnCurrentPort);
        QObject::connect(&recorder.form, &FormChoiceCoordinator::sig_sendAnswerFirmWare, loading,
                         &Loading::sl_receiveMessage);
        QObject::connect(loading, &Loading::sig_SendResultOperation, &recorder,
                         [&told](const QString& text) { told = text; });
        recorder.form.sl_CurrentLoadingFirmwareIsRunning(true);
        loading->setParameters(recorder.form.currentAddress(), recorder.form.currentBaudrate(),
                               QStringLiteral("image.crypt"), image);
        loading->show();
        const auto isOver = [&told] {
            return told.startsWith(texts::resultFirmwareCompleted()) || told.startsWith(texts::resultFirmwareError());
        };
        const bool ended = eventually(isOver, patience);
        recorder.form.sl_CurrentLoadingFirmwareIsRunning(false);
        delete loading;
        if (!ended) {
            return QStringLiteral("no end of the load");
        }
        const UnitState after = unit.state();
        const bool isRight = after.firmwareComplete && after.firmware == image;
        return isRight || told.startsWith(texts::resultFirmwareError()) ? QString()
                                                                        : QStringLiteral("firmware: ") + told;
    }

    QRandomGenerator random;
    UnitSimulator unit;
    FormRecorder recorder{{}, {}, &protocol_boot::parseAnswer};
};

} // namespace

/// The link over a unit whose answers come late, one place after the other. Each seed is a case of its own; the
/// variable LATE_ANSWERS names the first and how many ("1 10"), so that many can be run side by side
/// (tools/late-answers).
class tst_late_answers : public QObject
{
    Q_OBJECT

private slots:
    void noAnswerIsTakenForAnothers_data();
    void noAnswerIsTakenForAnothers();
    void aSilentUnitCostsOneWait();
};

void tst_late_answers::noAnswerIsTakenForAnothers_data()
{
    const QStringList range = qEnvironmentVariable("LATE_ANSWERS", QStringLiteral("1 10")).split(QLatin1Char(' '));
    QTest::addColumn<quint32>("seed");
    for (quint32 i = 0; i < range.value(1).toUInt(); ++i) {
        const quint32 seed = range.at(0).toUInt() + i;
        QTest::addRow("seed %u", seed) << seed;
    }
}

void tst_late_answers::noAnswerIsTakenForAnothers()
{
    QFETCH(const quint32, seed);
    QCOMPARE(Case(seed).run(), QString());
}

void tst_late_answers::aSilentUnitCostsOneWait()
{
    constexpr int steps = 102;
    constexpr int longStillness = 2000; // ms; each silence is 120, the one wait 2,150
    UnitSimulator unit(demoInstallation(1, 10, now()));
    // Counted where they are sent: a request that the unit hasn't read yet is lost when the next one clears the line.
    QVector<QDateTime> sent;
    FormRecorder recorder({unit.portName()});
    EVENTUALLY(recorder.has(QStringLiteral("terminals")));
    unit.setFaults({UnitFault(UnitFault::LoseRequest)});
    connect(&recorder.form, &FormChoiceCoordinator::sig_sendRequestOnForm, this,
            [&sent](const QDateTime& time, const QByteArray&, bool ofWatch) {
                if (!ofWatch) {
                    sent.append(time);
                }
            });
    recorder.form.sl_PreOperationReadConfigAndScript();
    QVERIFY(eventually([&] { return recorder.has(QStringLiteral("result ") + texts::resultReadOutputsErrors()); },
                       patience));
    QCOMPARE(sent.size(), 4 * steps);
    int waits = 0;
    for (int i = 1; i < sent.size(); ++i) {
        waits += sent.at(i - 1).msecsTo(sent.at(i)) > longStillness ? 1 : 0;
    }
    // One, and what a machine that stands still for seconds adds. One at each step would be a hundred.
    QVERIFY2(waits >= 1 && waits < 10, qPrintable(QString::number(waits)));
}

HUBN_THREADED_TEST_MAIN(tst_late_answers)
#include "tst_late_answers.moc"
