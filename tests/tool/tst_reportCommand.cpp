#include "PdfText.h"
#include "ReportTest.h"
#include "ToolRun.h"

#include <QDir>
#include <QFile>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

/// The command "report".
class tst_reportCommand : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void htmlGoesToTheStandardOutput();
    void aFileIsWrittenInTheFormatOfItsSuffix_data();
    void aFileIsWrittenInTheFormatOfItsSuffix();
    void jsonNamesWhatWasMade();
    void anyOtherSuffixIsBadInput_data();
    void anyOtherSuffixIsBadInput();
    void anExistingFileStaysUnlessForced();
    void aFileThatCantBeWrittenLeavesNothing();
    void aConfigurationThatCantBeReadIsBadInput();
    void wrongLinesAreNotedAndCounted();
    void onlyCommandsThatPaintGetFonts_data();
    void onlyCommandsThatPaintGetFonts();

private:
    static QByteArray contentOf(const QString& path);
    static void overwrite(const QString& path, const QByteArray& content);
    QString at(const QString& name) const;

    std::unique_ptr<QTemporaryDir> directory;
};

void tst_reportCommand::init()
{
    directory = std::make_unique<QTemporaryDir>();
    QVERIFY(directory->isValid());
    ReportedSite site;
    QCOMPARE(site.model.saveToFile(at(QStringLiteral("site.cfg"))), int(RelayInfo::FileOk));
}

void tst_reportCommand::cleanup()
{
    directory.reset();
}

QString tst_reportCommand::at(const QString& name) const
{
    return directory->filePath(name);
}

QByteArray tst_reportCommand::contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void tst_reportCommand::overwrite(const QString& path, const QByteArray& content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
}

void tst_reportCommand::htmlGoesToTheStandardOutput()
{
    const ToolRun run({QStringLiteral("report"), at(QStringLiteral("site.cfg"))});
    QCOMPARE(run.exitCode, ExitCode::Done);
    QCOMPARE(run.errors, QString());
    QVERIFY(run.results.startsWith(QStringLiteral("<!DOCTYPE html>")));
    QVERIFY(run.results.endsWith(QStringLiteral("</html>\n")));
    QVERIFY(run.results.contains(QStringLiteral("Horn")));
    QCOMPARE(QDir(directory->path()).entryList(QDir::Files), QStringList{QStringLiteral("site.cfg")});
}

void tst_reportCommand::aFileIsWrittenInTheFormatOfItsSuffix_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("begin");

    QTest::newRow("html") << QStringLiteral("a.html") << QByteArray("<!DOCTYPE html>");
    QTest::newRow("htm") << QStringLiteral("a.b.HTM") << QByteArray("<!DOCTYPE html>");
    QTest::newRow("pdf") << QStringLiteral("a.pdf") << QByteArray("%PDF-");
    QTest::newRow("PDF") << QStringLiteral("a.PDF") << QByteArray("%PDF-");
}

void tst_reportCommand::aFileIsWrittenInTheFormatOfItsSuffix()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, begin);
    const ToolRun run({QStringLiteral("report"), at(QStringLiteral("site.cfg")), QStringLiteral("-o"), at(file)});
    QCOMPARE(run.exitCode, ExitCode::Done);
    QCOMPARE(run.results, QString());
    QVERIFY2(run.errors.contains(at(file)), qUtf8Printable(run.errors));
    QVERIFY(contentOf(at(file)).startsWith(begin));
    if (begin.startsWith('%')) {
        const QString text = pdfPages(contentOf(at(file))).join(QString());
        QVERIFY2(text.contains(QStringLiteral("site.cfg")) && text.contains(QStringLiteral("Horn")),
                 qUtf8Printable(text));
    }
}

void tst_reportCommand::jsonNamesWhatWasMade()
{
    const ToolRun shown({QStringLiteral("report"), QStringLiteral("--json"), at(QStringLiteral("site.cfg"))});
    QVERIFY(shown.json().object().value(QStringLiteral("html")).toString().startsWith(QStringLiteral("<!DOCTYPE")));
    const QString file = at(QStringLiteral("a.pdf"));
    const ToolRun saved({QStringLiteral("report"), QStringLiteral("--json"), at(QStringLiteral("site.cfg")),
                         QStringLiteral("--output"), file});
    QCOMPARE(saved.exitCode, ExitCode::Done);
    QCOMPARE(saved.errors, QString());
    QCOMPARE(saved.json().object().value(QStringLiteral("file")).toString(), file);
}

void tst_reportCommand::anyOtherSuffixIsBadInput_data()
{
    QTest::addColumn<QString>("file");

    QTest::newRow("text") << QStringLiteral("a.txt");
    QTest::newRow("none") << QStringLiteral("pdf");
    QTest::newRow("another behind it") << QStringLiteral("a.pdf.gz");
    QTest::newRow("empty") << QString();
}

void tst_reportCommand::anyOtherSuffixIsBadInput()
{
    QFETCH(QString, file);
    const QString path = file.isEmpty() ? file : at(file);
    const ToolRun run({QStringLiteral("report"), at(QStringLiteral("site.cfg")), QStringLiteral("-o"), path});
    QCOMPARE(run.exitCode, ExitCode::BadInput);
    QVERIFY2(run.errors.contains(QStringLiteral(".pdf")), qUtf8Printable(run.errors));
    QCOMPARE(QDir(directory->path()).entryList(QDir::Files), QStringList{QStringLiteral("site.cfg")});
}

void tst_reportCommand::anExistingFileStaysUnlessForced()
{
    const QString file = at(QStringLiteral("a.html"));
    overwrite(file, "mine");
    const QStringList line{QStringLiteral("report"), at(QStringLiteral("site.cfg")), QStringLiteral("-o"), file};
    const ToolRun refused(line);
    QCOMPARE(refused.exitCode, ExitCode::Refused);
    QVERIFY2(refused.errors.contains(QStringLiteral("--force")), qUtf8Printable(refused.errors));
    QCOMPARE(contentOf(file), QByteArray("mine"));
    QCOMPARE(ToolRun(line + QStringList{QStringLiteral("--force")}).exitCode, ExitCode::Done);
    QVERIFY(contentOf(file).startsWith("<!DOCTYPE html>"));
}

void tst_reportCommand::aFileThatCantBeWrittenLeavesNothing()
{
    const QString file = at(QStringLiteral("no-folder/a.html"));
    const ToolRun run({QStringLiteral("report"), at(QStringLiteral("site.cfg")), QStringLiteral("-o"), file});
    QCOMPARE(run.exitCode, ExitCode::Refused);
    QVERIFY2(run.errors.contains(file), qUtf8Printable(run.errors));
    QCOMPARE(QDir(directory->path()).entryList(QDir::Files), QStringList{QStringLiteral("site.cfg")});
}

void tst_reportCommand::aConfigurationThatCantBeReadIsBadInput()
{
    const QString file = at(QStringLiteral("a.html"));
    const ToolRun run({QStringLiteral("report"), at(QStringLiteral("none.cfg")), QStringLiteral("-o"), file});
    QCOMPARE(run.exitCode, ExitCode::BadInput);
    QVERIFY2(run.errors.contains(QStringLiteral("none.cfg")), qUtf8Printable(run.errors));
    QVERIFY(!QFile::exists(file));
}

void tst_reportCommand::wrongLinesAreNotedAndCounted()
{
    const QString file = at(QStringLiteral("site.cfg"));
    overwrite(file, contentOf(file) + "Script[99].Mode=1\r\n");
    const ToolRun run({QStringLiteral("report"), file});
    QCOMPARE(run.exitCode, ExitCode::WithErrors);
    QVERIFY2(run.errors.contains(QStringLiteral("1 fault")), qUtf8Printable(run.errors));
    QVERIFY(run.results.contains(QStringLiteral("Horn")));
}

void tst_reportCommand::onlyCommandsThatPaintGetFonts_data()
{
    QTest::addColumn<QStringList>("line");
    QTest::addColumn<bool>("expected");

    QTest::newRow("report") << QStringList{QStringLiteral("report"), QStringLiteral("a.cfg")} << true;
    QTest::newRow("options in front") << QStringList{QStringLiteral("--port"), QStringLiteral("check"),
                                                     QStringLiteral("--quiet"), QStringLiteral("report")}
                                      << true;
    QTest::newRow("another command") << QStringList{QStringLiteral("check"), QStringLiteral("report")} << false;
    QTest::newRow("no command") << QStringList{QStringLiteral("--help")} << false;
    QTest::newRow("unknown") << QStringList{QStringLiteral("reports")} << false;
}

void tst_reportCommand::onlyCommandsThatPaintGetFonts()
{
    QFETCH(QStringList, line);
    QFETCH(bool, expected);
    QCOMPARE(paints(QStringList{QStringLiteral("hubn-tool")} + line), expected);
}

QTEST_MAIN(tst_reportCommand)
#include "tst_reportCommand.moc"
