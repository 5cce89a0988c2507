#pragma once

#include <QTabWidget>

/// A tab widget that isn't painted anew whenever a layout in it changes: Qt does that although neither the bar nor the
/// frame has moved, and with a label's new text all of the tab would be painted a second time.
class SteadyTabWidget : public QTabWidget
{
    Q_OBJECT

public:
    using QTabWidget::QTabWidget;

    bool event(QEvent* event) override;
};
