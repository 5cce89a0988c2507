// The coordinator form without a mouse.

#include "link/FormChoiceCoordinator.h"
#include "link/PortRow.h"
#include "ui_FormChoiceCoordinator.h"

#include <QCheckBox>
#include <QKeyEvent>
#include <QPushButton>

#include <initializer_list>

/// From the table through the controls of its rows to the button below it.
void FormChoiceCoordinator::setTabOrderOfRow(int index)
{
    const PortRow* const row = portRows.at(index);
    QWidget* before = index > 0 ? static_cast<QWidget*>(portRows.at(index - 1)->buttonFirmware) : ui->tableWidget;
    for (QWidget* const control : std::initializer_list<QWidget*>{row->checkBoxCheck, row->buttonConnect,
                                                                  row->buttonFirmware, ui->buttonChoicePort}) {
        setTabOrder(before, control);
        before = control;
    }
}

/// Return presses the button that has the focus, and chooses anywhere else.
void FormChoiceCoordinator::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Cancel)) {
        close();
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        auto* const button = qobject_cast<QPushButton*>(focusWidget());
        if (!event->isAutoRepeat()) {
            (button != nullptr ? button : ui->buttonChoicePort)->click();
        }
    } else {
        Form::keyPressEvent(event);
    }
}
