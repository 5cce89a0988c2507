#include "widgets/Spoken.h"

#include <QComboBox>
#include <QLabel>
#include <QString>

namespace spoken
{

QString name(const QString& caption)
{
    QString name = caption.simplified();
    if (name.endsWith(QLatin1Char(':'))) {
        name.chop(1);
    }
    return name;
}

void call(QWidget* control, const QString& name)
{
    control->setAccessibleName(name);
    if (qobject_cast<QComboBox*>(control) != nullptr) {
        control->setAccessibleDescription(name);
    }
}

void nameBy(QWidget* control, QLabel* caption, const QString& text)
{
    caption->setText(text);
    call(control, name(text));
    caption->setBuddy(control);
}

} // namespace spoken
