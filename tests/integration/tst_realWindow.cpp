#include "model/RelayInfo.h"
#include "support/Eventually.h"
#include "support/WindowOverUnit.h"
#include "ui/tree/FormAddingTerminal.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QProcess>
#include <QPushButton>
#include <QTreeWidget>
#include <QtTest>

/// One round of work in a window on an X display, done by mouse and keyboard alone: every event comes from the X
/// server, where xdotool puts it, and not from the program.
class tst_realWindow : public QObject
{
    Q_OBJECT

private slots:
    void aTerminalWithTwoScriptsIsAddedEditedSavedAndReadBack();

private:
    void xdotool(const QStringList& words);
    void press(const QString& keys);
    void type(const QString& text);
    void moveTo(const QWidget* widget, const QPoint& place);
    void click(const QWidget* widget, const QPoint& place);
    void click(const QWidget* widget);
    void reveal(const QWidget* widget, const QWidget* area);
    void replaceText(QWidget* field, const QString& text);
    void choose(QComboBox* combo, const QString& text);
    void chooseAction(WindowOverUnit& over, const char* menu, const char* action);
    void drag(const QListWidget* list, int from, int to);
    void addTerminal(WindowOverUnit& over);
    void addScript(WindowOverUnit& over, int row);
    void editScript(WindowOverUnit& over);
};

void tst_realWindow::xdotool(const QStringList& words)
{
    QProcess tool;
    bool ended = false;
    connect(&tool, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), &tool, [&] { ended = true; });
    tool.start(QStringLiteral("xdotool"), words);
    QVERIFY(eventually([&] { return ended; }, 10000));
    QCOMPARE(tool.exitCode(), 0);
    // The tool is gone once the server has its events; the program gets them behind whatever it sends to itself now.
    QTest::qWait(60);
}

void tst_realWindow::press(const QString& keys)
{
    xdotool({QStringLiteral("key"), keys});
}

void tst_realWindow::type(const QString& text)
{
    xdotool({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("20"), text});
}

void tst_realWindow::moveTo(const QWidget* widget, const QPoint& place)
{
    const QPoint target = widget->mapToGlobal(place);
    xdotool({QStringLiteral("mousemove"), QString::number(target.x()), QString::number(target.y())});
}

void tst_realWindow::click(const QWidget* widget, const QPoint& place)
{
    moveTo(widget, place);
    xdotool({QStringLiteral("click"), QStringLiteral("1")});
}

void tst_realWindow::click(const QWidget* widget)
{
    QVERIFY(eventually([&] { return widget->isVisible() && widget->isEnabled(); }, 10000));
    // A check box is wider than what of it can be clicked.
    const bool isBox = qobject_cast<const QCheckBox*>(widget) != nullptr;
    click(widget, isBox ? QPoint(8, widget->height() / 2) : widget->rect().center());
}

/// Turns the wheel over an area until the middle of a widget in it can be seen.
void tst_realWindow::reveal(const QWidget* widget, const QWidget* area)
{
    const auto seen = [&] { return widget->visibleRegion().contains(widget->rect().center()); };
    for (const auto* wheel : {"5", "4"}) {
        moveTo(area, QPoint(6, area->height() / 2));
        for (int turns = 0; turns < 60 && !seen(); ++turns) {
            xdotool({QStringLiteral("click"), QLatin1String(wheel)});
        }
    }
    QVERIFY(seen());
}

void tst_realWindow::replaceText(QWidget* field, const QString& text)
{
    click(field);
    press(QStringLiteral("ctrl+a"));
    type(text);
}

/// Opens a combo box by the mouse and goes to an entry by the arrow keys.
void tst_realWindow::choose(QComboBox* combo, const QString& text)
{
    const int wanted = combo->findText(text);
    QVERIFY(wanted >= 0);
    click(combo);
    QVERIFY(eventually([] { return QApplication::activePopupWidget() != nullptr; }, 10000));
    press(QStringLiteral("Home"));
    for (int i = 0; i < wanted; ++i) {
        press(QStringLiteral("Down"));
    }
    press(QStringLiteral("Return"));
    QTRY_COMPARE(combo->currentText(), text);
}

void tst_realWindow::chooseAction(WindowOverUnit& over, const char* menu, const char* action)
{
    const auto* bar = over.window->menuBar();
    auto* popup = over.get<QMenu>(menu);
    click(bar, bar->actionGeometry(popup->menuAction()).center());
    QVERIFY(eventually([&] { return popup->isVisible(); }, 10000));
    over.told.clear();
    click(popup, popup->actionGeometry(over.get<QAction>(action)).center());
}

/// One call of the tool for the whole of it: while something is dragged, Qt runs a loop of its own.
void tst_realWindow::drag(const QListWidget* list, int from, int to)
{
    const QRect source = list->visualItemRect(list->item(from));
    const QRect target = list->visualItemRect(list->item(to));
    const QPoint begin = list->viewport()->mapToGlobal(source.center());
    const QPoint end = list->viewport()->mapToGlobal(QPoint(target.center().x(), target.top() + 1));
    QStringList words;
    const auto move = [&](const QPoint& place) {
        words << QStringLiteral("mousemove") << QString::number(place.x()) << QString::number(place.y())
              << QStringLiteral("sleep") << QStringLiteral("0.05");
    };
    move(begin);
    words << QStringLiteral("mousedown") << QStringLiteral("1");
    for (int i = 1; i <= 8; ++i) {
        move(begin + (end - begin) * i / 8);
    }
    words << QStringLiteral("mouseup") << QStringLiteral("1");
    xdotool(words);
}

void tst_realWindow::addTerminal(WindowOverUnit& over)
{
    const auto* tree = over.get<QTreeWidget>("treeWidget");
    const auto* button = over.get<QPushButton>("pushButtonAddGroup");
    reveal(button, tree->viewport());
    click(button);
    const auto* form = over.window->findChild<FormAddingTerminal*>();
    if (form == nullptr) {
        const auto widgets = QApplication::topLevelWidgets();
        for (const QWidget* widget : widgets) {
            form = form == nullptr ? qobject_cast<const FormAddingTerminal*>(widget) : form;
        }
    }
    QVERIFY(form != nullptr);
    QVERIFY(eventually([&] { return form->isActiveWindow(); }, 10000));
    replaceText(form->findChild<QLineEdit*>(QStringLiteral("lineEditTerminal")), QStringLiteral("Siren of the hall"));
    click(form->findChild<QPushButton*>(QStringLiteral("pushButton")));
    QVERIFY(eventually([&] { return over.window->isActiveWindow(); }, 10000));
    QTRY_COMPARE(over.label("labelTitleParamRelay")->text(), QStringLiteral("Siren of the hall #1(Output 1)"));
}

void tst_realWindow::addScript(WindowOverUnit& over, int row)
{
    const auto* all = over.get<QListWidget>("listWidgetAllScript");
    click(all->viewport(), all->visualItemRect(all->item(row)).center());
    click(over.get<QPushButton>("pushButtonAddScript"));
}

void tst_realWindow::editScript(WindowOverUnit& over)
{
    const auto* active = over.get<QListWidget>("listWidgetActivateScript");
    click(active->viewport(), active->visualItemRect(active->item(0)).center());
    replaceText(over.get<QLineEdit>("lineEditNameScript"), QStringLiteral("Fire"));
    choose(over.get<QComboBox>("comboModeWorkRelay"), texts::modeActivation());
    choose(over.get<QComboBox>("comboStateChannel"), texts::channelAlarm());

    const QWidget* editor = over.window->findChild<QWidget*>(QStringLiteral("Setting_Script_Widget"));
    const auto clickIn = [&](const char* name) {
        reveal(over.get<QWidget>(name), editor);
        click(over.get<QWidget>(name));
    };
    clickIn("checkBoxAddress");
    clickIn("ButtonAddress5");
    clickIn("checkBoxMon");
    clickIn("checkBoxTime");
    clickIn("checkBoxDate");
    const auto fill = [&](const char* frame, const char* field, const QString& text) {
        auto* widget = over.get<QWidget>(frame)->findChild<QWidget*>(QLatin1String(field));
        reveal(widget, editor);
        replaceText(widget, text);
        press(QStringLiteral("Tab"));
    };
    fill("F_TimeBegin", "spinBoxHour", QStringLiteral("08"));
    fill("F_TimeBegin", "spinBoxMinute", QStringLiteral("30"));
    fill("F_TimeEnd", "spinBoxHour", QStringLiteral("17"));
    fill("F_TimeEnd", "spinBoxMinute", QStringLiteral("45"));
    choose(over.get<QWidget>("F_DateBegin")->findChild<QComboBox*>(), QStringLiteral("February"));
    fill("F_DateBegin", "spinBoxDay", QStringLiteral("05"));
    choose(over.get<QWidget>("F_DateEnd")->findChild<QComboBox*>(), QStringLiteral("March"));
    fill("F_DateEnd", "spinBoxDay", QStringLiteral("20"));
}

void tst_realWindow::aTerminalWithTwoScriptsIsAddedEditedSavedAndReadBack()
{
    WindowOverUnit over;
    over.window->showMaximized();
    QVERIFY(over.waitForChain());
    QVERIFY(eventually([&] { return over.window->isActiveWindow(); }, 10000));

    addTerminal(over);
    addScript(over, 0);
    addScript(over, 2);
    auto* active = over.get<QListWidget>("listWidgetActivateScript");
    QTRY_COMPARE(active->count(), 2);
    drag(active, 1, 0);
    editScript(over);

    chooseAction(over, "menu", "actionWrite");
    QVERIFY(over.waitFor({texts::resultWriteScriptsOk()}));
    const UnitState written = over.unit.state();
    // The third script stands first since it was dragged over the first one.
    QCOMPARE(written.outputs.at(1).at(0).toHex(), QByteArray("000200"));
    QCOMPARE(written.scripts.at(2).toHex(), QByteArray("0100010017023008050245172003f0000010000000"));
    // The first one was shown, and a script that isn't active has no channels.
    QCOMPARE(written.scripts.at(0).toHex(), QByteArray("0000ff0000000000010100000101f0000000000000"));

    chooseAction(over, "menu", "actionRead");
    QVERIFY(over.waitFor({texts::resultReadScriptsOk()}));
    QCOMPARE(over.unit.state().scripts, written.scripts);
    QCOMPARE(over.unit.state().outputs, written.outputs);
    QVERIFY(over.window->grab().save(QStringLiteral("round.png")));
}

QTEST_MAIN(tst_realWindow)
#include "tst_realWindow.moc"
