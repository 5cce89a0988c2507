#include <functional>
#include <memory>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QScrollBar>
#include <QTimer>
#include <QTreeWidget>
#include <QtTest>

#include "model/RelayInfo.h"
#include "support/DebugLines.h"
#include "ui/NodeFrame.h"
#include "ui/NodeTree.h"
#include "ui/Tree_Relay_Widget.h"

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

QString logLine(const QString& rest)
{
    return QStringLiteral("RELAY : Tree_Relay_Widget : (ERROR) ") + rest;
}

/// The popup that is open, once it is there; null if none comes.
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

class tst_Tree_Relay_Widget : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void tree_looks_as_it_should();
    void shows_a_node_for_each_group_and_output();
    void node_of_an_output_holds_its_widgets();
    void start_state_and_return_are_shown();
    void start_state_that_the_table_lacks_is_red();
    void numberless_output_is_shown();

    void add_button_is_there_up_to_31_nodes_data();
    void add_button_is_there_up_to_31_nodes();
    void add_button_asks_for_a_new_terminal();

    void groups_are_green_when_connected();
    void outputs_are_grey_without_scripts();
    void changed_scripts_repaint_the_selected_node_only();
    void changed_scripts_repaint_the_node_of_a_selected_output();
    void changed_scripts_repaint_the_output_worked_on_beside_a_terminal_without_outputs();
    void lost_outputs_are_reported();

    void selected_output_is_reported();
    void selected_terminal_stands_for_its_first_output();
    void selected_terminal_without_outputs_reports_nothing();
    void rebuild_keeps_open_nodes_open();
    void rebuild_keeps_the_selection();
    void rebuild_selects_the_head_unit_when_asked();
    void hidden_terminal_passes_the_selection_to_the_one_before();
    void hidden_terminals_pass_the_selection_to_the_nearest_before();
    void hidden_terminal_behind_one_without_outputs_passes_the_selection_to_the_head_unit();
    void gone_nodes_leave_the_widgets_of_the_others();
    void gone_nodes_leave_what_a_rebuild_leaves_data();
    void gone_nodes_leave_what_a_rebuild_leaves();
    void gone_node_makes_room_for_the_add_button();
    void gone_node_ends_the_renaming_of_another();
    void groups_that_came_as_well_get_their_nodes();
    void rebuild_without_a_model_is_reported();
    void focus_without_nodes_is_reported();

    void chosen_start_state_goes_into_the_model();
    void wheel_is_left_to_the_tree();
    void clicked_return_goes_into_the_model();
    void slots_without_a_sender_do_nothing();

    void menu_on_a_terminal();
    void menu_on_an_output();
    void menu_is_there_for_the_head_unit_too();
    void no_menu_beside_the_nodes();
    void menu_by_mouse_on_the_name();
    void menu_by_mouse_on_the_start_state();
    void menu_asks_to_hide_disconnected_terminals();
    void menu_that_outlives_the_nodes_renames_nothing();

    void rename_from_the_menu();
    void rename_chosen_with_the_enter_key_goes_on();
    void rename_without_a_node_does_nothing();
    void double_click_renames_an_output();
    void double_click_on_a_terminal_does_nothing();
    void name_follows_each_key();
    void enter_ends_renaming_data();
    void enter_ends_renaming();
    void losing_the_focus_ends_renaming();
    void menu_of_the_edit_does_not_end_renaming();
    void pasted_name_is_kept();
    void odd_names_are_shown_as_they_are_data();
    void odd_names_are_shown_as_they_are();
    void filter_keeps_no_event();

    void new_terminal_is_added_and_selected();
    void outputs_of_a_new_terminal_are_in_sight();
    void rebuild_while_renaming_is_harmless();
    void repeated_rebuilds_leave_nothing_behind();
    void parts_of_a_rebuild_may_run_alone();
    void largest_tree_is_whole_in_every_row();
    void narrow_dock_cuts_no_row();
    void clicks_and_keys_in_any_speed_are_harmless();

private:
    struct Change
    {
        RelayInformationPtr relay;
        GroupRelayPtr group;
    };

    GroupRelayPtr addTerminal(quint16 address, int outputs);
    void build(bool headUnit = true);
    QTreeWidgetItem* groupItem(int group) const
    {
        return list->topLevelItem(group);
    }
    QTreeWidgetItem* outputItem(int group, int output) const
    {
        return groupItem(group)->child(output);
    }
    QWidget* frame(QTreeWidgetItem* item) const
    {
        return list->itemWidget(item, 0);
    }
    template <typename Widget>
    Widget* part(QTreeWidgetItem* item, const char* name) const
    {
        return frame(item)->findChild<Widget*>(QString::fromLatin1(name));
    }
    QLabel* label(QTreeWidgetItem* item) const
    {
        return part<QLabel>(item, "label");
    }
    QLineEdit* edit(QTreeWidgetItem* item) const
    {
        return part<QLineEdit>(item, "edit");
    }
    QComboBox* combo(int group, int output) const
    {
        return part<QComboBox>(outputItem(group, output), "comboStartState");
    }
    QPushButton* addButton() const
    {
        return list->findChild<QPushButton*>(QStringLiteral("pushButtonAddGroup"));
    }
    QPoint inRow(QTreeWidgetItem* item) const
    {
        return list->visualItemRect(item).center();
    }
    void runMenu(QTreeWidgetItem* item, const std::function<void(QMenu*)>& use);
    void chooseFromMenu(QTreeWidgetItem* item, int action);
    void startRename(QTreeWidgetItem* item);

    QSharedPointer<RelayInfo> info;
    std::unique_ptr<Tree_Relay_Widget> tree;
    QTreeWidget* list = nullptr;
    QList<Change> changes;
    int renames = 0;
    QList<GroupRelayPtr> hidden;
    int hiddenDisconnected = 0;
};

void tst_Tree_Relay_Widget::init()
{
    info = QSharedPointer<RelayInfo>::create();
    tree = std::make_unique<Tree_Relay_Widget>(info);
    list = tree->findChild<QTreeWidget*>(QStringLiteral("treeWidget"));
    changes.clear();
    hidden.clear();
    renames = 0;
    hiddenDisconnected = 0;
    connect(tree.get(), &Tree_Relay_Widget::sig_changeRelay, this,
            [this](const RelayInformationPtr& relay, const GroupRelayPtr& group) {
                changes.append({relay, group});
            });
    connect(tree.get(), &Tree_Relay_Widget::sig_changeNameDevOrOutput, this, [this] { ++renames; });
    connect(tree.get(), &Tree_Relay_Widget::sig_deleteGroupRelay, this,
            [this](const GroupRelayPtr& group) { hidden.append(group); });
    connect(tree.get(), &Tree_Relay_Widget::sig_deleteDisconnectedGroupRelays, this, [this] { ++hiddenDisconnected; });
    tree->resize(260, 700);
    tree->show();
    QVERIFY(QTest::qWaitForWindowExposed(tree.get()));
    tree->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(tree.get()));
}

void tst_Tree_Relay_Widget::cleanup()
{
    tree.reset();
    info.clear();
}

GroupRelayPtr tst_Tree_Relay_Widget::addTerminal(quint16 address, int outputs)
{
    const GroupRelayPtr group = info->addGroup(QStringLiteral("Terminal"), address);
    for (int i = 0; i < outputs; ++i) {
        info->addOutput(group, QStringLiteral("Output"));
    }
    return group;
}

void tst_Tree_Relay_Widget::build(bool headUnit)
{
    tree->fullUpdateTree(headUnit);
    QCoreApplication::processEvents();
}

void tst_Tree_Relay_Widget::runMenu(QTreeWidgetItem* item, const std::function<void(QMenu*)>& use)
{
    list->scrollToItem(item);
    whenMenuOpens(use);
    tree->sl_prepareMenu(inRow(item));
}

void tst_Tree_Relay_Widget::chooseFromMenu(QTreeWidgetItem* item, int action)
{
    runMenu(item, [action](QMenu* menu) {
        menu->actions().at(action)->trigger();
        menu->close();
    });
}

/// Does what the menu's third action does, but with the window in front again: the platform of the tests gives the
/// focus to nobody when a menu closes.
void tst_Tree_Relay_Widget::startRename(QTreeWidgetItem* item)
{
    runMenu(item, [](QMenu* menu) { menu->close(); });
    tree->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(tree.get()));
    tree->sl_RunRename();
}

void tst_Tree_Relay_Widget::tree_looks_as_it_should()
{
    QCOMPARE(list->styleSheet(),
             QStringLiteral("QTreeView {selection-background-color: rgba(0, 0, 255, 30); selection-color: black;} "
                            "QToolTip {background-color: #F4F4F4}"));
    QVERIFY(list->isHeaderHidden());
    QCOMPARE(list->minimumWidth(), 200);
    QCOMPARE(list->contextMenuPolicy(), Qt::CustomContextMenu);
}

void tst_Tree_Relay_Widget::shows_a_node_for_each_group_and_output()
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

void tst_Tree_Relay_Widget::node_of_an_output_holds_its_widgets()
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

void tst_Tree_Relay_Widget::start_state_and_return_are_shown()
{
    const auto outputs = info->groups().first()->outputs;
    outputs.at(1)->startState = info->outputStateAt(1);
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
    QCOMPARE(outputs.at(0)->startState, info->outputStateAt(0));
    QCOMPARE(outputs.at(1)->startState, info->outputStateAt(1));
}

void tst_Tree_Relay_Widget::start_state_that_the_table_lacks_is_red()
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

void tst_Tree_Relay_Widget::numberless_output_is_shown()
{
    addTerminal(1, 9);
    build();
    QCOMPARE(groupItem(1)->childCount(), 9);
    QCOMPARE(label(outputItem(1, 8))->text(), QStringLiteral("256. "));
    QCOMPARE(combo(1, 8)->currentIndex(), -1);
}

void tst_Tree_Relay_Widget::add_button_is_there_up_to_31_nodes_data()
{
    QTest::addColumn<int>("nodes");
    QTest::addColumn<bool>("there");
    QTest::newRow("head unit alone") << 1 << true;
    QTest::newRow("31 nodes") << 31 << true;
    QTest::newRow("32 nodes") << 32 << false;
    QTest::newRow("33 nodes, as a file may have them") << 33 << false;
}

void tst_Tree_Relay_Widget::add_button_is_there_up_to_31_nodes()
{
    QFETCH(int, nodes);
    QFETCH(bool, there);
    for (int address = 1; address < nodes; ++address) {
        addTerminal(static_cast<quint16>(address), 1);
    }
    build();
    QCOMPARE(list->topLevelItemCount(), nodes + (there ? 1 : 0));
    QCOMPARE(addButton() != nullptr, there);
}

void tst_Tree_Relay_Widget::add_button_asks_for_a_new_terminal()
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

void tst_Tree_Relay_Widget::groups_are_green_when_connected()
{
    addTerminal(1, 1)->connected = true;
    addTerminal(2, 1);
    build();
    QCOMPARE(frame(groupItem(1))->styleSheet(), frameStyle(green));
    QCOMPARE(frame(groupItem(2))->styleSheet(), frameStyle(white));
}

void tst_Tree_Relay_Widget::outputs_are_grey_without_scripts()
{
    info->groups().first()->outputs.at(2)->activatedScripts.append(info->scripts().first());
    build();
    QCOMPARE(frame(outputItem(0, 1))->styleSheet(), frameStyle(grey));
    QCOMPARE(frame(outputItem(0, 2))->styleSheet(), frameStyle(white));
}

void tst_Tree_Relay_Widget::changed_scripts_repaint_the_selected_node_only()
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

void tst_Tree_Relay_Widget::changed_scripts_repaint_the_node_of_a_selected_output()
{
    addTerminal(1, 2);
    build();
    list->setCurrentItem(outputItem(1, 1));
    info->groups().at(1)->outputs.at(0)->activatedScripts.append(info->scripts().first());
    tree->sl_refreshCurrentNodeTree();
    QCOMPARE(frame(outputItem(1, 0))->styleSheet(), frameStyle(white));
}

void tst_Tree_Relay_Widget::changed_scripts_repaint_the_output_worked_on_beside_a_terminal_without_outputs()
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

void tst_Tree_Relay_Widget::lost_outputs_are_reported()
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

void tst_Tree_Relay_Widget::selected_output_is_reported()
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

void tst_Tree_Relay_Widget::selected_terminal_stands_for_its_first_output()
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

void tst_Tree_Relay_Widget::selected_terminal_without_outputs_reports_nothing()
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

void tst_Tree_Relay_Widget::rebuild_keeps_open_nodes_open()
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

void tst_Tree_Relay_Widget::rebuild_keeps_the_selection()
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

void tst_Tree_Relay_Widget::rebuild_selects_the_head_unit_when_asked()
{
    addTerminal(5, 2);
    build();
    list->setCurrentItem(groupItem(1));
    build(true);
    QCOMPARE(list->selectedItems(), QList<QTreeWidgetItem*>{groupItem(0)});
    QCOMPARE(changes.last().group, info->groups().first());
}

void tst_Tree_Relay_Widget::hidden_terminal_passes_the_selection_to_the_one_before()
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

void tst_Tree_Relay_Widget::hidden_terminals_pass_the_selection_to_the_nearest_before()
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

void tst_Tree_Relay_Widget::hidden_terminal_behind_one_without_outputs_passes_the_selection_to_the_head_unit()
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

void tst_Tree_Relay_Widget::gone_nodes_leave_the_widgets_of_the_others()
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

void tst_Tree_Relay_Widget::gone_nodes_leave_what_a_rebuild_leaves_data()
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

void tst_Tree_Relay_Widget::gone_nodes_leave_what_a_rebuild_leaves()
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

void tst_Tree_Relay_Widget::gone_node_makes_room_for_the_add_button()
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

void tst_Tree_Relay_Widget::gone_node_ends_the_renaming_of_another()
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

void tst_Tree_Relay_Widget::groups_that_came_as_well_get_their_nodes()
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

void tst_Tree_Relay_Widget::rebuild_without_a_model_is_reported()
{
    Tree_Relay_Widget orphan(QSharedPointer<RelayInfo>{});
    const DebugLines lines;
    orphan.fullUpdateTree(true);
    QCOMPARE(lines.lines(), QStringList(logLine(QStringLiteral("m_info is NULL to fullUpdateTree()"))));
}

void tst_Tree_Relay_Widget::focus_without_nodes_is_reported()
{
    const DebugLines lines;
    tree->setFocusOnNode(true);
    QCOMPARE(lines.lines(), QStringList(logLine(QStringLiteral("structure is EMPTY to setFocusOnNode()"))));
}

void tst_Tree_Relay_Widget::chosen_start_state_goes_into_the_model()
{
    const RelayInformationPtr relay = info->groups().first()->outputs.at(1);
    build();
    QComboBox* box = combo(0, 1);
    box->setToolTip(QStringLiteral("old"));
    box->setFocus();
    QTest::keyClick(box, Qt::Key_Down);
    QCOMPARE(relay->startState, info->outputStateAt(1));
    QCOMPARE(box->styleSheet(), comboStyle(QStringLiteral("rgba(0, 255, 17, 150)")));
    QVERIFY(box->toolTip().isEmpty());
    box->setCurrentIndex(-1);
    QCOMPARE(box->styleSheet(), comboStyle(QStringLiteral("red")));
    QCOMPARE(relay->startState, info->outputStateAt(1));
    QCOMPARE(info->groups().first()->outputs.at(0)->startState, info->outputStateAt(0));
}

void tst_Tree_Relay_Widget::wheel_is_left_to_the_tree()
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

void tst_Tree_Relay_Widget::clicked_return_goes_into_the_model()
{
    const RelayInformationPtr relay = info->groups().first()->outputs.at(0);
    build();
    auto* box = part<QCheckBox>(outputItem(0, 0), "checkReturn");
    QTest::mouseClick(box, Qt::LeftButton, Qt::NoModifier, QPoint(6, box->height() / 2));
    QVERIFY(relay->returnStartState);
    QTest::keyClick(box, Qt::Key_Space);
    QVERIFY(!relay->returnStartState);
}

void tst_Tree_Relay_Widget::slots_without_a_sender_do_nothing()
{
    build();
    tree->sl_StartStateChanged(1);
    tree->sl_ReturnStateClicked();
    QCOMPARE(info->groups().first()->outputs.first()->startState, info->outputStateAt(0));
    QVERIFY(!info->groups().first()->outputs.first()->returnStartState);
}

void tst_Tree_Relay_Widget::menu_on_a_terminal()
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

void tst_Tree_Relay_Widget::menu_on_an_output()
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

void tst_Tree_Relay_Widget::menu_is_there_for_the_head_unit_too()
{
    build();
    chooseFromMenu(groupItem(0), 0);
    QCOMPARE(hidden, QList<GroupRelayPtr>{info->groups().first()});
}

void tst_Tree_Relay_Widget::no_menu_beside_the_nodes()
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

void tst_Tree_Relay_Widget::menu_by_mouse_on_the_name()
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

void tst_Tree_Relay_Widget::menu_by_mouse_on_the_start_state()
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

void tst_Tree_Relay_Widget::menu_asks_to_hide_disconnected_terminals()
{
    build();
    chooseFromMenu(outputItem(0, 0), 1);
    QCOMPARE(hiddenDisconnected, 1);
    QVERIFY(hidden.isEmpty());
}

void tst_Tree_Relay_Widget::menu_that_outlives_the_nodes_renames_nothing()
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

void tst_Tree_Relay_Widget::rename_from_the_menu()
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

void tst_Tree_Relay_Widget::rename_chosen_with_the_enter_key_goes_on()
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

void tst_Tree_Relay_Widget::rename_without_a_node_does_nothing()
{
    tree->sl_RunRename();
    build();
    tree->sl_RunRename();
    QVERIFY(edit(groupItem(0))->isHidden());
    QCOMPARE(renames, 0);
}

void tst_Tree_Relay_Widget::double_click_renames_an_output()
{
    build();
    QTest::mouseDClick(label(outputItem(0, 1)), Qt::LeftButton);
    QVERIFY(label(outputItem(0, 1))->isHidden());
    QVERIFY(edit(outputItem(0, 1))->hasFocus());
    QCOMPARE(edit(outputItem(0, 1))->text(), QStringLiteral("Internal relay"));
}

void tst_Tree_Relay_Widget::double_click_on_a_terminal_does_nothing()
{
    build();
    QTest::mouseDClick(label(groupItem(0)), Qt::LeftButton);
    QVERIFY(edit(groupItem(0))->isHidden());
    QVERIFY(!label(groupItem(0))->isHidden());
    QVERIFY(groupItem(0)->isExpanded());
}

void tst_Tree_Relay_Widget::name_follows_each_key()
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

void tst_Tree_Relay_Widget::enter_ends_renaming_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("return") << static_cast<int>(Qt::Key_Return);
    QTest::newRow("enter of the number pad") << static_cast<int>(Qt::Key_Enter);
}

void tst_Tree_Relay_Widget::enter_ends_renaming()
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

void tst_Tree_Relay_Widget::losing_the_focus_ends_renaming()
{
    build();
    QTest::mouseDClick(label(outputItem(0, 0)), Qt::LeftButton);
    combo(0, 0)->setFocus();
    QVERIFY(edit(outputItem(0, 0))->isHidden());
    QVERIFY(label(outputItem(0, 0))->isVisible());
    QCOMPARE(renames, 0);
}

void tst_Tree_Relay_Widget::menu_of_the_edit_does_not_end_renaming()
{
    build();
    QTest::mouseDClick(label(outputItem(0, 0)), Qt::LeftButton);
    QFocusEvent out(QEvent::FocusOut, Qt::PopupFocusReason);
    QApplication::sendEvent(edit(outputItem(0, 0)), &out);
    QVERIFY(edit(outputItem(0, 0))->isVisible());
}

void tst_Tree_Relay_Widget::pasted_name_is_kept()
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

void tst_Tree_Relay_Widget::odd_names_are_shown_as_they_are_data()
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

void tst_Tree_Relay_Widget::odd_names_are_shown_as_they_are()
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

void tst_Tree_Relay_Widget::filter_keeps_no_event()
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

void tst_Tree_Relay_Widget::new_terminal_is_added_and_selected()
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

void tst_Tree_Relay_Widget::outputs_of_a_new_terminal_are_in_sight()
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

void tst_Tree_Relay_Widget::rebuild_while_renaming_is_harmless()
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

void tst_Tree_Relay_Widget::repeated_rebuilds_leave_nothing_behind()
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

void tst_Tree_Relay_Widget::parts_of_a_rebuild_may_run_alone()
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

void tst_Tree_Relay_Widget::largest_tree_is_whole_in_every_row()
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

void tst_Tree_Relay_Widget::narrow_dock_cuts_no_row()
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

void tst_Tree_Relay_Widget::clicks_and_keys_in_any_speed_are_harmless()
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
