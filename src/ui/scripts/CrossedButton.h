#pragma once

#include "ui/scripts/PicturedButton.h"

/// A button that can wear a small cross in its corner, as the second sign of what its red ring tells.
class CrossedButton : public PicturedButton
{
    Q_OBJECT

public:
    using PicturedButton::PicturedButton;

    void setCrossed(bool on);
    bool isCrossed() const
    {
        return crossed;
    }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool crossed = false;
};
