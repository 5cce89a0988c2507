#pragma once

#include <QWidget>

/// A window beside the main one that can be seen whenever it is shown: one that was minimised, by itself or together
/// with the main window, comes up again, and none lies outside its screen.
class Form : public QWidget
{
    Q_OBJECT

public:
    explicit Form(QWidget* parent, Qt::WindowFlags flags);

    void setVisible(bool visible) override;
};
