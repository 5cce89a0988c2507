#pragma once

#include "widgets/StateButton.h"

#include <QPixmap>

class QStyleOptionButton;

/// A push button that is drawn once for each of its looks, and from then on shown as a picture.
///
/// A style sheet with round corners is slow to draw, and a panel of many such buttons is drawn anew with every script.
/// The pictures live in QPixmapCache, where buttons that look alike share them. It can wear a small cross in its
/// corner, as the second sign of what a red ring tells. GUI thread only.
class PicturedButton : public StateButton
{
    Q_OBJECT

public:
    explicit PicturedButton(const QString& text, QWidget* parent = nullptr);

    void setCrossed(bool on);
    bool isCrossed() const
    {
        return crossed;
    }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void draw(QPainter& painter, const QStyleOptionButton& option) const;
    QPixmap makePicture(const QStyleOptionButton& option) const;

    bool crossed = false;
};
