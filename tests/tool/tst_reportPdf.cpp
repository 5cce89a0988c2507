#include "PdfText.h"
#include "ReportTest.h"
#include "tool/SiteReport.h"

#include <QRegularExpression>
#include <QtTest>

/// The report on A4.
class tst_reportPdf : public QObject
{
    Q_OBJECT

private slots:
    void itIsA4AndItsPagesAreCounted();
    void itHoldsWhatTheReportSays();
    void theSameSourceGivesTheSameFileWithItsOwnDate();
    void headingsAndRowsStayTogether();
    void outputsStandBelowTheirTerminalOnEachPage();
    void whatFitsOnNoPageGoesOnOnTheNext();
    void oddNamesArePrinted_data();
    void oddNamesArePrinted();

private:
    static QByteArray pdfOf(const ReportedSite& site);
};

QByteArray tst_reportPdf::pdfOf(const ReportedSite& site)
{
    return siteReport::pdf(
        {site.model, QStringLiteral("Mill Lane.cfg"), QDateTime(QDate(2026, 5, 4), QTime(13, 7)), std::nullopt});
}

void tst_reportPdf::itIsA4AndItsPagesAreCounted()
{
    ReportedSite site;
    site.model.setComment(QStringLiteral("line\n").repeated(120));
    const QByteArray document = pdfOf(site);
    QVERIFY(document.startsWith("%PDF-"));
    QVERIFY(document.contains("/MediaBox [0 0 595.000000 842.000000]"));
    const QStringList pages = pdfPages(document);
    QVERIFY2(pages.size() >= 3, "pdftotext, of poppler-utils, is needed");
    for (int i = 0; i < pages.size(); ++i) {
        const QString number = QStringLiteral("Page %1 of %2").arg(i + 1).arg(pages.size());
        QVERIFY2(pages.at(i).contains(number), qUtf8Printable(pages.at(i)));
        QVERIFY(pages.at(i).contains(QStringLiteral("4 May 2026, 13:07")));
        QCOMPARE(pages.at(i).contains(QString::fromUtf8("Site report – Mill Lane")), i > 0);
    }
}

void tst_reportPdf::itHoldsWhatTheReportSays()
{
    const ReportedSite site;
    const QString text = pdfPages(pdfOf(site)).join(QLatin1Char(' ')).simplified();
    for (const char* expected :
         {"Site report", "Mill Lane", "File Mill Lane.cfg", "Terminals", "Outputs", "Scripts", "The head unit",
          "1 Siren off stays 4 “Horn”", "“Alarm (fire)” on channel 1, output 1 “Siren” of the head unit is",
          "Not in use: 1–3, 5–32."}) {
        QVERIFY2(text.contains(QString::fromUtf8(expected)), qPrintable(text));
    }
}

void tst_reportPdf::theSameSourceGivesTheSameFileWithItsOwnDate()
{
    const ReportedSite site;
    const QByteArray document = pdfOf(site);
    QCOMPARE(pdfOf(site), document);
    const QDateTime moment(QDate(2026, 5, 4), QTime(13, 7));
    QVERIFY(document.contains(
        "/CreationDate (D:" + moment.toUTC().toString(QStringLiteral("yyyyMMddHHmmss")).toLatin1() + "Z)"));
}

void tst_reportPdf::headingsAndRowsStayTogether()
{
    ReportedSite site;
    site.addOutput(7, QStringLiteral("Yard"), QStringLiteral("Lamp"));
    const QRegularExpression headingAtEnd(
        QStringLiteral("\\n(Terminals|Outputs|Scripts|Address +Terminal.*|No. +Output.*|Terminal 7.*)\\s+4 May 2026,"));
    const QRegularExpression sentence(QStringLiteral("4 +Horn\\s+When[^.]*for 5 minutes\\."));
    for (int lineCount = 0; lineCount < 60; lineCount += 2) {
        site.model.setComment(QStringLiteral("line\n").repeated(lineCount));
        const QStringList pages = pdfPages(pdfOf(site));
        QVERIFY(!pages.isEmpty());
        int sentences = 0;
        for (const QString& page : pages) {
            QVERIFY2(!headingAtEnd.match(page).hasMatch(), qUtf8Printable(page));
            sentences += sentence.match(page).hasMatch() ? 1 : 0;
        }
        QCOMPARE(sentences, 1);
    }
}

void tst_reportPdf::outputsStandBelowTheirTerminalOnEachPage()
{
    // More than a page holds, as a file may have them.
    ReportedSite site;
    for (int i = 0; i < 120; ++i) {
        site.addOutput(7, QStringLiteral("Yard"), QStringLiteral("Lamp %1x").arg(i));
    }
    int lamps = 0;
    const QStringList pages = pdfPages(pdfOf(site));
    for (const QString& page : pages) {
        const int first = page.indexOf(QRegularExpression(QStringLiteral("Lamp \\d+x  ")));
        if (first >= 0) {
            const int title = page.indexOf(QString::fromUtf8("Terminal 7 “Yard”"));
            QVERIFY2(title >= 0 && title < first, qUtf8Printable(page));
            QVERIFY2(page.contains(QRegularExpression(QStringLiteral("No. +Output"))), qUtf8Printable(page));
            lamps += page.count(QRegularExpression(QStringLiteral("\\n\\S* +Lamp \\d+x +(off|unknown)")));
        }
    }
    QCOMPARE(lamps, 120);
}

void tst_reportPdf::whatFitsOnNoPageGoesOnOnTheNext()
{
    ReportedSite site;
    for (int i = 0; i < 8; ++i) {
        site.addOutput(7, QStringLiteral("Yard"), QString(900, QLatin1Char('W')) + QStringLiteral("end%1").arg(i));
    }
    const QStringList pages = pdfPages(pdfOf(site));
    QVERIFY2(pages.size() > 4, qPrintable(QString::number(pages.size())));
    const QString text = pages.join(QString()).remove(QRegularExpression(QStringLiteral("\\s")));
    for (int i = 0; i < 8; ++i) {
        QCOMPARE(text.count(QStringLiteral("end%1").arg(i)), 2); // in the table and in the sentence
    }
}

void tst_reportPdf::oddNamesArePrinted_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("markup") << QStringLiteral("<b>&\"'</b>");
    QTest::newRow("200 letters") << QString(200, QLatin1Char('W'));
    QTest::newRow("Cyrillic") << QString::fromUtf8("Сирена");
    QTest::newRow("right to left") << QString::fromUtf8("צופר");
}

void tst_reportPdf::oddNamesArePrinted()
{
    QFETCH(QString, name);
    ReportedSite site;
    site.script->name = name;
    const QString text =
        pdfPages(pdfOf(site)).join(QString()).remove(QRegularExpression(QStringLiteral("[\\s\\x{2000}-\\x{206F}]")));
    const QString printed = QString(name).remove(QLatin1Char(' '));
    QVERIFY2(text.contains(printed), qUtf8Printable(text));
}

QTEST_MAIN(tst_reportPdf)
#include "tst_reportPdf.moc"
