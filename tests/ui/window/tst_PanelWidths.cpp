#include "ui/window/PanelWidths.h"
#include "ui/window/WindowTest.h"

#include <QDockWidget>
#include <QHelpEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QToolTip>

/// The widths of the panels by keys alone.
class tst_PanelWidths : public WindowTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void panelWithTheFocusChanges_data();
    void panelWithTheFocusChanges();
    void bothChangeWhileTheFocusIsElsewhere();
    void panelsAboveAndBelowTheTabsStayAsTheyAre();
    void titleTellsOfTheKeysAndItselfWhole();

private:
    QDockWidget* dock(const char* name) const
    {
        return get<QDockWidget>(name);
    }
    void focus(QWidget* widget) const
    {
        widget->setFocus();
        QTRY_COMPARE(QApplication::focusWidget(), widget);
    }
    void pressF8(Qt::KeyboardModifiers modifiers = {}) const
    {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_F8, modifiers);
        QCoreApplication::processEvents();
    }
};

void tst_PanelWidths::init()
{
    begin();
    form()->hide();
    window->resize(1400, 700);
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    QTRY_COMPARE(dock("dockScript")->width(), 415);
}

void tst_PanelWidths::cleanup()
{
    QToolTip::hideText();
    window.reset();
}

void tst_PanelWidths::panelWithTheFocusChanges_data()
{
    QTest::addColumn<QString>("focused");
    QTest::addColumn<QString>("other");
    QTest::addColumn<QString>("control");
    QTest::newRow("tree") << "dockTree"
                          << "dockScript"
                          << "treeWidget";
    QTest::newRow("editor") << "dockScript"
                            << "dockTree"
                            << "lineEditNameScript";
}

void tst_PanelWidths::panelWithTheFocusChanges()
{
    QFETCH(const QString, focused);
    QFETCH(const QString, other);
    QFETCH(const QString, control);
    const QDockWidget* const changing = window->findChild<QDockWidget*>(focused);
    const QDockWidget* const staying = window->findChild<QDockWidget*>(other);
    focus(window->findChild<QWidget*>(control));
    const int before = changing->width();
    const int otherBefore = staying->width();
    pressF8();
    QTRY_COMPARE(changing->width(), before - 20);
    pressF8(Qt::ShiftModifier);
    pressF8(Qt::ShiftModifier);
    QTRY_COMPARE(changing->width(), before + 20);
    QCOMPARE(staying->width(), otherBefore);
}

void tst_PanelWidths::bothChangeWhileTheFocusIsElsewhere()
{
    focus(get<QWidget>("listWidgetAllScript"));
    const int tree = dock("dockTree")->width();
    const int editor = dock("dockScript")->width();
    pressF8();
    QTRY_COMPARE(dock("dockTree")->width(), tree - 20);
    QTRY_COMPARE(dock("dockScript")->width(), editor - 20);
}

void tst_PanelWidths::panelsAboveAndBelowTheTabsStayAsTheyAre()
{
    window->addDockWidget(Qt::TopDockWidgetArea, dock("dockTree"));
    focus(get<QWidget>("listWidgetAllScript"));
    QTRY_VERIFY(dock("dockTree")->width() > 1000);
    const int editor = dock("dockScript")->width();
    const int height = dock("dockTree")->height();
    pressF8();
    QTRY_COMPARE(dock("dockScript")->width(), editor - 20);
    QCOMPARE(dock("dockTree")->height(), height);
}

void tst_PanelWidths::titleTellsOfTheKeysAndItselfWhole()
{
    const auto rest = [](QWidget* widget, const QPoint& place) {
        QHelpEvent event(QEvent::ToolTip, place, widget->mapToGlobal(place));
        QApplication::sendEvent(widget, &event);
    };
    QDockWidget* const editor = dock("dockScript");
    editor->setWindowTitle(QStringLiteral("a <long> title"));
    rest(editor, QPoint(20, 5));
    QVERIFY(QToolTip::text().contains(QLatin1String("a &lt;long&gt; title")));
    QVERIFY(QToolTip::text().contains(QLatin1String("F8")));
    QToolTip::hideText();
    QTRY_VERIFY(!QToolTip::isVisible());
    // What stands in the panel doesn't.
    rest(get<QWidget>("titleName"), QPoint(2, 2));
    QVERIFY(!QToolTip::isVisible());
}

QTEST_MAIN(tst_PanelWidths)
#include "tst_PanelWidths.moc"
