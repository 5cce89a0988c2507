#include "support/DebugLines.h"
#include "ui/tree/NodeFrame.h"
#include "ui/tree/ShownTree.h"

#include <QtTest>

/// What is selected, open and told when nodes are chosen, come and go.
class tst_Tree_Relay_WidgetRebuild : public ShownTree
{
    Q_OBJECT

private slots:
    void selectedOutputIsReported();
    void selectedTerminalStandsForItsFirstOutput();
    void selectedTerminalWithoutOutputsReportsNothing();
    void rebuildKeepsOpenNodesOpen();
    void rebuildKeepsTheSelection();
    void rebuildSelectsTheHeadUnitWhenAsked();
    void hiddenTerminalPassesTheSelectionToTheOneBefore();
    void hiddenTerminalsPassTheSelectionToTheNearestBefore();
    void hiddenTerminalBehindOneWithoutOutputsPassesTheSelectionToTheHeadUnit();
    void goneNodesLeaveTheWidgetsOfTheOthers();
    void goneNodesLeaveWhatARebuildLeaves_data();
    void goneNodesLeaveWhatARebuildLeaves();
    void goneNodeMakesRoomForTheAddButton();
    void groupsThatCameAsWellGetTheirNodes();
    void rebuildWithoutAModelIsReported();
    void focusWithoutNodesIsReported();
    void newTerminalIsAddedAndSelected();
    void outputsOfANewTerminalAreInSight();
    void repeatedRebuildsLeaveNothingBehind();
    void partsOfARebuildMayRunAlone();
};

void tst_Tree_Relay_WidgetRebuild::selectedOutputIsReported()
{
    const GroupRelayPtr group = addTerminal(1, 2);
    build();
    changes.clear();
    groupItem(1)->setExpanded(true);
    list->scrollToItem(outputItem(1, 1));
    QTest::mouseClick(label(outputItem(1, 1)), Qt::LeftButton);
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.first().relay, group->outputs.at(1));
    QCOMPARE(changes.first().group, group);
}

void tst_Tree_Relay_WidgetRebuild::selectedTerminalStandsForItsFirstOutput()
{
    const GroupRelayPtr group = addTerminal(1, 2);
    build();
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.first().relay, info->groups().first()->outputs.first());
    list->scrollToItem(groupItem(1));
    QTest::mouseClick(label(groupItem(1)), Qt::LeftButton);
    QCOMPARE(changes.size(), 2);
    QCOMPARE(changes.last().relay, group->outputs.first());
    QCOMPARE(changes.last().group, group);
}

void tst_Tree_Relay_WidgetRebuild::selectedTerminalWithoutOutputsReportsNothing()
{
    addTerminal(1, 0);
    build();
    changes.clear();
    const DebugLines lines;
    list->setCurrentItem(groupItem(1));
    QVERIFY(changes.isEmpty());
    QCOMPARE(lines.lines(), QStringList(logLine(QStringLiteral("Relay NOT FOUND to "
                                                               "on_treeWidget_itemSelectionChanged()_(1)"))));
    // There is no current terminal any more, so the next rebuild falls back to the head unit.
    build(false);
    QVERIFY(groupItem(0)->isSelected());
    QCOMPARE(changes.size(), 1);
}

void tst_Tree_Relay_WidgetRebuild::rebuildKeepsOpenNodesOpen()
{
    addTerminal(1, 1);
    addTerminal(2, 1)->expand = false;
    build();
    QVERIFY(groupItem(0)->isExpanded());
    QVERIFY(groupItem(1)->isExpanded());
    QVERIFY(!groupItem(2)->isExpanded());
    groupItem(1)->setExpanded(false);
    groupItem(2)->setExpanded(true);
    build();
    QVERIFY(!groupItem(1)->isExpanded());
    QVERIFY(groupItem(2)->isExpanded());
    QVERIFY(!info->findGroup(1)->expand);
    QVERIFY(info->findGroup(2)->expand);
}

void tst_Tree_Relay_WidgetRebuild::rebuildKeepsTheSelection()
{
    const GroupRelayPtr group = addTerminal(5, 2);
    build();
    list->setCurrentItem(outputItem(1, 1));
    addTerminal(2, 1);
    changes.clear();
    build(false);
    QCOMPARE(list->selectedItems(), QList<QTreeWidgetItem*>{groupItem(2)});
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.first().group, group);
}

void tst_Tree_Relay_WidgetRebuild::rebuildSelectsTheHeadUnitWhenAsked()
{
    addTerminal(5, 2);
    build();
    list->setCurrentItem(groupItem(1));
    build(true);
    QCOMPARE(list->selectedItems(), QList<QTreeWidgetItem*>{groupItem(0)});
    QCOMPARE(changes.last().group, info->groups().first());
}

void tst_Tree_Relay_WidgetRebuild::hiddenTerminalPassesTheSelectionToTheOneBefore()
{
    addTerminal(3, 1);
    addTerminal(5, 1);
    addTerminal(9, 1);
    build();
    list->setCurrentItem(groupItem(2));
    info->removeGroup(info->findGroup(5));
    build(false);
    QCOMPARE(list->selectedItems(), QList<QTreeWidgetItem*>{groupItem(1)});
    QCOMPARE(changes.last().group, info->findGroup(3));
}

void tst_Tree_Relay_WidgetRebuild::hiddenTerminalsPassTheSelectionToTheNearestBefore()
{
    addTerminal(1, 1)->connected = true;
    addTerminal(2, 1);
    addTerminal(3, 1);
    addTerminal(4, 1)->connected = true;
    build();
    list->setCurrentItem(groupItem(3));
    info->removeDisconnectedGroups();
    build(false);
    QCOMPARE(list->selectedItems(), QList<QTreeWidgetItem*>{groupItem(1)});
    QCOMPARE(changes.last().group, info->findGroup(1));
}

void tst_Tree_Relay_WidgetRebuild::hiddenTerminalBehindOneWithoutOutputsPassesTheSelectionToTheHeadUnit()
{
    addTerminal(1, 1);
    addTerminal(2, 0);
    addTerminal(3, 1);
    build();
    list->setCurrentItem(outputItem(3, 0));
    info->removeGroup(info->findGroup(3));
    build(false);
    QCOMPARE(list->selectedItems(), QList<QTreeWidgetItem*>{groupItem(0)});
    QCOMPARE(changes.last().relay, info->groups().first()->outputs.first());
}

void tst_Tree_Relay_WidgetRebuild::goneNodesLeaveTheWidgetsOfTheOthers()
{
    addTerminal(3, 1);
    addTerminal(5, 2);
    addTerminal(9, 1);
    build();
    list->expandAll();
    QCoreApplication::processEvents();
    const QPointer<QWidget> before = frame(outputItem(1, 0));
    const QPointer<QWidget> behind = frame(groupItem(3));
    const QPointer<QWidget> goneTerminal = frame(groupItem(2));
    const QPointer<QWidget> goneOutput = frame(outputItem(2, 1));
    info->removeGroup(info->findGroup(5));
    tree->removeGoneNodes();
    QTRY_VERIFY(goneTerminal.isNull() && goneOutput.isNull());
    QCOMPARE(list->topLevelItemCount(), 4);
    QCOMPARE(frame(outputItem(1, 0)), before.data());
    QCOMPARE(frame(groupItem(2)), behind.data());
    QCOMPARE(label(groupItem(2))->text(), QStringLiteral("Terminal (9)"));
}

void tst_Tree_Relay_WidgetRebuild::goneNodesLeaveWhatARebuildLeaves_data()
{
    QTest::addColumn<int>("group");
    QTest::addColumn<int>("output");
    QTest::newRow("head unit chosen") << 0 << -1;
    QTest::newRow("another terminal chosen") << 2 << -1;
    QTest::newRow("an output of another terminal chosen") << 2 << 1;
    QTest::newRow("the gone terminal chosen") << 3 << -1;
    QTest::newRow("an output of the gone terminal chosen") << 3 << 0;
    QTest::newRow("a terminal behind the gone one chosen") << 4 << -1;
}

void tst_Tree_Relay_WidgetRebuild::goneNodesLeaveWhatARebuildLeaves()
{
    QFETCH(int, group);
    QFETCH(int, output);
    QStringList outcomes;
    for (const bool rebuilding : {true, false}) {
        cleanup();
        init();
        for (const quint16 address : {3, 5, 7, 9}) {
            addTerminal(address, 2);
        }
        build();
        groupItem(1)->setExpanded(true);
        groupItem(0)->setExpanded(false);
        list->setCurrentItem(output < 0 ? groupItem(group) : outputItem(group, output));
        changes.clear();
        info->removeGroup(info->findGroup(7));
        if (rebuilding) {
            build(false);
        } else {
            tree->removeGoneNodes();
        }
        QCOMPARE(changes.size(), 1);
        QCOMPARE(changes.first().relay, changes.first().group->outputs.first());
        const QList<QTreeWidgetItem*> selected = list->selectedItems();
        QCOMPARE(selected.size(), 1);
        QCOMPARE(list->currentItem(), selected.first());
        QStringList outcome{label(selected.first())->text(), QString::number(changes.first().group->address)};
        const QList<GroupRelayPtr> groups = info->groups();
        for (int i = 0; i < groups.size(); ++i) {
            outcome.append(label(groupItem(i))->text());
            outcome.append(groupItem(i)->isExpanded() ? QStringLiteral("open") : QStringLiteral("shut"));
            outcome.append(groups.at(i)->expand ? QStringLiteral("open") : QStringLiteral("shut"));
        }
        outcomes.append(outcome.join(QLatin1Char('|')));
    }
    QCOMPARE(outcomes.last(), outcomes.first());
}

void tst_Tree_Relay_WidgetRebuild::goneNodeMakesRoomForTheAddButton()
{
    for (quint16 address = 1; address < 32; ++address) {
        addTerminal(address, 1);
    }
    build();
    QVERIFY(addButton() == nullptr);
    info->removeGroup(info->findGroup(20));
    tree->removeGoneNodes();
    QVERIFY(addButton() != nullptr);
    info->removeGroup(info->findGroup(21));
    tree->removeGoneNodes();
    QCOMPARE(list->topLevelItemCount(), 31); // one button is enough
}

void tst_Tree_Relay_WidgetRebuild::groupsThatCameAsWellGetTheirNodes()
{
    addTerminal(3, 1);
    build();
    info->removeGroup(info->findGroup(3));
    addTerminal(4, 2);
    tree->removeGoneNodes();
    QCOMPARE(list->topLevelItemCount(), 3);
    QCOMPARE(label(groupItem(1))->text(), QStringLiteral("Terminal (4)"));
    QCOMPARE(groupItem(1)->childCount(), 2);
}

void tst_Tree_Relay_WidgetRebuild::rebuildWithoutAModelIsReported()
{
    Tree_Relay_Widget orphan(QSharedPointer<RelayInfo>{});
    const DebugLines lines;
    orphan.fullUpdateTree(true);
    QCOMPARE(lines.lines(), QStringList(logLine(QStringLiteral("m_info is NULL to fullUpdateTree()"))));
}

void tst_Tree_Relay_WidgetRebuild::focusWithoutNodesIsReported()
{
    const DebugLines lines;
    tree->setFocusOnNode(true);
    QCOMPARE(lines.lines(), QStringList(logLine(QStringLiteral("structure is EMPTY to setFocusOnNode()"))));
}

void tst_Tree_Relay_WidgetRebuild::newTerminalIsAddedAndSelected()
{
    addTerminal(9, 1);
    build();
    changes.clear();
    tree->sl_CreateNewGroupAndRelays(QStringLiteral("Siren"), 5, {QStringLiteral("Lamp"), QStringLiteral("Horn")});
    const GroupRelayPtr group = info->findGroup(5);
    QCOMPARE(group->name, QStringLiteral("Siren"));
    QVERIFY(!group->connected);
    QCOMPARE(group->outputs.size(), 2);
    QCOMPARE(group->outputs.at(1)->name, QStringLiteral("Horn"));
    QCOMPARE(list->selectedItems(), QList<QTreeWidgetItem*>{groupItem(1)});
    QVERIFY(groupItem(1)->isExpanded());
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.first().relay, group->outputs.first());
    QCOMPARE(changes.first().group, group);
}

void tst_Tree_Relay_WidgetRebuild::outputsOfANewTerminalAreInSight()
{
    for (const quint16 address : {1, 2, 3, 4, 6, 7, 8, 9}) {
        addTerminal(address, 2);
    }
    build();
    for (const short address : {5, 30}) {
        tree->sl_CreateNewGroupAndRelays(QStringLiteral("Siren"), address,
                                         {QStringLiteral("Lamp"), QStringLiteral("Horn")});
        QTreeWidgetItem* const added = list->selectedItems().constFirst();
        const QRect view = list->viewport()->rect();
        for (QTreeWidgetItem* item : {added, added->child(0), added->child(1)}) {
            QVERIFY(view.contains(frame(item)->geometry()));
            QVERIFY(frame(item)->isVisible());
        }
    }
}

void tst_Tree_Relay_WidgetRebuild::repeatedRebuildsLeaveNothingBehind()
{
    addTerminal(1, 2);
    build();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    const auto widgets = tree->findChildren<QWidget*>().size();
    for (int i = 0; i < 5; ++i) {
        build(false);
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(tree->findChildren<QWidget*>().size(), widgets);
}

void tst_Tree_Relay_WidgetRebuild::partsOfARebuildMayRunAlone()
{
    tree->updateStructTree();
    tree->updateStructTree();
    tree->refreshTree();
    QVERIFY(info->groups().first()->expand); // nodes that were never placed say nothing about what is open
    build();
    const auto frames = tree->findChildren<NodeFrame*>().size();
    QCOMPARE(frames, 9);
    tree->updateStructTree();
    build();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(tree->findChildren<NodeFrame*>().size(), frames);
    QVERIFY(groupItem(0)->isSelected());
}

QTEST_MAIN(tst_Tree_Relay_WidgetRebuild)
#include "tst_Tree_Relay_WidgetRebuild.moc"
