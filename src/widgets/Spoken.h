#pragma once

class QLabel;
class QString;
class QWidget;

/// The names by which a screen reader tells the controls. GUI thread only.
namespace spoken
{

/// A caption as a name: in one line, and without the colon behind it.
QString name(const QString& caption);

/// Names a control. Of a combo box, whose choice is told as its name on some platforms, it is the description too.
void call(QWidget* control, const QString& name);

/// Writes the label that stands beside a control or above it, names the control by it, and ties the two.
void nameBy(QWidget* control, QLabel* caption, const QString& text);

} // namespace spoken
