#pragma once

#include <QRect>

class QWidget;

/// The room that a screen has for a window together with its frame. GUI thread only.
///
/// A platform whose screen nobody looks at, "offscreen" or "minimal", bounds nothing.
namespace screenRoom
{

/// Where the contents of a window may lie on its screen. As long as nobody knows the window's frame, it is taken for a
/// thick one.
QRect forContents(const QWidget* window);

/// Places a window in the middle of a rectangle, within the room of its screen, and as much smaller than the size as it
/// has to be for that.
void centre(QWidget* window, const QSize& size, const QRect& place);

/// Keeps a window within its screen from now on: whenever it is shown, whenever it is no longer maximised, and whenever
/// the screen changes. Sizes that were set for it, and the least one of its layout, hold where there is room for them.
/// What the user does with a window on a screen that stays as it is, is left alone, and so is what the user drags from
/// the maximised state, and what was partly outside before the screen changed.
void keep(QWidget* window);

} // namespace screenRoom
