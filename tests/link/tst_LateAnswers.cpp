#include "link/LateAnswers.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "support/AnswerFrames.h"

#include <QtTest>

#include <chrono>

namespace
{

using namespace std::chrono_literals;
using P = protocol_HUBN_NX_Q;

const LateAnswers::Moment start{1h};

LateAnswers::Moment after(std::chrono::milliseconds time)
{
    return start + time;
}

message output(quint8 number)
{
    return P::requestReadConfig(1, 1, number);
}

message check()
{
    message request = P::requestCheckCoordinator(1);
    request.setRequestType(P::Check_Coordinator);
    return request;
}

message resendOf(message request)
{
    request.prepareRetry();
    return request;
}

message answeredBy(message request, const QByteArray& bytes)
{
    request.setRawAnswer(bytes);
    return request;
}

const QByteArray& someAnswer()
{
    static const QByteArray bytes = frames::answer(0, "data");
    return bytes;
}

} // namespace

class tst_LateAnswers : public QObject
{
    Q_OBJECT

private slots:
    void anAnsweredStepHoldsNothingBack();
    void aDamagedAnswerOwesNothing();
    void silenceHoldsBackEverythingElse();
    void aBrokenOffAnswerCountsAsSilence();
    void theStepItselfMayBeSentAgain();
    void theNextBlockOfTheLogIsAnotherQuestion();
    void theMissingAnswerEndsTheWait();
    void everyMissingAnswerHasToCome();
    void anAnswerMayComeInPiecesBehindNoise();
    void twoAnswersToOneStepInOneGoAreBothCounted();
    void quietEndsTheWait();
    void eachByteProlongsTheQuiet();
    void aLineOfWhichSomethingWasHeardIsNotMute();
    void aMuteLineWaitsNoSecondTime();
    void whatWakesAMuteLineIsNobodys();
    void theWatchAsksAndHearsASilentLine();
    void theRestOfTheWatchWaits();
    void theSearchNeitherOwesNorWaits();
    void aLostLineOwesNothing();

private:
    LateAnswers made() const
    {
        return LateAnswers(&P::parseAnswer);
    }
};

void tst_LateAnswers::anAnsweredStepHoldsNothingBack()
{
    LateAnswers late = made();
    late.ended(answeredBy(output(0), someAnswer()), start);
    QVERIFY(late.letsGo(output(1), start));
    QVERIFY(late.belongTo(output(1), start));
    QVERIFY(!late.waitEnd());
}

void tst_LateAnswers::aDamagedAnswerOwesNothing()
{
    LateAnswers late = made();
    late.ended(answeredBy(output(0), QByteArray(8, 'x')), start);
    QVERIFY(late.letsGo(output(1), start));
}

void tst_LateAnswers::silenceHoldsBackEverythingElse()
{
    LateAnswers late = made();
    late.ended(output(0), start);
    QVERIFY(!late.letsGo(output(1), after(120ms)));
    QVERIFY(!late.letsGo(check(), after(120ms)));
    QVERIFY(!late.letsGo(P::requestDeviceTime(1), after(120ms)));
    QVERIFY(!late.letsGo(P::requestSwitchToBoot(1), after(120ms)));
    // Not even the same question: it is another step.
    QVERIFY(!late.letsGo(output(0), after(120ms)));
    QCOMPARE(*late.waitEnd(), start + LateAnswers::quiet);
}

void tst_LateAnswers::aBrokenOffAnswerCountsAsSilence()
{
    LateAnswers late = made();
    late.ended(answeredBy(output(0), someAnswer().left(4)), start);
    QVERIFY(!late.letsGo(output(1), after(120ms)));
}

void tst_LateAnswers::theStepItselfMayBeSentAgain()
{
    LateAnswers late = made();
    const message again = resendOf(output(0));
    late.ended(output(0), start);
    QVERIFY(late.letsGo(again, after(120ms)));
    QVERIFY(late.belongTo(again, after(150ms)));
    QVERIFY(!late.letsGo(resendOf(output(1)), after(120ms)));
}

void tst_LateAnswers::theNextBlockOfTheLogIsAnotherQuestion()
{
    LateAnswers late = made();
    const message block = P::requestReadLog(1, false);
    late.ended(block, start);
    late.ended(answeredBy(resendOf(block), someAnswer()), after(120ms));
    QVERIFY(!late.letsGo(block, after(150ms)));
}

void tst_LateAnswers::theMissingAnswerEndsTheWait()
{
    LateAnswers late = made();
    late.ended(output(0), start);
    late.ended(answeredBy(resendOf(output(0)), someAnswer()), after(120ms));
    QVERIFY(!late.letsGo(output(1), after(150ms)));
    late.heardStray(someAnswer(), after(160ms));
    QVERIFY(late.letsGo(output(1), after(160ms)));
    QVERIFY(!late.waitEnd());
}

void tst_LateAnswers::everyMissingAnswerHasToCome()
{
    LateAnswers late = made();
    for (int send = 0; send < 4; ++send) {
        late.ended(output(0), after(send * 120ms));
    }
    for (int answer = 0; answer < 4; ++answer) {
        QVERIFY(!late.letsGo(output(1), after(2000ms)));
        late.heardStray(someAnswer(), after(2000ms));
    }
    QVERIFY(late.letsGo(output(1), after(2000ms)));
}

void tst_LateAnswers::anAnswerMayComeInPiecesBehindNoise()
{
    LateAnswers late = made();
    late.ended(output(0), start);
    const QByteArray bytes = "noise" + someAnswer();
    for (const char byte : bytes) {
        QVERIFY(!late.letsGo(output(1), after(200ms)));
        late.heardStray(QByteArray(1, byte), after(200ms));
    }
    QVERIFY(late.letsGo(output(1), after(200ms)));
}

void tst_LateAnswers::twoAnswersToOneStepInOneGoAreBothCounted()
{
    LateAnswers late = made();
    late.ended(output(0), start);
    late.ended(answeredBy(resendOf(output(0)), someAnswer() + someAnswer()), after(120ms));
    QVERIFY(late.letsGo(output(1), after(150ms)));
}

void tst_LateAnswers::quietEndsTheWait()
{
    LateAnswers late = made();
    late.ended(output(0), start);
    QVERIFY(!late.letsGo(output(1), after(LateAnswers::quiet - 1ms)));
    QVERIFY(late.letsGo(output(1), after(LateAnswers::quiet)));
    QVERIFY(late.belongTo(output(1), after(LateAnswers::quiet)));
}

void tst_LateAnswers::eachByteProlongsTheQuiet()
{
    LateAnswers late = made();
    late.ended(output(0), start);
    QVERIFY(!late.letsGo(output(1), after(120ms)));
    late.heardStray("?", after(2000ms));
    QCOMPARE(*late.waitEnd(), after(2000ms) + LateAnswers::quiet);
    QVERIFY(!late.letsGo(output(1), after(1999ms) + LateAnswers::quiet));
    QVERIFY(late.letsGo(output(1), after(2000ms) + LateAnswers::quiet));
}

void tst_LateAnswers::aLineOfWhichSomethingWasHeardIsNotMute()
{
    LateAnswers late = made();
    late.ended(output(0), start);
    QVERIFY(!late.letsGo(output(1), after(120ms)));
    late.heardStray("?", after(1000ms));
    QVERIFY(late.letsGo(output(1), after(4000ms)));
    late.ended(output(1), after(4000ms));
    QVERIFY(!late.letsGo(output(2), after(4120ms)));
}

void tst_LateAnswers::aMuteLineWaitsNoSecondTime()
{
    LateAnswers late = made();
    late.ended(output(0), start);
    QVERIFY(!late.letsGo(output(1), after(120ms)));
    for (quint8 number = 1; number < 100; ++number) {
        const auto moment = after(3000ms + number * 120ms);
        QVERIFY(late.letsGo(output(number), moment));
        late.ended(output(number), moment);
    }
    // Until something is heard: then each silence counts again.
    const auto later = after(20000ms);
    QVERIFY(late.belongTo(output(1), later));
    late.ended(answeredBy(output(1), someAnswer()), later);
    late.ended(output(2), later);
    QVERIFY(!late.letsGo(output(3), later));
}

void tst_LateAnswers::whatWakesAMuteLineIsNobodys()
{
    LateAnswers late = made();
    late.ended(output(0), start);
    QVERIFY(!late.letsGo(output(1), after(120ms)));
    QVERIFY(late.letsGo(output(1), after(3000ms)));
    late.ended(output(1), after(3000ms));
    QVERIFY(late.letsGo(output(2), after(3120ms)));
    // An answer now may be that to output 1.
    QVERIFY(!late.belongTo(output(2), after(3130ms)));
    late.heardForeign(after(3130ms));
    late.ended(output(2), after(3120ms));
    QVERIFY(!late.letsGo(resendOf(output(2)), after(3250ms)));
    const auto quiet = after(3130ms) + LateAnswers::quiet;
    QVERIFY(late.letsGo(resendOf(output(2)), quiet));
    QVERIFY(late.belongTo(resendOf(output(2)), quiet));
}

void tst_LateAnswers::theWatchAsksAndHearsASilentLine()
{
    LateAnswers late = made();
    late.ended(check(), start);
    QVERIFY(!late.letsGo(P::requestDeviceTime(1), after(120ms)));
    QVERIFY(late.letsGo(check(), after(1000ms)));
    QVERIFY(late.belongTo(check(), after(1000ms)));
    late.ended(check(), after(1000ms));
    // Its questions don't prolong the wait of the others.
    QVERIFY(late.letsGo(P::requestDeviceTime(1), after(LateAnswers::quiet)));
    late.ended(P::requestDeviceTime(1), after(LateAnswers::quiet));
    QVERIFY(late.letsGo(check(), after(3000ms)));
    QVERIFY(late.belongTo(check(), after(3000ms)));
}

void tst_LateAnswers::theRestOfTheWatchWaits()
{
    LateAnswers late = made();
    late.ended(P::requestDeviceTime(1), start);
    QVERIFY(!late.letsGo(check(), after(880ms)));
    QVERIFY(!late.letsGo(output(0), after(880ms)));
}

void tst_LateAnswers::theSearchNeitherOwesNorWaits()
{
    LateAnswers late = made();
    for (const message& request : {P::requestSearchCoordinator(), P::requestCheckCoordinator(1)}) {
        late.ended(request, start);
        QVERIFY(late.letsGo(output(0), start));
    }
    late.ended(output(0), start);
    for (const message& request : {P::requestSearchCoordinator(), P::requestCheckCoordinator(1)}) {
        QVERIFY(late.letsGo(request, start));
        QVERIFY(late.belongTo(request, start));
    }
}

void tst_LateAnswers::aLostLineOwesNothing()
{
    LateAnswers late = made();
    late.ended(output(0), start);
    QVERIFY(!late.letsGo(output(1), after(120ms)));
    late.forget();
    QVERIFY(late.letsGo(output(1), after(120ms)));
    QVERIFY(!late.waitEnd());
}

QTEST_GUILESS_MAIN(tst_LateAnswers)
#include "tst_LateAnswers.moc"
