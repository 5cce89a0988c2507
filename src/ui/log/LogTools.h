#pragma once

#include <QDate>
#include <QObject>
#include <QPair>
#include <QPointer>
#include <QString>

#include <optional>

class Dialogs;
class LogFindBar;
class QAction;
class QPoint;
class QTableView;
class QWidget;

/// What the user can do with the rows of the log at hand, by keys and by the menu of a right click.
///
/// Nothing of it is in sight before it is asked for: the find bar is made when it is opened for the first time. The log
/// tab owns the one instance; it owns neither the view nor the dialogs. GUI thread only.
class LogTools : public QObject
{
    Q_OBJECT

public:
    /// The view stands in a page with a box layout, which takes the find bar too.
    LogTools(QWidget* window, QTableView* view, Dialogs& dialogs, QObject* parent);

    void endFinding();    ///< closes the find bar and asks for all rows
    void forgetFinding(); ///< closes it since all rows will come by themselves

signals:
    void conditionChanged(const QString& condition); ///< in SQL, of the rows to show; empty for all
    void newResult(const QString& text);             ///< for the result line of the window

private:
    QAction* addAction(QWidget* widget, const QString& name, const QString& text, void (LogTools::*slot)());
    bool canFind() const;
    void openFindBar();
    void makeFindBar();
    void closeFindBar();
    void escape();
    void setCondition(const QString& newCondition);
    void makeRowActions();
    void showMenu(const QPoint& position);
    int currentRow() const;
    void openRow();
    void copyRow();
    void copyAllRows();
    void saveRows();

    QWidget* dialogParent;
    QPointer<QTableView> view;
    Dialogs& dialogs;
    QPointer<LogFindBar> bar;
    QAction* find; ///< of the page, as all of them
    QAction* endFind;
    QAction* open = nullptr;
    QAction* copy = nullptr;
    QAction* copyAll = nullptr;
    QAction* save = nullptr;
    QString condition; ///< that was asked for last

    std::optional<QPair<QDate, QDate>> days; ///< the first and the last of the log, once a search has begun in it
};
