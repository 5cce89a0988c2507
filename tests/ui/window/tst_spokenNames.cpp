#include "firmware/Loading.h"
#include "link/FormWaiting.h"
#include "ui/tree/FormAddingTerminal.h"
#include "ui/window/WindowTest.h"

#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTreeWidget>

#include <algorithm>

namespace
{

QString spoken(QWidget* widget, QAccessible::Text text)
{
    QAccessibleInterface* const interface = QAccessible::queryAccessibleInterface(widget);
    return interface != nullptr ? interface->text(text).trimmed() : QString();
}

/// What takes keys in a window and has no name; the lists that open from a combo box have windows of their own.
QStringList nameless(const QWidget* window)
{
    QStringList found;
    const QList<QWidget*> widgets = window->findChildren<QWidget*>();
    for (QWidget* const widget : widgets) {
        // Never shown: the page that is removed at start.
        const bool isRemoved = widget->objectName() == QLatin1String("tableListScript");
        if (widget->focusPolicy() != Qt::NoFocus && widget->focusProxy() == nullptr && widget->window() == window &&
            !isRemoved && spoken(widget, QAccessible::Name).isEmpty()) {
            found.append(QLatin1String(widget->metaObject()->className()) + QLatin1Char(' ') + widget->objectName());
        }
    }
    return found;
}

/// Name and meaning of a row, as a screen reader has them of a list or a tree.
QStringList spokenRow(QAbstractItemView* view, int row)
{
    QAccessibleInterface* const interface = QAccessible::queryAccessibleInterface(view)->child(row);
    return {interface->text(QAccessible::Name), interface->text(QAccessible::Description)};
}

} // namespace

/// What a screen reader can tell of the windows.
class tst_spokenNames : public WindowTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void everythingThatTakesKeysInTheWindowHasAName();
    void everythingThatTakesKeysInTheFormsHasAName();
    void whatHasACaptionIsCalledByIt_data();
    void whatHasACaptionIsCalledByIt();
    void combosTellTheirCaptionBesideTheChoice();
    void buttonsWithAPictureTellWhatTheyDo();
    void tabsHaveNames();
    void rowsOfScriptsTellTextAndColour();
    void nodesOfTheTreeTellTextAndColour();
    void lampTellsItsColour();
    void valuesAndStatesAreTold();

private:
    /// Whether a button tells that it can be on, and that it is or isn't.
    bool isTold(const char* name, bool on) const
    {
        const QAccessible::State state = QAccessible::queryAccessibleInterface(get<QWidget>(name))->state();
        return state.checkable && bool(state.checked) == on;
    }
};

void tst_spokenNames::init()
{
    begin();
    form()->hide();
}

void tst_spokenNames::cleanup()
{
    window.reset();
}

void tst_spokenNames::everythingThatTakesKeysInTheWindowHasAName()
{
    QCOMPARE(nameless(window.get()).join(QLatin1String(", ")), QString());
    get<QTabWidget>("tabWidget")->setCurrentIndex(1);
    QTRY_VERIFY(get<QTableView>("tableViewLogEvents")->model() != nullptr);
    auto* const find = get<QAction>("actionFind");
    find->trigger();
    QVERIFY(get<QWidget>("lineEditFind") != nullptr);
    QCOMPARE(nameless(window.get()).join(QLatin1String(", ")), QString());
}

void tst_spokenNames::everythingThatTakesKeysInTheFormsHasAName()
{
    Loading loading;
    loading.show();
    const QList<const QWidget*> forms = {form(), window->findChild<FormAddingTerminal*>(), &loading,
                                         window->findChild<FormWaiting*>()};
    for (const QWidget* const each : forms) {
        QCOMPARE(nameless(each).join(QLatin1String(", ")), QString());
    }
}

void tst_spokenNames::whatHasACaptionIsCalledByIt_data()
{
    QTest::addColumn<QByteArray>("control");
    QTest::addColumn<QString>("name");
    QTest::newRow("name") << QByteArray("lineEditNameScript") << QStringLiteral("Name of script");
    QTest::newRow("class") << QByteArray("spinBoxClass") << QStringLiteral("Class");
    QTest::newRow("channel") << QByteArray("buttonChannel3") << QStringLiteral("Channel 3");
    QTest::newRow("address") << QByteArray("ButtonAddress5") << QStringLiteral("Address 5");
    QTest::newRow("head unit") << QByteArray("ButtonAddressHUBN") << QStringLiteral("Head unit");
    QTest::newRow("all scripts") << QByteArray("listWidgetAllScript") << QStringLiteral("Available scripts");
    QTest::newRow("active scripts") << QByteArray("listWidgetActivateScript")
                                    << QStringLiteral("Active scripts for HUBN-NX-Q (Internal relay 1)");
    QTest::newRow("comment") << QByteArray("textEditComment") << QStringLiteral("Comment");
    QTest::newRow("tree") << QByteArray("treeWidget") << QStringLiteral("List of executive outputs");
}

void tst_spokenNames::whatHasACaptionIsCalledByIt()
{
    QFETCH(QByteArray, control);
    QFETCH(QString, name);
    QCOMPARE(spoken(get<QWidget>(control.constData()), QAccessible::Name), name);
}

void tst_spokenNames::combosTellTheirCaptionBesideTheChoice()
{
    const QList<QComboBox*> combos = window->findChildren<QComboBox*>();
    for (QComboBox* const combo : combos) {
        QVERIFY2(!spoken(combo, QAccessible::Description).isEmpty(), qPrintable(combo->objectName()));
    }
    QCOMPARE(spoken(get<QWidget>("comboModeWorkRelay"), QAccessible::Description), QStringLiteral("Mode of operation"));
    const auto relations = QAccessible::queryAccessibleInterface(get<QWidget>("comboDelay"))->relations();
    QVERIFY(std::any_of(relations.cbegin(), relations.cend(), [](const auto& relation) {
        return relation.first->text(QAccessible::Name) == texts::editorDelay();
    }));
}

void tst_spokenNames::buttonsWithAPictureTellWhatTheyDo()
{
    for (const char* const name : {"pushButtonAddScript", "pushButtonDeleteScript"}) {
        auto* const button = get<QPushButton>(name);
        QVERIFY(button->text().isEmpty());
        QVERIFY(!button->toolTip().isEmpty());
        QCOMPARE(spoken(button, QAccessible::Name), button->toolTip());
    }
}

void tst_spokenNames::tabsHaveNames()
{
    QTabBar* const bar = get<QTabWidget>("tabWidget")->tabBar();
    QAccessibleInterface* const interface = QAccessible::queryAccessibleInterface(bar);
    for (int tab = 0; tab < bar->count(); ++tab) {
        QVERIFY(!interface->child(tab)->text(QAccessible::Name).isEmpty());
    }
    QCOMPARE(bar->tabText(2), QString());
}

void tst_spokenNames::rowsOfScriptsTellTextAndColour()
{
    auto* const all = get<QListWidget>("listWidgetAllScript");
    QCOMPARE(all->count(), 32);
    for (int row = 0; row < all->count(); ++row) {
        QCOMPARE(spokenRow(all, row),
                 QStringList({QStringLiteral("%1. Script").arg(row + 1), QStringLiteral("Not active")}));
    }
    all->setCurrentRow(4);
    get<QLineEdit>("lineEditNameScript")->setText(QStringLiteral("Fan"));
    get<QComboBox>("comboStateChannel")->setCurrentIndex(2);
    get<QComboBox>("comboModeWorkRelay")->setCurrentText(texts::modeActivation());
    QCOMPARE(spokenRow(all, 4), QStringList({QStringLiteral("5. Fan"), QStringLiteral("Activation")}));
    window->sl_AddScriptInActivateList();
    QCOMPARE(spokenRow(get<QListWidget>("listWidgetActivateScript"), 0),
             QStringList({QStringLiteral("5. Fan"), QStringLiteral("Activation")}));
}

void tst_spokenNames::nodesOfTheTreeTellTextAndColour()
{
    auto* const tree = get<QTreeWidget>("treeWidget");
    tree->collapseAll(); // the header, which isn't shown, is in front
    QCOMPARE(spokenRow(tree, 1), QStringList({QStringLiteral("HUBN-NX-Q"), texts::spokenTerminalNotReported()}));
    tree->expandAll();
    QCOMPARE(spokenRow(tree, 3), QStringList({QStringLiteral("2. Internal relay"), texts::spokenOutputNoScripts()}));
    tree->setCurrentItem(tree->topLevelItem(0)->child(1));
    get<QListWidget>("listWidgetAllScript")->setCurrentRow(4);
    window->sl_AddScriptInActivateList();
    QCOMPARE(spokenRow(tree, 3).constLast(), QStringLiteral("scripts: 1"));
}

void tst_spokenNames::lampTellsItsColour()
{
    auto* const lamp = get<QLabel>("labelIconPort");
    QStringList meanings;
    for (const uchar state : {0, 1, 2}) {
        window->sl_ReceiveInfoCoordinator(state, QStringLiteral("ttyS0"), QStringLiteral("57600"), 1, {}, {});
        meanings.append(spoken(lamp, QAccessible::Name));
        QCOMPARE(lamp->toolTip(), meanings.last());
    }
    QCOMPARE(meanings,
             QStringList({texts::spokenPortLost(), texts::spokenPortWatched(), texts::spokenPortNotWatched()}));
}

void tst_spokenNames::valuesAndStatesAreTold()
{
    get<QListWidget>("listWidgetAllScript")->setCurrentRow(4);
    get<QComboBox>("comboModeWorkRelay")->setCurrentText(texts::modeActivation());
    QCOMPARE(spoken(get<QWidget>("comboModeWorkRelay"), QAccessible::Value), texts::modeActivation());
    get<QComboBox>("comboStateChannel")->setCurrentIndex(2);
    QCOMPARE(spoken(get<QWidget>("buttonChannel1"), QAccessible::Description), texts::spokenChannelOn());
    QCOMPARE(spoken(get<QWidget>("buttonChannel2"), QAccessible::Description), texts::spokenChannelOff());
    QVERIFY(isTold("buttonChannel1", true));
    QVERIFY(isTold("buttonChannel2", false));
    get<QPushButton>("buttonChannel2")->click();
    QVERIFY(isTold("buttonChannel2", true));
    auto* const box = get<QCheckBox>("checkBoxAddress");
    box->click();
    QVERIFY(QAccessible::queryAccessibleInterface(box)->state().checked);
    auto* const address = get<QPushButton>("ButtonAddress5");
    address->click();
    QCOMPARE(spoken(address, QAccessible::Description),
             texts::spokenAddressChosen() + QStringLiteral(", ") + texts::spokenAddressFree());
    QVERIFY(isTold("ButtonAddress5", true));
    QVERIFY(isTold("ButtonAddress6", false));
    QVERIFY(!address->isCheckable());
    // Another script has another filter.
    get<QListWidget>("listWidgetAllScript")->setCurrentRow(5);
    QVERIFY(isTold("ButtonAddress5", false));
    QCOMPARE(spoken(address, QAccessible::Description),
             texts::spokenAddressNotChosen() + QStringLiteral(", ") + texts::spokenAddressFree());
}

QTEST_MAIN(tst_spokenNames)

#include "tst_spokenNames.moc"
