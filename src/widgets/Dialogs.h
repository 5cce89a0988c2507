#pragma once

#include <QString>

class QWidget;

/// The file dialogs and message boxes of the program, in one place, so that tests and the demo can answer them.
///
/// Stateless; owned by whoever starts the program (or a test) and outlives every window. GUI thread only. Each call
/// blocks in a modal dialog until the user has answered.
class Dialogs
{
public:
    Dialogs() = default;
    virtual ~Dialogs() = default;
    Q_DISABLE_COPY_MOVE(Dialogs)

    /// Asks for an existing file, from the current directory on. Returns its path, empty if the user cancelled.
    virtual QString openFileName(QWidget* parent, const QString& caption, const QString& filter);

    /// Asks for a file to write, from the current directory on. A name without a suffix gets that of the filter, say
    /// "*.cfg". Returns its path, empty if the user cancelled.
    virtual QString saveFileName(QWidget* parent, const QString& caption, const QString& filter);

    /// Shows an error with an OK button.
    virtual void critical(QWidget* parent, const QString& title, const QString& text);
};
