#include "simulator/FaultPlan.h"
#include "simulator/UnitFault.h"

#include <QSet>
#include <QtTest>

class tst_UnitFault : public QObject
{
    Q_OBJECT
private slots:
    void everyKindHasAName();
    void readsRules();
    void rulesThatMakeNoSense_data();
    void rulesThatMakeNoSense();

    void countsTheRequestsThatItMatches_data();
    void countsTheRequestsThatItMatches();
    void chanceIsKept();
    void sameSeedSameChances();
    void rulesDoNotDisturbEachOther();
    void effectsAddUp();
    void defaultsOfTheKinds();
    void randomNoiseHoldsNoReservedByte();
    void cutsIntoAsManyPieces_data();
    void cutsIntoAsManyPieces();
    void alteredDataDifferInOneByte();
    void damagesTheBitThatIsNamed();
    void whatIsLateSpoilsAnAnswerThatBreaksOff();
};

namespace
{
/// Which of the first twenty requests of a type are hit.
QVector<int> hits(FaultPlan& plan, int requestType, int bootType)
{
    QVector<int> numbers;
    for (int number = 1; number <= 20; ++number) {
        if (plan.effectsOn(requestType, bootType).requestLost) {
            numbers.append(number);
        }
    }
    return numbers;
}
} // namespace

void tst_UnitFault::everyKindHasAName()
{
    const QStringList kinds = UnitFault::kindNames();
    QCOMPARE(kinds.size(), int(UnitFault::KindCount));
    QCOMPARE(QSet<QString>(kinds.cbegin(), kinds.cend()).size(), int(UnitFault::KindCount));
    for (int kind = 0; kind < UnitFault::KindCount; ++kind) {
        QCOMPARE(int(UnitFault::fromText(UnitFault::kindNames().at(kind), nullptr).value().kind), kind);
    }
}

void tst_UnitFault::readsRules()
{
    QString error;
    const auto fault = UnitFault::fromText(
        QStringLiteral("unplug: request=7, boot=5,from=10,times=2,chance=0.25,value=1500,amount=4,bytes=c2FF"), &error);
    QVERIFY2(fault.has_value(), qPrintable(error));
    QCOMPARE(fault->kind, UnitFault::Unplug);
    QCOMPARE(fault->requestType, 7);
    QCOMPARE(fault->bootType, 5);
    QCOMPARE(fault->first, 10);
    QCOMPARE(fault->count, 2);
    QCOMPARE(fault->chance, 0.25);
    QCOMPARE(fault->faultValue, 1500);
    QCOMPARE(fault->faultAmount, 4);
    QCOMPARE(fault->faultBytes, QByteArray("\xC2\xFF"));
}

void tst_UnitFault::rulesThatMakeNoSense_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char* text, const char* reason) {
        QTest::newRow(text) << QString::fromLatin1(text) << QString::fromLatin1(reason);
    };
    row("", "there is no fault \"\"");
    row("explode", "there is no fault \"explode\"");
    row("explode:chance=1", "there is no fault \"explode\"");
    row("refuse:colour=1", "a fault has no \"colour\"");
    row("refuse:request", "\"\" is no value for \"request\"");
    row("refuse:request=0", "\"0\" is no value for \"request\"");
    row("refuse:from=0", "\"0\" is no value for \"from\"");
    row("refuse:times=many", "\"many\" is no value for \"times\"");
    row("refuse:chance=1.5", "\"1.5\" is no value for \"chance\"");
    row("refuse:chance=-1", "\"-1\" is no value for \"chance\"");
    row("refuse:bytes=c", "\"c\" is no value for \"bytes\"");
}

void tst_UnitFault::rulesThatMakeNoSense()
{
    QFETCH(QString, text);
    QFETCH(QString, reason);
    QString error;
    QVERIFY(!UnitFault::fromText(text, &error).has_value());
    QCOMPARE(error, reason);
}

void tst_UnitFault::countsTheRequestsThatItMatches_data()
{
    QTest::addColumn<UnitFault>("fault");
    QTest::addColumn<int>("requestType");
    QTest::addColumn<int>("bootType");
    QTest::addColumn<QVector<int>>("expected");
    const UnitFault lose(UnitFault::LoseRequest);
    QVector<int> all;
    for (int number = 1; number <= 20; ++number) {
        all.append(number);
    }
    QTest::newRow("every request") << lose << 7 << 0 << all;
    QTest::newRow("every boot packet") << lose << 0 << 5 << all;
    QTest::newRow("its type") << UnitFault(lose).onRequest(7) << 7 << 0 << all;
    QTest::newRow("another type") << UnitFault(lose).onRequest(7) << 8 << 0 << QVector<int>{};
    QTest::newRow("its boot type") << UnitFault(lose).onBoot(5) << 0 << 5 << all;
    QTest::newRow("boot type is no request type") << UnitFault(lose).onBoot(5) << 5 << 0 << QVector<int>{};
    QTest::newRow("either of two") << UnitFault(lose).onBoot(5).onRequest(22) << 22 << 0 << all;
    QTest::newRow("once") << UnitFault(lose).from(3).times(1) << 7 << 0 << QVector<int>{3};
    QTest::newRow("some") << UnitFault(lose).from(3).times(4) << 7 << 0 << QVector<int>{3, 4, 5, 6};
    QTest::newRow("from one on") << UnitFault(lose).from(18) << 7 << 0 << QVector<int>{18, 19, 20};
    QTest::newRow("no chance") << UnitFault(lose).withChance(0) << 7 << 0 << QVector<int>{};
}

void tst_UnitFault::countsTheRequestsThatItMatches()
{
    QFETCH(UnitFault, fault);
    QFETCH(int, requestType);
    QFETCH(int, bootType);
    QFETCH(QVector<int>, expected);
    FaultPlan plan({fault}, 1);
    QCOMPARE(hits(plan, requestType, bootType), expected);
}

void tst_UnitFault::chanceIsKept()
{
    FaultPlan plan({UnitFault(UnitFault::LoseRequest).withChance(0.05)}, 1);
    int lost = 0;
    for (int number = 0; number < 10000; ++number) {
        lost += plan.effectsOn(7, 0).requestLost ? 1 : 0;
    }
    QVERIFY2(lost > 400 && lost < 600, qPrintable(QString::number(lost)));
}

void tst_UnitFault::sameSeedSameChances()
{
    const QVector<UnitFault> faults{UnitFault(UnitFault::LoseRequest).withChance(0.5)};
    const auto drawn = [&faults](quint32 seed) {
        FaultPlan plan(faults, seed);
        return hits(plan, 7, 0);
    };
    QCOMPARE(drawn(1), drawn(1));
    QVERIFY(drawn(1) != drawn(2));
}

void tst_UnitFault::rulesDoNotDisturbEachOther()
{
    const UnitFault lose = UnitFault(UnitFault::LoseRequest).withChance(0.5);
    FaultPlan alone({lose}, 1);
    FaultPlan together({lose, UnitFault(UnitFault::NoiseBefore), UnitFault(UnitFault::Refuse).withChance(0.5)}, 1);
    QCOMPARE(hits(together, 7, 0), hits(alone, 7, 0));
}

void tst_UnitFault::effectsAddUp()
{
    FaultPlan plan({UnitFault(UnitFault::DelayAnswer).value(30), UnitFault(UnitFault::DelayAnswer).value(100),
                    UnitFault(UnitFault::NoiseBefore).bytes("a"), UnitFault(UnitFault::NoiseBefore).bytes("b"),
                    UnitFault(UnitFault::BadChecksum)},
                   1);
    const FaultEffects effects = plan.effectsOn(7, 0);
    QCOMPARE(effects.delay, 130);
    QCOMPARE(effects.noiseBefore, QByteArray("ab"));
    QVERIFY(effects.badChecksum);
    QVERIFY(effects.spoilsAnswer());
}

void tst_UnitFault::defaultsOfTheKinds()
{
    const auto effectsOf = [](UnitFault::Kind kind) {
        FaultPlan plan({UnitFault(kind)}, 1);
        return plan.effectsOn(7, 0);
    };
    QVERIFY(effectsOf(UnitFault::LoseAnswer).answerLost);
    QCOMPARE(effectsOf(UnitFault::SplitAnswer).pieces, 2);
    QCOMPARE(effectsOf(UnitFault::SplitAnswer).gap, 20);
    QVERIFY(!effectsOf(UnitFault::SplitAnswer).spoilsAnswer());
    QCOMPARE(effectsOf(UnitFault::NoiseBefore).noiseBefore.size(), 8);
    QCOMPARE(effectsOf(UnitFault::NoiseAfter).noiseAfter.size(), 8);
    QCOMPARE(effectsOf(UnitFault::NoiseLater).noiseLater.size(), 8);
    QCOMPARE(int(effectsOf(UnitFault::Refuse).refusal), 1);
    QVERIFY(effectsOf(UnitFault::DamageAnswer).damaged);
    QVERIFY(effectsOf(UnitFault::ChangeAnswer).changed);
    QVERIFY(effectsOf(UnitFault::ReplaceAnswer).replaced);
    QVERIFY(effectsOf(UnitFault::Unplug).unplugs);
    QCOMPARE(effectsOf(UnitFault::Unplug).unplugAfter, -1);
    QCOMPARE(effectsOf(UnitFault::Unplug).unplugTime, 0);
    QCOMPARE(effectsOf(UnitFault::LosePower).powerOutage, 300);
    QCOMPARE(effectsOf(UnitFault::BreakOff).breakAfter, 1);
    QVERIFY(effectsOf(UnitFault::BreakOff).spoilsAnswer());
    QCOMPARE(effectsOf(UnitFault::RepeatAnswer).copies, 2);
    QVERIFY(effectsOf(UnitFault::FormerAnswer).formerBefore);
    QVERIFY(!effectsOf(UnitFault::FormerAnswer).spoilsAnswer());
}

void tst_UnitFault::randomNoiseHoldsNoReservedByte()
{
    FaultPlan plan({UnitFault(UnitFault::NoiseBefore).amount(5000)}, 1);
    const QByteArray noise = plan.effectsOn(7, 0).noiseBefore;
    QCOMPARE(noise.size(), 5000);
    for (const char reserved : {'\xC0', '\xC1', '\xC2', '\xFA'}) {
        QVERIFY(!noise.contains(reserved));
    }
}

void tst_UnitFault::cutsIntoAsManyPieces_data()
{
    QTest::addColumn<int>("pieces");
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("expected");
    QTest::newRow("whole") << 1 << 10 << 1;
    QTest::newRow("two") << 2 << 10 << 2;
    QTest::newRow("single bytes") << 10 << 10 << 10;
    QTest::newRow("more than there are bytes") << 20 << 10 << 10;
    QTest::newRow("nothing to cut") << 3 << 0 << 1;
}

void tst_UnitFault::cutsIntoAsManyPieces()
{
    QFETCH(int, pieces);
    QFETCH(int, length);
    QFETCH(int, expected);
    FaultEffects effects;
    effects.pieces = pieces;
    for (quint32 dice = 0; dice < 50; ++dice) {
        effects.dice = dice;
        const QByteArray frame = QByteArray("0123456789").left(length);
        const QVector<QByteArray> parts = effects.cut(frame);
        QCOMPARE(parts.size(), expected);
        QByteArray joined;
        for (const QByteArray& part : parts) {
            QVERIFY(length == 0 || !part.isEmpty());
            joined += part;
        }
        QCOMPARE(joined, frame);
    }
}

void tst_UnitFault::alteredDataDifferInOneByte()
{
    FaultEffects effects;
    for (quint32 dice = 0; dice < 50; ++dice) {
        effects.dice = dice;
        const QByteArray data(10, 'x');
        const QByteArray altered = effects.alteredData(data);
        QCOMPARE(altered.size(), 10);
        QCOMPARE(altered.count('x'), 9);
    }
    QVERIFY(effects.alteredData({}).isEmpty());
}

void tst_UnitFault::damagesTheBitThatIsNamed()
{
    FaultPlan plan({UnitFault(UnitFault::DamageAnswer).amount(2).value(7)}, 1);
    QCOMPARE(plan.effectsOn(7, 0).damagedFrame("abc"), QByteArray("ab\xE3"));
}

void tst_UnitFault::whatIsLateSpoilsAnAnswerThatBreaksOff()
{
    const auto isSpoiled = [](int restAfter) {
        FaultPlan plan({UnitFault(UnitFault::BreakOff).amount(4).value(restAfter)}, 1);
        return plan.effectsOn(7, 0).spoilsAnswer();
    };
    QVERIFY(!isSpoiled(119));
    QVERIFY(isSpoiled(120));
}

QTEST_GUILESS_MAIN(tst_UnitFault)
#include "tst_UnitFault.moc"
