#pragma once

#include "model/RelayInfo.h"
#include "ui/tree/Tree_Relay_Widget.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include <memory>

/// A model and a tree over it on the screen, anew for each test; what the tree reports is counted and kept. The nodes'
/// widgets are reached by the places of their items.
class ShownTree : public QObject
{
    Q_OBJECT

protected slots:
    void init()
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
        connect(tree.get(), &Tree_Relay_Widget::sig_deleteDisconnectedGroupRelays, this,
                [this] { ++hiddenDisconnected; });
        tree->resize(260, 700);
        tree->show();
        QVERIFY(QTest::qWaitForWindowExposed(tree.get()));
        tree->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(tree.get()));
    }

    void cleanup()
    {
        tree.reset();
        info.clear();
    }

protected:
    struct Change
    {
        RelayInformationPtr relay;
        GroupRelayPtr group;
    };

    GroupRelayPtr addTerminal(quint16 address, int outputs)
    {
        const GroupRelayPtr group = info->addGroup(QStringLiteral("Terminal"), address);
        for (int i = 0; i < outputs; ++i) {
            info->addOutput(group, QStringLiteral("Output"));
        }
        return group;
    }

    void build(bool headUnit = true)
    {
        tree->fullUpdateTree(headUnit);
        QCoreApplication::processEvents();
    }

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

    /// A line of the debug stream as the tree writes it.
    static QString logLine(const QString& rest)
    {
        return QStringLiteral("RELAY : Tree_Relay_Widget : (ERROR) ") + rest;
    }

    QSharedPointer<RelayInfo> info;
    std::unique_ptr<Tree_Relay_Widget> tree;
    QTreeWidget* list = nullptr;
    QList<Change> changes;
    int renames = 0;
    QList<GroupRelayPtr> hidden;
    int hiddenDisconnected = 0;
};
