#include "ui/tree/Tree_Relay_Widget.h"

#include "model/RelayInfo.h"
#include "texts/texts.h"
#include "ui/tree/NodeTree.h"
#include "ui_Tree_Relay_Widget.h"
#include "widgets/copyRows.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>
#include <utility>

Tree_Relay_Widget::Tree_Relay_Widget(QSharedPointer<RelayInfo> info, QWidget* parent)
    : QWidget(parent), ui(std::make_unique<Ui::Tree_Relay_Widget>()), m_info(std::move(info))
{
    ui->setupUi(this);
    connect(ui->treeWidget, &QWidget::customContextMenuRequested, this, &Tree_Relay_Widget::sl_prepareMenu);
    auto* const rename = new QAction(this);
    rename->setShortcut(Qt::Key_F2);
    rename->setShortcutContext(Qt::WidgetShortcut); // a name that is being edited isn't begun anew
    connect(rename, &QAction::triggered, this, &Tree_Relay_Widget::renameCurrent);
    ui->treeWidget->addAction(rename);
    offerCopyOfRows(ui->treeWidget);
    ui->treeWidget->setAccessibleName(texts::headingOutputs());
}

Tree_Relay_Widget::~Tree_Relay_Widget()
{
    clearNodes();
}

void Tree_Relay_Widget::setLeastWidth(int width)
{
    ui->treeWidget->setMinimumWidth(width);
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
    ui->treeWidget->levelRows(nodes);
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
        ui->treeWidget->addNode(node);
        node.label->installEventFilter(this);
        node.edit->installEventFilter(this);
        std::for_each(node.outputs.cbegin(), node.outputs.cend(),
                      [this](const OutputNode& output) { connectOutput(output); });
    }
    constexpr int maximumNodes = 32; // the head unit and 31 addresses of terminals
    if (nodes.size() < maximumNodes) {
        addButtonRow();
    }
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
    connect(ui->treeWidget->addButtonRow(texts::treeAddTerminal()), &QPushButton::clicked, this,
            &Tree_Relay_Widget::sl_pushButtonAddGroup_clicked);
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
    const NodePlace place = treeNodes::find(nodes, [](const auto& node) { return node.item->isSelected(); });
    if (place.node < 0) {
        return;
    }
    const GroupNode& node = nodes.at(place.node);
    const bool isGroup = place.output < 0;
    const RelayInformationPtr relay = isGroup ? node.firstRelay() : node.outputs.at(place.output).relay;
    if (!node.group) {
        qDebug("RELAY : Tree_Relay_Widget : (ERROR) Group relays NOT FOUND to "
               "on_treeWidget_itemSelectionChanged()_(%d)",
               isGroup ? 1 : 2);
    } else if (!relay) {
        if (isGroup) {
            currentGroup.clear();
        }
        qDebug("RELAY : Tree_Relay_Widget : (ERROR) Relay NOT FOUND to on_treeWidget_itemSelectionChanged()_(%d)",
               isGroup ? 1 : 2);
    } else {
        currentGroup = node.group;
        workGroup = node.group;
        emit sig_changeRelay(relay, node.group);
    }
}

void Tree_Relay_Widget::sl_CreateNewGroupAndRelays(const QString& nameGroup, short addressGroup,
                                                   const QStringList& namesRelays)
{
    currentGroup = m_info->addGroup(nameGroup, quint16(addressGroup));
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
        node->relay->startState = m_info->outputStates().value(index);
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
