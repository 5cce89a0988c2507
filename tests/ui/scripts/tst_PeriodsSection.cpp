#include "ui/scripts/ShownEditor.h"

/// The filters by days, time and date, as the editor shows and edits them.
class tst_PeriodsSection : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void daysAreStored_data();
    void daysAreStored();
    void timeFilterSwitchEnablesItsFrames();
    void dateFilterSwitchEnablesItsFrames();
    void timesAreStoredInTheirPlace_data();
    void timesAreStoredInTheirPlace();
    void datesAreStoredInTheirPlace_data();
    void datesAreStoredInTheirPlace();
    void shorterMonthStoresItsLastDay();
    void timesOutOfRangeAreShownClampedAndKept();
    void datesOutOfRangeAreShownClampedAndKept();
    void chosenMonthStoresTheDayOnTheScreen();
    void englishMonthNames();

private:
    std::unique_ptr<ShownEditor> shown;
};

void tst_PeriodsSection::init()
{
    shown = std::make_unique<ShownEditor>();
}

void tst_PeriodsSection::cleanup()
{
    shown.reset();
}

void tst_PeriodsSection::daysAreStored_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("bit");
    const char* names[] = {"checkBoxMon", "checkBoxTue", "checkBoxWed", "checkBoxThu",
                           "checkBoxFri", "checkBoxSat", "checkBoxSun"};
    for (int i = 0; i < 7; ++i) {
        QTest::newRow(names[i]) << i << (i == 6 ? 0x01 : 0x02 << i);
    }
}

void tst_PeriodsSection::daysAreStored()
{
    QFETCH(const int, index);
    QFETCH(const int, bit);
    shown->edit();
    QAbstractButton* box = shown->button(QTest::currentDataTag());
    box->click();
    QVERIFY(shown->script()->daysOfWeek.at(index));
    QCOMPARE(int(shown->record().at(6)), bit);
    shown->edit(1);
    QVERIFY(!box->isChecked());
    shown->edit(0);
    QVERIFY(box->isChecked());
    box->click();
    QCOMPARE(int(shown->record().at(6)), 0);
}

void tst_PeriodsSection::timeFilterSwitchEnablesItsFrames()
{
    shown->edit();
    for (const bool on : {true, false}) {
        shown->button("checkBoxTime")->click();
        QCOMPARE(shown->widget("F_TimeBegin")->isEnabled(), on);
        QCOMPARE(shown->widget("F_TimeEnd")->isEnabled(), on);
        QVERIFY(!shown->widget("F_DateBegin")->isEnabled());
        QCOMPARE(shown->script()->activateFilter, QList<bool>({false, false, on, false}));
    }
}

void tst_PeriodsSection::dateFilterSwitchEnablesItsFrames()
{
    shown->edit();
    for (const bool on : {true, false}) {
        shown->button("checkBoxDate")->click();
        QCOMPARE(shown->widget("F_DateBegin")->isEnabled(), on);
        QCOMPARE(shown->widget("F_DateEnd")->isEnabled(), on);
        QVERIFY(!shown->widget("F_TimeBegin")->isEnabled());
        QCOMPARE(shown->script()->activateFilter, QList<bool>({false, false, false, on}));
    }
}

void tst_PeriodsSection::timesAreStoredInTheirPlace_data()
{
    QTest::addColumn<QString>("frame");
    QTest::addColumn<QString>("field");
    QTest::addColumn<int>("index");
    QTest::newRow("minute of begin") << "F_TimeBegin"
                                     << "spinBoxMinute" << 0;
    QTest::newRow("hour of begin") << "F_TimeBegin"
                                   << "spinBoxHour" << 1;
    QTest::newRow("minute of end") << "F_TimeEnd"
                                   << "spinBoxMinute" << 2;
    QTest::newRow("hour of end") << "F_TimeEnd"
                                 << "spinBoxHour" << 3;
}

void tst_PeriodsSection::timesAreStoredInTheirPlace()
{
    QFETCH(const QString, frame);
    QFETCH(const QString, field);
    QFETCH(const int, index);
    shown->edit();
    shown->button("checkBoxTime")->click();
    ShownEditor::type(shown->picker(qPrintable(frame), qPrintable(field)), "17");
    QList<int> expected = {0, 0, 0, 0};
    expected[index] = 17;
    QCOMPARE(shown->script()->timeFilter, expected);
    QTest::keyClick(
        shown->picker(qPrintable(frame), field == QLatin1String("spinBoxHour") ? "ArrowHour" : "ArrowMinute"),
        Qt::Key_Up);
    QCOMPARE(shown->script()->timeFilter.at(index), 18);
}

void tst_PeriodsSection::datesAreStoredInTheirPlace_data()
{
    QTest::addColumn<QString>("frame");
    QTest::addColumn<int>("first");
    QTest::newRow("begin") << "F_DateBegin" << 0;
    QTest::newRow("end") << "F_DateEnd" << 2;
}

void tst_PeriodsSection::datesAreStoredInTheirPlace()
{
    QFETCH(const QString, frame);
    QFETCH(const int, first);
    shown->edit();
    shown->button("checkBoxDate")->click();
    ShownEditor::type(shown->picker(qPrintable(frame), "spinBoxDay"), "24");
    shown->month(qPrintable(frame))->setCurrentIndex(11);
    QList<int> expected = {1, 1, 1, 1};
    expected[first] = 24;
    expected[first + 1] = 12;
    QCOMPARE(shown->script()->dateFilter, expected);
    QTest::keyClick(shown->picker(qPrintable(frame), "ArrowDay"), Qt::Key_Down);
    QCOMPARE(shown->script()->dateFilter.at(first), 23);
}

void tst_PeriodsSection::shorterMonthStoresItsLastDay()
{
    shown->edit();
    shown->button("checkBoxDate")->click();
    ShownEditor::type(shown->picker("F_DateBegin", "spinBoxDay"), "31");
    QCOMPARE(shown->script()->dateFilter, QList<int>({31, 1, 1, 1}));
    shown->month("F_DateBegin")->setCurrentIndex(1);
    QCOMPARE(shown->script()->dateFilter, QList<int>({29, 2, 1, 1}));
}

void tst_PeriodsSection::timesOutOfRangeAreShownClampedAndKept()
{
    shown->script()->timeFilter = {85, 24, 60, 45};
    shown->script()->stateChannel = shown->model->stateChannels().value(2);
    shown->script()->activateFilter[2] = true;
    const QByteArray before = shown->record();
    shown->edit();
    QCOMPARE(shown->picker("F_TimeBegin", "spinBoxMinute")->text(), QStringLiteral("59"));
    QCOMPARE(shown->picker("F_TimeBegin", "spinBoxHour")->text(), QStringLiteral("23"));
    QCOMPARE(shown->picker("F_TimeEnd", "spinBoxMinute")->text(), QStringLiteral("59"));
    QCOMPARE(shown->picker("F_TimeEnd", "spinBoxHour")->text(), QStringLiteral("23"));
    shown->edit(1);
    QCOMPARE(shown->script()->timeFilter, QList<int>({85, 24, 60, 45}));
    QCOMPARE(shown->record(), before);

    // The user edits one number; the other three are still as they were.
    shown->edit(0);
    QTest::keyClick(shown->picker("F_TimeBegin", "spinBoxHour"), Qt::Key_Down);
    QCOMPARE(shown->script()->timeFilter, QList<int>({85, 22, 60, 45}));
}

void tst_PeriodsSection::datesOutOfRangeAreShownClampedAndKept()
{
    shown->script()->dateFilter = {31, 2, 0, 0};
    shown->edit();
    QCOMPARE(shown->picker("F_DateBegin", "spinBoxDay")->text(), QStringLiteral("29"));
    QCOMPARE(shown->month("F_DateBegin")->currentText(), QStringLiteral("February"));
    QCOMPARE(shown->picker("F_DateEnd", "spinBoxDay")->text(), QStringLiteral("01"));
    QCOMPARE(shown->month("F_DateEnd")->currentText(), QStringLiteral("January"));
    shown->edit(1);
    QCOMPARE(shown->script()->dateFilter, QList<int>({31, 2, 0, 0}));

    shown->script()->dateFilter = {39, 19, 32, 4};
    shown->edit();
    QCOMPARE(shown->picker("F_DateBegin", "spinBoxDay")->text(), QStringLiteral("31"));
    QCOMPARE(shown->month("F_DateBegin")->currentText(), QStringLiteral("December"));
    QCOMPARE(shown->picker("F_DateEnd", "spinBoxDay")->text(), QStringLiteral("30"));
    QCOMPARE(shown->month("F_DateEnd")->currentText(), QStringLiteral("April"));
    shown->edit(1);
    QCOMPARE(shown->script()->dateFilter, QList<int>({39, 19, 32, 4}));
}

void tst_PeriodsSection::chosenMonthStoresTheDayOnTheScreen()
{
    shown->script()->dateFilter = {31, 2, 1, 1};
    shown->edit();
    shown->month("F_DateBegin")->setCurrentIndex(2);
    QCOMPARE(shown->picker("F_DateBegin", "spinBoxDay")->text(), QStringLiteral("29"));
    QCOMPARE(shown->script()->dateFilter, QList<int>({29, 3, 1, 1}));
}

void tst_PeriodsSection::englishMonthNames()
{
    QCOMPARE(shown->month("F_DateBegin")->itemText(0), QStringLiteral("January"));
    QCOMPARE(shown->month("F_DateEnd")->itemText(11), QStringLiteral("December"));
}

QTEST_MAIN(tst_PeriodsSection)
#include "tst_PeriodsSection.moc"
