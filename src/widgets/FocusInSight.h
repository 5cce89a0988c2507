#pragma once

class QWidget;

/// Bringing what has the focus into sight, wherever the focus came from.
namespace focus
{

/// Scrolls all that is scrolled around a widget until the widget is in sight; of a row of an item view that holds it,
/// the row. Does nothing for null, nor while a mouse button is down: what is being clicked must stay under the mouse.
void bringIntoSight(QWidget* widget);

} // namespace focus
