#include "ui/pickers/SpecialDateFrame.h"
#include "ui/pickers/SpecialSpinBox.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLineEdit>
#include <QTest>

namespace
{

/// A frame on the screen with its parts at hand and its signals written down in order, each with what the frame showed.
struct Picker
{
    explicit Picker(bool english = true) : frame(nullptr, english)
    {
        dayField = frame.findChild<SpecialSpinBox*>(QStringLiteral("spinBoxDay"));
        arrows = frame.findChild<SpecialSpinBox*>(QStringLiteral("ArrowDay"));
        month = frame.findChild<QComboBox*>();
        QObject::connect(&frame, &SpecialDateFrame::sig_changedValueDay, &frame,
                         [this] { heard.append(QStringLiteral("day %1").arg(frame.day())); });
        QObject::connect(&frame, &SpecialDateFrame::sig_changedValueMonth, &frame,
                         [this] { heard.append(QStringLiteral("month %1").arg(frame.month())); });
    }

    void set(int day, int monthNumber)
    {
        frame.setMonth(monthNumber);
        frame.setDay(day);
        heard.clear();
    }

    void show()
    {
        frame.show();
        QVERIFY(QTest::qWaitForWindowExposed(&frame));
    }

    void clickArrow(bool up)
    {
        QTest::mouseClick(arrows, Qt::LeftButton, {}, {arrows->width() / 2, arrows->height() * (up ? 1 : 3) / 4});
    }

    QString selectedText() const
    {
        return dayField->findChild<QLineEdit*>()->selectedText();
    }

    SpecialDateFrame frame;
    SpecialSpinBox* dayField = nullptr;
    SpecialSpinBox* arrows = nullptr;
    QComboBox* month = nullptr;
    QStringList heard;
};

} // namespace

class tst_SpecialDateFrame : public QObject
{
    Q_OBJECT

private slots:
    void partsAreSetUpAsTheFormNeedsThem();
    void gridHoldsArrowsDayAndMonth();
    void monthNamesFollowTheLanguageFlag();
    void startsOnTheFirstOfJanuary();
    void monthsCountFromOne();
    void arrowsStepTheDayAndSpringBack_data();
    void arrowsStepTheDayAndSpringBack();
    void arrowDownOnTheFirstWrapsToTheSelectedLastDay();
    void arrowUpOnTheLastDayWrapsToTheFirst();
    void dayRangeFollowsTheMonth_data();
    void dayRangeFollowsTheMonth();
    void monthThatLacksTheDayReportsTheDayFirst();
    void monthThatHasTheDayReportsOnlyTheMonth();
    void noMonthLeavesTheLastDayAlone();
    void numbersFarBelowTheFirstAreSurvived_data();
    void numbersFarBelowTheFirstAreSurvived();
    void typedZeroWrapsAtOnceToTheLastDay();
    void typedDayBeyondTheMonthWrapsToTheFirst();
    void arrowBoxLeftAtZeroReportsNothing();
    void sameDayAgainReportsNothing();
    void keyRepeatOnTheArrowsWalksRoundTheMonth();
    void arrowsAreNoTabStop();
};

void tst_SpecialDateFrame::partsAreSetUpAsTheFormNeedsThem()
{
    const Picker picker;
    QCOMPARE(picker.frame.findChild<QFrame*>(QStringLiteral("F_Date"))->styleSheet(),
             QStringLiteral("QFrame{\nborder: 1px solid black;\nborder-color: rgb(189, 189, 189);\nborder-radius: "
                            "2px;\n}"));
    QCOMPARE(picker.dayField->styleSheet(), QStringLiteral("border: 0px"));
    QCOMPARE(int(picker.dayField->alignment()), 130);
    QCOMPARE(picker.dayField->buttonSymbols(), QAbstractSpinBox::NoButtons);
    QCOMPARE(picker.dayField->minimum(), 0);
    QCOMPARE(picker.dayField->maximum(), 32);
    QCOMPARE(picker.arrows->layoutDirection(), Qt::RightToLeft);
    QCOMPARE(int(picker.arrows->alignment()), 130);
    QVERIFY(!picker.arrows->autoFillBackground());
    QVERIFY(!picker.arrows->property("showGroupSeparator").toBool());
    QCOMPARE(picker.arrows->minimum(), -100);
    QCOMPARE(picker.arrows->maximum(), 100);
    QCOMPARE(picker.arrows->minimumWidth(), 16);
    QCOMPARE(picker.arrows->maximumWidth(), 15);
    QCOMPARE(picker.month->maxVisibleItems(), 100);
    QCOMPARE(picker.month->minimumSize(), QSize(70, 20));
    QVERIFY(picker.month->objectName().isEmpty());
}

void tst_SpecialDateFrame::gridHoldsArrowsDayAndMonth()
{
    const Picker picker;
    const auto* grid = picker.frame.findChild<QGridLayout*>(QStringLiteral("gridLayoutMain"));
    QVERIFY(picker.frame.findChild<QGridLayout*>(QStringLiteral("gridLayout")));
    QCOMPARE(grid->itemAtPosition(0, 0)->widget(), picker.arrows);
    QCOMPARE(grid->itemAtPosition(0, 1)->widget(), picker.dayField);
    QCOMPARE(grid->itemAtPosition(0, 2)->widget(), picker.month);
    QCOMPARE(grid->columnStretch(0), 0);
    QCOMPARE(grid->columnStretch(1), 1);
    QCOMPARE(grid->columnStretch(2), 2);
}

void tst_SpecialDateFrame::monthNamesFollowTheLanguageFlag()
{
    const auto names = [](const Picker& picker) {
        QStringList list;
        for (int i = 0; i < picker.month->count(); ++i) {
            list.append(picker.month->itemText(i));
        }
        return list.join(QLatin1Char(' '));
    };
    QCOMPARE(names(Picker(true)), QStringLiteral("January February March April May June July August September "
                                                 "October November December"));
    QCOMPARE(names(Picker(false)), QStringLiteral("Января Февраля Марта Апреля Мая Июня Июля Августа Сентября "
                                                  "Октября Ноября Декабря"));
}

void tst_SpecialDateFrame::startsOnTheFirstOfJanuary()
{
    const Picker picker;
    QCOMPARE(picker.frame.day(), 1);
    QCOMPARE(picker.frame.month(), 1);
    QCOMPARE(picker.frame.lastDay(), 31);
    QCOMPARE(picker.dayField->text(), QStringLiteral("01"));
}

void tst_SpecialDateFrame::monthsCountFromOne()
{
    Picker picker;
    picker.frame.setMonth(12);
    QCOMPARE(picker.month->currentIndex(), 11);
    QCOMPARE(picker.frame.month(), 12);
    QCOMPARE(picker.month->currentText(), QStringLiteral("December"));
}

void tst_SpecialDateFrame::arrowsStepTheDayAndSpringBack_data()
{
    QTest::addColumn<bool>("up");
    QTest::addColumn<int>("day");
    QTest::newRow("up") << true << 16;
    QTest::newRow("down") << false << 14;
}

void tst_SpecialDateFrame::arrowsStepTheDayAndSpringBack()
{
    QFETCH(const bool, up);
    QFETCH(const int, day);
    Picker picker;
    picker.set(15, 6);
    picker.show();
    picker.clickArrow(up);
    QCOMPARE(picker.frame.day(), day);
    QCOMPARE(picker.arrows->value(), 0);
    QCOMPARE(picker.heard, QStringList(QStringLiteral("day %1").arg(day)));
}

void tst_SpecialDateFrame::arrowDownOnTheFirstWrapsToTheSelectedLastDay()
{
    Picker picker;
    picker.set(1, 4);
    picker.show();
    picker.clickArrow(false);
    QCOMPARE(picker.dayField->text(), QStringLiteral("30"));
    QCOMPARE(picker.selectedText(), QStringLiteral("30"));
    QCOMPARE(picker.heard, QStringList(QStringLiteral("day 30")));
}

void tst_SpecialDateFrame::arrowUpOnTheLastDayWrapsToTheFirst()
{
    Picker picker;
    picker.set(29, 2);
    picker.show();
    picker.clickArrow(true);
    QCOMPARE(picker.dayField->text(), QStringLiteral("01"));
    QCOMPARE(picker.heard, QStringList(QStringLiteral("day 1")));
}

void tst_SpecialDateFrame::dayRangeFollowsTheMonth_data()
{
    QTest::addColumn<int>("lastDay");
    const int lastDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    for (int i = 0; i < 12; ++i) {
        QTest::addRow("%d", i + 1) << lastDays[i];
    }
}

void tst_SpecialDateFrame::dayRangeFollowsTheMonth()
{
    QFETCH(const int, lastDay);
    const int monthNumber = QString::fromLatin1(QTest::currentDataTag()).toInt();
    Picker picker;
    picker.set(1, monthNumber);
    QTest::keyClick(picker.arrows, Qt::Key_Down);
    QCOMPARE(picker.frame.day(), lastDay);
    QTest::keyClick(picker.arrows, Qt::Key_Up);
    QCOMPARE(picker.frame.day(), 1);
    QCOMPARE(picker.frame.month(), monthNumber);
}

void tst_SpecialDateFrame::monthThatLacksTheDayReportsTheDayFirst()
{
    Picker picker;
    picker.set(31, 1);
    picker.month->setCurrentIndex(3);
    QCOMPARE(picker.frame.day(), 30);
    QCOMPARE(picker.heard, QStringList({QStringLiteral("day 30"), QStringLiteral("month 4")}));
}

void tst_SpecialDateFrame::monthThatHasTheDayReportsOnlyTheMonth()
{
    Picker picker;
    picker.set(29, 1);
    picker.month->setCurrentIndex(1);
    QCOMPARE(picker.frame.day(), 29);
    QCOMPARE(picker.heard, QStringList(QStringLiteral("month 2")));
}

void tst_SpecialDateFrame::noMonthLeavesTheLastDayAlone()
{
    Picker picker;
    picker.set(10, 2);
    picker.month->setCurrentIndex(-1);
    QCOMPARE(picker.frame.lastDay(), 29);
    QCOMPARE(picker.frame.day(), 10);
    QCOMPARE(picker.heard, QStringList(QStringLiteral("month 0")));
}

void tst_SpecialDateFrame::numbersFarBelowTheFirstAreSurvived_data()
{
    QTest::addColumn<int>("number");
    for (const int number : {-2, -7, -32768}) {
        QTest::addRow("%d", number) << number;
    }
}

void tst_SpecialDateFrame::numbersFarBelowTheFirstAreSurvived()
{
    QFETCH(const int, number);
    Picker picker;
    picker.set(10, 2);
    picker.frame.setMonth(number);
    QCOMPARE(picker.frame.month(), 0);
    QCOMPARE(picker.frame.lastDay(), 29);
    picker.frame.setDay(number);
    QCOMPARE(picker.frame.day(), 29); // below the first day comes the last one
    picker.frame.setMonth(4);
    picker.frame.setDay(30);
    QCOMPARE(picker.frame.month(), 4);
    QCOMPARE(picker.frame.day(), 30);
}

void tst_SpecialDateFrame::typedZeroWrapsAtOnceToTheLastDay()
{
    Picker picker;
    picker.set(15, 2);
    picker.dayField->selectAll();
    QTest::keyClick(picker.dayField, Qt::Key_0);
    QCOMPARE(picker.dayField->text(), QStringLiteral("29"));
    QCOMPARE(picker.selectedText(), QStringLiteral("29"));
    QCOMPARE(picker.heard, QStringList(QStringLiteral("day 29")));
}

void tst_SpecialDateFrame::typedDayBeyondTheMonthWrapsToTheFirst()
{
    Picker picker;
    picker.set(15, 4);
    picker.dayField->selectAll();
    QTest::keyClicks(picker.dayField, QStringLiteral("31"));
    QCOMPARE(picker.frame.day(), 1);
    QCOMPARE(picker.heard, QStringList({QStringLiteral("day 3"), QStringLiteral("day 1")}));
}

void tst_SpecialDateFrame::arrowBoxLeftAtZeroReportsNothing()
{
    Picker picker;
    picker.set(15, 4);
    picker.arrows->setValue(0);
    picker.frame.sl_ArrowDay_valueChanged(0);
    QVERIFY(picker.heard.isEmpty());
    QCOMPARE(picker.frame.day(), 15);
}

void tst_SpecialDateFrame::sameDayAgainReportsNothing()
{
    Picker picker;
    picker.set(15, 4);
    picker.frame.setDay(15);
    picker.frame.setMonth(4);
    QVERIFY(picker.heard.isEmpty());
}

void tst_SpecialDateFrame::keyRepeatOnTheArrowsWalksRoundTheMonth()
{
    Picker picker;
    picker.set(1, 2);
    for (int i = 0; i < 29 * 10; ++i) {
        QTest::keyClick(picker.arrows, Qt::Key_Up);
    }
    QCOMPARE(picker.frame.day(), 1);
    QCOMPARE(picker.heard.size(), 29 * 10);
    QVERIFY(!picker.heard.contains(QStringLiteral("day 0")));
    QVERIFY(!picker.heard.contains(QStringLiteral("day 30")));
}

void tst_SpecialDateFrame::arrowsAreNoTabStop()
{
    Picker picker;
    picker.show();
    picker.frame.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&picker.frame));
    picker.dayField->setFocus();
    for (int round = 0; round < 3; ++round) {
        QTest::keyClick(picker.dayField, Qt::Key_Tab);
        QVERIFY(picker.month->hasFocus());
        QTest::keyClick(picker.month, Qt::Key_Tab);
        QVERIFY(picker.dayField->hasFocus());
    }
    for (int round = 0; round < 3; ++round) {
        QTest::keyClick(picker.dayField, Qt::Key_Backtab);
        QVERIFY(picker.month->hasFocus());
        QTest::keyClick(picker.month, Qt::Key_Backtab);
        QVERIFY(picker.dayField->hasFocus());
    }
}

QTEST_MAIN(tst_SpecialDateFrame)
#include "tst_SpecialDateFrame.moc"
