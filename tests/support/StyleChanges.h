#pragma once

#include <QEvent>
#include <QObject>

/// Counts how often a widget is told that its style has changed.
class StyleChanges : public QObject
{
public:
    explicit StyleChanges(QObject* watched)
    {
        watched->installEventFilter(this);
    }

    bool eventFilter(QObject*, QEvent* event) override
    {
        count += event->type() == QEvent::StyleChange ? 1 : 0;
        return false;
    }

    int count = 0;
};
