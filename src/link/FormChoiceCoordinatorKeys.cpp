// The coordinator form without a mouse.

#include "link/FormChoiceCoordinator.h"
#include "link/PortRow.h"
#include "ui_FormChoiceCoordinator.h"

#include <QAction>
#include <QCheckBox>
#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPushButton>
#include <QTableWidget>

#include <initializer_list>

void FormChoiceCoordinator::setUpKeys()
{
    QTableWidget* const table = ui->tableWidget;
    table->setTabKeyNavigation(false); // or Tab would never leave it
    auto* const copy = new QAction(table);
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetShortcut);
    connect(copy, &QAction::triggered, this, &FormChoiceCoordinator::copyRow);
    table->addAction(copy);
}

/// All that the current row tells, for a spreadsheet or a report of a fault.
void FormChoiceCoordinator::copyRow() const
{
    const int row = ui->tableWidget->currentRow();
    QStringList cells;
    for (int column = 0; row >= 0 && column < ui->tableWidget->columnCount() - 1; ++column) { // last are the controls
        cells.append(ui->tableWidget->item(row, column)->text().simplified());
    }
    if (!cells.isEmpty()) {
        QGuiApplication::clipboard()->setText(cells.join(QLatin1Char('\t')));
    }
}

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
