#include "widgets/SheetAlone.h"

#include <QCoreApplication>
#include <QEvent>
#include <QProxyStyle>
#include <QWidget>

#include <functional>
#include <utility>

namespace
{

/// The style below a style sheet that runs a call as soon as it is asked for a hint.
class CallingStyle : public QProxyStyle
{
public:
    explicit CallingStyle(std::function<void()> calledBack) : call(std::move(calledBack))
    {
    }

    int styleHint(StyleHint, const QStyleOption*, const QWidget*, QStyleHintReturn*) const override
    {
        call();
        return 0;
    }

private:
    std::function<void()> call;
};

/// Keeps from all widgets, as long as it lives, that their style has changed.
class NoStyleChanges : public QObject
{
public:
    NoStyleChanges()
    {
        QCoreApplication::instance()->installEventFilter(this);
    }

    bool eventFilter(QObject*, QEvent* event) override
    {
        return event->type() == QEvent::StyleChange;
    }
};

} // namespace

namespace sheetAlone
{

/// While one widget's style sheet waits for an answer of the style below it, those of all others are at rest. Should
/// that ever change, this is slow again, and nothing else.
void set(QWidget* widget, const QString& sheet)
{
    const NoStyleChanges noStyleChanges;
    QWidget asking;
    CallingStyle answering([&] { widget->setStyleSheet(sheet); });
    asking.setStyle(&answering);
    asking.setStyleSheet(QStringLiteral("QWidget{}"));
    asking.style()->styleHint(QStyle::SH_Widget_ShareActivation);
}

void apply(QWidget* widget, const QString& sheet)
{
    if (widget->styleSheet() == sheet) {
        return;
    }
    // What hasn't been shown is styled when it is.
    if (widget->styleSheet().isEmpty() || sheet.isEmpty() || !widget->testAttribute(Qt::WA_WState_Polished)) {
        widget->setStyleSheet(sheet);
        return;
    }
    set(widget, sheet);
    widget->style()->polish(widget);
    QEvent change(QEvent::StyleChange);
    QCoreApplication::sendEvent(widget, &change);
}

} // namespace sheetAlone
