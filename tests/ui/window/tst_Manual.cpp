#include "texts/texts.h"
#include "ui/window/Manual.h"
#include "ui/window/WindowTest.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

/// F1: which file is the manual, and what the window does with it. What would open it is this test.
class tst_Manual : public WindowTest
{
    Q_OBJECT

public slots:
    /// What the desktop is asked to open.
    void open(const QUrl& url)
    {
        opened.append(url);
    }

private slots:
    void init();
    void cleanup();

    void theInstalledOneComesBeforeThatOfTheSources();
    void theFirstFileThatIsThereIsTaken();
    void inTheTreeThatItWasBuiltFromItIsFound();
    void f1OpensIt();
    void f1OpensItInTheFormThatComesFirst();
    void withoutItTheUserReadsWhereItWasLookedFor();

private:
    QString file(const QString& name) const
    {
        return directory->filePath(name);
    }
    void make(const QString& name) const
    {
        QFile made(file(name));
        QVERIFY(made.open(QIODevice::WriteOnly));
    }

    static void press(Qt::Key key, QWidget* where)
    {
        where->activateWindow();
        QTRY_COMPARE(QApplication::activeWindow(), where); // a window counts as active while one over it is
        QTest::keyClick(where, key);
    }

    std::unique_ptr<QTemporaryDir> directory;
    QList<QUrl> opened;
};

void tst_Manual::init()
{
    directory = std::make_unique<QTemporaryDir>();
    opened.clear();
    QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "open");
    begin({file(QStringLiteral("manual.html")), file(QStringLiteral("manual.md"))});
}

void tst_Manual::cleanup()
{
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
    window.reset();
}

void tst_Manual::theInstalledOneComesBeforeThatOfTheSources()
{
    const QStringList places = manual::places(QStringLiteral("/somewhere/bin"));
    QCOMPARE(places.size(), 2);
    QCOMPARE(places.first(), QStringLiteral("/somewhere/share/doc/hubn-manager/manual.html"));
    QVERIFY(places.last().endsWith(QLatin1String("docs/manual.md")));
}

void tst_Manual::theFirstFileThatIsThereIsTaken()
{
    const QStringList files{file(QStringLiteral("a")), file(QStringLiteral("b")), file(QStringLiteral("c"))};
    QCOMPARE(manual::firstOf(files), QString());
    make(QStringLiteral("c"));
    QCOMPARE(manual::firstOf(files), files.at(2));
    make(QStringLiteral("b"));
    QCOMPARE(manual::firstOf(files), files.at(1));
    // A directory of that name is none.
    QVERIFY(QDir().mkpath(files.at(0)));
    QCOMPARE(manual::firstOf(files), files.at(1));
}

void tst_Manual::inTheTreeThatItWasBuiltFromItIsFound()
{
    const QString found = manual::firstOf(manual::places(QCoreApplication::applicationDirPath()));
    QVERIFY2(found.endsWith(QLatin1String("docs/manual.md")), qPrintable(found));
}

void tst_Manual::f1OpensIt()
{
    make(QStringLiteral("manual.md"));
    form()->hide();
    press(Qt::Key_F1, window.get());
    QCOMPARE(opened, {QUrl::fromLocalFile(file(QStringLiteral("manual.md")))});
    make(QStringLiteral("manual.html"));
    press(Qt::Key_F1, window.get());
    QCOMPARE(opened.last(), QUrl::fromLocalFile(file(QStringLiteral("manual.html"))));
    QVERIFY(dialogs->boxes.isEmpty());
}

void tst_Manual::f1OpensItInTheFormThatComesFirst()
{
    make(QStringLiteral("manual.html"));
    QVERIFY(form()->isVisible());
    press(Qt::Key_F1, form());
    QCOMPARE(opened, {QUrl::fromLocalFile(file(QStringLiteral("manual.html")))});
    QVERIFY(dialogs->boxes.isEmpty());
}

void tst_Manual::withoutItTheUserReadsWhereItWasLookedFor()
{
    press(Qt::Key_F1, form());
    QVERIFY(opened.isEmpty());
    QCOMPARE(dialogs->boxes.size(), 1);
    QCOMPARE(dialogs->boxes.first().title, texts::manualTitle());
    QVERIFY(dialogs->boxes.first().text.contains(file(QStringLiteral("manual.html"))));
    QVERIFY(dialogs->boxes.first().text.contains(file(QStringLiteral("manual.md"))));
}

QTEST_MAIN(tst_Manual)
#include "tst_Manual.moc"
