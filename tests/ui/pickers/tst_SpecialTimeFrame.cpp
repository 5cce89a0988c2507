#include "ui/pickers/SpecialSpinBox.h"
#include "ui/pickers/SpecialTimeFrame.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QTest>

namespace
{

/// A frame with its parts at hand and its signals written down in order, each with what the frame showed.
struct Picker
{
    Picker()
    {
        hour = part("spinBoxHour");
        minute = part("spinBoxMinute");
        hourArrows = part("ArrowHour");
        minuteArrows = part("ArrowMinute");
        QObject::connect(&frame, &SpecialTimeFrame::sig_changedIndexHour, &frame,
                         [this] { heard.append(QStringLiteral("hour %1").arg(frame.hour())); });
        QObject::connect(&frame, &SpecialTimeFrame::sig_changedIndexMinute, &frame,
                         [this] { heard.append(QStringLiteral("minute %1").arg(frame.minute())); });
    }

    SpecialSpinBox* part(const char* name)
    {
        return frame.findChild<SpecialSpinBox*>(QLatin1String(name));
    }

    void set(int hourNumber, int minuteNumber)
    {
        frame.setHour(hourNumber);
        frame.setMinute(minuteNumber);
        heard.clear();
    }

    void activate()
    {
        frame.show();
        frame.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&frame));
    }

    static void clickArrow(SpecialSpinBox* arrows, bool up)
    {
        QTest::mouseClick(arrows, Qt::LeftButton, {}, {arrows->width() / 2, arrows->height() * (up ? 1 : 3) / 4});
    }

    static QString selectedText(const SpecialSpinBox* field)
    {
        return field->findChild<QLineEdit*>()->selectedText();
    }

    SpecialTimeFrame frame;
    SpecialSpinBox* hour = nullptr;
    SpecialSpinBox* minute = nullptr;
    SpecialSpinBox* hourArrows = nullptr;
    SpecialSpinBox* minuteArrows = nullptr;
    QStringList heard;
};

} // namespace

class tst_SpecialTimeFrame : public QObject
{
    Q_OBJECT

private slots:
    void partsAreSetUpAsTheFormNeedsThem();
    void gridHoldsArrowsOnTheOutside();
    void startsAtMidnight();
    void arrowsStepOnlyTheirOwnField_data();
    void arrowsStepOnlyTheirOwnField();
    void typedNumbersAreReportedAsTyped();
    void enterWalksBetweenTheFields();
    void losingTheFocusMovesNoFocus();
    void arrowBoxLeftAtZeroReportsNothing();
    void sameTimeAgainReportsNothing();
    void numbersFarBelowZeroAreSurvived_data();
    void numbersFarBelowZeroAreSurvived();
    void keyRepeatWalksRoundTheClock();
    void arrowsAreNoTabStop();
    void clickedArrowsGiveTheFocusToTheirField();
};

void tst_SpecialTimeFrame::partsAreSetUpAsTheFormNeedsThem()
{
    const Picker picker;
    QCOMPARE(picker.frame.findChild<QFrame*>(QStringLiteral("F_Time"))->styleSheet(),
             QStringLiteral("QFrame{\nborder: 1px solid black;\nborder-color: rgb(189, 189, 189);\nborder-radius: "
                            "2px;\n}"));
    for (const SpecialSpinBox* field : {picker.hour, picker.minute}) {
        QCOMPARE(field->styleSheet(), QStringLiteral("border: 0px"));
        QCOMPARE(field->buttonSymbols(), QAbstractSpinBox::NoButtons);
        QCOMPARE(field->minimum(), -1);
    }
    QCOMPARE(picker.hour->maximum(), 24);
    QCOMPARE(picker.minute->maximum(), 60);
    QCOMPARE(int(picker.hour->alignment()), 130);
    QCOMPARE(picker.minute->correctionMode(), QAbstractSpinBox::CorrectToNearestValue);
    for (const SpecialSpinBox* arrows : {picker.hourArrows, picker.minuteArrows}) {
        QCOMPARE(arrows->minimum(), -100);
        QCOMPARE(arrows->maximum(), 100);
        QCOMPARE(arrows->maximumWidth(), 15);
    }
    QCOMPARE(picker.minuteArrows->focusPolicy(), Qt::WheelFocus);
    QVERIFY(!picker.minuteArrows->isAccelerated());
    QCOMPARE(picker.hourArrows->layoutDirection(), Qt::RightToLeft);
    QCOMPARE(int(picker.hourArrows->alignment()), 130);
    QCOMPARE(picker.hourArrows->minimumWidth(), 16);
    QVERIFY(!picker.hourArrows->autoFillBackground());
    QVERIFY(!picker.hourArrows->property("showGroupSeparator").toBool());
}

void tst_SpecialTimeFrame::gridHoldsArrowsOnTheOutside()
{
    const Picker picker;
    const auto* colon = picker.frame.findChild<QLabel*>(QStringLiteral("labelColon"));
    QCOMPARE(colon->text(), QStringLiteral(":"));
    QCOMPARE(colon->alignment(), Qt::AlignCenter);
    QCOMPARE(colon->maximumWidth(), 15);
    const auto* grid = picker.frame.findChild<QGridLayout*>(QStringLiteral("gridLayoutMain"));
    const QList<const QWidget*> expected = {picker.hourArrows, picker.hour, colon, picker.minute, picker.minuteArrows};
    for (int column = 0; column < expected.size(); ++column) {
        QCOMPARE(const_cast<const QWidget*>(grid->itemAtPosition(0, column)->widget()), expected.at(column));
    }
}

void tst_SpecialTimeFrame::startsAtMidnight()
{
    const Picker picker;
    QCOMPARE(picker.hour->text(), QStringLiteral("00"));
    QCOMPARE(picker.minute->text(), QStringLiteral("00"));
}

void tst_SpecialTimeFrame::arrowsStepOnlyTheirOwnField_data()
{
    QTest::addColumn<bool>("ofHour");
    QTest::addColumn<bool>("up");
    QTest::addColumn<int>("hour");
    QTest::addColumn<int>("minute");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("heard");
    const auto row = [](const char* name, bool ofHour, bool up, int hour, int minute, const char* shown,
                        const char* heard) {
        QTest::newRow(name) << ofHour << up << hour << minute << QString::fromLatin1(shown)
                            << QString::fromLatin1(heard);
    };
    row("hour up", true, true, 8, 30, "09:30", "hour 9");
    row("hour down", true, false, 8, 30, "07:30", "hour 7");
    row("hour 23 up", true, true, 23, 59, "00:59", "hour 0");
    row("hour 0 down", true, false, 0, 0, "23:00", "hour 23");
    row("minute up", false, true, 8, 4, "08:05", "minute 5");
    row("minute down", false, false, 8, 30, "08:29", "minute 29");
    row("minute 59 up", false, true, 8, 59, "08:00", "minute 0");
    row("minute 0 down", false, false, 8, 0, "08:59", "minute 59");
}

void tst_SpecialTimeFrame::arrowsStepOnlyTheirOwnField()
{
    QFETCH(const bool, ofHour);
    QFETCH(const bool, up);
    QFETCH(const int, hour);
    QFETCH(const int, minute);
    QFETCH(const QString, shown);
    QFETCH(const QString, heard);
    Picker picker;
    picker.set(hour, minute);
    picker.activate();
    SpecialSpinBox* arrows = ofHour ? picker.hourArrows : picker.minuteArrows;
    Picker::clickArrow(arrows, up);
    QCOMPARE(picker.hour->text() + QLatin1Char(':') + picker.minute->text(), shown);
    QCOMPARE(picker.heard, QStringList(heard));
    QCOMPARE(arrows->value(), 0);
}

void tst_SpecialTimeFrame::typedNumbersAreReportedAsTyped()
{
    Picker picker;
    picker.hour->selectAll();
    QTest::keyClicks(picker.hour, QStringLiteral("17"));
    picker.minute->selectAll();
    QTest::keyClicks(picker.minute, QStringLiteral("45"));
    QCOMPARE(picker.heard, QStringList({QStringLiteral("hour 1"), QStringLiteral("hour 17"), QStringLiteral("minute 4"),
                                        QStringLiteral("minute 45")}));
    picker.heard.clear();
    picker.hour->selectAll();
    QTest::keyClicks(picker.hour, QStringLiteral("24"));
    QCOMPARE(picker.heard, QStringList({QStringLiteral("hour 2"), QStringLiteral("hour 0")}));
}

void tst_SpecialTimeFrame::enterWalksBetweenTheFields()
{
    Picker picker;
    picker.set(8, 30);
    picker.activate();
    picker.hour->setFocus();
    QTest::keyClick(picker.hour, Qt::Key_Return);
    QVERIFY(picker.minute->hasFocus());
    QCOMPARE(Picker::selectedText(picker.minute), QStringLiteral("30"));
    QTest::keyClick(picker.minute, Qt::Key_Enter);
    QVERIFY(picker.hour->hasFocus());
    QCOMPARE(Picker::selectedText(picker.hour), QStringLiteral("08"));
    QCOMPARE(picker.frame.hour(), 8);
    QCOMPARE(picker.frame.minute(), 30);
}

void tst_SpecialTimeFrame::losingTheFocusMovesNoFocus()
{
    Picker picker;
    QLineEdit elsewhere(&picker.frame);
    picker.activate();
    picker.hour->setFocus();
    elsewhere.setFocus();
    QVERIFY(elsewhere.hasFocus());
    QVERIFY(!picker.minute->hasFocus());
}

void tst_SpecialTimeFrame::arrowBoxLeftAtZeroReportsNothing()
{
    Picker picker;
    picker.set(8, 30);
    picker.hourArrows->setValue(0);
    picker.minuteArrows->setValue(0);
    picker.frame.sl_ArrowHour_valueChanged(0);
    picker.frame.sl_ArrowMinute_valueChanged(0);
    QVERIFY(picker.heard.isEmpty());
    QCOMPARE(picker.frame.hour(), 8);
    QCOMPARE(picker.frame.minute(), 30);
}

void tst_SpecialTimeFrame::sameTimeAgainReportsNothing()
{
    Picker picker;
    picker.set(8, 30);
    picker.frame.setHour(8);
    picker.frame.setMinute(30);
    QVERIFY(picker.heard.isEmpty());
}

void tst_SpecialTimeFrame::numbersFarBelowZeroAreSurvived_data()
{
    QTest::addColumn<int>("number");
    for (const int number : {-2, -7, -32768}) {
        QTest::addRow("%d", number) << number;
    }
}

void tst_SpecialTimeFrame::numbersFarBelowZeroAreSurvived()
{
    QFETCH(const int, number);
    Picker picker;
    picker.set(8, 30);
    picker.frame.setHour(number);
    picker.frame.setMinute(number);
    QCOMPARE(picker.frame.hour(), 23); // below midnight comes the end of the day
    QCOMPARE(picker.frame.minute(), 59);
    QCOMPARE(picker.heard, (QStringList{QStringLiteral("hour 23"), QStringLiteral("minute 59")}));
    picker.set(8, 30);
    QCOMPARE(picker.frame.hour(), 8);
    QCOMPARE(picker.frame.minute(), 30);
}

void tst_SpecialTimeFrame::keyRepeatWalksRoundTheClock()
{
    Picker picker;
    picker.set(12, 30);
    for (int i = 0; i < 240; ++i) {
        QTest::keyClick(picker.hourArrows, Qt::Key_Down);
        QTest::keyClick(picker.minuteArrows, Qt::Key_Up);
    }
    QCOMPARE(picker.frame.hour(), 12);
    QCOMPARE(picker.frame.minute(), 30);
    QCOMPARE(picker.heard.size(), 480);
}

void tst_SpecialTimeFrame::arrowsAreNoTabStop()
{
    Picker picker;
    picker.activate();
    picker.hour->setFocus();
    for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Backtab}) {
        for (int round = 0; round < 3; ++round) {
            QTest::keyClick(picker.hour, key);
            QVERIFY(picker.minute->hasFocus());
            QTest::keyClick(picker.minute, key);
            QVERIFY(picker.hour->hasFocus());
        }
    }
}

void tst_SpecialTimeFrame::clickedArrowsGiveTheFocusToTheirField()
{
    Picker picker;
    picker.activate();
    Picker::clickArrow(picker.minuteArrows, true);
    QVERIFY(picker.minute->hasFocus());
    Picker::clickArrow(picker.hourArrows, true);
    QVERIFY(picker.hour->hasFocus());
    QCOMPARE(picker.frame.hour(), 1);
    QCOMPARE(picker.frame.minute(), 1);
}

QTEST_MAIN(tst_SpecialTimeFrame)
#include "tst_SpecialTimeFrame.moc"
