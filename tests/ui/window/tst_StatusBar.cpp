#include "ui/window/StatusBar.h"
#include "widgets/Look.h"

#include <QApplication>
#include <QFrame>
#include <QHelpEvent>
#include <QLabel>
#include <QMainWindow>
#include <QStatusBar>
#include <QToolTip>
#include <QtTest>

namespace
{

QImage lamp(const QString& name)
{
    return QPixmap(QStringLiteral(":/icons/icons/") + name).toImage();
}

} // namespace

class tst_StatusBar : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QApplication::setFont(look::applicationFont());
    }
    void init();
    void cleanup();

    void beginsWithoutACoordinatorAndWithoutPlaceholders();
    void sectionsStandInOrderWithTheirWidthsAndFrames();
    void labelsOfASectionStandWhereTheyShould();
    void lampFollowsTheStateOfThePort_data();
    void lampFollowsTheStateOfThePort();
    void valuesOfThePortAreBold();
    void nameOfThePortIsWholeInItsSection_data();
    void nameOfThePortIsWholeInItsSection();
    void longNameOfAPortIsElidedInTheMiddle();
    void coordinatorIsShownByItsAddress_data();
    void coordinatorIsShownByItsAddress();
    void timeAndResultAreShownAsTheyAre();
    void aLongResultWraps();
    void theLinesOfAResultFollowTheWidth();
    void theLinesOfAResultFollowTheFont();
    void nameWithoutAPlaceToBreakIsElidedInTheMiddle();
    void resultGivesWayWhereTheScreenHasNoRoom();

private:
    QLabel* label(const char* name) const
    {
        return window->findChild<QLabel*>(QLatin1String(name));
    }
    QImage pictureOfName() const
    {
        return section("sectionPort")->grab(label("labelPortName")->geometry()).toImage();
    }
    void showPort(const QString& name)
    {
        status->showPort(1, name, QStringLiteral("57600"), 1, QStringLiteral("2"), QStringLiteral("1.02"));
        QCoreApplication::processEvents();
    }
    QFrame* section(const char* name) const
    {
        return window->findChild<QFrame*>(QLatin1String(name));
    }

    std::unique_ptr<QMainWindow> window;
    std::unique_ptr<StatusBar> status;
};

void tst_StatusBar::init()
{
    window = std::make_unique<QMainWindow>();
    status = std::make_unique<StatusBar>(window->statusBar());
    window->resize(1300, 300);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void tst_StatusBar::cleanup()
{
    status.reset();
    window.reset();
}

void tst_StatusBar::beginsWithoutACoordinatorAndWithoutPlaceholders()
{
    QCOMPARE(label("labelIconPort")->pixmap(Qt::ReturnByValue).toImage(), lamp(QStringLiteral("red.png")));
    QCOMPARE(label("labelCoordinator")->text(), QStringLiteral("<b>Coordinator not connected</b>"));
    for (const char* name : {"labelPortName", "labelBaudrate", "labelSerial", "labelVersion", "labelDeviceTime"}) {
        QCOMPARE(label(name)->text(), QStringLiteral("-"));
    }
    QCOMPARE(label("labelResult")->text(), QString());
}

void tst_StatusBar::sectionsStandInOrderWithTheirWidthsAndFrames()
{
    QFrame* const port = section("sectionPort");
    QFrame* const coordinator = section("sectionCoordinator");
    QFrame* const time = section("sectionTime");
    QFrame* const result = section("sectionResult");
    QCOMPARE(port->width(), 90);
    QCOMPARE(coordinator->width(), 250);
    QVERIFY(result->width() >= 500);
    QVERIFY(port->x() < coordinator->x());
    QVERIFY(coordinator->x() < time->x());
    QVERIFY(time->x() < result->x());
    for (const QFrame* frame : {port, coordinator, time, result}) {
        QCOMPARE(frame->styleSheet(), QStringLiteral("QFrame{border: 1px solid black;} QLabel{border: 0px;}"));
    }

    const int timeWidth = time->width();
    const int resultWidth = result->width();
    window->resize(1500, 300);
    QTRY_COMPARE(result->width(), resultWidth + 200);
    QCOMPARE(time->width(), timeWidth);
    QCOMPARE(result->minimumWidth(), 500);
}

void tst_StatusBar::labelsOfASectionStandWhereTheyShould()
{
    QVERIFY(label("labelIconPort")->width() <= 30);
    QVERIFY(label("labelIconPort")->height() >= 30);
    QVERIFY(label("labelIconPort")->geometry().right() < label("labelPortName")->x());
    QVERIFY(label("labelPortName")->geometry().bottom() < label("labelBaudrate")->y());
    QCOMPARE(label("labelCoordinator")->width(), 97);
    QVERIFY(label("labelCoordinator")->wordWrap());
    QCOMPARE(label("labelCoordinator")->styleSheet(), QStringLiteral("QLabel { border-right: 1px solid black; }"));
    QVERIFY(label("labelVersion")->geometry().bottom() < label("labelSerial")->y());
    QVERIFY(label("labelVersion")->x() > label("labelCoordinator")->geometry().right());

    QStringList captions;
    const auto allCaptions = window->findChildren<QLabel*>();
    for (const QLabel* caption : allCaptions) {
        captions.append(caption->text());
    }
    QVERIFY(captions.contains(QStringLiteral("Version:")));
    QVERIFY(captions.contains(QStringLiteral("Serial number:")));
    QVERIFY(captions.contains(QStringLiteral("Device time:")));
}

void tst_StatusBar::lampFollowsTheStateOfThePort_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("icon");
    QTest::newRow("watched, not connected") << 0 << "red.png";
    QTest::newRow("watched, connected") << 1 << "green.png";
    QTest::newRow("not watched") << 2 << "yellow.png";
    QTest::newRow("anything else") << 200 << "yellow.png";
}

void tst_StatusBar::lampFollowsTheStateOfThePort()
{
    QFETCH(const int, state);
    QFETCH(const QString, icon);
    status->showPort(static_cast<uchar>(state), QStringLiteral("COM1"), QStringLiteral("57600"), 1, QStringLiteral("2"),
                     QStringLiteral("1.02"));
    const QImage shown = label("labelIconPort")->pixmap(Qt::ReturnByValue).toImage();
    QVERIFY(!shown.isNull());
    QCOMPARE(shown, lamp(icon));
}

void tst_StatusBar::valuesOfThePortAreBold()
{
    status->showPort(1, QStringLiteral("COM7"), QStringLiteral("57600"), 3, QStringLiteral("4711"),
                     QStringLiteral("2.05"));
    QCOMPARE(label("labelPortName")->text(), QStringLiteral("<b>COM7</b>"));
    QCOMPARE(label("labelBaudrate")->text(), QStringLiteral("<b>57600</b>"));
    QCOMPARE(label("labelSerial")->text(), QStringLiteral("<b>4711</b>"));
    QCOMPARE(label("labelVersion")->text(), QStringLiteral("<b>2.05</b>"));
}

void tst_StatusBar::nameOfThePortIsWholeInItsSection_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"ttyUSB0", "ttyUSB10", "ttyACM0", "COM256", "pts/12"}) {
        QTest::newRow(name) << QString::fromLatin1(name);
    }
}

void tst_StatusBar::nameOfThePortIsWholeInItsSection()
{
    QFETCH(const QString, name);
    showPort(name);
    QLabel* const shown = label("labelPortName");
    const int widthInSection = shown->width();
    const QImage inSection = pictureOfName();
    // With more room nothing comes to light that the section's width has hidden.
    section("sectionPort")->setFixedWidth(300);
    QTRY_VERIFY(shown->width() > 2 * widthInSection);
    const QImage withMoreRoom = pictureOfName();
    QCOMPARE(withMoreRoom.copy(inSection.rect()), inSection);
    const QImage rest = withMoreRoom.copy(withMoreRoom.rect().adjusted(widthInSection, 0, 0, 0));
    QImage nothing = rest;
    nothing.fill(rest.pixelColor(rest.rect().bottomRight()));
    QCOMPARE(rest, nothing);
}

void tst_StatusBar::longNameOfAPortIsElidedInTheMiddle()
{
    const QString name = QStringLiteral("ttyVirtualPort17");
    QLabel* const shown = label("labelPortName");
    showPort(name);
    const QImage elided = pictureOfName();
    const QString expected = shown->fontMetrics().elidedText(name, Qt::ElideMiddle, shown->width());
    QVERIFY(expected.endsWith(QLatin1Char('7')));
    showPort(expected);
    QCOMPARE(elided, pictureOfName());

    showPort(name);
    QHelpEvent hover(QEvent::ToolTip, QPoint(2, 2), shown->mapToGlobal(QPoint(2, 2)));
    QApplication::sendEvent(shown, &hover);
    QVERIFY(QToolTip::text().contains(name));
    QToolTip::hideText();
}

void tst_StatusBar::coordinatorIsShownByItsAddress_data()
{
    QTest::addColumn<int>("address");
    QTest::addColumn<QString>("text");
    QTest::newRow("address") << 3 << "Coordinator <b>3</b>";
    QTest::newRow("address 0 is an address") << 0 << "Coordinator <b>0</b>";
    QTest::newRow("address 254 is an address") << 254 << "Coordinator <b>254</b>";
    QTest::newRow("255 means none") << 255 << "<b>Coordinator not connected</b>";
}

void tst_StatusBar::coordinatorIsShownByItsAddress()
{
    QFETCH(const int, address);
    QFETCH(const QString, text);
    status->showPort(0, QStringLiteral("COM7"), QStringLiteral("-"), static_cast<uchar>(address), QStringLiteral("-"),
                     QStringLiteral("-"));
    QCOMPARE(label("labelCoordinator")->text(), text);
}

void tst_StatusBar::timeAndResultAreShownAsTheyAre()
{
    status->showDeviceTime(QStringLiteral("--:--:-- --.--.----"));
    QCOMPARE(label("labelDeviceTime")->text(), QStringLiteral("--:--:-- --.--.----"));
    status->showResult(QStringLiteral("Saved to\n/tmp/<b>.cfg"));
    QCOMPARE(status->result(), QStringLiteral("Saved to\n/tmp/<b>.cfg"));
    QCOMPARE(label("labelResult")->textFormat(), Qt::PlainText);
}

void tst_StatusBar::aLongResultWraps()
{
    QVERIFY(label("labelResult")->wordWrap());
    const int width = window->width();
    status->showResult(QStringLiteral("many words ").repeated(60));
    QTest::qWait(0);
    QCOMPARE(window->width(), width);
    const QLabel* const shown = label("labelResult");
    QTRY_VERIFY(shown->height() >= 4 * shown->fontMetrics().lineSpacing());
    status->showResult(QStringLiteral("few words"));
    QTRY_VERIFY(shown->height() < 4 * shown->fontMetrics().lineSpacing());
}

void tst_StatusBar::theLinesOfAResultFollowTheWidth()
{
    const QLabel* const shown = label("labelResult");
    const int line = shown->fontMetrics().lineSpacing();
    status->showResult(QStringLiteral("many words ").repeated(60));
    QTRY_VERIFY(shown->minimumHeight() > 3 * line);
    window->resize(6000, 300);
    QTRY_VERIFY(shown->minimumHeight() < 2 * line);
    window->resize(1100, 300);
    QTRY_VERIFY(shown->minimumHeight() > 3 * line);
    // On a small screen it is one line of what there is.
    status->setRoom(700);
    QCOMPARE(shown->minimumHeight(), 0);
    status->setRoom(1366);
    QVERIFY(shown->minimumHeight() > 3 * line);
}

void tst_StatusBar::theLinesOfAResultFollowTheFont()
{
    QLabel* const shown = label("labelResult");
    status->showResult(QStringLiteral("many words ").repeated(10));
    QTRY_VERIFY(shown->minimumHeight() > 0);
    const int before = shown->minimumHeight();
    QFont large = shown->font();
    large.setPointSize(2 * large.pointSize());
    shown->setFont(large);
    QTRY_VERIFY(shown->minimumHeight() >= 2 * before);
}

void tst_StatusBar::nameWithoutAPlaceToBreakIsElidedInTheMiddle()
{
    const int width = window->minimumSizeHint().width();
    const QString name = QStringLiteral("/a/path/without/any/place/to/break/it").repeated(20);
    status->showResult(name);
    QCoreApplication::processEvents();
    QCOMPARE(window->minimumSizeHint().width(), width);
    QLabel* const shown = label("labelResult");
    QHelpEvent hover(QEvent::ToolTip, QPoint(2, 2), shown->mapToGlobal(QPoint(2, 2)));
    QApplication::sendEvent(shown, &hover);
    QVERIFY(QToolTip::text().remove(QChar(0x200B)).contains(name));
    QToolTip::hideText();
}

void tst_StatusBar::resultGivesWayWhereTheScreenHasNoRoom()
{
    QFrame* const result = section("sectionResult");
    status->setRoom(640);
    status->showDeviceTime(QStringLiteral("12:00:00 01.02.2026, WED"));
    QCoreApplication::processEvents();
    QVERIFY(result->minimumWidth() >= 80);
    QVERIFY(window->minimumSizeHint().width() <= 640);
    status->setRoom(900);
    const int some = result->minimumWidth();
    QVERIFY(some > 100 && some < 500);
    status->setRoom(1366);
    QCOMPARE(result->minimumWidth(), 500);
}

QTEST_MAIN(tst_StatusBar)
#include "tst_StatusBar.moc"
