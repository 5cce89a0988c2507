#pragma once

class QDockWidget;
class QString;

/// The coloured title of a dock.
namespace dockTitle
{

/// Gives a dock the style sheet of look::dockTitleStyle() with a background such as "rgb(220,220,220)". What stands in
/// the dock isn't styled anew, which takes a panel of hundreds of widgets longer than all else that a click does there.
void setBackground(QDockWidget* dock, const QString& background);

} // namespace dockTitle
