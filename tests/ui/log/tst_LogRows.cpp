#include "LogFindTest.h"

#include <QClipboard>
#include <QDir>
#include <QFile>

/// What the user hands on of the log.
class tst_LogRows : public LogFindTest
{
    Q_OBJECT

private slots:
    void init()
    {
        begin();
        QApplication::clipboard()->clear();
    }
    void cleanup()
    {
        end();
    }

    void keysCopyTheSelectedRowWithHeadings();
    void nothingSelectedCopiesNothing();
    void menuCopiesTheRowAndAllRows();
    void menuSavesTheShownRows();
    void savingThatFailsIsTold();
    void savingThatIsCancelledWritesNothing();
    void savingSaysWhyAReadingLeavesItNothing();
    void menuOffersNoRowsWhereThereAreNone();

private:
    static QString headings(QChar separator)
    {
        const QString level =
            separator == QLatin1Char(',') ? QStringLiteral("\"Signal level, dB\"") : QStringLiteral("Signal level, dB");
        const QString noise =
            separator == QLatin1Char(',') ? QStringLiteral("\"Noise, dB\"") : QStringLiteral("Noise, dB");
        return QStringList{QStringLiteral("Number"),
                           QStringLiteral("Date"),
                           QStringLiteral("Time"),
                           level,
                           noise,
                           QStringLiteral("Event"),
                           QStringLiteral("Source of event"),
                           QStringLiteral("Details")}
            .join(separator);
    }
    void clickRow(int row)
    {
        QTest::mouseClick(window->view->viewport(), Qt::LeftButton, Qt::NoModifier, middleOfRow(row));
    }
    static QString clipboard()
    {
        return QApplication::clipboard()->text();
    }
};

void tst_LogRows::keysCopyTheSelectedRowWithHeadings()
{
    showLog(block(1, 5));
    clickRow(1);
    QTest::keyClick(window->view, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(clipboard(), headings(QLatin1Char('\t')) +
                              QStringLiteral("\n4\t25.09.2020\t14:37\t0\t4\tNorm\t%1\t\n").arg(cell(*window, 1, 16)));
    QVERIFY(cell(*window, 1, 16).contains(QStringLiteral("№7")));
}

void tst_LogRows::nothingSelectedCopiesNothing()
{
    showLog(block(1, 5));
    QApplication::clipboard()->setText(QStringLiteral("kept"));
    QTest::keyClick(window->view, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(clipboard(), QStringLiteral("kept"));
}

void tst_LogRows::menuCopiesTheRowAndAllRows()
{
    showLog(block(1, 5));
    clickRow(2);
    QVERIFY(chooseFromMenu(window->view->viewport(), middleOfRow(2), "actionCopyRow"));
    QCOMPARE(clipboard().count(QLatin1Char('\n')), 2);
    QVERIFY(clipboard().contains(QStringLiteral("\n3\t25.09.2020")));
    QVERIFY(chooseFromMenu(window->view->viewport(), middleOfRow(2), "actionCopyAllRows"));
    QCOMPARE(clipboard().count(QLatin1Char('\n')), 6);
    QVERIFY(clipboard().startsWith(headings(QLatin1Char('\t')) + QStringLiteral("\n5\t")));
}

void tst_LogRows::menuSavesTheShownRows()
{
    showLog(mixedRecords(24));
    openBar();
    QTest::keyClicks(get<QLineEdit>("lineEditFindAddresses"), QStringLiteral("2"));
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 3 of 24"), waitTime);
    window->dialogs.saveAnswers.append(path(QStringLiteral("rows.csv")));
    QVERIFY(chooseFromMenu(window->view->viewport(), middleOfRow(0), "actionSaveRows"));
    QCOMPARE(window->dialogs.questions.last(), QStringLiteral("Save shown rows|*.csv"));
    QCOMPARE(window->results.last(),
             QStringLiteral("Saving shown rows to file %1\nSUCCESSFUL COMPLETE").arg(path(QStringLiteral("rows.csv"))));
    QFile file(path(QStringLiteral("rows.csv")));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray content = file.readAll();
    QVERIFY(content.startsWith("\xEF\xBB\xBF"));
    const QStringList lines = QString::fromUtf8(content.mid(3)).split(QStringLiteral("\r\n"));
    QCOMPARE(lines.size(), 5);
    QCOMPARE(lines.first(), headings(QLatin1Char(',')));
    for (int row = 0; row < 3; ++row) {
        QVERIFY(lines.at(row + 1).startsWith(cell(*window, row, 0) + QLatin1Char(',') + cell(*window, row, 11)));
    }
    QVERIFY(lines.last().isEmpty());
}

void tst_LogRows::savingThatFailsIsTold()
{
    showLog(block(1, 5));
    const QString file = path(QStringLiteral("none/rows.csv"));
    window->dialogs.saveAnswers.append(file);
    QVERIFY(chooseFromMenu(window->view->viewport(), middleOfRow(0), "actionSaveRows"));
    QVERIFY(window->results.last().startsWith(QStringLiteral("ERROR saving shown rows to file %1\n").arg(file)));
}

void tst_LogRows::savingThatIsCancelledWritesNothing()
{
    showLog(block(1, 5));
    const int results = window->results.size();
    const QStringList files = QDir(directory->path()).entryList();
    QVERIFY(chooseFromMenu(window->view->viewport(), middleOfRow(0), "actionSaveRows"));
    QCOMPARE(window->results.size(), results);
    QCOMPARE(QDir(directory->path()).entryList(), files);
}

/// The question for the name is open as long as the user likes, and the unit is read meanwhile.
void tst_LogRows::savingSaysWhyAReadingLeavesItNothing()
{
    showLog(block(1, 5));
    const QString file = path(QStringLiteral("rows.csv"));
    window->dialogs.saveAnswers.append(file);
    window->dialogs.meanwhile = [this] { window->tab->readLog(); };
    QVERIFY(chooseFromMenu(window->view->viewport(), middleOfRow(0), "actionSaveRows"));
    QCOMPARE(
        window->results.last(),
        QStringLiteral("ERROR saving shown rows to file %1\nNo rows are shown while the log is being read").arg(file));
    QVERIFY(!QFile::exists(file));
}

void tst_LogRows::menuOffersNoRowsWhereThereAreNone()
{
    start();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    for (const char* const action : {"actionCopyRow", "actionCopyAllRows", "actionSaveRows"}) {
        QVERIFY(!chooseFromMenu(window->view->viewport(), QPoint(20, 20), action));
    }
    QVERIFY(chooseFromMenu(window->view->viewport(), QPoint(20, 20), "actionFind"));
}

QTEST_MAIN(tst_LogRows)

#include "tst_LogRows.moc"
