#include "widgets/Form.h"

#include "widgets/ScreenRoom.h"

Form::Form(QWidget* parent, Qt::WindowFlags flags) : QWidget(parent, flags)
{
    screenRoom::keep(this);
}

void Form::setVisible(bool visible)
{
    if (visible) {
        setWindowState(windowState() & ~Qt::WindowMinimized);
    }
    QWidget::setVisible(visible);
}
