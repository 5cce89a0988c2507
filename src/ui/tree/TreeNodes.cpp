#include "ui/tree/TreeNodes.h"

#include "model/format.h"
#include "texts/texts.h"
#include "ui/tree/NodeFrame.h"
#include "widgets/ElidedLabel.h"
#include "widgets/Look.h"
#include "widgets/Spoken.h"

#include <QCheckBox>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QEvent>
#include <QFrame>
#include <QGridLayout>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QTreeWidgetItem>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <algorithm>

namespace
{

QString groupTitle(const GroupRelay& group)
{
    return terminalTitle(group.name, group.address);
}

QString outputTitle(const RelayInformation& relay)
{
    return numberedName(relay.name, relay.number);
}

/// A widget that has the font already is left alone: a combo box that is told its font builds its list at once.
void setNodeFont(QWidget* widget)
{
    static const QFont font = look::applicationFont();
    if (widget->font() != font) {
        widget->setFont(font);
    }
}

void paint(QFrame* frame, const QString& background)
{
    const QString sheet = QStringLiteral("QFrame,QLabel,QPushButton {background-color: %1} "
                                         "QToolTip {background-color: #F4F4F4}")
                              .arg(background);
    look::applyStyleSheet(frame, sheet);
}

QString groupBackground(const GroupRelayPtr& group)
{
    return group && group->connected ? QStringLiteral("rgba(0, 255, 17, 150)")
                                     : QStringLiteral("rgba(255, 255, 255, 100)");
}

/// What the item tells where it can't be seen: it shows nothing, its frame does.
void describe(QTreeWidgetItem* item, const QString& title, const QString& meaning)
{
    item->setData(0, Qt::AccessibleTextRole, title);
    item->setData(0, Qt::AccessibleDescriptionRole, meaning);
}

QString outputBackground(const RelayInformation& relay)
{
    return relay.activatedScripts.isEmpty() ? QStringLiteral("rgba(187, 187, 187, 150)")
                                            : QStringLiteral("rgba(255, 255, 255, 100)");
}

// From here on the order matters for the time that a tree of hundreds of nodes takes: each widget gets its parent and
// style sheet before it has children. A style sheet on a widget with children styles all of them once more, and so
// does a new parent.

NodeFrame* makeFrame(QWidget* parent, const QString& background)
{
    auto* frame = new NodeFrame(parent);
    setNodeFont(frame);
    paint(frame, background);
    auto* layout = new QVBoxLayout(frame);
    layout->setContentsMargins(6, 4, 6, 4);
    layout->setSpacing(4);
    return frame;
}

QLabel* makeNameLabel(NodeFrame* frame, const QString& text)
{
    auto* label = new ElidedLabel(frame);
    label->setObjectName(QStringLiteral("label"));
    setNodeFont(label);
    label->setStyleSheet(QStringLiteral("QLabel{background-color: rgba(0,0,0,0)}"));
    label->setText(text);
    frame->layout()->addWidget(label);
    return label;
}

QLineEdit* makeNameEdit(NodeFrame* frame, const QString& spokenName)
{
    auto* edit = new QLineEdit(frame);
    edit->setObjectName(QStringLiteral("edit"));
    edit->setAccessibleName(spokenName);
    setNodeFont(edit);
    edit->setFocusPolicy(Qt::ClickFocus); // the tree makes those of the current row stops of Tab
    edit->hide();
    frame->layout()->addWidget(edit);
    return edit;
}

QLabel* makeCaption(QFrame* parent, const QString& text)
{
    auto* label = new QLabel(text, parent);
    setNodeFont(label);
    label->setStyleSheet(QStringLiteral("QLabel{background-color: rgba(0,0,0,0); border: 0px;}"));
    return label;
}

/// Leaves the wheel to the tree, since who scrolls past a state doesn't mean to change it, and the menu to the node.
class StateCombo : public QComboBox
{
public:
    using QComboBox::QComboBox;

protected:
    void contextMenuEvent(QContextMenuEvent* event) override
    {
        event->ignore();
    }

    void wheelEvent(QWheelEvent* event) override
    {
        event->ignore();
    }
};

QComboBox* makeStateCombo(QFrame* parent, const RelayInformationPtr& relay, const ParamItems& outputStates)
{
    auto* combo = new StateCombo(parent);
    combo->setObjectName(QStringLiteral("comboStartState"));
    combo->setFocusPolicy(Qt::ClickFocus);
    spoken::call(combo, spoken::name(texts::outputInitialState()));
    setNodeFont(combo);
    for (const ParamItemPtr& state : outputStates) {
        const int row = combo->count();
        combo->addItem(QIcon(state->icon), state->name);
        combo->setItemData(row, state->background, Qt::BackgroundRole);
        combo->setItemData(row, state->foreground, Qt::ForegroundRole);
    }
    combo->setCurrentIndex(-1);
    if (relay && relay->startState) {
        combo->setCurrentText(relay->startState->name);
    }
    treeNodes::paintStartState(combo, combo->currentIndex());
    return combo;
}

/// Adds the inner frame with the initial state and the return to it.
void addSettings(OutputNode& node, const ParamItems& outputStates)
{
    auto* settings = new QFrame(node.frame);
    settings->setStyleSheet(QStringLiteral("QFrame{background-color: rgba(0,0,0,0); border: 1px solid black};"));
    node.comboStartState = makeStateCombo(settings, node.relay, outputStates);
    node.checkReturn = new QCheckBox(settings);
    node.checkReturn->setObjectName(QStringLiteral("checkReturn"));
    node.checkReturn->setFocusPolicy(Qt::ClickFocus);
    setNodeFont(node.checkReturn);
    node.checkReturn->setAccessibleName(spoken::name(texts::outputReturnToInitialState()));
    node.checkReturn->setChecked(node.relay && node.relay->returnStartState);

    auto* layout = new QGridLayout(settings);
    layout->setContentsMargins(6, 4, 6, 4);
    layout->setVerticalSpacing(4);
    layout->addWidget(makeCaption(settings, texts::outputInitialState()), 0, 0);
    layout->addWidget(node.comboStartState, 0, 1);
    layout->addWidget(makeCaption(settings, texts::outputReturnToInitialState()), 1, 0);
    layout->addWidget(node.checkReturn, 1, 1);
    layout->setColumnStretch(1, 1);
    node.frame->layout()->addWidget(settings);
}

} // namespace

bool GroupNode::isSelected() const
{
    return item->isSelected() || std::any_of(outputs.cbegin(), outputs.cend(),
                                             [](const OutputNode& output) { return output.item->isSelected(); });
}

RelayInformationPtr GroupNode::firstRelay() const
{
    return outputs.isEmpty() ? RelayInformationPtr() : outputs.first().relay;
}

namespace treeNodes
{

GroupNode makeGroupNode(const GroupRelayPtr& group, QWidget* viewport)
{
    GroupNode node;
    node.group = group;
    node.item = new QTreeWidgetItem;
    node.frame = makeFrame(viewport, groupBackground(group));
    node.label = makeNameLabel(node.frame, groupTitle(*group));
    node.edit = makeNameEdit(node.frame, texts::treeRenameTerminal());
    return node;
}

OutputNode makeOutputNode(const RelayInformationPtr& relay, const ParamItems& outputStates, const GroupNode& group)
{
    OutputNode node;
    node.relay = relay;
    node.item = new QTreeWidgetItem(group.item);
    node.frame = makeFrame(group.frame->parentWidget(), relay ? outputBackground(*relay) : QString());
    node.label = makeNameLabel(node.frame, relay ? outputTitle(*relay) : QString());
    node.edit = makeNameEdit(node.frame, texts::treeRenameOutput());
    addSettings(node, outputStates);
    return node;
}

void postponePolish(const GroupNode& node)
{
    const auto postpone = [](QWidget* frame) {
        QCoreApplication::removePostedEvents(frame, QEvent::PolishRequest);
        const auto children = frame->findChildren<QWidget*>();
        for (QWidget* child : children) {
            QCoreApplication::removePostedEvents(child, QEvent::PolishRequest);
        }
    };
    postpone(node.frame);
    for (const OutputNode& output : node.outputs) {
        postpone(output.frame);
    }
}

void discard(const GroupNode& node)
{
    if (node.item->treeWidget() != nullptr) {
        return; // the tree ends it
    }
    delete node.item;
    delete node.frame;
    for (const OutputNode& output : node.outputs) {
        delete output.frame;
    }
}

NodeName nameAt(const QList<GroupNode>& nodes, const NodePlace& place)
{
    if (place.node < 0 || place.node >= nodes.size()) {
        return {};
    }
    const GroupNode& node = nodes.at(place.node);
    if (place.output < 0) {
        return {node.label, node.edit, &node.group->name};
    }
    const OutputNode& output = node.outputs.at(place.output);
    return output.relay ? NodeName{output.label, output.edit, &output.relay->name} : NodeName();
}

QString titleAt(const QList<GroupNode>& nodes, const NodePlace& place)
{
    const GroupNode& node = nodes.at(place.node);
    return place.output < 0 ? groupTitle(*node.group) : outputTitle(*node.outputs.at(place.output).relay);
}

void paintGroup(const GroupNode& node)
{
    paint(node.frame, groupBackground(node.group));
    if (node.group) {
        describe(node.item, groupTitle(*node.group),
                 node.group->connected ? texts::spokenTerminalReported() : texts::spokenTerminalNotReported());
    }
}

void paintOutput(const OutputNode& node)
{
    paint(node.frame, outputBackground(*node.relay));
    const int scripts = node.relay->activatedScripts.size();
    describe(node.item, outputTitle(*node.relay),
             scripts > 0 ? texts::spokenOutputScripts().arg(scripts) : texts::spokenOutputNoScripts());
}

void paintStartState(QComboBox* combo, int index)
{
    combo->setStyleSheet(QStringLiteral("QComboBox {%1}").arg(look::comboProperties(combo, index)));
    combo->setToolTip(QString());
}

QSize rowSize(const TreeNode& node)
{
    const int excess = node.edit->sizeHint().height() - node.label->sizeHint().height();
    return node.frame->naturalSize() + QSize(0, qMax(0, excess));
}

} // namespace treeNodes
