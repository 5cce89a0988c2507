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
    void an_answered_step_holds_nothing_back();
    void a_damaged_answer_owes_nothing();
    void silence_holds_back_everything_else();
    void a_broken_off_answer_counts_as_silence();
    void the_step_itself_may_be_sent_again();
    void the_next_block_of_the_log_is_another_question();
    void the_missing_answer_ends_the_wait();
    void every_missing_answer_has_to_come();
    void an_answer_may_come_in_pieces_behind_noise();
    void two_answers_to_one_step_in_one_go_are_both_counted();
    void quiet_ends_the_wait();
    void each_byte_prolongs_the_quiet();
    void a_line_of_which_something_was_heard_is_not_mute();
    void a_mute_line_waits_no_second_time();
    void what_wakes_a_mute_line_is_nobodys();
    void the_watch_asks_and_hears_a_silent_line();
    void the_rest_of_the_watch_waits();
    void the_search_neither_owes_nor_waits();
    void a_lost_line_owes_nothing();

private:
    LateAnswers made() const
    {
        return LateAnswers(&P::parseAnswer);
    }
};

void tst_LateAnswers::an_answered_step_holds_nothing_back()
{
    LateAnswers late = made();
    late.ended(answeredBy(output(0), someAnswer()), start);
    QVERIFY(late.letsGo(output(1), start));
    QVERIFY(late.belongTo(output(1), start));
    QVERIFY(!late.waitEnd());
}

void tst_LateAnswers::a_damaged_answer_owes_nothing()
{
    LateAnswers late = made();
    late.ended(answeredBy(output(0), QByteArray(8, 'x')), start);
    QVERIFY(late.letsGo(output(1), start));
}

void tst_LateAnswers::silence_holds_back_everything_else()
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

void tst_LateAnswers::a_broken_off_answer_counts_as_silence()
{
    LateAnswers late = made();
    late.ended(answeredBy(output(0), someAnswer().left(4)), start);
    QVERIFY(!late.letsGo(output(1), after(120ms)));
}

void tst_LateAnswers::the_step_itself_may_be_sent_again()
{
    LateAnswers late = made();
    const message again = resendOf(output(0));
    late.ended(output(0), start);
    QVERIFY(late.letsGo(again, after(120ms)));
    QVERIFY(late.belongTo(again, after(150ms)));
    QVERIFY(!late.letsGo(resendOf(output(1)), after(120ms)));
}

void tst_LateAnswers::the_next_block_of_the_log_is_another_question()
{
    LateAnswers late = made();
    const message block = P::requestReadLog(1, false);
    late.ended(block, start);
    late.ended(answeredBy(resendOf(block), someAnswer()), after(120ms));
    QVERIFY(!late.letsGo(block, after(150ms)));
}

void tst_LateAnswers::the_missing_answer_ends_the_wait()
{
    LateAnswers late = made();
    late.ended(output(0), start);
    late.ended(answeredBy(resendOf(output(0)), someAnswer()), after(120ms));
    QVERIFY(!late.letsGo(output(1), after(150ms)));
    late.heardStray(someAnswer(), after(160ms));
    QVERIFY(late.letsGo(output(1), after(160ms)));
    QVERIFY(!late.waitEnd());
}

void tst_LateAnswers::every_missing_answer_has_to_come()
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

void tst_LateAnswers::an_answer_may_come_in_pieces_behind_noise()
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

void tst_LateAnswers::two_answers_to_one_step_in_one_go_are_both_counted()
{
    LateAnswers late = made();
    late.ended(output(0), start);
    late.ended(answeredBy(resendOf(output(0)), someAnswer() + someAnswer()), after(120ms));
    QVERIFY(late.letsGo(output(1), after(150ms)));
}

void tst_LateAnswers::quiet_ends_the_wait()
{
    LateAnswers late = made();
    late.ended(output(0), start);
    QVERIFY(!late.letsGo(output(1), after(LateAnswers::quiet - 1ms)));
    QVERIFY(late.letsGo(output(1), after(LateAnswers::quiet)));
    QVERIFY(late.belongTo(output(1), after(LateAnswers::quiet)));
}

void tst_LateAnswers::each_byte_prolongs_the_quiet()
{
    LateAnswers late = made();
    late.ended(output(0), start);
    QVERIFY(!late.letsGo(output(1), after(120ms)));
    late.heardStray("?", after(2000ms));
    QCOMPARE(*late.waitEnd(), after(2000ms) + LateAnswers::quiet);
    QVERIFY(!late.letsGo(output(1), after(1999ms) + LateAnswers::quiet));
    QVERIFY(late.letsGo(output(1), after(2000ms) + LateAnswers::quiet));
}

void tst_LateAnswers::a_line_of_which_something_was_heard_is_not_mute()
{
    LateAnswers late = made();
    late.ended(output(0), start);
    QVERIFY(!late.letsGo(output(1), after(120ms)));
    late.heardStray("?", after(1000ms));
    QVERIFY(late.letsGo(output(1), after(4000ms)));
    late.ended(output(1), after(4000ms));
    QVERIFY(!late.letsGo(output(2), after(4120ms)));
}

void tst_LateAnswers::a_mute_line_waits_no_second_time()
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

void tst_LateAnswers::what_wakes_a_mute_line_is_nobodys()
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

void tst_LateAnswers::the_watch_asks_and_hears_a_silent_line()
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

void tst_LateAnswers::the_rest_of_the_watch_waits()
{
    LateAnswers late = made();
    late.ended(P::requestDeviceTime(1), start);
    QVERIFY(!late.letsGo(check(), after(880ms)));
    QVERIFY(!late.letsGo(output(0), after(880ms)));
}

void tst_LateAnswers::the_search_neither_owes_nor_waits()
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

void tst_LateAnswers::a_lost_line_owes_nothing()
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
