#include "link/FormWaiting.h"

#include <QAbstractButton>
#include <QLabel>
#include <QProgressBar>
#include <QScreen>
#include <QtTest>

namespace
{

class PaintCounter : public QObject
{
    Q_OBJECT

public:
    explicit PaintCounter(QObject* watched)
    {
        watched->installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return QObject::eventFilter(watched, event);
    }

    int count = 0;
};

} // namespace

class tst_FormWaiting : public QObject
{
    Q_OBJECT

private slots:
    void isASmallModalWindowWithoutButtons();
    void showsTextAndRangeFromTheBeginning();
    void changesTextOrMaximumAlone();
    void stepsUpToTheMaximum();
    void anEmptyRangeTakesNoSteps();
    void stepsArePaintedTogetherAndLater();
    void aStepLeavesTheBarInThePicture();
    void canNotBeClosed();
    void goesOnceTheWindowBelowHasGone();
    void comesUpInTheMiddleOfTheScreen();
};

void tst_FormWaiting::isASmallModalWindowWithoutButtons()
{
    const FormWaiting form;
    QCOMPARE(form.windowTitle(), QStringLiteral("Execution of operation"));
    QCOMPARE(form.windowModality(), Qt::ApplicationModal);
    QCOMPARE(form.minimumSize(), QSize(339, 150));
    QCOMPARE(form.maximumSize(), QSize(339, 150));
    QVERIFY(form.windowFlags().testFlag(Qt::WindowTitleHint));
    QVERIFY(form.windowFlags().testFlag(Qt::MSWindowsFixedSizeDialogHint));
    QVERIFY((form.windowFlags() & (Qt::WindowCloseButtonHint | Qt::WindowMinMaxButtonsHint)) == 0);
    const auto* const label = form.findChild<QLabel*>(QStringLiteral("label"));
    QVERIFY(label != nullptr);
    QVERIFY(label->wordWrap());
    QCOMPARE(label->alignment(), Qt::AlignCenter);
    QVERIFY(form.findChild<QProgressBar*>(QStringLiteral("progressBar")) != nullptr);
    QVERIFY(form.findChildren<QAbstractButton*>().isEmpty());
    QVERIFY(!form.testAttribute(Qt::WA_QuitOnClose));
}

void tst_FormWaiting::showsTextAndRangeFromTheBeginning()
{
    FormWaiting form;
    const auto* const bar = form.findChild<QProgressBar*>();
    form.setOperation(QStringLiteral("first"), 0, 5);
    form.stepProgress();
    form.stepProgress();
    form.setOperation(QStringLiteral("second"), 0, 102);
    QCOMPARE(form.findChild<QLabel*>()->text(), QStringLiteral("second"));
    QCOMPARE(bar->minimum(), 0);
    QCOMPARE(bar->maximum(), 102);
    QCOMPARE(bar->value(), 0);
}

void tst_FormWaiting::changesTextOrMaximumAlone()
{
    FormWaiting form;
    const auto* const bar = form.findChild<QProgressBar*>();
    form.setOperation(QStringLiteral("text"), 0, 1);
    form.stepProgress();
    form.setProgressMaximum(105);
    QCOMPARE(bar->maximum(), 105);
    QCOMPARE(bar->value(), 1);
    QCOMPARE(form.findChild<QLabel*>()->text(), QStringLiteral("text"));
    form.setOperationText(QStringLiteral("another\ntext"));
    QCOMPARE(form.findChild<QLabel*>()->text(), QStringLiteral("another\ntext"));
    QCOMPARE(bar->maximum(), 105);
    QCOMPARE(bar->value(), 1);
}

void tst_FormWaiting::stepsUpToTheMaximum()
{
    FormWaiting form;
    const auto* const bar = form.findChild<QProgressBar*>();
    form.setOperation(QString(), 0, 2);
    for (const int expected : {1, 2, 2, 2}) {
        form.stepProgress();
        QCOMPARE(bar->value(), expected);
    }
}

void tst_FormWaiting::anEmptyRangeTakesNoSteps()
{
    FormWaiting form;
    const auto* const bar = form.findChild<QProgressBar*>();
    form.setOperation(QString(), 0, 0);
    form.stepProgress();
    QCOMPARE(bar->maximum(), 0);
    QCOMPARE(bar->value(), 0);
}

void tst_FormWaiting::stepsArePaintedTogetherAndLater()
{
    FormWaiting form;
    auto* const bar = form.findChild<QProgressBar*>();
    form.setOperation(QString(), 0, 102);
    form.show();
    QVERIFY(QTest::qWaitForWindowExposed(&form));
    const QImage atFirst = bar->grab().toImage();
    const PaintCounter paints(bar);
    for (int step = 0; step < 51; ++step) {
        form.stepProgress();
    }
    QCOMPARE(paints.count, 0);
    QTRY_VERIFY(paints.count > 0);
    QVERIFY(paints.count < 51);
    QVERIFY(bar->updatesEnabled());
    QVERIFY(bar->grab().toImage() != atFirst);
    // And once more, to the end.
    for (int step = 51; step < 102; ++step) {
        form.stepProgress();
    }
    const int soFar = paints.count;
    QTRY_VERIFY(paints.count > soFar);
    QCOMPARE(bar->value(), 102);
}

void tst_FormWaiting::aStepLeavesTheBarInThePicture()
{
    FormWaiting form;
    const auto* const bar = form.findChild<QProgressBar*>();
    form.setOperation(QString(), 0, 102);
    form.show();
    QVERIFY(QTest::qWaitForWindowExposed(&form));
    // Something else has the form painted, say a new text, while the value waits for its turn.
    form.stepProgress();
    const QImage picture = form.grab(bar->geometry()).toImage();
    QImage withoutBar = picture;
    withoutBar.fill(form.palette().color(QPalette::Window));
    QVERIFY(picture != withoutBar);
}

void tst_FormWaiting::canNotBeClosed()
{
    FormWaiting form;
    form.show();
    QVERIFY(!form.close());
    QVERIFY(form.isVisible());
    form.hide();
    QVERIFY(!form.isVisible());
}

void tst_FormWaiting::goesOnceTheWindowBelowHasGone()
{
    QWidget window;
    window.show();
    FormWaiting form(&window);
    form.show();
    QVERIFY(!form.close());
    window.close();
    QVERIFY(form.isVisible());
    QVERIFY(form.close());
    QVERIFY(!form.isVisible());
}

void tst_FormWaiting::comesUpInTheMiddleOfTheScreen()
{
    QWidget parent;
    parent.move(-500, -300);
    parent.show();
    FormWaiting form(&parent);
    form.show();
    const QPoint distance = form.geometry().center() - parent.screen()->availableGeometry().center();
    QVERIFY(distance.manhattanLength() <= 2);
}

QTEST_MAIN(tst_FormWaiting)
#include "tst_FormWaiting.moc"
