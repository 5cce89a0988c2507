#include "ui/scripts/ScriptLabel.h"

#include "model/ScriptInfo.h"

#include <QPainter>
#include <QPolygon>

#include <array>

namespace
{

constexpr int markSize = 8;
constexpr int room = 5; ///< on either side

/// A pulse of a height, as many times as fit.
QPolygon pulses(const QRect& place, int width)
{
    QPolygon line;
    for (int x = place.left(); x + width <= place.right() + 1; x += width) {
        const int middle = x + width / 2;
        line << QPoint(x, place.bottom()) << QPoint(x, place.top()) << QPoint(middle, place.top())
             << QPoint(middle, place.bottom());
    }
    return line << place.bottomRight();
}

struct ModeMark
{
    quint8 code;
    ScriptLabel::Mark mark;
};

constexpr std::array<ModeMark, 5> modeMarks{{{0, ScriptLabel::Mark::Deactivation},
                                             {1, ScriptLabel::Mark::Activation},
                                             {2, ScriptLabel::Mark::SlowPulse},
                                             {3, ScriptLabel::Mark::QuickPulse},
                                             {7, ScriptLabel::Mark::Disabling}}};

} // namespace

ScriptLabel::Mark ScriptLabel::markOf(const ScriptInfo& script)
{
    if (script.notActive || !script.mode) {
        return Mark::NotActive;
    }
    for (const ModeMark& entry : modeMarks) {
        if (entry.code == script.mode->code) {
            return entry.mark;
        }
    }
    return Mark::None;
}

void ScriptLabel::setMark(Mark newMark)
{
    if (mark != newMark) {
        mark = newMark;
        QMargins margins = contentsMargins();
        margins.setRight(markSize + 2 * room);
        setContentsMargins(margins);
        update();
    }
}

void ScriptLabel::paintEvent(QPaintEvent* event)
{
    ElidedLabel::paintEvent(event);
    const QRect place(width() - room - markSize, (height() - markSize) / 2, markSize, markSize);
    QPainter painter(this);
    painter.setPen(QColor(60, 60, 60));
    switch (mark) {
    case Mark::NotActive:
        painter.drawLine(place.left(), place.center().y(), place.right(), place.center().y());
        break;
    case Mark::Deactivation:
        painter.drawRect(place.adjusted(0, 0, -1, -1));
        break;
    case Mark::Activation:
        painter.fillRect(place, painter.pen().color());
        break;
    case Mark::SlowPulse:
        painter.drawPolyline(pulses(place, markSize));
        break;
    case Mark::QuickPulse:
        painter.drawPolyline(pulses(place, markSize / 2));
        break;
    case Mark::Disabling:
        painter.drawLine(place.topLeft(), place.bottomRight());
        painter.drawLine(place.bottomLeft(), place.topRight());
        break;
    case Mark::None:
        break;
    }
}
