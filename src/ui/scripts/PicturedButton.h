#pragma once

#include <QPixmap>
#include <QPushButton>

class QStyleOptionButton;

/// A push button that is drawn once for each of its looks, and from then on shown as a picture.
///
/// A style sheet with round corners is slow to draw, and a panel of many such buttons is drawn anew with every script.
/// The pictures live in QPixmapCache, where buttons that look alike share them. GUI thread only.
class PicturedButton : public QPushButton
{
    Q_OBJECT

public:
    explicit PicturedButton(const QString& text, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QPixmap draw(const QStyleOptionButton& option);
};
