#include "model/RelayInfo.h"
#include "model/ScriptRules.h"
#include "ui/scripts/ScriptSummary.h"

#include <QTextDocument>
#include <QtTest>

namespace
{

const QString grey = QStringLiteral("rgba(187, 187, 187, 150)");
const QString green = QStringLiteral("rgba(0, 255, 17, 150)");
const QString red = QStringLiteral("rgba(255, 0, 0, 150)");
const QString yellow = QStringLiteral("rgba(255, 255, 0, 150)");
const QString white = QStringLiteral("rgba(255, 255, 255, 100)");
const QString plain = QStringLiteral("rgba(240, 240, 240, 255)");

QString colored(const QString& color, const QString& text)
{
    return QStringLiteral("<p align=\"center\" style=\"background-color: %1; margin:0px\">%2</p>").arg(color, text);
}

QString centred(const QString& text)
{
    return QStringLiteral("<p align=\"center\" style=\"margin:0px\">%1</p>").arg(text);
}

QString title(const QString& text)
{
    return QStringLiteral("<p align=\"center\" style=\"margin-bottom:7px; margin-top:0px\"><b>%1</b></p>").arg(text);
}

QString disabledFilters()
{
    return QStringLiteral("<p align=\"center\" style=\"background-color: %1; margin:0px; margin-bottom:20px\">"
                          "Filter disabled</p>")
        .arg(grey);
}

/// What a reader sees, line by line.
QStringList linesOf(const QString& html)
{
    QTextDocument document;
    document.setHtml(html);
    return document.toPlainText().split(QLatin1Char('\n'));
}

} // namespace

class tst_ScriptSummary : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void unknownScript();
    void newScriptToTheLetter();
    void missingRowsAreUnknown();
    void coloursAreThoseOfTheRows();
    void channelStates_data();
    void channelStates();
    void channelNumbers_data();
    void channelNumbers();
    void terminalStatesAreNumbered();
    void daysOfTheWeek();
    void timeHasHoursInFront();
    void dateIsDayAndMonth();
    void numbersBelowZeroAreShownAsTheyAre();
    void typeOfTheCatalogueIsNamed();
    void otherTypeIsShownByItsNumbers();
    void addressesAreCounted_data();
    void addressesAreCounted();
    void filtersStandInOrder();
    void anyFilterTakesThePlaceOfNone_data();
    void anyFilterTakesThePlaceOfNone();
    void namesAreShownAsTheyAre_data();
    void namesAreShownAsTheyAre();
    void listsThatAreTooShortAreHarmless();

private:
    QString part(const QString& from, const QString& to) const
    {
        const QString html = scriptSummary(script);
        const int begin = html.indexOf(from) + from.size();
        return html.mid(begin, html.indexOf(to, begin) - begin);
    }
    QString channelPart() const
    {
        return part(QStringLiteral("<u>Activation by channel's state:</u>"), QStringLiteral("<u>Activation by term"));
    }
    QString filterPart() const
    {
        const QString html = scriptSummary(script);
        return html.mid(html.lastIndexOf(QStringLiteral("<hr>")) + 4);
    }

    QSharedPointer<RelayInfo> info;
    ScriptInfoPtr script;
};

void tst_ScriptSummary::init()
{
    info = QSharedPointer<RelayInfo>::create();
    script = info->findScript(4);
}

void tst_ScriptSummary::unknownScript()
{
    QCOMPARE(scriptSummary({}), title(QStringLiteral("Script unknown")));
}

void tst_ScriptSummary::newScriptToTheLetter()
{
    QCOMPARE(
        scriptSummary(script),
        title(QStringLiteral("Script №5: 'Script'")) + QStringLiteral("<u>Mode of operation:</u>") +
            colored(white, QStringLiteral("Deactivation")) + QStringLiteral("<u>Activation delay:</u>") +
            colored(plain, QStringLiteral("No delay")) + QStringLiteral("<u>Duration:</u>") +
            colored(plain, QStringLiteral("No limit")) + QStringLiteral("<hr><u>Activation by channel's state:</u>") +
            colored(grey, QStringLiteral("Not active")) + QStringLiteral("<u>Activation by terminal's status:</u>") +
            colored(grey, QStringLiteral("Not active")) + QStringLiteral("<hr>") + disabledFilters());
}

void tst_ScriptSummary::missingRowsAreUnknown()
{
    script->mode.clear();
    script->delay.clear();
    script->duration.clear();
    const QString unknown = colored(grey, QStringLiteral("Unknown"));
    QVERIFY(scriptSummary(script).contains(QStringLiteral("<u>Mode of operation:</u>") + unknown +
                                           QStringLiteral("<u>Activation delay:</u>") + unknown +
                                           QStringLiteral("<u>Duration:</u>") + unknown + QStringLiteral("<hr>")));
}

void tst_ScriptSummary::coloursAreThoseOfTheRows()
{
    script->mode = info->modes().value(1);
    script->delay = info->delays().value(1);
    script->duration = info->durations().value(16);
    const QString html = scriptSummary(script);
    QVERIFY(html.contains(colored(green, QStringLiteral("Activation"))));
    QVERIFY(html.contains(colored(plain, QStringLiteral("5 seconds"))));
    QVERIFY(html.contains(colored(plain, QStringLiteral("2 minutes"))));
}

void tst_ScriptSummary::channelStates_data()
{
    QTest::addColumn<int>("row"); // -1 no row, -2 a code of its own
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("line");
    QTest::newRow("none") << -1 << 0 << colored(grey, QStringLiteral("Not active"));
    QTest::newRow("not active") << 0 << 0 << colored(grey, QStringLiteral("Not active"));
    QTest::newRow("norm") << 1 << 0 << colored(green, QStringLiteral("Norm"));
    QTest::newRow("alarm") << 2 << 0 << colored(red, QStringLiteral("Alarm (fire)"));
    QTest::newRow("analog") << 6 << 0 << colored(red, QStringLiteral("High level alarm"));
    QTest::newRow("button, short press") << 17 << 0 << colored(red, QStringLiteral("Button 1(Alarm)(кор.наж)"));
    QTest::newRow("button, long press") << 18 << 0 << colored(red, QStringLiteral("Button 1(Alarm)(длин.наж)"));
    QTest::newRow("last button, long press") << 24 << 0 << colored(yellow, QStringLiteral("Button 4(test)(длин.наж)"));
    QTest::newRow("other, one digit") << -2 << 0x0B << colored(grey, QStringLiteral("0x0b"));
    QTest::newRow("other, two digits") << -2 << 0xFE << colored(grey, QStringLiteral("0xfe"));
}

void tst_ScriptSummary::channelStates()
{
    QFETCH(int, row);
    QFETCH(int, code);
    QFETCH(QString, line);
    script->stateChannel = row == -2 ? scriptRules::makeOtherState(quint8(code)) : info->stateChannels().value(row);
    QVERIFY2(channelPart().startsWith(line), qPrintable(channelPart()));
    QCOMPARE(channelPart().contains(QStringLiteral("Numbers of channel:")), row > 0 || row == -2);
}

void tst_ScriptSummary::channelNumbers_data()
{
    QTest::addColumn<QList<bool>>("channels");
    QTest::addColumn<QString>("numbers");
    QTest::newRow("first") << QList<bool>({true, false, false, false}) << QStringLiteral("1; ");
    QTest::newRow("some") << QList<bool>({false, true, false, true}) << QStringLiteral("2; 4; ");
    QTest::newRow("all") << QList<bool>({true, true, true, true}) << QStringLiteral("1; 2; 3; 4; ");
    QTest::newRow("empty list") << QList<bool>() << QString();
}

void tst_ScriptSummary::channelNumbers()
{
    QFETCH(QList<bool>, channels);
    QFETCH(QString, numbers);
    script->stateChannel = info->stateChannels().value(1);
    script->numberChannels = channels;
    QVERIFY(channelPart().endsWith(centred(QStringLiteral("Numbers of channel: ") + numbers)));
}

void tst_ScriptSummary::terminalStatesAreNumbered()
{
    script->stateTerminal = {info->terminalStates().value(0), info->terminalStates().value(3)};
    QCOMPARE(part(QStringLiteral("<u>Activation by terminal's status:</u>"), QStringLiteral("<hr>")),
             colored(yellow, QStringLiteral("1) Tamper")) + colored(yellow, QStringLiteral("2) Disconnection")));
}

void tst_ScriptSummary::daysOfTheWeek()
{
    script->daysOfWeek = {true, false, false, false, false, true, true};
    QCOMPARE(filterPart(),
             QStringLiteral("<u>Filter by days of week:</u>") + centred(QStringLiteral("MON; SAT; SUN; ")));
    script->daysOfWeek = {true, true, true, true, true, true, true};
    QVERIFY(filterPart().contains(QStringLiteral("MON; TUE; WED; THU; FRI; SAT; SUN; ")));
}

void tst_ScriptSummary::timeHasHoursInFront()
{
    script->activateFilter[2] = true;
    script->timeFilter = {5, 8, 30, 17};
    QCOMPARE(filterPart(), QStringLiteral("<u>Filter by time:</u>") + centred(QStringLiteral("08:05 - 17:30")));
}

void tst_ScriptSummary::dateIsDayAndMonth()
{
    script->activateFilter[3] = true;
    script->dateFilter = {1, 9, 31, 12};
    QCOMPARE(filterPart(), QStringLiteral("<u>Filter by date:</u>") + centred(QStringLiteral("01.09 - 31.12")));
}

void tst_ScriptSummary::numbersBelowZeroAreShownAsTheyAre()
{
    script->activateFilter = {false, false, true, true};
    script->timeFilter = {-2, -7, -32768, -2};
    script->dateFilter = {-2, -7, -32768, -2};
    QCOMPARE(filterPart(), QStringLiteral("<u>Filter by time:</u>") + centred(QStringLiteral("-7:-2 - -2:-32768")) +
                               QStringLiteral("<u>Filter by date:</u>") + centred(QStringLiteral("-2.-7 - -32768.-2")));
}

void tst_ScriptSummary::typeOfTheCatalogueIsNamed()
{
    info->addTerminalType(true, QStringLiteral("Haldeon-NX"), 2, 1, 0x41, 0x20, {});
    script->activateFilter[0] = true;
    script->terminalFilter = info->terminalTypes().value(1);
    QCOMPARE(linesOf(filterPart()), QStringList{QStringLiteral("Filter by type of terminal: Haldeon-NX")});
    QVERIFY(filterPart().contains(QStringLiteral("<u>Filter by type of terminal:</u> Haldeon-NX")));
    script->terminalFilter.clear();
    QVERIFY(filterPart().contains(QStringLiteral("Filter by type of terminal:</u> ")));
}

void tst_ScriptSummary::otherTypeIsShownByItsNumbers()
{
    script->activateFilter[0] = true;
    script->terminalFilter->version = 10;
    script->terminalFilter->type = 0x0C;
    script->terminalFilter->characteristic = 0x20;
    QVERIFY(filterPart().contains(QStringLiteral("<u>Filter by type of terminal:</u> fa 0c 20")));
}

void tst_ScriptSummary::addressesAreCounted_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << 0 << QStringLiteral("0 terminals");
    QTest::newRow("one") << 1 << QStringLiteral("1 terminal");
    QTest::newRow("second form") << 2 << QStringLiteral("2 terminal");
    QTest::newRow("end of the second form") << 4 << QStringLiteral("4 terminal");
    QTest::newRow("plural") << 5 << QStringLiteral("5 terminals");
    QTest::newRow("10") << 10 << QStringLiteral("10 terminals");
    QTest::newRow("11 is plural") << 11 << QStringLiteral("11 terminals");
    QTest::newRow("12 is plural") << 12 << QStringLiteral("12 terminals");
    QTest::newRow("14 is plural") << 14 << QStringLiteral("14 terminals");
    QTest::newRow("20") << 20 << QStringLiteral("20 terminals");
    QTest::newRow("21 is singular") << 21 << QStringLiteral("21 terminal");
    QTest::newRow("22 is the second form") << 22 << QStringLiteral("22 terminal");
    QTest::newRow("25") << 25 << QStringLiteral("25 terminals");
    QTest::newRow("31") << 31 << QStringLiteral("31 terminal");
    QTest::newRow("all with the head unit") << 32 << QStringLiteral("32 terminal");
}

void tst_ScriptSummary::addressesAreCounted()
{
    QFETCH(int, count);
    QFETCH(QString, text);
    script->activateFilter[1] = true;
    for (int i = 0; i < 32; ++i) {
        script->addressFilter[i] = i >= 32 - count;
    }
    QVERIFY(filterPart().contains(QStringLiteral("<u>Filter by addresses:</u></p> ")));
    QCOMPARE(linesOf(filterPart()).constLast(), text);
}

void tst_ScriptSummary::filtersStandInOrder()
{
    script->daysOfWeek[2] = true;
    script->activateFilter = {true, true, true, true};
    const QStringList lines = linesOf(filterPart());
    QCOMPARE(lines, QStringList({QStringLiteral("Filter by days of week:"), QStringLiteral("WED; "),
                                 QStringLiteral("Filter by time:"), QStringLiteral("00:00 - 00:00"),
                                 QStringLiteral("Filter by date:"), QStringLiteral("01.01 - 01.01"),
                                 QStringLiteral("Filter by type of terminal: f0 00 00"),
                                 QStringLiteral("Filter by addresses:"), QStringLiteral("0 terminals")}));
}

void tst_ScriptSummary::anyFilterTakesThePlaceOfNone_data()
{
    QTest::addColumn<int>("filter"); // -1 is the days
    QTest::newRow("days") << -1;
    QTest::newRow("type") << 0;
    QTest::newRow("addresses") << 1;
    QTest::newRow("time") << 2;
    QTest::newRow("date") << 3;
}

void tst_ScriptSummary::anyFilterTakesThePlaceOfNone()
{
    QFETCH(int, filter);
    QCOMPARE(filterPart(), disabledFilters());
    if (filter < 0) {
        script->daysOfWeek[6] = true;
    } else {
        script->activateFilter[filter] = true;
    }
    QVERIFY(!filterPart().contains(QStringLiteral("Filter disabled")));
    QVERIFY(!filterPart().isEmpty());
}

void tst_ScriptSummary::namesAreShownAsTheyAre_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << QString();
    QTest::newRow("markup") << QStringLiteral("<b>x</b></p><img src=\"a\">&amp;");
    QTest::newRow("place markers") << QStringLiteral("%1 %2 %3");
    QTest::newRow("quotes") << QStringLiteral("'a\"b'");
    QTest::newRow("200 letters") << QString(200, QLatin1Char('W'));
}

void tst_ScriptSummary::namesAreShownAsTheyAre()
{
    QFETCH(QString, name);
    script->name = name;
    script->activateFilter[0] = true;
    script->terminalFilter->label = QStringLiteral("x");
    script->terminalFilter->name = name;
    QStringList lines = linesOf(scriptSummary(script));
    lines.replaceInStrings(QString(QChar(0x200B)), QString()); // where a long word may be broken
    QCOMPARE(lines.first(), QStringLiteral("Script №5: '") + name + QLatin1Char('\''));
    QCOMPARE(lines.last(), QStringLiteral("Filter by type of terminal: ") + name);
}

void tst_ScriptSummary::listsThatAreTooShortAreHarmless()
{
    script->daysOfWeek = {true};
    script->activateFilter = {false, false, true};
    script->timeFilter = {1};
    script->addressFilter.clear();
    QVERIFY(filterPart().contains(QStringLiteral("MON; ")));
    QVERIFY(filterPart().contains(QStringLiteral("00:01 - 00:00")));
}

QTEST_MAIN(tst_ScriptSummary)
#include "tst_ScriptSummary.moc"
