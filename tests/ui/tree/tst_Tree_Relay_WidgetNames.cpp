#include "ui/tree/NodeTree.h"
#include "ui/tree/ShownTree.h"

#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QPointer>
#include <QScrollBar>
#include <QTimer>
#include <QtTest>

#include <functional>
#include <memory>

namespace
{

/// Calls back with the menu that is open, once one is.
template <typename Use>
void whenMenuOpens(Use use)
{
    auto* timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, use] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (menu != nullptr) {
            timer->deleteLater();
            use(menu);
        }
    });
    timer->start(1);
}

} // namespace

/// The context menu and the renaming.
class tst_Tree_Relay_WidgetNames : public ShownTree
{
    Q_OBJECT

private slots:
    void ctrlCCopiesTheSelectedName();

    void menuOnATerminal();
    void menuOnAnOutput();
    void menuIsThereForTheHeadUnitToo();
    void noMenuBesideTheNodes();
    void menuByMouseOnTheName();
    void menuByMouseOnTheStartState();
    void menuAsksToHideDisconnectedTerminals();
    void menuThatOutlivesTheNodesRenamesNothing();
    void renameFromTheMenu();
    void renameChosenWithTheEnterKeyGoesOn();
    void renameWithoutANodeDoesNothing();
    void doubleClickRenamesAnOutput();
    void doubleClickOnATerminalDoesNothing();
    void f2RenamesWhatIsCurrent();
    void f2InTheNameItselfKeepsIt();
    void nameFollowsEachKey();
    void enterEndsRenaming_data();
    void enterEndsRenaming();
    void losingTheFocusEndsRenaming();
    void menuOfTheEditDoesNotEndRenaming();
    void pastedNameIsKept();
    void oddNamesAreShownAsTheyAre_data();
    void oddNamesAreShownAsTheyAre();
    void filterKeepsNoEvent();
    void rebuildWhileRenamingIsHarmless();
    void goneNodeEndsTheRenamingOfAnother();

private:
    void runMenu(QTreeWidgetItem* item, const std::function<void(QMenu*)>& use);
    void chooseFromMenu(QTreeWidgetItem* item, int action);
    void startRename(QTreeWidgetItem* item);
};

void tst_Tree_Relay_WidgetNames::runMenu(QTreeWidgetItem* item, const std::function<void(QMenu*)>& use)
{
    list->scrollToItem(item);
    whenMenuOpens(use);
    tree->sl_prepareMenu(inRow(item));
}

void tst_Tree_Relay_WidgetNames::chooseFromMenu(QTreeWidgetItem* item, int action)
{
    runMenu(item, [action](QMenu* menu) {
        menu->actions().at(action)->trigger();
        menu->close();
    });
}

/// Does what the menu's third action does, but with the window in front again: the platform of the tests gives the
/// focus to nobody when a menu closes.
void tst_Tree_Relay_WidgetNames::startRename(QTreeWidgetItem* item)
{
    runMenu(item, [](QMenu* menu) { menu->close(); });
    tree->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(tree.get()));
    tree->sl_RunRename();
}

void tst_Tree_Relay_WidgetNames::f2RenamesWhatIsCurrent()
{
    addTerminal(3, 2);
    build();
    list->setFocus();
    for (QTreeWidgetItem* const item : {groupItem(1), outputItem(0, 7), outputItem(0, 0)}) {
        list->setCurrentItem(item);
        QTest::keyClick(list, Qt::Key_F2);
        QCOMPARE(QApplication::focusWidget(), edit(item));
        QTest::keyClicks(edit(item), QStringLiteral("!"));
        QTest::keyClick(edit(item), Qt::Key_Return);
        QVERIFY(label(item)->text().contains(QLatin1Char('!')));
        QVERIFY(edit(item)->isHidden());
        QCOMPARE(QApplication::focusWidget(), list);
    }
}

void tst_Tree_Relay_WidgetNames::f2InTheNameItselfKeepsIt()
{
    build();
    list->setFocus();
    list->setCurrentItem(outputItem(0, 0));
    QTest::keyClick(list, Qt::Key_F2);
    QLineEdit* const name = edit(outputItem(0, 0));
    name->setText(QStringLiteral("Fan"));
    QTest::keyClick(name, Qt::Key_F2);
    QTest::keyClick(name, Qt::Key_Home);
    QTest::keyClick(name, Qt::Key_Delete);
    QCOMPARE(name->text(), QStringLiteral("an"));
    QCOMPARE(label(outputItem(0, 0))->text(), QStringLiteral("1. an"));
}

void tst_Tree_Relay_WidgetNames::goneNodeEndsTheRenamingOfAnother()
{
    addTerminal(3, 1);
    addTerminal(5, 1);
    build();
    startRename(groupItem(1));
    QVERIFY(!edit(groupItem(1))->isHidden());
    edit(groupItem(1))->setText(QStringLiteral("Fan"));
    info->removeGroup(info->findGroup(5));
    tree->removeGoneNodes();
    QVERIFY(edit(groupItem(1))->isHidden());
    QCOMPARE(label(groupItem(1))->text(), QStringLiteral("Fan (3)"));
    tree->sl_RunRename(); // of nothing
    QVERIFY(edit(groupItem(1))->isHidden());
}

void tst_Tree_Relay_WidgetNames::menuOnATerminal()
{
    const GroupRelayPtr group = addTerminal(4, 1);
    build();
    QStringList actions;
    QString style;
    runMenu(groupItem(1), [&](QMenu* menu) {
        style = menu->styleSheet();
        const auto entries = menu->actions();
        for (const QAction* action : entries) {
            actions.append(action->text());
            QVERIFY(!action->icon().isNull());
        }
        menu->actions().constFirst()->trigger();
        menu->close();
    });
    QCOMPARE(actions, QStringList({QStringLiteral("Hide terminal"), QStringLiteral("Hide disconnected terminals"),
                                   QStringLiteral("Rename of terminal")}));
    QCOMPARE(style, QStringLiteral("selection-background-color: rgba(0, 0, 255, 30); selection-color: black;"));
    QCOMPARE(hidden, QList<GroupRelayPtr>{group});
}

void tst_Tree_Relay_WidgetNames::menuOnAnOutput()
{
    const GroupRelayPtr group = addTerminal(4, 2);
    build();
    QString rename;
    runMenu(outputItem(1, 1), [&](QMenu* menu) {
        rename = menu->actions().constLast()->text();
        menu->actions().constFirst()->trigger();
        menu->close();
    });
    QCOMPARE(rename, QStringLiteral("Rename of output"));
    QCOMPARE(hidden, QList<GroupRelayPtr>{group});
}

void tst_Tree_Relay_WidgetNames::menuIsThereForTheHeadUnitToo()
{
    build();
    chooseFromMenu(groupItem(0), 0);
    QCOMPARE(hidden, QList<GroupRelayPtr>{info->groups().first()});
}

void tst_Tree_Relay_WidgetNames::noMenuBesideTheNodes()
{
    info->groups().first()->expand = false;
    build();
    bool opened = false;
    QTimer watch;
    connect(&watch, &QTimer::timeout, this, [&opened] {
        if (QWidget* popup = QApplication::activePopupWidget()) {
            opened = true;
            popup->close();
        }
    });
    watch.start(1);
    tree->sl_prepareMenu(inRow(groupItem(1)));
    QVERIFY(list->itemAt(list->viewport()->rect().bottomLeft()) == nullptr);
    tree->sl_prepareMenu(list->viewport()->rect().bottomLeft());
    QVERIFY(!opened);
    tree->sl_RunRename();
    QVERIFY(edit(groupItem(0))->isHidden());
}

void tst_Tree_Relay_WidgetNames::menuByMouseOnTheName()
{
    const GroupRelayPtr group = addTerminal(4, 1);
    build();
    list->scrollToItem(groupItem(1));
    whenMenuOpens([](QMenu* menu) {
        menu->actions().constFirst()->trigger();
        menu->close();
    });
    QLabel* name = label(groupItem(1));
    QContextMenuEvent event(QContextMenuEvent::Mouse, name->rect().center(), name->mapToGlobal(name->rect().center()));
    QApplication::sendEvent(name, &event);
    QCOMPARE(hidden, QList<GroupRelayPtr>{group});
}

void tst_Tree_Relay_WidgetNames::menuByMouseOnTheStartState()
{
    build();
    const auto rename = std::make_shared<QString>();
    whenMenuOpens([rename](QMenu* menu) {
        *rename = menu->actions().constLast()->text();
        menu->close();
    });
    QComboBox* box = combo(0, 1);
    QContextMenuEvent event(QContextMenuEvent::Mouse, box->rect().center(), box->mapToGlobal(box->rect().center()));
    QApplication::sendEvent(box, &event);
    QCOMPARE(*rename, QStringLiteral("Rename of output"));
    QVERIFY(box->isVisible() && box->currentIndex() == 0);
}

void tst_Tree_Relay_WidgetNames::menuAsksToHideDisconnectedTerminals()
{
    build();
    chooseFromMenu(outputItem(0, 0), 1);
    QCOMPARE(hiddenDisconnected, 1);
    QVERIFY(hidden.isEmpty());
}

void tst_Tree_Relay_WidgetNames::menuThatOutlivesTheNodesRenamesNothing()
{
    addTerminal(4, 1);
    build();
    runMenu(outputItem(1, 0), [this](QMenu* menu) {
        info->resetGroups(true);
        tree->fullUpdateTree(true);
        menu->actions().constLast()->trigger();
        menu->close();
    });
    QCOMPARE(list->topLevelItemCount(), 2);
    QVERIFY(edit(groupItem(0))->isHidden());
}

void tst_Tree_Relay_WidgetNames::renameFromTheMenu()
{
    const GroupRelayPtr group = addTerminal(4, 1);
    build();
    startRename(groupItem(1));
    QVERIFY(label(groupItem(1))->isHidden());
    QVERIFY(edit(groupItem(1))->isVisible());
    QVERIFY(edit(groupItem(1))->hasFocus());
    QCOMPARE(edit(groupItem(1))->text(), QStringLiteral("Terminal"));
    QTest::keyClick(edit(groupItem(1)), Qt::Key_X);
    QCOMPARE(group->name, QStringLiteral("Terminalx"));
    QCOMPARE(label(groupItem(1))->text(), QStringLiteral("Terminalx (4)"));
    QCOMPARE(renames, 1);

    startRename(outputItem(1, 0));
    QVERIFY(edit(groupItem(1))->isHidden());
    QVERIFY(!label(groupItem(1))->isHidden());
    QVERIFY(edit(outputItem(1, 0))->hasFocus());
    QCOMPARE(edit(outputItem(1, 0))->text(), QStringLiteral("Output"));
}

void tst_Tree_Relay_WidgetNames::renameChosenWithTheEnterKeyGoesOn()
{
    const RelayInformationPtr relay = info->groups().first()->outputs.first();
    build();
    QStringList seen;
    runMenu(outputItem(0, 0), [&](QMenu* menu) {
        QLineEdit* name = edit(outputItem(0, 0));
        const auto look = [&] { seen.append(name->isHidden() ? QStringLiteral("label") : QStringLiteral("edit")); };
        menu->setActiveAction(menu->actions().constLast());
        QTest::keyPress(menu, Qt::Key_Return);
        look();
        // The release of the key that chose the action comes to the edit, after some repetition if it is held.
        QKeyEvent repeated(QEvent::KeyRelease, Qt::Key_Return, Qt::NoModifier, QString(), true);
        QApplication::sendEvent(name, &repeated);
        look();
        QTest::keyRelease(name, Qt::Key_Return);
        look();
        QTest::keyClick(name, Qt::Key_A);
        QTest::keyClick(name, Qt::Key_Return);
        look();
    });
    QCOMPARE(seen, QStringList({QStringLiteral("edit"), QStringLiteral("edit"), QStringLiteral("edit"),
                                QStringLiteral("label")}));
    QCOMPARE(relay->name, QStringLiteral("Internal relaya"));
}

void tst_Tree_Relay_WidgetNames::renameWithoutANodeDoesNothing()
{
    tree->sl_RunRename();
    build();
    tree->sl_RunRename();
    QVERIFY(edit(groupItem(0))->isHidden());
    QCOMPARE(renames, 0);
}

void tst_Tree_Relay_WidgetNames::doubleClickRenamesAnOutput()
{
    build();
    QTest::mouseDClick(label(outputItem(0, 1)), Qt::LeftButton);
    QVERIFY(label(outputItem(0, 1))->isHidden());
    QVERIFY(edit(outputItem(0, 1))->hasFocus());
    QCOMPARE(edit(outputItem(0, 1))->text(), QStringLiteral("Internal relay"));
}

void tst_Tree_Relay_WidgetNames::doubleClickOnATerminalDoesNothing()
{
    build();
    QTest::mouseDClick(label(groupItem(0)), Qt::LeftButton);
    QVERIFY(edit(groupItem(0))->isHidden());
    QVERIFY(!label(groupItem(0))->isHidden());
    QVERIFY(groupItem(0)->isExpanded());
}

void tst_Tree_Relay_WidgetNames::nameFollowsEachKey()
{
    const RelayInformationPtr relay = info->groups().first()->outputs.at(1);
    build();
    QTest::mouseDClick(label(outputItem(0, 1)), Qt::LeftButton);
    QLineEdit* name = edit(outputItem(0, 1));
    name->selectAll();
    QTest::keyClicks(name, QStringLiteral("Fan"));
    QCOMPARE(relay->name, QStringLiteral("Fan"));
    QCOMPARE(label(outputItem(0, 1))->text(), QStringLiteral("2. Fan"));
    QCOMPARE(renames, 3);
    // Escape is a key like others: it ends nothing and takes nothing back.
    QTest::keyClick(name, Qt::Key_Escape);
    QCOMPARE(renames, 4);
    QCOMPARE(relay->name, QStringLiteral("Fan"));
    QVERIFY(name->isVisible());
}

void tst_Tree_Relay_WidgetNames::enterEndsRenaming_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("return") << int(Qt::Key_Return);
    QTest::newRow("enter of the number pad") << int(Qt::Key_Enter);
}

void tst_Tree_Relay_WidgetNames::enterEndsRenaming()
{
    QFETCH(int, key);
    build();
    QTest::mouseDClick(label(outputItem(0, 0)), Qt::LeftButton);
    QLineEdit* name = edit(outputItem(0, 0));
    QTest::keyClicks(name, QStringLiteral("12"));
    QTest::keyClick(name, static_cast<Qt::Key>(key));
    QVERIFY(name->isHidden());
    QVERIFY(list->hasFocus());
    QVERIFY(label(outputItem(0, 0))->isVisible());
    QCOMPARE(label(outputItem(0, 0))->text(), QStringLiteral("1. Internal relay12"));
    QCOMPARE(renames, 2);
}

void tst_Tree_Relay_WidgetNames::losingTheFocusEndsRenaming()
{
    build();
    QTest::mouseDClick(label(outputItem(0, 0)), Qt::LeftButton);
    combo(0, 0)->setFocus();
    QVERIFY(edit(outputItem(0, 0))->isHidden());
    QVERIFY(label(outputItem(0, 0))->isVisible());
    QCOMPARE(renames, 0);
}

void tst_Tree_Relay_WidgetNames::menuOfTheEditDoesNotEndRenaming()
{
    build();
    QTest::mouseDClick(label(outputItem(0, 0)), Qt::LeftButton);
    QFocusEvent out(QEvent::FocusOut, Qt::PopupFocusReason);
    QApplication::sendEvent(edit(outputItem(0, 0)), &out);
    QVERIFY(edit(outputItem(0, 0))->isVisible());
}

void tst_Tree_Relay_WidgetNames::pastedNameIsKept()
{
    const RelayInformationPtr relay = info->groups().first()->outputs.at(0);
    build();
    QTest::mouseDClick(label(outputItem(0, 0)), Qt::LeftButton);
    edit(outputItem(0, 0))->insert(QStringLiteral(" 7")); // as a paste by mouse does, without a key
    combo(0, 0)->setFocus();
    QCOMPARE(relay->name, QStringLiteral("Internal relay 7"));
    QCOMPARE(label(outputItem(0, 0))->text(), QStringLiteral("1. Internal relay 7"));
    QCOMPARE(renames, 1);
}

void tst_Tree_Relay_WidgetNames::oddNamesAreShownAsTheyAre_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << QString();
    QTest::newRow("markup") << QStringLiteral("<b>x</b>&amp;<img src=a>");
    QTest::newRow("place markers") << QStringLiteral("%1 %2 %n");
    QTest::newRow("ampersand") << QStringLiteral("R&D");
    QTest::newRow("other scripts") << QStringLiteral("Реле \u0645\u0631\u062d\u0628\u0627 \U0001F525");
    QTest::newRow("line feed and tab") << QStringLiteral("a\nb\tc");
    QTest::newRow("200 letters") << QString(200, QLatin1Char('W'));
}

void tst_Tree_Relay_WidgetNames::oddNamesAreShownAsTheyAre()
{
    QFETCH(QString, name);
    const GroupRelayPtr group = addTerminal(4, 1);
    group->name = name;
    group->outputs.first()->name = name;
    build();
    QCOMPARE(label(groupItem(1))->text(), name + QStringLiteral(" (4)"));
    QCOMPARE(label(outputItem(1, 0))->text(), QStringLiteral("1. ") + name);
    QCOMPARE(label(groupItem(1))->textFormat(), Qt::PlainText);
    QVERIFY(frame(groupItem(1))->width() <= list->viewport()->width());
    QVERIFY(!list->horizontalScrollBar()->isVisible());
    QVERIFY(label(groupItem(1))->height() < 40);
}

void tst_Tree_Relay_WidgetNames::filterKeepsNoEvent()
{
    build();
    QTest::mouseDClick(label(outputItem(0, 0)), Qt::LeftButton);
    QLineEdit* name = edit(outputItem(0, 0));
    QKeyEvent letter(QEvent::KeyRelease, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
    QKeyEvent enter(QEvent::KeyRelease, Qt::Key_Return, Qt::NoModifier);
    QFocusEvent out(QEvent::FocusOut);
    QMouseEvent click(QEvent::MouseButtonDblClick, QPointF(1, 1), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QVERIFY(!tree->eventFilter(name, &letter));
    QVERIFY(!tree->eventFilter(name, &enter));
    QVERIFY(!tree->eventFilter(name, &out));
    QVERIFY(!tree->eventFilter(label(outputItem(0, 0)), &click));
    QVERIFY(!tree->eventFilter(this, &letter));
    QVERIFY(!tree->eventFilter(this, &click));
}

void tst_Tree_Relay_WidgetNames::rebuildWhileRenamingIsHarmless()
{
    build();
    QTest::mouseDClick(label(outputItem(0, 0)), Qt::LeftButton);
    QPointer<QLineEdit> name = edit(outputItem(0, 0));
    tree->fullUpdateTree(false);
    if (name) {
        QTest::keyClick(name, Qt::Key_A);
        QTest::keyClick(name, Qt::Key_Return);
    }
    QTRY_VERIFY(name.isNull());
    QCOMPARE(info->groups().first()->outputs.first()->name, QStringLiteral("Internal relay"));
    QVERIFY(edit(outputItem(0, 0))->isHidden());
    QVERIFY(!label(outputItem(0, 0))->isHidden());
}

void tst_Tree_Relay_WidgetNames::ctrlCCopiesTheSelectedName()
{
    addTerminal(5, 1);
    build();
    QGuiApplication::clipboard()->clear();
    list->setFocus();
    list->setCurrentItem(outputItem(1, 0));
    QTest::keyClick(list, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), label(outputItem(1, 0))->text());
    list->setCurrentItem(groupItem(1));
    QTest::keyClick(list, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), label(groupItem(1))->text());
    // In a name that is being edited the same key copies what is marked there.
    QTest::keyClick(list, Qt::Key_F2);
    edit(groupItem(1))->setText(QStringLiteral("marked"));
    edit(groupItem(1))->selectAll();
    QTest::keyClick(edit(groupItem(1)), Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("marked"));
}

QTEST_MAIN(tst_Tree_Relay_WidgetNames)
#include "tst_Tree_Relay_WidgetNames.moc"
