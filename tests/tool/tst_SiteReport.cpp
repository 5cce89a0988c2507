#include "ReportTest.h"
#include "model/ScriptRules.h"
#include "model/StateFamily.h"
#include "model/tables.h"
#include "tool/SiteReport.h"

#include <QXmlStreamReader>
#include <QtTest>

/// What a report says, and its page for a browser.
class tst_SiteReport : public QObject
{
    Q_OBJECT

private slots:
    void aFileIsNamedWithItsDateAndComment();
    void aUnitIsNamedWithItsNumbers();
    void theFileHasTerminalsWithOutputsOnly();
    void theUnitHasAllTerminalsByAddress();
    void outputsStandUnderTheirTerminals();
    void scriptsInUseAreSentencesAndTheOthersOneLine();
    void aSiteWithoutScriptsSaysSo();
    void whatIsWorthALookIsListed_data();
    void whatIsWorthALookIsListed();
    void aSiteInOrderHasNothingWorthALook();
    void theHtmlIsWellFormedAndHoldsAllTexts();
    void nothingThatAUserTypedIsMarkup_data();
    void nothingThatAUserTypedIsMarkup();
    void theHtmlNeedsNothingBesideIt();
    void theSameSourceGivesTheSameHtml();

private:
    static ReportSource fileOf(const ReportedSite& site);
    static ReportSource unitOf(const ReportedSite& site);
    static ReportSection section(const ReportSource& source, const QString& heading);
    static QStringList lines(const ReportSection& section);
    static QString textOf(const QString& html);
};

namespace
{

QDateTime moment()
{
    return QDateTime(QDate(2026, 5, 4), QTime(13, 7));
}

QByteArray terminalRecord(int address, int terminalClass, int version, int type, int characteristic)
{
    QByteArray record(8, '\0');
    record[0] = char(address);
    record[1] = char(terminalClass << 4 | version);
    record[2] = char(type);
    record[3] = char(characteristic);
    return record;
}

} // namespace

ReportSource tst_SiteReport::fileOf(const ReportedSite& site)
{
    return {site.model, QStringLiteral("Mill Lane.cfg"), moment(), std::nullopt};
}

ReportSource tst_SiteReport::unitOf(const ReportedSite& site)
{
    return {site.model, QString(), moment(), ReportedUnit{QStringLiteral("ttyUSB0"), {2, 20417, 0x0602}}};
}

ReportSection tst_SiteReport::section(const ReportSource& source, const QString& heading)
{
    const ReportContent content = siteReport::content(source);
    for (const ReportSection& part : content.sections) {
        if (part.heading == heading) {
            return part;
        }
    }
    return {};
}

/// The rows of a table, with " | " between the cells and " / " between their paragraphs.
QStringList tst_SiteReport::lines(const ReportSection& section)
{
    QStringList all;
    for (const ReportRow& row : section.table.rows) {
        QStringList cells;
        for (const ReportCell& cell : row.cells) {
            QStringList paragraphs;
            for (const ReportText& text : cell) {
                paragraphs.append(text.text);
            }
            cells.append(paragraphs.join(QStringLiteral(" / ")));
        }
        all.append(withBlanks(cells.join(QStringLiteral(" | "))));
    }
    return all;
}

/// All text of a page. Fails if it isn't well-formed.
QString tst_SiteReport::textOf(const QString& html)
{
    QString text;
    QXmlStreamReader reader(html);
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::Characters) {
            text += reader.text();
        }
    }
    return reader.hasError() ? QStringLiteral("not well-formed: ") + reader.errorString() : withBlanks(text);
}

void tst_SiteReport::aFileIsNamedWithItsDateAndComment()
{
    ReportedSite site;
    site.addOutput(7, QStringLiteral("Yard"), QStringLiteral("Lamp"));
    site.model.setComment(QStringLiteral("Office.\r\n\r\n  Keys:  at the desk"));
    const ReportContent content = siteReport::content(fileOf(site));
    QCOMPARE(content.title, QStringLiteral("Site report"));
    QCOMPARE(content.name, QStringLiteral("Mill Lane"));
    QCOMPARE(content.date, QStringLiteral("4 May 2026, 13:07"));
    QCOMPARE(lines(content.sections.first()),
             (QStringList{QStringLiteral("File | Mill Lane.cfg"), QStringLiteral("Last changed | 4 May 2026, 13:07"),
                          QStringLiteral("Contents | head unit, 1 executive terminal, 9 outputs, 1 script in use"),
                          QStringLiteral("Comment | Office. / Keys: at the desk")}));
}

void tst_SiteReport::aUnitIsNamedWithItsNumbers()
{
    const ReportedSite site;
    const ReportContent content = siteReport::content(unitOf(site));
    QCOMPARE(content.name, QStringLiteral("HUBN-NX-Q 20417"));
    QCOMPARE(lines(content.sections.first()),
             (QStringList{QStringLiteral("Unit | HUBN-NX-Q"), QStringLiteral("Serial number | 20417"),
                          QStringLiteral("Version | 6.02"), QStringLiteral("Address | 2 on port ttyUSB0"),
                          QStringLiteral("Read on | 4 May 2026, 13:07"),
                          QStringLiteral("Contents | head unit, 0 executive terminals, 8 outputs, 1 script in use")}));
}

void tst_SiteReport::theFileHasTerminalsWithOutputsOnly()
{
    ReportedSite site;
    site.addOutput(7, QStringLiteral("Yard"), QStringLiteral("Lamp"));
    const ReportSection terminals = section(fileOf(site), QStringLiteral("Terminals"));
    QCOMPARE(lines(terminals), (QStringList{QStringLiteral("0 | HUBN-NX-Q | 8"), QStringLiteral("7 | Yard | 1")}));
    QCOMPARE(terminals.notes.size(), 1);
}

void tst_SiteReport::theUnitHasAllTerminalsByAddress()
{
    ReportedSite site;
    site.model.readTerminalRecords({terminalRecord(9, 3, 1, 0x30, 0x10), terminalRecord(5, 2, 1, 0x41, 0x20),
                                    terminalRecord(3, 1, 15, 0x99, 0x99), terminalRecord(8, 4, 1, 0x15, 0x11)});
    site.model.findGroup(5)->name = QStringLiteral("Yard");
    site.addOutput(6, QStringLiteral("Gate"), QStringLiteral("Lamp"));
    QCOMPARE(lines(section(unitOf(site), QStringLiteral("Terminals"))),
             (QStringList{QStringLiteral("0 | HUBN-NX-Q | head unit | 8 | yes"),
                          QString::fromUtf8("3 | 1f 99 99 | sensor | – | yes"),
                          QStringLiteral("5 | Yard / Haldeon-NX | executive terminal | 2 | yes"),
                          QStringLiteral("6 | Gate | executive terminal | 1 | no"),
                          QString::fromUtf8("8 | Termia-NX(single-channel) | analog | – | yes"),
                          QString::fromUtf8("9 | PNB-NX | interface | – | yes")}));
}

void tst_SiteReport::outputsStandUnderTheirTerminals()
{
    ReportedSite site;
    const RelayInformationPtr lamp = site.addOutput(7, QStringLiteral("Yard"), QStringLiteral("Lamp"));
    lamp->startState = site.model.outputStates().value(1);
    lamp->returnStartState = true;
    lamp->activatedScripts.append(site.model.findScript(1));
    site.model.addGroup(QStringLiteral("Without outputs"), 8);
    const QStringList rows = lines(section(fileOf(site), QStringLiteral("Outputs")));
    QCOMPARE(rows.size(), 11);
    QCOMPARE(rows.at(0), QStringLiteral("The head unit"));
    QCOMPARE(rows.at(1), QString::fromUtf8("1 | Siren | off | stays | 4 “Horn”"));
    QCOMPARE(rows.at(8), QString::fromUtf8("8 | Internal relay | off | stays | –"));
    QCOMPARE(rows.at(9), QString::fromUtf8("Terminal 7 “Yard”"));
    QCOMPARE(rows.at(10), QString::fromUtf8("1 | Lamp | on | returns | 4 “Horn”, 2"));
}

void tst_SiteReport::scriptsInUseAreSentencesAndTheOthersOneLine()
{
    ReportedSite site;
    const ScriptInfoPtr other = site.model.findScript(9);
    other->stateTerminal = rowsOfMask(site.model.terminalStates(), 0x40);
    const ReportSection scripts = section(fileOf(site), QStringLiteral("Scripts"));
    const QStringList rows = lines(scripts);
    QCOMPARE(rows.size(), 2);
    QVERIFY2(rows.at(0).startsWith(QStringLiteral("4 | Horn / When any terminal reports ")),
             qUtf8Printable(rows.at(0)));
    QVERIFY2(rows.at(1).startsWith(QStringLiteral("10 | When any terminal ")), qUtf8Printable(rows.at(1)));
    QCOMPARE(scripts.notes, QStringList{QString::fromUtf8("Not in use: 1–3, 5–9, 11–32.")});
}

void tst_SiteReport::aSiteWithoutScriptsSaysSo()
{
    ReportedSite site;
    site.model.resetScripts();
    const ReportSection scripts = section(fileOf(site), QStringLiteral("Scripts"));
    QVERIFY(scripts.table.rows.isEmpty());
    QCOMPARE(scripts.notes, QStringList{QStringLiteral("No script is in use.")});
}

void tst_SiteReport::whatIsWorthALookIsListed_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("text");

    QTest::newRow("script without outputs")
        << QStringLiteral("idle script") << QString::fromUtf8("Script 4 “Horn” is active but drives no output.");
    QTest::newRow("output with a script that isn't active")
        << QStringLiteral("idle output")
        << QString::fromUtf8("Output 2 of the head unit waits for script 8, which has "
                             "no trigger.");
    QTest::newRow("output with two of them")
        << QStringLiteral("idle output twice")
        << QString::fromUtf8(
               "Output 2 of the head unit waits for script 8 and script 9 “Bell”, which have no trigger.");
    QTest::newRow("script that hears nobody")
        << QStringLiteral("deaf script")
        << QString::fromUtf8("Script 4 “Horn” filters by address, but no address is chosen.");
    QTest::newRow("state of one class, filter by none")
        << QStringLiteral("ambiguous state")
        << QString::fromUtf8("Script 4 “Horn” waits for “High level alarm” of terminals of any class; by its number "
                             "the unit can't tell that state from “Alarm (fire)”.");
    QTest::newRow("terminal that isn't connected")
        << QStringLiteral("lost terminal") << QString::fromUtf8("Terminal 7 “Yard” has outputs but isn't connected.");
}

void tst_SiteReport::whatIsWorthALookIsListed()
{
    QFETCH(QString, fault);
    QFETCH(QString, text);
    ReportedSite site;
    bool isRead = false;
    if (fault == QLatin1String("idle script")) {
        site.siren->activatedScripts.clear();
    } else if (fault.startsWith(QLatin1String("idle output"))) {
        QList<ScriptInfoPtr>& scripts = site.model.findOutput(0, 1)->activatedScripts;
        scripts = {site.model.findScript(7)};
        if (fault.endsWith(QLatin1String("twice"))) {
            site.model.findScript(8)->name = QStringLiteral("Bell");
            scripts.append(site.model.findScript(8));
        }
    } else if (fault == QLatin1String("deaf script")) {
        site.filterByAddress({});
    } else if (fault == QLatin1String("ambiguous state")) {
        site.script->stateChannel = scriptRules::findLinkedState(
            site.model.stateChannels(), scriptRules::StateKind::Analog, texts::analogHigh(), false);
    } else {
        site.addOutput(7, QStringLiteral("Yard"), QStringLiteral("Lamp"));
        isRead = true;
    }
    const ReportSection look = section(isRead ? unitOf(site) : fileOf(site), QStringLiteral("Worth a look"));
    QCOMPARE(look.items.size(), 1);
    QCOMPARE(withBlanks(look.items.first()), text);
}

void tst_SiteReport::aSiteInOrderHasNothingWorthALook()
{
    ReportedSite site;
    site.addOutput(7, QStringLiteral("Yard"), QStringLiteral("Lamp"));
    site.filterByType(AnalogClass);
    site.script->stateChannel = scriptRules::findLinkedState(site.model.stateChannels(), scriptRules::StateKind::Analog,
                                                             texts::analogHigh(), false);
    QCOMPARE(section(fileOf(site), QStringLiteral("Worth a look")).items, QStringList());
    site.model.findGroup(7)->connected = true;
    QCOMPARE(section(unitOf(site), QStringLiteral("Worth a look")).items, QStringList());
}

void tst_SiteReport::theHtmlIsWellFormedAndHoldsAllTexts()
{
    ReportedSite site;
    site.filterByAddress({});
    const QString text = textOf(siteReport::html(fileOf(site)));
    const ReportContent content = siteReport::content(fileOf(site));
    QStringList texts{content.title, content.name};
    for (const ReportSection& part : content.sections) {
        texts += QStringList{part.heading} + part.table.titles + part.items + part.notes;
        for (const ReportRow& row : part.table.rows) {
            for (const ReportCell& cell : row.cells) {
                for (const ReportText& paragraph : cell) {
                    texts.append(paragraph.text);
                }
            }
        }
    }
    for (const QString& expected : qAsConst(texts)) {
        QVERIFY2(text.contains(withBlanks(expected)), qUtf8Printable(expected + QStringLiteral(" in ") + text));
    }
}

void tst_SiteReport::nothingThatAUserTypedIsMarkup_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("shown");

    const auto same = [](const char* title, const QString& name) { QTest::newRow(title) << name << name; };
    same("tag and quotes", QStringLiteral("<b>&\"'</b>"));
    same("entity", QStringLiteral("&amp; &lt; &#65;"));
    same("script", QStringLiteral("</style></title><script>alert(1)</script>"));
    same("comment and section", QStringLiteral("<!-- ]]> -->"));
    same("200 letters", QString(200, QLatin1Char('m')));
    same("Cyrillic", QString::fromUtf8("Сирена «Двор»"));
    QTest::newRow("line feed") << QStringLiteral("two\nlines") << QStringLiteral("two lines");
    QTest::newRow("control characters") << QStringLiteral("a\u0001\u001Bb") << QStringLiteral("a b");
    QTest::newRow("right to left") << QString::fromUtf8("צופר")
                                   << QChar(0x2068) + QString::fromUtf8("צופר") + QChar(0x2069);
}

void tst_SiteReport::nothingThatAUserTypedIsMarkup()
{
    QFETCH(QString, name);
    QFETCH(QString, shown);
    ReportedSite site;
    site.siren->name = name;
    site.script->name = name;
    site.model.setComment(name);
    site.model.addGroup(name, 4);
    const QString html = siteReport::html(fileOf(site));
    const QString text = textOf(html);
    // Terminal, output with its script, script with its sentence; and the comment, which may have several lines.
    QVERIFY2(text.count(shown) >= 5, qUtf8Printable(text));
    QVERIFY(!html.contains(QLatin1String("<script")));
    QCOMPARE(html.count(QLatin1String("<b>")), 3); // terminal, number and name of the script
}

void tst_SiteReport::theHtmlNeedsNothingBesideIt()
{
    const ReportedSite site;
    const QString html = siteReport::html(fileOf(site));
    QVERIFY(html.startsWith(QStringLiteral("<!DOCTYPE html>\n")));
    QVERIFY(html.contains(QStringLiteral("<meta charset=\"utf-8\"/>")));
    QVERIFY(html.contains(QStringLiteral("@page { size: A4; margin: 20mm")));
    for (const char* outside : {"<link", "<img", "<script", "src=", "href=", "url(", "@import", "http"}) {
        QVERIFY2(!html.contains(QLatin1String(outside)), outside);
    }
}

void tst_SiteReport::theSameSourceGivesTheSameHtml()
{
    const ReportedSite site;
    const ReportedSite same;
    QCOMPARE(siteReport::html(fileOf(site)), siteReport::html(fileOf(same)));
}

QTEST_GUILESS_MAIN(tst_SiteReport)
#include "tst_SiteReport.moc"
