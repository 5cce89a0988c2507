#pragma once

class QString;
class QWidget;

/// Style sheets that speak of one widget alone, set without those below it being styled anew. Qt would style all of
/// them anew, twice each: for a dock with a panel of hundreds of controls, and even for a combo box with its list, it
/// takes longer than all else that a click does there. GUI thread only.
namespace sheetAlone
{

/// Sets another style sheet for a widget that has one, and neither the widget nor those below it are styled anew.
void set(QWidget* widget, const QString& sheet);

/// Sets a style sheet unless the widget has it already, and styles the widget anew, but none below it. The first sheet
/// of a widget is set as ever, and so is none, and any sheet before the widget was shown.
void apply(QWidget* widget, const QString& sheet);

} // namespace sheetAlone
