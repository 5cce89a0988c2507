#pragma once

#include <QFont>
#include <QString>

class QColor;
class QComboBox;
class QDockWidget;
class QPalette;
class QWidget;

/// The pieces of the program's look that several forms share. GUI thread only.
namespace look
{

/// The application's font, "MS Shell Dlg 2" at 8 points; Qt substitutes it where the platform lacks it.
QFont applicationFont();

/// A colour as style sheets of the program write it: "rgba(r, g, b, a)" with each part from 0 to 255.
QString rgba(const QColor& color);

/// What the style sheet of a combo box says when it shows a row, painted in the row's background; -1 stands for a value
/// that the list doesn't have, which is red.
QString comboProperties(const QComboBox* combo, int row);

/// Style sheet of a title bar on a background such as "rgb(220,220,220)".
QString titleStyle(const QString& background);

/// The same for the title of a dock. What stands in the dock isn't styled anew, which takes a panel of hundreds of
/// widgets longer than all else that a click does there.
void setDockTitle(QDockWidget* dock, const QString& background);

/// A text that a user typed, as part of rich text: markup is shown as it is written, and words that are too long for a
/// tooltip may be broken.
QString richText(const QString& text);

/// For text that stands back behind the rest of a window: a contrast of 4.5 with the window at least, or that of the
/// window's own text where that has less.
QColor fadedText(const QPalette& colors);

/// An equal palette from the last ones asked for, or this one from now on. Styles find the pictures that they keep of a
/// control by the palette's identity, not by its colours.
QPalette knownPalette(const QPalette& palette);

/// Sets a style sheet unless the widget has it already: setting one makes Qt polish the widget and its children anew.
void applyStyleSheet(QWidget* widget, const QString& styleSheet);

/// Lets the layouts follow at once what was changed. Left to itself, each takes a turn of the event loop to tell the
/// one around it, and the window is painted in between.
void settleLayouts();

} // namespace look
