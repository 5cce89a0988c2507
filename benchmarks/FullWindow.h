#pragma once

#include "ui/window/MainWindow.h"

class QListWidget;
class QTableView;
class QTableWidget;
class QTabWidget;
class QTreeWidget;
class Tree_Relay_Widget;

/// The maximized main window with all in it that a unit can have: 31 terminals, connected and open in the tree, 32
/// scripts, 2,000 events in the log and as many packets in the logger. It has no port, so it asks nobody for anything.
class FullWindow
{
public:
    static constexpr int terminalCount = 31;
    static constexpr int outputsOfTerminal = 2;
    static constexpr int rowCount = 2000;

    FullWindow();
    ~FullWindow() = default;
    Q_DISABLE_COPY_MOVE(FullWindow)

    /// Returns once the window and the X server have come to rest: no event, no layout and no painting is left to do.
    static void settle();

private:
    /// The answers to the two questions that the window is going to ask: what to load, and where to save rows.
    class FullConfiguration : public Dialogs
    {
    public:
        QString openFileName(QWidget* parent, const QString& caption, const QString& filter) override;
        QString saveFileName(QWidget* parent, const QString& caption, const QString& filter) override;
    };

    FullConfiguration dialogs;

public:
    MainWindow window;
    Tree_Relay_Widget* panel;
    QTreeWidget* tree;
    QListWidget* scripts;
    QTabWidget* tabs;
    QTableView* log;
    QTableWidget* packets;
};
