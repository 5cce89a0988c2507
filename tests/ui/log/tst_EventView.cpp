#include "LogFindTest.h"
#include "ui/log/EventView.h"
#include "widgets/Look.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>

/// An event of the log, opened by its user.
class tst_EventView : public LogFindTest
{
    Q_OBJECT

private slots:
    void init()
    {
        begin();
    }
    void cleanup()
    {
        end();
    }

    void doubleClickOpensTheEvent();
    void returnAndEnterOpenTheSelectedEvent();
    void keyHeldDownOpensOneWindow();
    void menuOpensTheSelectedEvent();
    void nothingSelectedOpensNothing();
    void escapeAndTheButtonCloseIt();
    void openedEventOutlivesItsLog();
    void namesOfFieldsStandBackOnADarkWindowToo();

private:
    EventView* opened() const
    {
        return get<EventView>("eventView");
    }
    QString value(int column) const
    {
        return opened()->findChild<QLabel*>(QStringLiteral("labelValue%1").arg(column))->text();
    }
    QString meaning(int column) const
    {
        return opened()->findChild<QLabel*>(QStringLiteral("labelMeaning%1").arg(column))->text();
    }
    void clickRow(int row)
    {
        QTest::mouseClick(window->view->viewport(), Qt::LeftButton, Qt::NoModifier, middleOfRow(row));
    }
};

void tst_EventView::doubleClickOpensTheEvent()
{
    showLog(block(1, 5));
    clickRow(1); // the press of the first click makes the row the current one
    QTest::mouseDClick(window->view->viewport(), Qt::LeftButton, Qt::NoModifier, middleOfRow(1));
    QVERIFY(opened() != nullptr && opened()->isVisible());
    QVERIFY(!opened()->isModal());
    QCOMPARE(opened()->windowTitle(), QStringLiteral("Event 4"));
    for (int column = 0; column < 18; ++column) {
        QCOMPARE(value(column), cell(*window, 1, column));
    }
    QCOMPARE(meaning(4), QStringLiteral("sensor"));
    QCOMPARE(meaning(10), QStringLiteral("state of a channel"));
}

void tst_EventView::returnAndEnterOpenTheSelectedEvent()
{
    showLog(block(1, 5));
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        clickRow(2);
        QTest::keyClick(window->view, key);
        QVERIFY(opened() != nullptr && opened()->isVisible());
        QCOMPARE(value(0), QStringLiteral("3"));
        opened()->close();
        QTRY_VERIFY(opened() == nullptr);
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
    }
}

void tst_EventView::keyHeldDownOpensOneWindow()
{
    showLog(block(1, 5));
    clickRow(2);
    QTest::simulateEvent(window->view, true, Qt::Key_Return, Qt::NoModifier, {}, false);
    QCOMPARE(window->findChildren<EventView*>().size(), 1);
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    window->view->setFocus();
    QTest::simulateEvent(window->view, true, Qt::Key_Return, Qt::NoModifier, {}, true);
    QCOMPARE(window->findChildren<EventView*>().size(), 1);
    QTest::simulateEvent(window->view, true, Qt::Key_Return, Qt::NoModifier, {}, false);
    QCOMPARE(window->findChildren<EventView*>().size(), 2);
}

void tst_EventView::menuOpensTheSelectedEvent()
{
    showLog(block(1, 5));
    clickRow(0);
    QVERIFY(chooseFromMenu(window->view->viewport(), middleOfRow(0), "actionOpenRow"));
    QVERIFY(opened() != nullptr && opened()->isVisible());
    QCOMPARE(value(0), QStringLiteral("5"));
}

void tst_EventView::nothingSelectedOpensNothing()
{
    showLog(block(1, 5));
    QTest::keyClick(window->view, Qt::Key_Return);
    QVERIFY(opened() == nullptr);
    QVERIFY(!chooseFromMenu(window->view->viewport(), middleOfRow(0), "actionOpenRow"));
}

void tst_EventView::escapeAndTheButtonCloseIt()
{
    showLog(block(1, 5));
    clickRow(0);
    QTest::keyClick(window->view, Qt::Key_Return);
    QVERIFY(opened() != nullptr);
    QTest::keyClick(opened(), Qt::Key_Escape);
    QTRY_VERIFY(opened() == nullptr);
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    QTest::keyClick(window->view, Qt::Key_Return);
    QVERIFY(opened() != nullptr);
    QTest::mouseClick(opened()->findChild<QPushButton*>(), Qt::LeftButton);
    QTRY_VERIFY(opened() == nullptr);
}

void tst_EventView::openedEventOutlivesItsLog()
{
    showLog(block(1, 5));
    clickRow(0);
    QTest::keyClick(window->view, Qt::Key_Return);
    const QString source = cell(*window, 0, 16);
    readLog(0);
    QCOMPARE(window->view->model()->rowCount(), 0);
    QCOMPARE(value(16), source);
}

void tst_EventView::namesOfFieldsStandBackOnADarkWindowToo()
{
    const QPalette before = QApplication::palette();
    QPalette dark = before;
    dark.setColor(QPalette::Window, QColor(40, 40, 40));
    dark.setColor(QPalette::WindowText, Qt::white);
    QApplication::setPalette(dark);
    showLog(block(1, 5));
    clickRow(0);
    QTest::keyClick(window->view, Qt::Key_Return);
    const QColor color =
        opened()->findChild<QLabel*>(QStringLiteral("labelName0"))->palette().color(QPalette::WindowText);
    QApplication::setPalette(before);
    QCOMPARE(color, look::fadedText(dark));
    QVERIFY(color.lightness() > 128);
}

QTEST_MAIN(tst_EventView)

#include "tst_EventView.moc"
