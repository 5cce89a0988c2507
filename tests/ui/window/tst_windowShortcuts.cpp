#include "ui/tree/FormAddingTerminal.h"
#include "ui/window/WindowTest.h"

#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTreeWidget>

#include <iterator>
#include <utility>

namespace
{

const char* const menuActions[] = {"actionSelectCoordinator",
                                   "actionFirmware",
                                   "actionSyncTime",
                                   "actionRead",
                                   "actionWrite",
                                   "actionLoad",
                                   "actionSave",
                                   "actionFactorySetting",
                                   "actionReadLog",
                                   "actionLoadLog",
                                   "actionSaveLog"};

/// A key that does something, and the widget whose focus it needs.
struct Binding
{
    QKeySequence key;
    Qt::ShortcutContext context;
    const QWidget* widget;
    QString name;
};

/// Whether there is a widget whose focus would make both keys work.
bool overlap(const Binding& a, const Binding& b)
{
    const auto covers = [](const Binding& wide, const Binding& narrow) {
        switch (wide.context) {
        case Qt::WidgetShortcut:
            return wide.widget == narrow.widget;
        case Qt::WidgetWithChildrenShortcut:
            return wide.widget == narrow.widget || wide.widget->isAncestorOf(narrow.widget);
        default:
            return wide.widget->window() == narrow.widget->window();
        }
    };
    return covers(a, b) || covers(b, a);
}

QList<Binding> bindingsOf(const QWidget* root)
{
    QList<Binding> found;
    QList<const QWidget*> widgets = {root};
    const QList<QWidget*> children = root->findChildren<QWidget*>();
    for (const QWidget* const child : children) {
        widgets.append(child);
    }
    for (const QWidget* const widget : std::as_const(widgets)) {
        const QList<QAction*> actions = widget->actions();
        for (const QAction* const action : actions) {
            const QList<QKeySequence> keys = action->shortcuts();
            for (const QKeySequence& key : keys) {
                // An action of a menu works in the window of the menu.
                const bool ofMenu = widget->inherits("QMenu");
                found.append({key, action->shortcutContext(), ofMenu ? root : widget, action->objectName()});
            }
        }
    }
    const QList<QShortcut*> shortcuts = root->findChildren<QShortcut*>();
    for (const QShortcut* const shortcut : shortcuts) {
        found.append({shortcut->key(), shortcut->context(), shortcut->parentWidget(), shortcut->key().toString()});
    }
    return found;
}

} // namespace

/// The keys of the menus, of the tabs and of the fields.
class tst_windowShortcuts : public WindowTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void eachActionOfTheMenusHasAKeyOfItsOwn_data();
    void eachActionOfTheMenusHasAKeyOfItsOwn();
    void aKeyThatIsHeldDownStartsOnce();
    void noTwoKeysMeanTheSame();
    void tabsAreReachedByNumberAndInTurn();
    void keysOfTheListsAreLettersInAField();
    void theNameOfTheChosenScriptIsEnteredByAKey();
};

void tst_windowShortcuts::init()
{
    begin();
    form()->hide();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
}

void tst_windowShortcuts::cleanup()
{
    window.reset();
}

void tst_windowShortcuts::eachActionOfTheMenusHasAKeyOfItsOwn_data()
{
    QTest::addColumn<QByteArray>("focus");
    QTest::newRow("in the tree") << QByteArray("treeWidget");
    QTest::newRow("in a list") << QByteArray("listWidgetAllScript");
    QTest::newRow("in a field") << QByteArray("lineEditNameScript");
    QTest::newRow("in the comment") << QByteArray("textEditComment");
    QTest::newRow("in a combo box") << QByteArray("comboModeWorkRelay");
}

void tst_windowShortcuts::eachActionOfTheMenusHasAKeyOfItsOwn()
{
    QFETCH(QByteArray, focus);
    const auto triggered = std::make_shared<int>(0);
    for (const char* const name : menuActions) {
        // What they do is told elsewhere.
        QObject::disconnect(action(name), &QAction::triggered, nullptr, nullptr);
        connect(action(name), &QAction::triggered, this, [triggered] { ++*triggered; });
    }
    for (const char* const name : menuActions) {
        const QList<QKeySequence> keys = action(name)->shortcuts();
        QVERIFY2(!keys.isEmpty(), name);
        for (const QKeySequence& key : keys) {
            get<QWidget>(focus.constData())->setFocus();
            QSignalSpy spy(action(name), &QAction::triggered);
            *triggered = 0;
            const int code = key[0];
            QTest::keyClick(QApplication::focusWidget(), Qt::Key(code & ~Qt::KeyboardModifierMask),
                            Qt::KeyboardModifiers(code & Qt::KeyboardModifierMask));
            QVERIFY2(spy.size() == 1 && *triggered == 1, name);
        }
    }
}

void tst_windowShortcuts::aKeyThatIsHeldDownStartsOnce()
{
    for (const char* const name : menuActions) {
        QVERIFY2(!action(name)->autoRepeat(), name);
    }
}

void tst_windowShortcuts::noTwoKeysMeanTheSame()
{
    const QList<QWidget*> windows = {window.get(), form(), window->findChild<FormAddingTerminal*>()};
    for (const QWidget* const root : windows) {
        const QList<Binding> bindings = bindingsOf(root);
        for (int i = 0; i < bindings.size(); ++i) {
            for (int j = 0; j < i; ++j) {
                const Binding& a = bindings.at(i);
                const Binding& b = bindings.at(j);
                QVERIFY2(a.key.matches(b.key) == QKeySequence::NoMatch || !overlap(a, b),
                         qPrintable(a.key.toString() + QLatin1Char(' ') + a.name + QLatin1Char(' ') + b.name));
            }
        }
    }
    QVERIFY(bindingsOf(window.get()).size() > int(std::size(menuActions)));
}

void tst_windowShortcuts::tabsAreReachedByNumberAndInTurn()
{
    auto* const tabs = get<QTabWidget>("tabWidget");
    get<QTreeWidget>("treeWidget")->setFocus();
    const auto press = [](int key, Qt::KeyboardModifiers modifiers) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key(key), modifiers);
    };
    for (const int index : {2, 0, 1}) {
        press(Qt::Key_1 + index, Qt::AltModifier);
        QCOMPARE(tabs->currentIndex(), index);
    }
    for (const int index : {2, 0, 1}) {
        press(Qt::Key_Tab, Qt::ControlModifier);
        QCOMPARE(tabs->currentIndex(), index);
    }
    // In a tab, whose widget knows these keys too.
    tabs->setCurrentIndex(0);
    get<QListWidget>("listWidgetAllScript")->setFocus();
    press(Qt::Key_Tab, Qt::ControlModifier);
    QCOMPARE(tabs->currentIndex(), 1);
    press(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(tabs->currentIndex(), 0);
    press(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(tabs->currentIndex(), 2);
}

void tst_windowShortcuts::keysOfTheListsAreLettersInAField()
{
    auto* const all = get<QListWidget>("listWidgetAllScript");
    auto* const active = get<QListWidget>("listWidgetActivateScript");
    all->setCurrentRow(3);
    all->setFocus();
    QTest::keyClick(all, Qt::Key_Insert);
    QCOMPARE(active->count(), 1);
    auto* const name = get<QLineEdit>("lineEditNameScript");
    name->setText(QStringLiteral("Fire"));
    name->setFocus();
    name->setCursorPosition(0);
    QTest::keyClick(name, Qt::Key_Delete);
    QTest::keyClick(name, Qt::Key_Insert);
    QTest::keyClick(name, Qt::Key_F2);
    QTest::keyClick(name, Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(name->text(), QStringLiteral("ire"));
    QCOMPARE(active->count(), 1);
    QVERIFY(name->hasFocus());
}

void tst_windowShortcuts::theNameOfTheChosenScriptIsEnteredByAKey()
{
    auto* const all = get<QListWidget>("listWidgetAllScript");
    all->setFocus();
    all->setCurrentRow(4);
    QTest::keyClick(all, Qt::Key_F2);
    auto* const name = get<QLineEdit>("lineEditNameScript");
    QCOMPARE(QApplication::focusWidget(), name);
    QTest::keyClicks(name, QStringLiteral("Siren"));
    QCOMPARE(name->text(), QStringLiteral("Siren"));
    QVERIFY(get<QListWidget>("listWidgetAllScript")
                ->itemWidget(all->item(4))
                ->property("text")
                .toString()
                .endsWith(QStringLiteral("Siren")));
}

QTEST_MAIN(tst_windowShortcuts)

#include "tst_windowShortcuts.moc"
