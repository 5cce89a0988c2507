#pragma once

#include <QList>
#include <QObject>

class QDockWidget;
class QMainWindow;

/// The widths of the panels beside the tabs by keys: F8 makes them narrower, Shift+F8 wider. It is the panel with the
/// focus that changes; with the focus elsewhere, say in the log, both do. The tool tip of a panel's title says so, and
/// the whole of a title that is cut.
///
/// The window owns the one instance and the docks. GUI thread only.
class PanelWidths : public QObject
{
    Q_OBJECT

public:
    PanelWidths(QMainWindow* mainWindow, const QList<QDockWidget*>& panels);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void addAction(const QString& name, const QString& text, const QKeySequence& key, int step);
    void change(int step);
    bool isBeside(QDockWidget* dock) const;

    QMainWindow* window;
    QList<QDockWidget*> docks;
};
