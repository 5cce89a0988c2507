#pragma once

#include <QLabel>

/// A label for names that have any length: what doesn't fit is left out where the ellipsis stands, and the tooltip then
/// has the whole of it.
///
/// It is of one line, or with setWordWrap() of as many as there is room for, and breaks words that are too long for a
/// line. The text is plain unless another format is set, and markup in it is shown as it is written; of formatted text
/// the bare letters are shown, in the label's font.
class ElidedLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    void setElideMode(Qt::TextElideMode mode); ///< where the ellipsis stands; at the end unless set

    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;
    bool hasHeightForWidth() const override; ///< never: it takes the lines that it gets

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    struct Shown
    {
        QString text;
        int flags; ///< how it is laid out, as a painter takes it
    };

    QString wholeText() const;
    Shown shown() const;
    bool fits(const Shown& candidate) const;

    Qt::TextElideMode elideMode = Qt::ElideRight;
};
