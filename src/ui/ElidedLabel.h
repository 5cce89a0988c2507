#pragma once

#include <QLabel>

/// A label of one line of plain text for names that users type: what doesn't fit ends in an ellipsis, and the tooltip
/// then has the whole of it. Markup in the text is shown as it is written.
class ElidedLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString shownText() const;
};
