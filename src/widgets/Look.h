#pragma once

#include <QFont>
#include <QString>

class QColor;
class QWidget;

/// The pieces of the program's look that several forms share. GUI thread only.
namespace look
{

/// The application's font, "MS Shell Dlg 2" at 8 points; Qt substitutes it where the platform lacks it.
QFont applicationFont();

/// A colour as style sheets of the program write it: "rgba(r, g, b, a)" with each part from 0 to 255.
QString rgba(const QColor& color);

/// Style sheet of a combo box that shows a table row, painted in the row's background.
QString comboStyle(const QColor& background);

/// Style sheet of a combo box that holds a value its list doesn't have: red.
QString comboUnknownStyle();

/// Title of a dock and of the bars above the lists, on the given background text such as "rgb(220,220,220)".
QString dockTitleStyle(const QString& background);

/// A text that a user typed, as part of rich text: markup is shown as it is written, and words that are too long for a
/// tooltip may be broken.
QString richText(const QString& text);

/// Sets a style sheet unless the widget has it already: setting one makes Qt polish the widget and its children anew.
void applyStyleSheet(QWidget* widget, const QString& styleSheet);

} // namespace look
