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
    void whatIsDraggedFromTheMaximisedStateStaysInTheHand();
    void whatWasPartlyOutsideStaysThereWhenTheScreenChanges();
    void whatTheScreenNoLongerHoldsIsBroughtBack();

private:
    static QRect screen()
    {
        return QGuiApplication::primaryScreen()->availableGeometry();
    }
    /// Shows a window and waits until it has its frame. On a busy machine Qt may miss that one for good; then the
    /// window is where one without a frame would be.
    static void show(QWidget& window)
    {
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window, 30000));
        eventually([&window] { return window.frameGeometry() != window.geometry(); }, 1000);
    }
    static void checkWithin(const QWidget& window)
    {
        if (!eventually([&window] { return screen().contains(window.frameGeometry()); })) {
            QCOMPARE(window.frameGeometry(), screen());
        }
    }
    /// A kept window that the user has moved beyond the edge, where it stays.
    static void showPartlyOutside(QWidget& window)
    {
        screenRoom::keep(&window);
        window.resize(400, 300);
        show(window);
        checkWithin(window);
        // The manager may take its time with the window's first place.
        const QPoint place(screen().right() - 100, 200);
        int stays = 0;
        EVENTUALLY((window.frameGeometry().right() > screen().right() + 100 ? ++stays > 100
                                                                            : (window.move(place), stays = 0, false)));
    }
};

void tst_ScreenRoom::windowThatIsTooLargeIsCut()
{
    QWidget window;
    screenRoom::keep(&window);
    window.resize(screen().size() + QSize(200, 100));
    show(window);
    checkWithin(window);
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
    show(window);
    checkWithin(window);
    QCOMPARE(window.size(), QSize(400, 300));
}

void tst_ScreenRoom::fixedSizeGivesWayAndComesBack()
{
    QWidget window;
    screenRoom::keep(&window);
    const QSize size(300, screen().height() + 200);
    window.setFixedSize(size);
    show(window);
    checkWithin(window);
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
    show(window);
    checkWithin(window);
    wide->setMinimumSize(100, 100);
    window.hide();
    show(window);
    QTRY_COMPARE(window.minimumWidth(), window.layout()->totalMinimumSize().width());
}

void tst_ScreenRoom::windowThatFitsStaysAsItIs()
{
    QWidget window;
    screenRoom::keep(&window);
    window.setGeometry(200, 150, 400, 300);
    show(window);
    checkWithin(window);
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
    showPartlyOutside(window);
}

/// As a manager does it: it restores the window below the mouse and moves it along.
void tst_ScreenRoom::whatIsDraggedFromTheMaximisedStateStaysInTheHand()
{
    QWidget window;
    screenRoom::keep(&window);
    window.setGeometry(200, 150, 400, 300);
    show(window);
    checkWithin(window);
    window.showMaximized();
    EVENTUALLY(window.isMaximized() && window.width() > screen().width() - 40);
    window.showNormal();
    int stays = 0;
    EVENTUALLY(!window.isMaximized() && window.size() == QSize(400, 300) && ++stays > 20);
    const QPoint place(screen().right() - 150, 200);
    QCursor::setPos(place + QPoint(100, 5));
    EVENTUALLY((QCursor::pos() - place - QPoint(100, 5)).manhattanLength() < 5);
    window.move(place);
    EVENTUALLY(window.frameGeometry().right() > screen().right() + 100);
    // What brought it back would do so with one of the next events.
    stays = 0;
    QVERIFY(eventually([&] { return window.frameGeometry().right() <= screen().right() || ++stays > 100; }));
    QVERIFY(window.frameGeometry().right() > screen().right() + 100);
}

void tst_ScreenRoom::whatWasPartlyOutsideStaysThereWhenTheScreenChanges()
{
    QWidget window;
    showPartlyOutside(window);
    QScreen* const shown = QGuiApplication::primaryScreen();
    const QRect where = window.geometry();
    emit shown->availableGeometryChanged(screen());
    emit shown->availableGeometryChanged(screen().adjusted(0, 0, 0, -50)); // a panel has come, below
    QCOMPARE(window.geometry(), where);
    emit shown->availableGeometryChanged(screen());
    QCOMPARE(window.geometry(), where);
}

void tst_ScreenRoom::whatTheScreenNoLongerHoldsIsBroughtBack()
{
    QWidget window;
    showPartlyOutside(window);
    // Nothing would be left of it on that.
    emit QGuiApplication::primaryScreen()->availableGeometryChanged(screen().adjusted(0, 0, -200, 0));
    checkWithin(window);
}

QTEST_MAIN(tst_ScreenRoom)
#include "tst_ScreenRoom.moc"
