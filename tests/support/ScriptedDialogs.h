#pragma once

#include "widgets/Dialogs.h"

#include <QList>
#include <QStringList>

#include <functional>

/// Dialogs that answer by themselves: each question takes the next prepared answer (none left means cancelled), and
/// everything that was shown is kept.
class ScriptedDialogs : public Dialogs
{
public:
    struct Box
    {
        QString title;
        QString text;
    };

    QStringList openAnswers;
    QStringList saveAnswers;
    QStringList questions;           ///< "caption|filter" of each file dialog, in order
    QList<Box> boxes;                ///< message boxes, in order
    std::function<void()> meanwhile; ///< what happens while the user chooses the name of a file to write

    QString openFileName(QWidget*, const QString& caption, const QString& filter) override
    {
        questions.append(caption + QLatin1Char('|') + filter);
        return openAnswers.isEmpty() ? QString() : openAnswers.takeFirst();
    }

    QString saveFileName(QWidget*, const QString& caption, const QString& filter) override
    {
        questions.append(caption + QLatin1Char('|') + filter);
        if (meanwhile) {
            meanwhile();
        }
        return saveAnswers.isEmpty() ? QString() : saveAnswers.takeFirst();
    }

    void critical(QWidget*, const QString& title, const QString& text) override
    {
        boxes.append({title, text});
    }
};
