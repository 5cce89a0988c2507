#include "widgets/DockTitle.h"

#include "widgets/Look.h"

#include <QCoreApplication>
#include <QDockWidget>
#include <QEvent>
#include <QProxyStyle>

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

/// Sets a style sheet without any widget being styled anew. Qt would do that to everything below, twice each; but while
/// one widget's style sheet waits for an answer of the style below it, those of all others are at rest. Should that
/// ever change, this is slow again, and nothing else.
void setSheetAlone(QWidget* widget, const QString& sheet)
{
    const NoStyleChanges noStyleChanges;
    QWidget asking;
    CallingStyle answering([&] { widget->setStyleSheet(sheet); });
    asking.setStyle(&answering);
    asking.setStyleSheet(QStringLiteral("QWidget{}"));
    asking.style()->styleHint(QStyle::SH_Widget_ShareActivation);
}

} // namespace

namespace dockTitle
{

void setBackground(QDockWidget* dock, const QString& background)
{
    const QString sheet = look::dockTitleStyle(background);
    if (dock->styleSheet().isEmpty() || dock->widget() == nullptr) {
        look::applyStyleSheet(dock, sheet);
    } else if (dock->styleSheet() != sheet) {
        setSheetAlone(dock, sheet);
        dock->update(0, 0, dock->width(), dock->widget()->y());
    }
}

} // namespace dockTitle
