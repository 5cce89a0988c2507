#pragma once

#include <QTreeWidget>

/// A tree whose rows are live widgets: it reveals the frames (NodeFrame) that are in view, and those only. Rows may
/// hold other widgets as well; they are shown at once. A gap below each row keeps the frames apart.
class NodeTree : public QTreeWidget
{
    Q_OBJECT

public:
    static constexpr int gap = 3;

    explicit NodeTree(QWidget* parent = nullptr);

protected:
    void updateEditorGeometries() override;
    void scrollContentsBy(int dx, int dy) override;

private:
    void revealFramesInView();
};
