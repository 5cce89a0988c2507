#include "widgets/StateButton.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QStringList>

#include <utility>

namespace
{

class StateInterface : public QAccessibleWidget
{
public:
    explicit StateInterface(StateButton* stateButton)
        : QAccessibleWidget(stateButton, QAccessible::CheckBox), button(stateButton)
    {
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.checkable = true;
        state.checked = button->isOn();
        state.pressed = button->isDown();
        return state;
    }

    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Description ? button->meaning() : QAccessibleWidget::text(kind);
    }

    QStringList actionNames() const override
    {
        return (button->isEnabled() ? QStringList(toggleAction()) : QStringList()) + QAccessibleWidget::actionNames();
    }

    void doAction(const QString& name) override
    {
        if (name == toggleAction()) {
            button->click();
        } else {
            QAccessibleWidget::doAction(name);
        }
    }

private:
    StateButton* button; // the interface goes with it
};

QAccessibleInterface* makeInterface(const QString&, QObject* object)
{
    auto* const button = qobject_cast<StateButton*>(object);
    return button != nullptr ? new StateInterface(button) : nullptr;
}

} // namespace

/// A text may have Qt make the accessible interface, which has to find this class then and not its base.
StateButton::StateButton(const QString& text, QWidget* parent) : QPushButton(parent)
{
    static const bool isInstalled = (QAccessible::installFactory(makeInterface), true);
    Q_UNUSED(isInstalled)
    setText(text);
}

void StateButton::setOn(bool on)
{
    if (switchedOn == on) {
        return;
    }
    switchedOn = on;
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent event(this, changed);
    QAccessible::updateAccessibility(&event);
}

void StateButton::setMeaning(const QObject* context, Meaning words)
{
    meaningContext = context;
    wordsOfMeaning = std::move(words);
}

QString StateButton::meaning() const
{
    return meaningContext && wordsOfMeaning ? wordsOfMeaning() : QString();
}

void StateButton::meaningChanged()
{
    QAccessibleEvent event(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&event);
}
