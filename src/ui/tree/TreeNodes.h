#pragma once

#include "model/GroupRelay.h"
#include "model/ParamItem.h"

#include <QList>
#include <QSize>
#include <QString>

class NodeFrame;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QTreeWidgetItem;
class QWidget;

/// An item whose frame holds a name.
struct TreeNode
{
    QTreeWidgetItem* item = nullptr;
    NodeFrame* frame = nullptr;
    QLabel* label = nullptr;
    QLineEdit* edit = nullptr; ///< replaces the label while renaming; hidden otherwise
};

/// What the tree shows for one output: with the name the initial state and the return to it.
struct OutputNode : TreeNode
{
    QComboBox* comboStartState = nullptr;
    QCheckBox* checkReturn = nullptr;
    RelayInformationPtr relay;
};

/// What the tree shows for the head unit or a terminal, with its outputs.
struct GroupNode : TreeNode
{
    GroupRelayPtr group;
    QList<OutputNode> outputs;

    bool isSelected() const;                ///< itself or one of its outputs
    RelayInformationPtr firstRelay() const; ///< null where there is no output
};

/// Where something stands among the nodes; an output of -1 is the terminal itself, a node of -1 nothing at all.
struct NodePlace
{
    int node = -1;
    int output = -1;
};

/// A name in the tree: its widgets and the field of the record. All null where there is no such thing.
struct NodeName
{
    QLabel* label = nullptr;
    QLineEdit* edit = nullptr;
    QString* text = nullptr;
};

/// Making and painting the widgets of the tree's nodes. The items that are made belong to no one until they are placed
/// in a tree; discard() ends those that never were, with their frames.
namespace treeNodes
{

/// The frames are children of the tree's viewport from the start.
GroupNode makeGroupNode(const GroupRelayPtr& group, QWidget* viewport);
OutputNode makeOutputNode(const RelayInformationPtr& relay, const ParamItems& outputStates, const GroupNode& group);
void postponePolish(const GroupNode& node); ///< until the widgets are shown
void discard(const GroupNode& node);

/// The first terminal or output for which a function of either kind of node is true.
template <typename Match>
NodePlace find(const QList<GroupNode>& nodes, Match matches)
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

NodeName nameAt(const QList<GroupNode>& nodes, const NodePlace& place);
QString titleAt(const QList<GroupNode>& nodes, const NodePlace& place); ///< the name as it is shown

void paintGroup(const GroupNode& node);
void paintOutput(const OutputNode& node);
void paintStartState(QComboBox* combo, int index); ///< -1 is a state that the list doesn't have

/// The least width and the height of a row that holds the frame of a node, with its label or with its edit.
QSize rowSize(const TreeNode& node);

} // namespace treeNodes
