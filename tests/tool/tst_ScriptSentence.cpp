#include "ReportTest.h"
#include "model/ScriptRules.h"
#include "model/StateFamily.h"
#include "model/tables.h"
#include "tool/ScriptSentence.h"
#include "tool/english.h"

#include <QtTest>

#include <functional>

using Edit = std::function<void(ReportedSite&)>;
Q_DECLARE_METATYPE(Edit)

/// Scripts as sentences.
class tst_ScriptSentence : public QObject
{
    Q_OBJECT

private slots:
    void aTriggerIsNamedAsItsTerminalsReportIt_data();
    void aTriggerIsNamedAsItsTerminalsReportIt();
    void aReporterIsNamedByTypeAndAddresses_data();
    void aReporterIsNamedByTypeAndAddresses();
    void periodsSayWhenItCounts_data();
    void periodsSayWhenItCounts();
    void theActionNamesOutputsModeAndTimes_data();
    void theActionNamesOutputsModeAndTimes();
    void aScriptOfNoOutputSaysSo();
    void numbersInARowBecomeRanges_data();
    void numbersInARowBecomeRanges();
    void listsReadAsTheyAreSpoken();
    void whatUsersTypedIsFitForOneLine_data();
    void whatUsersTypedIsFitForOneLine();

private:
    static void compareSentence(const Edit& edit, const QString& expected);
};

void tst_ScriptSentence::compareSentence(const Edit& edit, const QString& expected)
{
    ReportedSite site;
    edit(site);
    QCOMPARE(withBlanks(sentence::action(site.model, site.script)), expected);
}

void tst_ScriptSentence::aTriggerIsNamedAsItsTerminalsReportIt_data()
{
    QTest::addColumn<Edit>("edit");
    QTest::addColumn<QString>("report");

    const auto row = [](const char* name, const Edit& edit, const char* report) {
        QTest::newRow(name) << edit << QString::fromUtf8(report);
    };
    const auto linked = [](const QString& name, bool isLong) {
        return [name, isLong](ReportedSite& site) {
            const ParamItems rows = site.model.stateChannels();
            const ParamItemPtr analog = scriptRules::findLinkedState(rows, scriptRules::StateKind::Analog, name, false);
            site.script->stateChannel =
                analog ? analog : scriptRules::findLinkedState(rows, scriptRules::StateKind::Button, name, isLong);
        };
    };
    const auto statuses = [](int mask, bool alone) {
        return [mask, alone](ReportedSite& site) {
            if (alone) {
                site.script->stateChannel = site.model.stateChannels().value(0);
                site.script->numberChannels.clear();
            }
            site.script->stateTerminal = rowsOfMask(site.model.terminalStates(), mask);
        };
    };
    const auto channels = [](const QList<bool>& numbers) {
        return [numbers](ReportedSite& site) { site.script->numberChannels = numbers; };
    };
    row(
        "a plain state", [](ReportedSite&) {}, "“Alarm (fire)” on channel 1");
    row(
        "norm", [](ReportedSite& site) { site.wait(texts::channelNorm()); }, "“Norm” on channel 1");
    row("an analog state", linked(texts::analogHigh(), false), "“High level alarm” on channel 1");
    row("a short press", linked(texts::stateButton1(), false), "a short press of “Button 1(Alarm)” on channel 1");
    row("a long press", linked(texts::stateButton2(), true), "a long press of “Button 2(Arm)” on channel 1");
    row(
        "a state that no table has",
        [](ReportedSite& site) { site.script->stateChannel = scriptRules::makeOtherState(0x0B); },
        "the state 0x0B on channel 1");
    row("one status", statuses(0x40, true), "the status “Tamper”");
    row("three statuses", statuses(0x4A, true), "the status “Tamper”, “Disconnection” or “Fatal error”");
    row("a state or a status", statuses(0x40, false), "“Alarm (fire)” on channel 1, or the status “Tamper”");
    row("two channels", channels({false, true, false, true}), "“Alarm (fire)” on channel 2 or 4");
    row("three channels", channels({true, true, true, false}), "“Alarm (fire)” on channel 1, 2 or 3");
    row("all channels", channels({true, true, true, true}), "“Alarm (fire)” on any channel");
    row("no channel is the first", channels({}), "“Alarm (fire)” on channel 1");
}

void tst_ScriptSentence::aTriggerIsNamedAsItsTerminalsReportIt()
{
    QFETCH(Edit, edit);
    QFETCH(QString, report);
    compareSentence(edit, QStringLiteral("When any terminal reports ") + report +
                              QString::fromUtf8(", output 1 “Siren” of the head unit is switched on for 5 minutes."));
}

void tst_ScriptSentence::aReporterIsNamedByTypeAndAddresses_data()
{
    QTest::addColumn<Edit>("edit");
    QTest::addColumn<QString>("reporter");

    const auto row = [](const char* name, const Edit& edit, const char* reporter) {
        QTest::newRow(name) << edit << QString::fromUtf8(reporter);
    };
    const auto type = [](quint8 terminalClass, quint8 version = 0, quint8 kind = 0, quint8 characteristic = 0) {
        return [=](ReportedSite& site) { site.filterByType(terminalClass, version, kind, characteristic); };
    };
    const auto at = [](const QVector<int>& addresses) {
        return [addresses](ReportedSite& site) { site.filterByAddress(addresses); };
    };
    const auto typeAt = [](quint8 terminalClass, const QVector<int>& addresses) {
        return [=](ReportedSite& site) {
            site.filterByType(terminalClass);
            site.filterByAddress(addresses);
        };
    };
    const auto upTo = [](int first, int last) {
        QVector<int> addresses;
        for (int address = first; address <= last; ++address) {
            addresses.append(address);
        }
        return addresses;
    };
    row("any class", type(15), "any terminal");
    row("system", type(0), "any system unit");
    row("sensor", type(1), "any sensor");
    row("executive", type(2), "any executive terminal");
    row("panic button", type(3), "any panic button");
    row("analog", type(4), "any analog terminal");
    row("a class that nobody has", type(7), "any terminal of the class 7");
    row("a model of the catalogue", type(3, 1, 0x30, 0x10), "any panic button “PNB-NX”");
    row("numbers of no model", type(1, 12, 0x70, 0x0A), "any sensor of version C, type 0x70 and description 0x0A");
    row("features", type(1, 0, 0x05), "any sensor with “Sound” and “Res. power” and nothing else");
    row(
        "a filter by type that is off",
        [](ReportedSite& site) {
            site.filterByType(3);
            site.script->activateFilter[ScriptInfo::ByType] = false;
        },
        "any terminal");
    row("one address", at({3}), "terminal 3");
    row("addresses", at({3, 5, 6, 7}), "one of the terminals 3 and 5–7");
    row("head unit", at({0}), "the head unit");
    row("head unit and another", at({0, 12}), "the head unit or terminal 12");
    row("head unit and others", at({0, 1, 2}), "the head unit or one of the terminals 1 and 2");
    row("all addresses", at(upTo(0, 31)), "any terminal");
    row("all but the head unit", at(upTo(1, 31)), "any terminal but the head unit");
    row("no address", at({}), "a terminal at no address");
    row(
        "a filter by address that is off",
        [](ReportedSite& site) {
            site.filterByAddress({3});
            site.script->activateFilter[ScriptInfo::ByAddress] = false;
        },
        "any terminal");
    row("type and addresses", typeAt(3, {3, 5, 6, 7}), "a panic button (terminals 3, 5–7)");
    row("type and one address", typeAt(4, {9}), "an analog terminal (terminal 9)");
    row("type, head unit and address", typeAt(1, {0, 9}), "a sensor (the head unit, terminal 9)");
    row("type at all addresses", typeAt(1, upTo(0, 31)), "any sensor");
    row("type at no address", typeAt(2, {}), "an executive terminal at no address");
}

void tst_ScriptSentence::aReporterIsNamedByTypeAndAddresses()
{
    QFETCH(Edit, edit);
    QFETCH(QString, reporter);
    compareSentence(edit, QStringLiteral("When ") + reporter +
                              QString::fromUtf8(" reports “Alarm (fire)” on channel 1, output 1 “Siren” of the head "
                                                "unit is switched on for 5 minutes."));
}

void tst_ScriptSentence::periodsSayWhenItCounts_data()
{
    QTest::addColumn<Edit>("edit");
    QTest::addColumn<QString>("period");

    const auto time = [](const QList<int>& filter) {
        return [filter](ReportedSite& site) {
            site.script->activateFilter[ScriptInfo::ByTime] = true;
            site.script->timeFilter = filter;
        };
    };
    const auto date = [](const QList<int>& filter) {
        return [filter](ReportedSite& site) {
            site.script->activateFilter[ScriptInfo::ByDate] = true;
            site.script->dateFilter = filter;
        };
    };
    const auto days = [](const char* mask) {
        return [mask](ReportedSite& site) {
            for (int day = 0; day < 7; ++day) {
                site.script->daysOfWeek[day] = mask[day] != '-';
            }
        };
    };
    const auto row = [](const char* name, const Edit& edit, const char* period) {
        QTest::newRow(name) << edit << QString::fromUtf8(period);
    };
    row("within a day", time({5, 8, 45, 17}), ", between 08:05 and 17:45");
    row("across midnight", time({0, 22, 0, 6}), ", between 22:00 and 06:00 the next day");
    row("within the hour, across midnight", time({30, 8, 15, 8}), ", between 08:30 and 08:15 the next day");
    row("the same minute", time({0, 8, 0, 8}), ", between 08:00 and 08:00");
    row("no day is every day", days("-------"), "");
    row("every day", days("MTWTFSS"), "");
    row("workdays", days("MTWTF--"), ", Monday to Friday");
    row("one day", days("--W----"), ", on Wednesday");
    row("weekend", days("-----SS"), ", on Saturday and Sunday");
    row("scattered days", days("M-W-F--"), ", on Monday, Wednesday and Friday");
    row("a run and a day", days("MTW--S-"), ", on Monday to Wednesday and Saturday");
    row("dates", date({1, 5, 30, 9}), ", from 1 May to 30 September");
    row("dates across the year", date({1, 10, 30, 4}), ", from 1 October to 30 April");
    row("one date", date({24, 12, 24, 12}), ", on 24 December");
    row("dates of no calendar", date({31, 13, 45, 0}), ", from day 31 of month 13 to day 45 of month 0");
    row(
        "filters that are off",
        [](ReportedSite& site) {
            site.script->timeFilter = {0, 22, 0, 6};
            site.script->dateFilter = {1, 5, 30, 9};
        },
        "");
    row(
        "all of them",
        [=](ReportedSite& site) {
            time({0, 22, 0, 6})(site);
            days("MTWTF--")(site);
            date({1, 5, 30, 9})(site);
        },
        ", between 22:00 and 06:00 the next day, Monday to Friday, from 1 May to 30 September");
}

void tst_ScriptSentence::periodsSayWhenItCounts()
{
    QFETCH(Edit, edit);
    QFETCH(QString, period);
    compareSentence(edit, QString::fromUtf8("When any terminal reports “Alarm (fire)” on channel 1") + period +
                              QString::fromUtf8(", output 1 “Siren” of the head unit is switched on for 5 minutes."));
}

void tst_ScriptSentence::theActionNamesOutputsModeAndTimes_data()
{
    QTest::addColumn<Edit>("edit");
    QTest::addColumn<QString>("action");

    const auto row = [](const char* name, const Edit& edit, const char* action) {
        QTest::newRow(name) << edit << QString::fromUtf8(action);
    };
    const auto mode = [](int index) {
        return [index](ReportedSite& site) { site.script->mode = site.model.modes().value(index); };
    };
    row("off", mode(0), "output 1 “Siren” of the head unit is switched off for 5 minutes.");
    row("slow pulse", mode(2), "output 1 “Siren” of the head unit pulses every 2 seconds for 5 minutes.");
    row("fast pulse", mode(3), "output 1 “Siren” of the head unit pulses once a second for 5 minutes.");
    row("disable", mode(4), "the activation of output 1 “Siren” of the head unit is disabled for 5 minutes.");
    row("unknown mode", mode(-1), "output 1 “Siren” of the head unit is driven in an unknown way for 5 minutes.");
    row(
        "delay", [](ReportedSite& site) { site.script->delay = site.model.delays().value(2); },
        "output 1 “Siren” of the head unit is switched on after 10 seconds for 5 minutes.");
    row(
        "no limit", [](ReportedSite& site) { site.script->duration = site.model.durations().value(0); },
        "output 1 “Siren” of the head unit is switched on with no time limit.");
    row(
        "unknown times",
        [](ReportedSite& site) {
            site.script->delay.clear();
            site.script->duration.clear();
        },
        "output 1 “Siren” of the head unit is switched on after an unknown delay for an unknown time.");
    row(
        "return", [](ReportedSite& site) { site.siren->returnStartState = true; },
        "output 1 “Siren” of the head unit is switched on for 5 minutes; afterwards the output returns to off.");
    row(
        "return from what has no limit",
        [](ReportedSite& site) {
            site.siren->returnStartState = true;
            site.script->duration = site.model.durations().value(0);
        },
        "output 1 “Siren” of the head unit is switched on with no time limit; when the script ends, the output "
        "returns to off.");
    row(
        "return to an unknown state",
        [](ReportedSite& site) {
            site.siren->returnStartState = true;
            site.siren->startState.clear();
        },
        "output 1 “Siren” of the head unit is switched on for 5 minutes; afterwards the output returns to an unknown "
        "state.");
    row(
        "two outputs of a terminal, one without a name of its own",
        [](ReportedSite& site) {
            site.siren->activatedScripts.clear();
            site.addOutput(12, QStringLiteral("Yard"), QStringLiteral("Lamp"))->returnStartState = true;
            site.addOutput(12, QString(), texts::defaultOutputName())->returnStartState = true;
        },
        "outputs 1 “Lamp” and 2 of terminal 12 “Yard” are switched on for 5 minutes; afterwards the outputs return to "
        "off.");
    row(
        "terminals in their order, of which one returns",
        [](ReportedSite& site) {
            site.addOutput(12, texts::defaultTerminalName(), QStringLiteral("Lamp"));
            site.addOutput(5, QString(), QStringLiteral("Lock"))->returnStartState = true;
        },
        "output 1 “Siren” of the head unit, output 1 “Lock” of terminal 5 and output 1 “Lamp” of terminal 12 are "
        "switched on for 5 minutes; afterwards output 1 “Lock” of terminal 5 returns to off.");
    row(
        "an output without a number", [](ReportedSite& site) { site.siren->number = 255; },
        "output without a number “Siren” of the head unit is switched on for 5 minutes.");
    row(
        "names that look like places to fill", [](ReportedSite& site) { site.siren->name = QStringLiteral("%1%2"); },
        "output 1 “%1%2” of the head unit is switched on for 5 minutes.");
}

void tst_ScriptSentence::theActionNamesOutputsModeAndTimes()
{
    QFETCH(Edit, edit);
    QFETCH(QString, action);
    compareSentence(edit, QString::fromUtf8("When any terminal reports “Alarm (fire)” on channel 1, ") + action);
}

void tst_ScriptSentence::aScriptOfNoOutputSaysSo()
{
    compareSentence([](ReportedSite& site) { site.siren->activatedScripts.clear(); },
                    QString::fromUtf8("When any terminal reports “Alarm (fire)” on channel 1, nothing happens: this "
                                      "script drives no output."));
}

void tst_ScriptSentence::numbersInARowBecomeRanges_data()
{
    QTest::addColumn<QVector<int>>("numbers");
    QTest::addColumn<QString>("text");

    QTest::newRow("none") << QVector<int>() << QString();
    QTest::newRow("one") << QVector<int>{4} << QStringLiteral("4");
    QTest::newRow("two in a row") << QVector<int>{4, 5} << QStringLiteral("4, 5");
    QTest::newRow("three in a row") << QVector<int>{4, 5, 6} << QString::fromUtf8("4–6");
    QTest::newRow("runs and single ones")
        << QVector<int>{1, 3, 5, 6, 7, 9, 10} << QString::fromUtf8("1, 3, 5–7, 9, 10");
}

void tst_ScriptSentence::numbersInARowBecomeRanges()
{
    QFETCH(QVector<int>, numbers);
    QFETCH(QString, text);
    QCOMPARE(english::ranges(numbers).join(QStringLiteral(", ")), text);
}

void tst_ScriptSentence::listsReadAsTheyAreSpoken()
{
    QCOMPARE(english::list({}), QString());
    QCOMPARE(english::list({QStringLiteral("a")}), QStringLiteral("a"));
    QCOMPARE(english::list({QStringLiteral("a"), QStringLiteral("b")}), QStringLiteral("a and b"));
    QCOMPARE(english::list({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}, QStringLiteral("or")),
             QStringLiteral("a, b or c"));
    QCOMPARE(english::counted(1, QStringLiteral("output")), QStringLiteral("1 output"));
    QCOMPARE(english::counted(0, QStringLiteral("output")), QStringLiteral("0 outputs"));
}

void tst_ScriptSentence::whatUsersTypedIsFitForOneLine_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("printed");

    QTest::newRow("plain") << QStringLiteral("Yard 2") << QStringLiteral("Yard 2");
    QTest::newRow("line feed, tab, blanks") << QStringLiteral(" a\n\tb  c ") << QStringLiteral("a b c");
    QTest::newRow("control characters") << QString::fromUtf8("a\x01\x7F\xC2\x85z") << QStringLiteral("a z");
    QTest::newRow("no character at all") << QString(QChar(0xFFFF)) + QStringLiteral("a") << QStringLiteral("a");
    QTest::newRow("half a character") << QString(QChar(0xD800)) + QStringLiteral("a") << QStringLiteral("\uFFFDa");
    QTest::newRow("Cyrillic") << QString::fromUtf8("Сирена") << QString::fromUtf8("Сирена");
    QTest::newRow("beyond the first plane") << QString::fromUtf8("🔔 a") << QString::fromUtf8("🔔 a");
    QTest::newRow("right to left is contained")
        << QString::fromUtf8("צופר") << QChar(0x2068) + QString::fromUtf8("צופר") + QChar(0x2069);
    QTest::newRow("a direction that is forced is left out")
        << QStringLiteral("a\u202Eb\u2067c\u2069") << QStringLiteral("abc");
}

void tst_ScriptSentence::whatUsersTypedIsFitForOneLine()
{
    QFETCH(QString, typed);
    QFETCH(QString, printed);
    QCOMPARE(english::tidied(typed), printed);
}

QTEST_GUILESS_MAIN(tst_ScriptSentence)
#include "tst_ScriptSentence.moc"
