#include "FormRecorder.h"
#include "support/Eventually.h"
#include "support/threadedTestMain.h"
#include "texts/texts.h"

#include <QAccessible>
#include <QClipboard>
#include <QtTest>

#include <memory>

/// The coordinator form without a mouse, over two ports that can't be opened.
class tst_coordinatorKeys : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void returnInTheTableChoosesItsRow();
    void escapeClosesTheForm();
    void tabLeadsThroughTheControlsOfEachRowToTheButton();
    void returnPressesTheButtonThatHasTheFocus();
    void aKeyThatIsHeldDownPressesOnce();
    void theTableTakesTheFocusOfControlsThatHide();
    void ctrlCCopiesTheWholeRow();
    void everyCellHasANameForAScreenReader();

private:
    static void press(Qt::Key key)
    {
        QTest::keyClick(QApplication::focusWidget(), key);
    }

    std::unique_ptr<FormRecorder> recorder;
};

void tst_coordinatorKeys::init()
{
    recorder = std::make_unique<FormRecorder>(QStringList{portA, portB});
    recorder->form.show();
    recorder->form.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&recorder->form));
    EVENTUALLY(recorder->firmwareButton(0)->isVisible() && recorder->firmwareButton(1)->isVisible());
    recorder->take();
}

void tst_coordinatorKeys::cleanup()
{
    recorder.reset();
}

void tst_coordinatorKeys::returnInTheTableChoosesItsRow()
{
    QCOMPARE(QApplication::focusWidget(), recorder->table());
    recorder->table()->setCurrentCell(0, 0);
    press(Qt::Key_Down);
    QCOMPARE(recorder->table()->currentRow(), 1);
    press(Qt::Key_Return);
    QVERIFY(!recorder->form.isVisible());
    QVERIFY(recorder->has(QStringLiteral("status 2 ") + portB));
}

void tst_coordinatorKeys::escapeClosesTheForm()
{
    press(Qt::Key_Escape);
    QVERIFY(!recorder->form.isVisible());
    QCOMPARE(recorder->take(), QStringList(QStringLiteral("enable 0")));
}

void tst_coordinatorKeys::tabLeadsThroughTheControlsOfEachRowToTheButton()
{
    const QList<QWidget*> stops = {recorder->connectButton(0),  recorder->firmwareButton(0), recorder->connectButton(1),
                                   recorder->firmwareButton(1), recorder->select(),          recorder->table()};
    for (const QWidget* const stop : stops) {
        press(Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), stop);
    }
}

void tst_coordinatorKeys::returnPressesTheButtonThatHasTheFocus()
{
    recorder->connectButton(1)->setFocus();
    press(Qt::Key_Return);
    QVERIFY(recorder->has(QStringLiteral("open ") + portB));
    QVERIFY(recorder->form.isVisible());
}

void tst_coordinatorKeys::aKeyThatIsHeldDownPressesOnce()
{
    QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), true);
    QApplication::sendEvent(recorder->table(), &repeated);
    QVERIFY(recorder->form.isVisible());
}

void tst_coordinatorKeys::theTableTakesTheFocusOfControlsThatHide()
{
    recorder->connectButton(0)->setFocus();
    press(Qt::Key_Space);
    recorder->form.sl_setStatePort(recorder->transmitters.at(0), StateConnecting);
    QVERIFY(!recorder->showsControls(0));
    QCOMPARE(QApplication::focusWidget(), recorder->table());
}

void tst_coordinatorKeys::ctrlCCopiesTheWholeRow()
{
    recorder->table()->setCurrentCell(1, 2);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(),
             portB + QStringLiteral("\t-\t-\t-\t-\t") + recorder->state(1).simplified());
    QVERIFY(!recorder->state(1).isEmpty());
}

void tst_coordinatorKeys::everyCellHasANameForAScreenReader()
{
    QAccessibleTableInterface* const cells = QAccessible::queryAccessibleInterface(recorder->table())->tableInterface();
    QCOMPARE(cells->rowCount(), 2);
    for (int row = 0; row < cells->rowCount(); ++row) {
        for (int column = 0; column < cells->columnCount(); ++column) {
            QVERIFY(!cells->cellAt(row, column)->text(QAccessible::Name).isEmpty());
        }
    }
    QCOMPARE(cells->cellAt(1, 6)->text(QAccessible::Name), portB);
    QCOMPARE(recorder->table()->item(1, 6)->text(), QString());
}

HUBN_THREADED_TEST_MAIN(tst_coordinatorKeys)
#include "tst_coordinatorKeys.moc"
