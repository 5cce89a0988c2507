#include "ui/Tree_Relay_Widget.h"

#include <algorithm>
#include <utility>

#include <QCheckBox>
#include <QComboBox>
#include <QDebug>
#include <QFrame>
#include <QHeaderView>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "model/RelayInfo.h"
#include "texts/texts.h"
#include "ui/NodeFrame.h"
#include "ui/NodeTree.h"
#include "ui_Tree_Relay_Widget.h"
#include "widgets/Look.h"

namespace
{

// The head unit and 31 addresses of terminals.
constexpr int maximumNodes = 32;

bool isEnter(int key)
{
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

} // namespace

Tree_Relay_Widget::Tree_Relay_Widget(QSharedPointer<RelayInfo> info, QWidget* parent)
    : QWidget(parent), ui(std::make_unique<Ui::Tree_Relay_Widget>()), m_info(std::move(info))
{
    ui->setupUi(this);
    connect(ui->treeWidget, &QWidget::customContextMenuRequested, this, &Tree_Relay_Widget::sl_prepareMenu);
}

Tree_Relay_Widget::~Tree_Relay_Widget()
{
    clearNodes();
}

void Tree_Relay_Widget::fullUpdateTree(bool focusHeadUnit)
{
    if (!m_info) {
        qDebug("RELAY : Tree_Relay_Widget : (ERROR) m_info is NULL to fullUpdateTree()");
        return;
    }
    ui->treeWidget->setUpdatesEnabled(false);
    updateStructTree();
    fillTree();
    refreshTree();
    levelRows();
    for (const GroupNode& node : std::as_const(nodes)) {
        node.item->setExpanded(node.group->expand);
    }
    setFocusOnNode(focusHeadUnit);
    ui->treeWidget->setUpdatesEnabled(true);
}

void Tree_Relay_Widget::removeGoneNodes()
{
    const QList<GroupRelayPtr> groups = m_info->groups();
    const auto isKept = [&groups](const GroupNode& node) { return groups.contains(node.group); };
    if (std::count_if(nodes.cbegin(), nodes.cend(), isKept) != groups.size()) {
        fullUpdateTree(false); // groups have come as well
        return;
    }
    ui->treeWidget->setUpdatesEnabled(false);
    storeExpanded();
    endRename();
    passCurrentGroupOn();
    ui->treeWidget->selectionModel()->clear(); // or what moves up into the place of a selected row would be selected
    const auto gone = std::stable_partition(nodes.begin(), nodes.end(), isKept);
    std::for_each(gone, nodes.end(), [](const GroupNode& node) { delete node.item; });
    nodes.erase(gone, nodes.end());
    if (ui->treeWidget->topLevelItemCount() == nodes.size()) {
        addButtonRow();
    }
    setFocusOnNode(false);
    ui->treeWidget->setUpdatesEnabled(true);
}

void Tree_Relay_Widget::storeExpanded()
{
    for (const GroupNode& node : std::as_const(nodes)) {
        if (node.item->treeWidget() != nullptr) {
            node.group->expand = node.item->isExpanded();
        }
    }
}

void Tree_Relay_Widget::updateStructTree()
{
    storeExpanded();
    passCurrentGroupOn();
    clearNodes();
    const QList<GroupRelayPtr> groups = m_info->groups();
    if (groups.isEmpty()) {
        qDebug("RELAY : Tree_Relay_Widget : (ERROR) Group relays is EMPTY to updateStructTree()_(1)");
        return;
    }
    const ParamItems outputStates = m_info->outputStates();
    for (const GroupRelayPtr& listed : groups) {
        const GroupRelayPtr group = listed ? m_info->findGroup(listed->address) : GroupRelayPtr();
        if (!group) {
            qDebug("RELAY : Tree_Relay_Widget : (ERROR) Group relays NOT FOUND to updateStructTree()_(2)");
            continue;
        }
        GroupNode node = treeNodes::makeGroupNode(group, ui->treeWidget->viewport());
        for (const RelayInformationPtr& relay : std::as_const(group->outputs)) {
            node.outputs.append(treeNodes::makeOutputNode(relay, outputStates, node));
        }
        nodes.append(node);
        treeNodes::postponePolish(node);
    }
}

void Tree_Relay_Widget::passCurrentGroupOn()
{
    const QList<GroupRelayPtr> groups = m_info->groups();
    if (!currentGroup || groups.contains(currentGroup)) {
        return;
    }
    const auto isCurrent = [this](const GroupNode& node) { return node.group == currentGroup; };
    const auto isKept = [&groups](const GroupNode& node) { return groups.contains(node.group); };
    const auto gone = std::find_if(nodes.crbegin(), nodes.crend(), isCurrent);
    const auto kept = std::find_if(gone, nodes.crend(), isKept);
    // One without outputs has nothing to work on; then it is the head unit's turn.
    currentGroup = kept == nodes.crend() || !kept->firstRelay() ? GroupRelayPtr() : kept->group;
}

void Tree_Relay_Widget::clearNodes()
{
    for (const GroupNode& node : std::as_const(nodes)) {
        treeNodes::discard(node);
    }
    nodes.clear();
    renameGroup = -1;
    renameOutput = -1;
}

void Tree_Relay_Widget::fillTree()
{
    ui->treeWidget->clear();
    for (const GroupNode& node : std::as_const(nodes)) {
        ui->treeWidget->addTopLevelItem(node.item);
        ui->treeWidget->setItemWidget(node.item, 0, node.frame);
        node.label->installEventFilter(this);
        node.edit->installEventFilter(this);
        for (const OutputNode& output : node.outputs) {
            ui->treeWidget->setItemWidget(output.item, 0, output.frame);
            connectOutput(output);
        }
    }
    if (nodes.size() < maximumNodes) {
        addButtonRow();
    }
}

/// The first terminal and the first output give the rows of their kind their size.
void Tree_Relay_Widget::levelRows()
{
    QSize group(0, 0);
    QSize output(0, 0);
    for (const GroupNode& node : std::as_const(nodes)) {
        if (group.isNull()) {
            group = treeNodes::rowSize(node.frame, node.label, node.edit);
        }
        node.frame->setRowHeight(group.height() + NodeTree::gap);
        for (const OutputNode& outputNode : node.outputs) {
            if (output.isNull()) {
                output = treeNodes::rowSize(outputNode.frame, outputNode.label, outputNode.edit);
            }
            outputNode.frame->setRowHeight(output.height() + NodeTree::gap);
        }
    }
    // In a dock that is too narrow the tree scrolls sideways rather than cut the rows.
    ui->treeWidget->header()->setMinimumSectionSize(output.width() + 2 * ui->treeWidget->indentation());
}

void Tree_Relay_Widget::connectOutput(const OutputNode& node)
{
    node.label->installEventFilter(this);
    node.edit->installEventFilter(this);
    // By name, which tells the two signals currentIndexChanged() apart without a cast.
    connect(node.comboStartState, SIGNAL(currentIndexChanged(int)), this, // clazy:exclude=old-style-connect
            SLOT(sl_StartStateChanged(int)));
    connect(node.checkReturn, SIGNAL(clicked()), this, // clazy:exclude=old-style-connect
            SLOT(sl_ReturnStateClicked()));
}

void Tree_Relay_Widget::addButtonRow()
{
    auto* item = new QTreeWidgetItem(ui->treeWidget);
    item->setFlags(Qt::ItemIsEnabled);
    auto* frame = new QFrame;
    auto* layout = new QVBoxLayout(frame);
    layout->setContentsMargins(0, 9, 0, 3);
    auto* button = new QPushButton(QIcon(QStringLiteral(":/icons/icons/add.png")), texts::treeAddTerminal());
    button->setObjectName(QStringLiteral("pushButtonAddGroup"));
    button->setFont(look::applicationFont());
    button->setMaximumWidth(140);
    button->setMinimumHeight(35);
    layout->addWidget(button);
    ui->treeWidget->setItemWidget(item, 0, frame);
    connect(button, &QPushButton::clicked, this, &Tree_Relay_Widget::sl_pushButtonAddGroup_clicked);
}

void Tree_Relay_Widget::refreshTree()
{
    for (const GroupNode& node : std::as_const(nodes)) {
        treeNodes::paintGroup(node);
        for (const OutputNode& output : node.outputs) {
            if (output.relay) {
                treeNodes::paintOutput(output);
            } else {
                qDebug("RELAY : Tree_Relay_Widget : (ERROR) Relay NOT FOUND to refreshTree()");
            }
        }
    }
}

void Tree_Relay_Widget::setFocusOnNode(bool headUnit)
{
    if (nodes.isEmpty()) {
        qDebug("RELAY : Tree_Relay_Widget : (ERROR) structure is EMPTY to setFocusOnNode()");
        return;
    }
    if (!nodes.first().group) {
        qDebug("RELAY : Tree_Relay_Widget : (ERROR) HUBNA-NX-Q NOT FOUND to setFocusOnNode()");
        return;
    }
    if (!currentGroup || headUnit) {
        currentGroup = nodes.first().group;
    }
    const GroupRelayPtr chosen = currentGroup; // a terminal without outputs clears it when it is selected
    for (const GroupNode& node : std::as_const(nodes)) {
        if (node.group == chosen) {
            ui->treeWidget->setCurrentItem(node.item);
        }
    }
}

void Tree_Relay_Widget::sl_refreshCurrentNodeTree()
{
    const GroupNode* selected = nullptr;
    for (const GroupNode& node : std::as_const(nodes)) {
        if (selected == nullptr && node.isSelected()) {
            selected = &node;
            repaintOutputs(node);
        } else if (node.group == workGroup) {
            // Another terminal is selected that has no outputs: those of this one are still worked on.
            repaintOutputs(node);
        }
    }
}

void Tree_Relay_Widget::repaintOutputs(const GroupNode& node)
{
    for (const OutputNode& output : node.outputs) {
        if (output.relay) {
            treeNodes::paintOutput(output);
        } else {
            qDebug("RELAY : Tree_Relay_Widget : (ERROR) Relay NOT FOUND to sl_refreshCurrentNodeTree()_(%d)",
                   node.item->isSelected() ? 1 : 2);
        }
    }
}

void Tree_Relay_Widget::on_treeWidget_itemSelectionChanged()
{
    for (const GroupNode& node : std::as_const(nodes)) {
        if (node.item->isSelected()) {
            selectGroup(node);
            return;
        }
        for (const OutputNode& output : node.outputs) {
            if (output.item->isSelected()) {
                selectOutput(node, output);
                return;
            }
        }
    }
}

void Tree_Relay_Widget::selectOutput(const GroupNode& node, const OutputNode& output)
{
    if (!node.group) {
        qDebug("RELAY : Tree_Relay_Widget : (ERROR) Group relays NOT FOUND to "
               "on_treeWidget_itemSelectionChanged()_(2)");
        return;
    }
    if (!output.relay) {
        qDebug("RELAY : Tree_Relay_Widget : (ERROR) Relay NOT FOUND to on_treeWidget_itemSelectionChanged()_(2)");
        return;
    }
    currentGroup = node.group;
    workOn(output.relay, node.group);
}

void Tree_Relay_Widget::selectGroup(const GroupNode& node)
{
    if (!node.group) {
        qDebug("RELAY : Tree_Relay_Widget : (ERROR) Group relays NOT FOUND to "
               "on_treeWidget_itemSelectionChanged()_(1)");
        return;
    }
    currentGroup = node.group;
    const RelayInformationPtr first = node.firstRelay();
    if (!first) {
        currentGroup.clear();
        qDebug("RELAY : Tree_Relay_Widget : (ERROR) Relay NOT FOUND to on_treeWidget_itemSelectionChanged()_(1)");
        return;
    }
    workOn(first, node.group);
}

void Tree_Relay_Widget::workOn(const RelayInformationPtr& relay, const GroupRelayPtr& group)
{
    workGroup = group;
    emit sig_changeRelay(relay, group);
}

void Tree_Relay_Widget::sl_CreateNewGroupAndRelays(const QString& nameGroup, short addressGroup,
                                                   const QStringList& namesRelays)
{
    currentGroup = m_info->addGroup(nameGroup, static_cast<quint16>(addressGroup));
    for (const QString& name : namesRelays) {
        m_info->addOutput(currentGroup, name);
    }
    fullUpdateTree(false);
    scrollToCurrentGroup();
}

void Tree_Relay_Widget::scrollToCurrentGroup()
{
    for (const GroupNode& node : std::as_const(nodes)) {
        if (node.group == currentGroup) {
            // Where not all has room, the terminal itself and its first outputs count.
            for (auto output = node.outputs.crbegin(); output != node.outputs.crend(); ++output) {
                ui->treeWidget->scrollToItem(output->item);
            }
            ui->treeWidget->scrollToItem(node.item);
        }
    }
}

void Tree_Relay_Widget::sl_pushButtonAddGroup_clicked()
{
    emit sig_newGroupRelay();
}

void Tree_Relay_Widget::sl_StartStateChanged(int index)
{
    const OutputNode* node = senderOutput(sender());
    if (node == nullptr) {
        return;
    }
    treeNodes::paintStartState(node->comboStartState, index);
    if (node->relay && index >= 0) {
        node->relay->startState = m_info->outputStateAt(index);
    }
}

void Tree_Relay_Widget::sl_ReturnStateClicked()
{
    const OutputNode* node = senderOutput(sender());
    if (node != nullptr && node->relay) {
        node->relay->returnStartState = node->checkReturn->isChecked();
    }
}

const OutputNode* Tree_Relay_Widget::senderOutput(const QObject* control) const
{
    for (const GroupNode& node : nodes) {
        for (const OutputNode& output : node.outputs) {
            if (output.comboStartState == control || output.checkReturn == control) {
                return &output;
            }
        }
    }
    return nullptr;
}

template <typename Match>
Tree_Relay_Widget::Place Tree_Relay_Widget::findPlace(Match matches) const
{
    for (int n = 0; n < nodes.size(); ++n) {
        const GroupNode& node = nodes.at(n);
        if (matches(node)) {
            return {n, -1};
        }
        for (int o = 0; o < node.outputs.size(); ++o) {
            if (matches(node.outputs.at(o))) {
                return {n, o};
            }
        }
    }
    return {};
}

void Tree_Relay_Widget::sl_prepareMenu(const QPoint& pos)
{
    const QTreeWidgetItem* item = ui->treeWidget->itemAt(pos);
    if (item == nullptr) {
        return;
    }
    const Place place = findPlace([item](const auto& node) { return node.item == item; });
    if (place.node < 0) {
        return;
    }
    menuGroup = nodes.at(place.node).group;
    renameGroup = place.node;
    renameOutput = place.output;
    menuKeyHeld = false;

    QMenu menu(this);
    menu.setStyleSheet(QStringLiteral("selection-background-color: rgba(0, 0, 255, 30); selection-color: black;"));
    menu.installEventFilter(this);
    const QIcon deleteIcon(QStringLiteral(":/icons/icons/delete.png"));
    menu.addAction(deleteIcon, texts::treeHideTerminal(), this, [this] { emit sig_deleteGroupRelay(menuGroup); });
    menu.addAction(deleteIcon, texts::treeHideDisconnected(), this,
                   &Tree_Relay_Widget::sig_deleteDisconnectedGroupRelays);
    menu.addAction(QIcon(QStringLiteral(":/icons/icons/rename.png")),
                   place.output < 0 ? texts::treeRenameTerminal() : texts::treeRenameOutput(), this,
                   &Tree_Relay_Widget::sl_RunRename);
    menu.exec(ui->treeWidget->viewport()->mapToGlobal(pos));
}

void Tree_Relay_Widget::sl_RunRename()
{
    const Name name = nameAt({renameGroup, renameOutput});
    if (name.text == nullptr) {
        return;
    }
    name.label->hide();
    name.edit->setText(*name.text);
    name.edit->show();
    name.edit->setFocus(Qt::OtherFocusReason);
}

Tree_Relay_Widget::Name Tree_Relay_Widget::nameAt(const Place& place) const
{
    if (place.node < 0 || place.node >= nodes.size()) {
        return {};
    }
    const GroupNode& node = nodes.at(place.node);
    if (place.output < 0) {
        return {node.label, node.edit, &node.group->name};
    }
    const OutputNode& output = node.outputs.at(place.output);
    return output.relay ? Name{output.label, output.edit, &output.relay->name} : Name();
}

bool Tree_Relay_Widget::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonDblClick: {
        const Place place = findPlace([watched](const auto& node) { return node.label == watched; });
        if (place.output >= 0) {
            renameGroup = place.node;
            renameOutput = place.output;
            sl_RunRename();
        }
        break;
    }
    case QEvent::FocusOut:
        // The edit's own menu, for a paste, must not take the edit away.
        if (static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason) {
            endRename(placeOfEdit(watched));
        }
        break;
    case QEvent::KeyPress: {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (!key->isAutoRepeat()) {
            menuKeyHeld = isEnter(key->key()) && qobject_cast<QMenu*>(watched) != nullptr;
        }
        break;
    }
    case QEvent::KeyRelease:
        keyReleased(placeOfEdit(watched), static_cast<QKeyEvent*>(event));
        break;
    default:
        break;
    }
    return false;
}

Tree_Relay_Widget::Place Tree_Relay_Widget::placeOfEdit(const QObject* edit) const
{
    return findPlace([edit](const auto& node) { return node.edit == edit; });
}

void Tree_Relay_Widget::keyReleased(const Place& place, const QKeyEvent* event)
{
    const Name name = nameAt(place);
    if (name.text == nullptr) {
        return;
    }
    if (!isEnter(event->key())) {
        storeName(place, name);
    } else if (!menuKeyHeld) {
        ui->treeWidget->setFocus(Qt::OtherFocusReason);
    } else if (!event->isAutoRepeat()) {
        menuKeyHeld = false;
    }
}

/// A name that is being edited when the nodes change, whichever it is.
void Tree_Relay_Widget::endRename()
{
    endRename(findPlace([](const auto& node) { return !node.edit->isHidden(); }));
    renameGroup = -1;
    renameOutput = -1;
}

void Tree_Relay_Widget::endRename(const Place& place)
{
    const Name name = nameAt(place);
    if (name.text == nullptr) {
        return;
    }
    // What came in without a key of its own, by the mouse or an input method, counts as well.
    if (name.edit->isVisibleTo(this) && name.edit->text() != *name.text) {
        storeName(place, name);
    }
    name.edit->hide();
    name.label->show();
}

void Tree_Relay_Widget::storeName(const Place& place, const Name& name)
{
    *name.text = name.edit->text();
    const GroupNode& node = nodes.at(place.node);
    name.label->setText(place.output < 0 ? treeNodes::groupTitle(*node.group)
                                         : treeNodes::outputTitle(*node.outputs.at(place.output).relay));
    emit sig_changeNameDevOrOutput();
}
