#pragma once

#include "eventlog/SqlModel.h"

#include <QList>
#include <QPointer>
#include <QTableView>

#include <optional>

/// The table view of the log, and the way of its model into it and out of it again.
///
/// The log tab has the one instance; GUI thread only. It owns neither the view nor the model, which belongs to the
/// database worker and may be in the view only while the worker leaves it alone.
class LogView
{
public:
    explicit LogView(QTableView* tableView);

    /// Gives the view a model and sets all its properties anew, the column widths included.
    void setUp(SqlModel* newModel);

    bool isAttached() const; ///< the model is in the view
    bool isFrozen() const;   ///< it was taken by freeze(), and nothing has changed that since

    void attach(); ///< with the column widths of the last detach
    void detach();

    /// Takes the model from the view, in which its last picture stays until thaw(): for a change that is over before
    /// the user could see that the table was away.
    void freeze();

    /// Puts the model back after freeze(), with the event selected that was last, if it is there. With all rows of the
    /// log the search is over: the view stands where it stood before it, unless the selected event lies elsewhere. The
    /// view is painted by showThawed(), which is a piece of work of its own.
    void thaw(bool allRows);
    void showThawed();

    bool isShown() const; ///< the model is in the view, and showThawed() has come after thaw()

    /// Takes the model from the view so that nothing of the GUI thread stays tied to it: the view itself keeps its
    /// former selection models, and those would go on listening.
    void drop();

private:
    /// Where the user was, which the model doesn't keep.
    struct CurrentEvent
    {
        int number = 0;
        int column = 0;
        bool selected = false;
    };

    /// How the view stood when a search began.
    struct Place
    {
        int restWidth = 0;       ///< of the last column
        bool isStretched = true; ///< it took what the other columns left
        int position = 0;        ///< of the vertical scroll bar
        int event = 0;           ///< the number of the current one; 0 if there was none
    };

    void rememberColumns();
    void restoreColumns(bool withRest);
    void rememberPlace();
    int rowOf(int number) const;
    void rememberCurrentEvent();
    void restoreCurrentEvent();
    int currentNumber() const;
    int numberAt(int row) const;

    QPointer<QTableView> view;
    QPointer<SqlModel> model; ///< the worker's; it goes when the worker has to begin anew
    QList<int> columnWidths;  ///< at the last detach
    QList<bool> columnHidden; ///< at the last detach

    std::optional<Place> beforeSearch; ///< while a search hides rows
    bool frozen = false;
    std::optional<CurrentEvent> currentEvent; ///< of all rows that a search has shown
    int horizontalPosition = 0;               ///< when the view was frozen
};
