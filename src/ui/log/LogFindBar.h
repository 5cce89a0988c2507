#pragma once

#include "eventlog/LogFilter.h"

#include <QHash>
#include <QWidget>

class QCheckBox;
class QDateEdit;
class QLineEdit;
class QToolButton;

/// The bar above the log in which the user says what is looked for: a text, addresses of terminals, a span of dates and
/// kinds of events. It only asks; LogTools makes it and hands on what it says. GUI thread only.
class LogFindBar : public QWidget
{
    Q_OBJECT

public:
    explicit LogFindBar(QWidget* parent);

    LogFilter filter() const;

    /// Empties the fields, without changed(), and gives the dates from which the user starts when setting a limit.
    void begin(const QDate& oldest, const QDate& newest);

    void enterField();                       ///< gives the text field the keys, with all of its text selected
    void setTabOrderBefore(QWidget* widget); ///< tabs lead through the bar as it is read, and then to the widget

signals:
    void changed(); ///< what is looked for, with every key
    void closeWanted();

private:
    QWidget* makeField();
    QWidget* makeLimits();
    QWidget* makeKinds();
    QDateEdit* makeDate(QCheckBox* box, const QString& name);
    void showWhetherAddressesMakeSense();

    QLineEdit* text;
    QLineEdit* addresses;
    QCheckBox* hasFirstDay;
    QDateEdit* firstDay;
    QCheckBox* hasLastDay;
    QDateEdit* lastDay;
    QHash<EventKind, QToolButton*> kinds;
    QToolButton* close;
};
