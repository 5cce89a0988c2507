// The window without a mouse.

#include "ui/tree/Tree_Relay_Widget.h"
#include "ui/window/MainWindow.h"
#include "ui_MainWindow.h"
#include "widgets/FocusInSight.h"

#include <QApplication>
#include <QTreeWidget>

/// Tab goes as the eye does: the tree, the lists and what else the tabs hold, the script editor.
void MainWindow::setUpFocus()
{
    auto* const tree = treeRelay->findChild<QTreeWidget*>();
    setTabOrder(tree, ui->tabWidget); // with all that it holds
    tree->setFocus();
    connect(qApp, &QApplication::focusChanged, this, [](QWidget*, QWidget* now) { focus::bringIntoSight(now); });
}
