#pragma once

#include <QList>
#include <QPointer>
#include <QTreeWidget>

class NodeFrame;
class QPushButton;
struct GroupNode;

/// A tree whose rows are live widgets: it reveals the frames (NodeFrame) that are in view, and those only. Rows may
/// hold other widgets as well; they are shown at once. A gap below each row keeps the frames apart.
///
/// Tab leads from the tree to the controls of the output that is worked on, that of the current row or the first one of
/// the current terminal, then to the button row, and out: with hundreds of outputs nobody wants to pass them all. Who
/// has clicked a control of another row goes on with that row's controls.
class NodeTree : public QTreeWidget
{
    Q_OBJECT

public:
    static constexpr int gap = 3;

    explicit NodeTree(QWidget* parent = nullptr);

    /// Adds the items of a node at the end, with their frames.
    void addNode(const GroupNode& node);

    /// Gives the rows of all terminals one height, and those of all outputs another: those of the first of them.
    void levelRows(const QList<GroupNode>& nodes);

    /// Adds a row with nothing but a button, which can't be selected.
    QPushButton* addButtonRow(const QString& text);

protected:
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void focusInEvent(QFocusEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void updateEditorGeometries() override;
    void scrollContentsBy(int dx, int dy) override;

private:
    void revealFramesInView();
    QList<QTreeWidgetItem*> currentRows() const;
    NodeFrame* frameOf(QTreeWidgetItem* item) const;
    NodeFrame* frameWithFocus() const;
    void setTabStops();
    void setTabStops(const QList<NodeFrame*>& frames);
    void revealCurrentRows();

    QList<QPointer<QWidget>> tabStops; ///< the controls of the output that is worked on
    bool hasStrayed = false;           ///< they are those of another row, which was clicked
    QPointer<QPushButton> rowButton;
};
