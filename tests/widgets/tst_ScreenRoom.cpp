#include "support/Eventually.h"
#include "widgets/ScreenRoom.h"

#include <QScreen>
#include <QVBoxLayout>
#include <QWidget>
#include <QtTest>

/// Windows on a real display, with a window manager that gives them frames.
class tst_ScreenRoom : public QObject
{
    Q_OBJECT

private slots:
    void windowThatIsTooLargeIsCut();
    void windowOutsideTheScreenIsBroughtBack_data();
    void windowOutsideTheScreenIsBroughtBack();
    void fixedSizeGivesWayAndComesBack();
    void leastSizeOfALayoutGivesWay();
    void windowThatFitsStaysAsItIs();
    void placingIsWithinTheScreen();
    void whatTheUserMovesStaysThere();

private:
    static QRect screen()
    {
        return QGuiApplication::primaryScreen()->availableGeometry();
    }
    static bool isFramedWithin(const QWidget& window)
    {
        return window.frameGeometry() != window.geometry() && screen().contains(window.frameGeometry());
    }
};

void tst_ScreenRoom::windowThatIsTooLargeIsCut()
{
    QWidget window;
    screenRoom::keep(&window);
    window.resize(screen().size() + QSize(200, 100));
    window.show();
    EVENTUALLY(isFramedWithin(window));
    QVERIFY(window.width() > screen().width() - 40);
    QVERIFY(window.height() > screen().height() - 80);
}

void tst_ScreenRoom::windowOutsideTheScreenIsBroughtBack_data()
{
    QTest::addColumn<QPoint>("place");
    QTest::newRow("above") << QPoint(100, -50);
    QTest::newRow("left") << QPoint(-300, 100);
    QTest::newRow("below and right") << QPoint(5000, 5000);
}

void tst_ScreenRoom::windowOutsideTheScreenIsBroughtBack()
{
    QFETCH(const QPoint, place);
    QWidget window;
    screenRoom::keep(&window);
    window.setGeometry(QRect(place, QSize(400, 300)));
    window.show();
    EVENTUALLY(isFramedWithin(window));
    QCOMPARE(window.size(), QSize(400, 300));
}

void tst_ScreenRoom::fixedSizeGivesWayAndComesBack()
{
    QWidget window;
    screenRoom::keep(&window);
    const QSize size(300, screen().height() + 200);
    window.setFixedSize(size);
    window.show();
    EVENTUALLY(isFramedWithin(window));
    QCOMPARE(window.width(), 300);
    QCOMPARE(window.minimumSize(), window.maximumSize());
}

void tst_ScreenRoom::leastSizeOfALayoutGivesWay()
{
    QWidget window;
    screenRoom::keep(&window);
    auto* const wide = new QWidget(&window);
    wide->setMinimumSize(screen().width() + 300, 100);
    (new QVBoxLayout(&window))->addWidget(wide);
    window.show();
    EVENTUALLY(isFramedWithin(window));
    wide->setMinimumSize(100, 100);
    window.hide();
    window.show();
    QTRY_COMPARE(window.minimumWidth(), window.layout()->totalMinimumSize().width());
}

void tst_ScreenRoom::windowThatFitsStaysAsItIs()
{
    QWidget window;
    screenRoom::keep(&window);
    window.setGeometry(200, 150, 400, 300);
    window.show();
    EVENTUALLY(isFramedWithin(window));
    QCOMPARE(window.geometry(), QRect(200, 150, 400, 300));
}

void tst_ScreenRoom::placingIsWithinTheScreen()
{
    QWidget window;
    screenRoom::centre(&window, QSize(100, 100), screen());
    QVERIFY((window.geometry().center() - screen().center()).manhattanLength() <= 2);
    screenRoom::centre(&window, screen().size() * 2, screen());
    QVERIFY(screen().contains(window.geometry()));
    QVERIFY(window.geometry().top() > screen().top()); // where the title will be
    screenRoom::centre(&window, QSize(100, 100), QRect(-1000, -1000, 10, 10));
    QVERIFY(screen().contains(window.geometry()));
}

void tst_ScreenRoom::whatTheUserMovesStaysThere()
{
    QWidget window;
    screenRoom::keep(&window);
    window.resize(400, 300);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    EVENTUALLY(isFramedWithin(window));
    const QPoint place(screen().right() - 100, 200);
    window.move(place);
    EVENTUALLY(window.frameGeometry().right() > screen().right() + 100);
}

QTEST_MAIN(tst_ScreenRoom)
#include "tst_ScreenRoom.moc"
