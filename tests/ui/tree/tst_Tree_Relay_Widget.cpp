#include "support/DebugLines.h"
#include "ui/tree/NodeFrame.h"
#include "ui/tree/NodeTree.h"
#include "ui/tree/ShownTree.h"

#include <QScrollBar>
#include <QtTest>

namespace
{

const QString green = QStringLiteral("rgba(0, 255, 17, 150)");
const QString white = QStringLiteral("rgba(255, 255, 255, 100)");
const QString grey = QStringLiteral("rgba(187, 187, 187, 150)");

QString frameStyle(const QString& color)
{
    return QStringLiteral("QFrame,QLabel,QPushButton {background-color: %1} QToolTip {background-color: #F4F4F4}")
        .arg(color);
}

QString comboStyle(const QString& color)
{
    return QStringLiteral("QComboBox {combobox-popup: 0; selection-color: black; "
                          "selection-background-color: rgba(0,0,0,20);background-color: %1;}")
        .arg(color);
}

} // namespace

/// What the tree shows, and what is set in its outputs.
class tst_Tree_Relay_Widget : public ShownTree
{
    Q_OBJECT

private slots:
    void treeLooksAsItShould();
    void showsANodeForEachGroupAndOutput();
    void nodeOfAnOutputHoldsItsWidgets();
    void startStateAndReturnAreShown();
    void startStateThatTheTableLacksIsRed();
    void numberlessOutputIsShown();
    void addButtonIsThereUpTo31Nodes_data();
    void addButtonIsThereUpTo31Nodes();
    void addButtonAsksForANewTerminal();
    void groupsAreGreenWhenConnected();
    void outputsAreGreyWithoutScripts();
    void changedScriptsRepaintTheSelectedNodeOnly();
    void changedScriptsRepaintTheNodeOfASelectedOutput();
    void changedScriptsRepaintTheOutputWorkedOnBesideATerminalWithoutOutputs();
    void lostOutputsAreReported();
    void chosenStartStateGoesIntoTheModel();
    void wheelIsLeftToTheTree();
    void clickedReturnGoesIntoTheModel();
    void slotsWithoutASenderDoNothing();
    void largestTreeIsWholeInEveryRow();
    void narrowDockCutsNoRow();
    void clicksAndKeysInAnySpeedAreHarmless();
};

void tst_Tree_Relay_Widget::treeLooksAsItShould()
{
    QCOMPARE(list->styleSheet(),
             QStringLiteral("QTreeView {selection-background-color: rgba(0, 0, 255, 30); selection-color: black;} "
                            "QToolTip {background-color: #F4F4F4}"));
    QVERIFY(list->isHeaderHidden());
    QCOMPARE(list->minimumWidth(), 200);
    QCOMPARE(list->contextMenuPolicy(), Qt::CustomContextMenu);
}

void tst_Tree_Relay_Widget::showsANodeForEachGroupAndOutput()
{
    addTerminal(7, 2);
    addTerminal(3, 1);
    build();
    QCOMPARE(list->topLevelItemCount(), 4); // the add button has a row of its own
    QCOMPARE(label(groupItem(0))->text(), QStringLiteral("HUBN-NX-Q"));
    QCOMPARE(groupItem(0)->childCount(), 8);
    QCOMPARE(label(outputItem(0, 0))->text(), QStringLiteral("1. Internal relay"));
    QCOMPARE(label(outputItem(0, 7))->text(), QStringLiteral("8. Internal relay"));
    QCOMPARE(label(groupItem(1))->text(), QStringLiteral("Terminal (3)"));
    QCOMPARE(groupItem(1)->childCount(), 1);
    QCOMPARE(label(groupItem(2))->text(), QStringLiteral("Terminal (7)"));
    QCOMPARE(label(outputItem(2, 1))->text(), QStringLiteral("2. Output"));
    QVERIFY(edit(groupItem(0))->isHidden());
    QVERIFY(edit(outputItem(0, 0))->isHidden());
    QVERIFY(!label(outputItem(0, 0))->isHidden());
}

void tst_Tree_Relay_Widget::nodeOfAnOutputHoldsItsWidgets()
{
    build();
    QTreeWidgetItem* item = outputItem(0, 0);
    QCOMPARE(label(item)->styleSheet(), QStringLiteral("QLabel{background-color: rgba(0,0,0,0)}"));
    QCOMPARE(label(groupItem(0))->styleSheet(), label(item)->styleSheet());
    auto* settings = qobject_cast<QFrame*>(combo(0, 0)->parentWidget());
    QCOMPARE(settings->styleSheet(),
             QStringLiteral("QFrame{background-color: rgba(0,0,0,0); border: 1px solid black};"));
    QVERIFY(!combo(0, 0)->isEditable());
    QStringList captions;
    const auto labels = settings->findChildren<QLabel*>();
    for (const QLabel* caption : labels) {
        captions.append(caption->text());
        QCOMPARE(caption->styleSheet(), QStringLiteral("QLabel{background-color: rgba(0,0,0,0); border: 0px;}"));
    }
    QCOMPARE(captions, QStringList({QStringLiteral("Initial state:"), QStringLiteral("Return to initial state:")}));
    QList<QWidget*> widgets = {label(item), edit(item), combo(0, 0), part<QCheckBox>(item, "checkReturn")};
    for (QLabel* caption : labels) {
        widgets.append(caption);
    }
    for (const QWidget* widget : std::as_const(widgets)) {
        QCOMPARE(widget->font().family(), QStringLiteral("MS Shell Dlg 2"));
    }
    QVERIFY(label(item)->mapTo(frame(item), QPoint()).y() < settings->y());
}

void tst_Tree_Relay_Widget::startStateAndReturnAreShown()
{
    const auto outputs = info->groups().first()->outputs;
    outputs.at(1)->startState = info->outputStates().value(1);
    outputs.at(1)->returnStartState = true;
    build();
    const QComboBox* off = combo(0, 0);
    QCOMPARE(off->count(), 2);
    QCOMPARE(off->currentText(), QStringLiteral("OFF"));
    QCOMPARE(off->styleSheet(), comboStyle(QStringLiteral("rgba(240, 240, 240, 255)")));
    QCOMPARE(off->itemData(1, Qt::BackgroundRole).value<QColor>(), QColor(0, 255, 17, 150));
    QCOMPARE(off->itemData(1, Qt::ForegroundRole).value<QColor>(), QColor(Qt::black));
    QVERIFY(!part<QCheckBox>(outputItem(0, 0), "checkReturn")->isChecked());
    const QComboBox* on = combo(0, 1);
    QCOMPARE(on->currentText(), QStringLiteral("ON"));
    QCOMPARE(on->styleSheet(), comboStyle(QStringLiteral("rgba(0, 255, 17, 150)")));
    QVERIFY(part<QCheckBox>(outputItem(0, 1), "checkReturn")->isChecked());
    // To show is not to edit.
    QCOMPARE(outputs.at(0)->startState, info->outputStates().value(0));
    QCOMPARE(outputs.at(1)->startState, info->outputStates().value(1));
}

void tst_Tree_Relay_Widget::startStateThatTheTableLacksIsRed()
{
    const auto outputs = info->groups().first()->outputs;
    outputs.at(0)->startState.clear();
    const auto strange = ParamItemPtr::create();
    strange->name = QStringLiteral("Blinking");
    outputs.at(1)->startState = strange;
    build();
    for (int output : {0, 1}) {
        QCOMPARE(combo(0, output)->currentIndex(), -1);
        QCOMPARE(combo(0, output)->styleSheet(), comboStyle(QStringLiteral("red")));
    }
    QVERIFY(outputs.at(0)->startState.isNull());
    QCOMPARE(outputs.at(1)->startState, strange);
}

void tst_Tree_Relay_Widget::numberlessOutputIsShown()
{
    addTerminal(1, 9);
    build();
    QCOMPARE(groupItem(1)->childCount(), 9);
    QCOMPARE(label(outputItem(1, 8))->text(), QStringLiteral("256. "));
    QCOMPARE(combo(1, 8)->currentIndex(), -1);
}

void tst_Tree_Relay_Widget::addButtonIsThereUpTo31Nodes_data()
{
    QTest::addColumn<int>("nodes");
    QTest::addColumn<bool>("there");
    QTest::newRow("head unit alone") << 1 << true;
    QTest::newRow("31 nodes") << 31 << true;
    QTest::newRow("32 nodes") << 32 << false;
    QTest::newRow("33 nodes, as a file may have them") << 33 << false;
}

void tst_Tree_Relay_Widget::addButtonIsThereUpTo31Nodes()
{
    QFETCH(int, nodes);
    QFETCH(bool, there);
    for (int address = 1; address < nodes; ++address) {
        addTerminal(quint16(address), 1);
    }
    build();
    QCOMPARE(list->topLevelItemCount(), nodes + (there ? 1 : 0));
    QCOMPARE(addButton() != nullptr, there);
}

void tst_Tree_Relay_Widget::addButtonAsksForANewTerminal()
{
    build();
    QSignalSpy spy(tree.get(), &Tree_Relay_Widget::sig_newGroupRelay);
    list->scrollToBottom();
    QPushButton* button = addButton();
    QCOMPARE(button->text(), QStringLiteral("Add executive\nterminal"));
    QVERIFY(!button->icon().isNull());
    QCOMPARE(button->maximumWidth(), 140);
    QCOMPARE(button->minimumHeight(), 35);
    QCOMPARE(button->y(), 9);
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(spy.count(), 1);
}

void tst_Tree_Relay_Widget::groupsAreGreenWhenConnected()
{
    addTerminal(1, 1)->connected = true;
    addTerminal(2, 1);
    build();
    QCOMPARE(frame(groupItem(1))->styleSheet(), frameStyle(green));
    QCOMPARE(frame(groupItem(2))->styleSheet(), frameStyle(white));
}

void tst_Tree_Relay_Widget::outputsAreGreyWithoutScripts()
{
    info->groups().first()->outputs.at(2)->activatedScripts.append(info->scripts().first());
    build();
    QCOMPARE(frame(outputItem(0, 1))->styleSheet(), frameStyle(grey));
    QCOMPARE(frame(outputItem(0, 2))->styleSheet(), frameStyle(white));
}

void tst_Tree_Relay_Widget::changedScriptsRepaintTheSelectedNodeOnly()
{
    addTerminal(1, 1);
    build();
    const auto groups = info->groups();
    groups.at(0)->outputs.at(5)->activatedScripts.append(info->scripts().first());
    groups.at(1)->outputs.at(0)->activatedScripts.append(info->scripts().first());
    tree->sl_refreshCurrentNodeTree();
    QCOMPARE(frame(outputItem(0, 5))->styleSheet(), frameStyle(white));
    QCOMPARE(frame(outputItem(1, 0))->styleSheet(), frameStyle(grey));
    groups.at(0)->outputs.at(5)->activatedScripts.clear();
    tree->sl_refreshCurrentNodeTree();
    QCOMPARE(frame(outputItem(0, 5))->styleSheet(), frameStyle(grey));
}

void tst_Tree_Relay_Widget::changedScriptsRepaintTheNodeOfASelectedOutput()
{
    addTerminal(1, 2);
    build();
    list->setCurrentItem(outputItem(1, 1));
    info->groups().at(1)->outputs.at(0)->activatedScripts.append(info->scripts().first());
    tree->sl_refreshCurrentNodeTree();
    QCOMPARE(frame(outputItem(1, 0))->styleSheet(), frameStyle(white));
}

void tst_Tree_Relay_Widget::changedScriptsRepaintTheOutputWorkedOnBesideATerminalWithoutOutputs()
{
    const RelayInformationPtr relay = addTerminal(1, 2)->outputs.at(1);
    addTerminal(2, 0);
    build();
    list->setCurrentItem(outputItem(1, 1));
    list->setCurrentItem(groupItem(2));
    QCOMPARE(changes.constLast().relay, relay);
    relay->activatedScripts.append(info->scripts().first());
    tree->sl_refreshCurrentNodeTree();
    QCOMPARE(frame(outputItem(1, 1))->styleSheet(), frameStyle(white));
    relay->activatedScripts.clear();
    tree->sl_refreshCurrentNodeTree();
    QCOMPARE(frame(outputItem(1, 1))->styleSheet(), frameStyle(grey));
}

void tst_Tree_Relay_Widget::lostOutputsAreReported()
{
    const GroupRelayPtr group = addTerminal(1, 3);
    group->outputs[0].clear();
    build();
    const DebugLines lines;
    tree->refreshTree();
    QCOMPARE(lines.lines(), QStringList(logLine(QStringLiteral("Relay NOT FOUND to refreshTree()"))));
    list->setCurrentItem(groupItem(1));
    list->setCurrentItem(outputItem(1, 0));
    tree->sl_refreshCurrentNodeTree();
    list->setCurrentItem(outputItem(1, 1));
    tree->sl_refreshCurrentNodeTree();
    QCOMPARE(lines.lines().mid(1),
             QStringList({logLine(QStringLiteral("Relay NOT FOUND to on_treeWidget_itemSelectionChanged()_(1)")),
                          logLine(QStringLiteral("Relay NOT FOUND to on_treeWidget_itemSelectionChanged()_(2)")),
                          logLine(QStringLiteral("Relay NOT FOUND to sl_refreshCurrentNodeTree()_(2)")),
                          logLine(QStringLiteral("Relay NOT FOUND to sl_refreshCurrentNodeTree()_(2)"))}));
    list->setCurrentItem(groupItem(1));
    tree->sl_refreshCurrentNodeTree();
    QCOMPARE(lines.lines().constLast(), logLine(QStringLiteral("Relay NOT FOUND to sl_refreshCurrentNodeTree()_(1)")));
}

void tst_Tree_Relay_Widget::chosenStartStateGoesIntoTheModel()
{
    const RelayInformationPtr relay = info->groups().first()->outputs.at(1);
    build();
    QComboBox* box = combo(0, 1);
    box->setToolTip(QStringLiteral("old"));
    box->setFocus();
    QTest::keyClick(box, Qt::Key_Down);
    QCOMPARE(relay->startState, info->outputStates().value(1));
    QCOMPARE(box->styleSheet(), comboStyle(QStringLiteral("rgba(0, 255, 17, 150)")));
    QVERIFY(box->toolTip().isEmpty());
    box->setCurrentIndex(-1);
    QCOMPARE(box->styleSheet(), comboStyle(QStringLiteral("red")));
    QCOMPARE(relay->startState, info->outputStates().value(1));
    QCOMPARE(info->groups().first()->outputs.at(0)->startState, info->outputStates().value(0));
}

void tst_Tree_Relay_Widget::wheelIsLeftToTheTree()
{
    build();
    QComboBox* box = combo(0, 1);
    box->setFocus();
    const QPoint place = box->rect().center();
    QWheelEvent turn(place, box->mapToGlobal(place), QPoint(), QPoint(0, -120), Qt::NoButton, Qt::NoModifier,
                     Qt::NoScrollPhase, false);
    QApplication::sendEvent(box, &turn);
    QVERIFY(!turn.isAccepted());
    QCOMPARE(box->currentIndex(), 0);
}

void tst_Tree_Relay_Widget::clickedReturnGoesIntoTheModel()
{
    const RelayInformationPtr relay = info->groups().first()->outputs.at(0);
    build();
    auto* box = part<QCheckBox>(outputItem(0, 0), "checkReturn");
    QTest::mouseClick(box, Qt::LeftButton, Qt::NoModifier, QPoint(6, box->height() / 2));
    QVERIFY(relay->returnStartState);
    QTest::keyClick(box, Qt::Key_Space);
    QVERIFY(!relay->returnStartState);
}

void tst_Tree_Relay_Widget::slotsWithoutASenderDoNothing()
{
    build();
    tree->sl_StartStateChanged(1);
    tree->sl_ReturnStateClicked();
    QCOMPARE(info->groups().first()->outputs.first()->startState, info->outputStates().value(0));
    QVERIFY(!info->groups().first()->outputs.first()->returnStartState);
}

void tst_Tree_Relay_Widget::largestTreeIsWholeInEveryRow()
{
    for (quint16 address = 1; address < 32; ++address) {
        addTerminal(address, 8);
    }
    build();
    for (int group = 0; group < 32; ++group) {
        for (int output = 0; output < 8; ++output) {
            QTreeWidgetItem* item = outputItem(group, output);
            list->scrollToItem(item);
            QVERIFY(frame(item)->isVisible());
            QCOMPARE(frame(item)->geometry(), list->visualItemRect(item).adjusted(0, 0, 0, -NodeTree::gap));
            QVERIFY(combo(group, output)->isVisible());
            QVERIFY(frame(item)->height() >= qobject_cast<NodeFrame*>(frame(item))->naturalSize().height());
        }
    }
}

void tst_Tree_Relay_Widget::narrowDockCutsNoRow()
{
    build();
    tree->resize(200, 700);
    QCoreApplication::processEvents();
    for (int output : {0, 3}) {
        const auto* node = qobject_cast<NodeFrame*>(frame(outputItem(0, output)));
        QVERIFY(node->width() >= node->naturalSize().width());
    }
    tree->resize(400, 700);
    QCoreApplication::processEvents();
    QVERIFY(!list->horizontalScrollBar()->isVisible());
    QCOMPARE(frame(outputItem(0, 0))->geometry().right(), list->viewport()->rect().right());
}

void tst_Tree_Relay_Widget::clicksAndKeysInAnySpeedAreHarmless()
{
    addTerminal(1, 2);
    build();
    for (int i = 0; i < 50; ++i) {
        QTest::mouseDClick(label(outputItem(0, i % 8)), Qt::LeftButton);
        QTest::keyClick(edit(outputItem(0, i % 8)), Qt::Key_B);
        QTest::keyPress(list, i % 2 == 0 ? Qt::Key_Down : Qt::Key_Up);
        QTest::keyClick(list, i % 3 == 0 ? Qt::Key_Left : Qt::Key_Right);
        if (i % 10 == 0) {
            tree->fullUpdateTree(i % 20 == 0);
        }
    }
    QCOMPARE(info->groups().size(), 2);
    QCOMPARE(list->selectedItems().size(), 1);
    QCOMPARE(renames, 50);
}

QTEST_MAIN(tst_Tree_Relay_Widget)
#include "tst_Tree_Relay_Widget.moc"
