#include "widgets/FocusFrame.h"

#include <QComboBox>
#include <QLineEdit>
#include <QSplitter>
#include <QWindow>
#include <QtTest>

#include <memory>

/// A window with a plain field and a combo box in a style sheet.
class tst_FocusFrame : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void beforeTabIsPressedThereIsNone();
    void onceTabWasPressedTheWindowComesBackWithTheFrame();
    void theControlWithTheFocusIsFramed();
    void aCombosStyleSheetDoesNotHideTheFrame();
    void theFrameFollowsItsControl();
    void theFrameGoesWithAControlThatHides();
    void aClickBringsNoFrame();
    void theFrameOutlivesNeitherItsControlNorItsParent();
    void aPaneOfASplitterHasNone();

private:
    QWidget* line() const
    {
        return window->findChild<QWidget*>(QStringLiteral("focusFrame"));
    }
    bool isFramed(const QWidget* control) const
    {
        return line() != nullptr && line()->isVisible() && line()->parentWidget() == control->parentWidget() &&
               line()->geometry().contains(control->geometry());
    }

    std::unique_ptr<FocusFrame> frame;
    std::unique_ptr<QWidget> window;
    QWidget* page = nullptr;
    QLineEdit* edit = nullptr;
    QComboBox* combo = nullptr;
    bool isShownFromTheStart = false;
};

void tst_FocusFrame::init()
{
    frame = std::make_unique<FocusFrame>();
    window = std::make_unique<QWidget>();
    window->resize(300, 200);
    page = new QWidget(window.get());
    page->setGeometry(0, 0, 300, 200);
    edit = new QLineEdit(page);
    edit->setGeometry(20, 20, 120, 24);
    combo = new QComboBox(page);
    combo->setGeometry(20, 80, 120, 24);
    combo->setStyleSheet(QStringLiteral("QComboBox{combobox-popup: 0; background-color: red;}"));
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    edit->setFocus();
    combo->setFocus();
    isShownFromTheStart = line() != nullptr;
    QTest::keyClick(combo, Qt::Key_Tab);
    edit->setFocus();
}

void tst_FocusFrame::cleanup()
{
    window.reset();
    frame.reset();
}

void tst_FocusFrame::beforeTabIsPressedThereIsNone()
{
    QVERIFY(!isShownFromTheStart);
    QVERIFY(isFramed(edit));
}

void tst_FocusFrame::onceTabWasPressedTheWindowComesBackWithTheFrame()
{
    QTest::keyClick(edit, Qt::Key_Tab);
    QApplication::setActiveWindow(nullptr);
    QVERIFY(!line()->isVisible());
    QApplication::setActiveWindow(window.get());
    QVERIFY(isFramed(combo));
}

void tst_FocusFrame::theControlWithTheFocusIsFramed()
{
    edit->setFocus();
    QVERIFY(isFramed(edit));
    QTest::keyClick(edit, Qt::Key_Tab);
    QVERIFY(isFramed(combo));
    combo->clearFocus();
    QVERIFY(!line()->isVisible());
}

void tst_FocusFrame::aCombosStyleSheetDoesNotHideTheFrame()
{
    edit->setFocus();
    const QPoint above(combo->geometry().center().x(), combo->geometry().top() - 1);
    const QRgb before = window->grab().toImage().pixel(above);
    combo->setFocus(Qt::TabFocusReason);
    const QImage after = window->grab().toImage();
    QVERIFY(qGray(before) - qGray(after.pixel(above)) > 100);
    // The control itself stays free.
    QVERIFY(QColor(after.pixel(combo->geometry().topLeft() + QPoint(8, 12))).red() > 200);
}

void tst_FocusFrame::theFrameFollowsItsControl()
{
    edit->setFocus();
    edit->setGeometry(100, 120, 60, 40);
    QVERIFY(isFramed(edit));
    QCOMPARE(line()->size(), QSize(60 + 2 * FocusFrame::width, 40 + 2 * FocusFrame::width));
    edit->move(0, 0); // no room beside it
    QCOMPARE(line()->pos(), QPoint(0, 0));
}

void tst_FocusFrame::theFrameGoesWithAControlThatHides()
{
    edit->setFocus();
    page->setEnabled(true);
    edit->hide();
    QVERIFY(isFramed(combo)); // where Qt gives the focus
    combo->hide();
    QVERIFY(!line()->isVisible());
}

void tst_FocusFrame::aClickBringsNoFrame()
{
    combo->setFocus();
    QVERIFY(isFramed(combo));
    QTest::mousePress(window->windowHandle(), Qt::LeftButton, {}, edit->geometry().center());
    QTRY_VERIFY(edit->hasFocus());
    QVERIFY(!line()->isVisible());
    QTest::mouseRelease(window->windowHandle(), Qt::LeftButton, {}, edit->geometry().center());
    QCoreApplication::processEvents();
    QVERIFY(!line()->isVisible());
}

void tst_FocusFrame::theFrameOutlivesNeitherItsControlNorItsParent()
{
    QTest::keyClick(edit, Qt::Key_Tab);
    edit->setFocus();
    delete edit;
    QVERIFY(line() == nullptr || !line()->isVisible() || isFramed(combo));
    combo->setFocus();
    delete page;
    QVERIFY(line() == nullptr);
    auto* const other = new QLineEdit(window.get());
    other->show();
    other->setFocus();
    QVERIFY(isFramed(other));
}

void tst_FocusFrame::aPaneOfASplitterHasNone()
{
    auto* const splitter = new QSplitter(window.get());
    auto* const pane = new QLineEdit(splitter);
    splitter->show();
    pane->setFocus();
    QCOMPARE(splitter->count(), 1);
    QVERIFY(line() == nullptr || !line()->isVisible());
}

QTEST_MAIN(tst_FocusFrame)

#include "tst_FocusFrame.moc"
