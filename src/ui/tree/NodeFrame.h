#pragma once

#include <QFrame>
#include <QList>

class QWidget;

/// The frame of a node of the tree. It stays away from the screen until the tree reveals it, because to style and show
/// the widgets of a frame takes longer than all else, and of hundreds of nodes only a few are in view.
///
/// Its height is told to it and doesn't follow its content, so the tree can lay out rows that were never shown.
class NodeFrame : public QFrame
{
    Q_OBJECT

public:
    explicit NodeFrame(QWidget* parent = nullptr);

    void setRowHeight(int height);
    QSize naturalSize() const; ///< the least width and the height that the content asks for, at some cost

    /// What in it takes keys, in the order in which the eye goes.
    QList<QWidget*> controls() const;

    void reveal();
    void setVisible(bool visible) override;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

private:
    int rowHeight = 0;
    bool revealed = false;
};
