#include "widgets/Form.h"

Form::Form(QWidget* parent, Qt::WindowFlags flags) : QWidget(parent, flags)
{
}

void Form::setVisible(bool visible)
{
    if (visible) {
        setWindowState(windowState() & ~Qt::WindowMinimized);
    }
    QWidget::setVisible(visible);
}
