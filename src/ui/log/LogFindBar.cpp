#include "ui/log/LogFindBar.h"

#include "texts/texts.h"
#include "widgets/Look.h"

#include <QCheckBox>
#include <QDateEdit>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

#include <initializer_list>
#include <utility>

namespace
{

constexpr int longestText = 200;

struct KindButton
{
    EventKind kind;
    QString (*caption)();
    const char* name;
};

constexpr KindButton kindButtons[] = {
    {EventKind::PowerUp, &texts::kindPowerUp, "toolButtonKindPowerUp"},
    {EventKind::Channel, &texts::kindChannel, "toolButtonKindChannel"},
    {EventKind::Status, &texts::kindStatus, "toolButtonKindStatus"},
    {EventKind::Mode, &texts::kindMode, "toolButtonKindMode"},
    {EventKind::Other, &texts::kindOther, "toolButtonKindOther"},
};

QHBoxLayout* rowLayout(QWidget* row)
{
    auto* const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    return layout;
}

} // namespace

LogFindBar::LogFindBar(QWidget* parent)
    : QWidget(parent), text(new QLineEdit(this)), addresses(new QLineEdit(this)),
      hasFirstDay(new QCheckBox(texts::findFrom(), this)),
      firstDay(makeDate(hasFirstDay, QStringLiteral("dateEditFirstDay"))),
      hasLastDay(new QCheckBox(texts::findTo(), this)),
      lastDay(makeDate(hasLastDay, QStringLiteral("dateEditLastDay"))), close(new QToolButton(this))
{
    setObjectName(QStringLiteral("logFindBar"));
    // It takes the width that there is, and never makes the window wider.
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(makeField());
    layout->addWidget(makeLimits());
    layout->addWidget(makeKinds());
    setFocusProxy(text);
}

QWidget* LogFindBar::makeField()
{
    auto* const row = new QWidget(this);
    QHBoxLayout* const layout = rowLayout(row);
    text->setObjectName(QStringLiteral("lineEditFind"));
    text->setPlaceholderText(texts::findField());
    text->setAccessibleName(texts::findField());
    text->setMaxLength(longestText);
    text->setClearButtonEnabled(true);
    connect(text, &QLineEdit::textChanged, this, &LogFindBar::changed);
    layout->addWidget(text, 2);
    addresses->setObjectName(QStringLiteral("lineEditFindAddresses"));
    addresses->setPlaceholderText(texts::findAddresses());
    addresses->setToolTip(texts::findAddressesHint());
    addresses->setAccessibleName(texts::findAddressesHint());
    addresses->setMaxLength(longestText);
    connect(addresses, &QLineEdit::textChanged, this, [this] {
        showWhetherAddressesMakeSense();
        emit changed();
    });
    layout->addWidget(addresses, 1);

    close->setObjectName(QStringLiteral("toolButtonCloseFind"));
    close->setAutoRaise(true);
    close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
    close->setToolTip(texts::findClose());
    close->setAccessibleName(texts::findClose());
    connect(close, &QToolButton::clicked, this, &LogFindBar::closeWanted);
    layout->addWidget(close);
    return row;
}

QWidget* LogFindBar::makeLimits()
{
    auto* const row = new QWidget(this);
    QHBoxLayout* const layout = rowLayout(row);
    hasFirstDay->setObjectName(QStringLiteral("checkBoxFirstDay"));
    hasLastDay->setObjectName(QStringLiteral("checkBoxLastDay"));
    for (QWidget* const widget : std::initializer_list<QWidget*>{hasFirstDay, firstDay, hasLastDay, lastDay}) {
        layout->addWidget(widget);
    }
    layout->addStretch();
    return row;
}

QDateEdit* LogFindBar::makeDate(QCheckBox* box, const QString& name)
{
    auto* const date = new QDateEdit(this);
    date->setObjectName(name);
    date->setAccessibleName(box->text());
    date->setDisplayFormat(QStringLiteral("dd.MM.yyyy"));
    date->setCalendarPopup(true);
    date->setEnabled(false);
    connect(box, &QCheckBox::toggled, date, &QWidget::setEnabled);
    connect(box, &QCheckBox::toggled, this, &LogFindBar::changed);
    connect(date, &QDateEdit::dateChanged, this, &LogFindBar::changed);
    return date;
}

QWidget* LogFindBar::makeKinds()
{
    auto* const row = new QWidget(this);
    QHBoxLayout* const layout = rowLayout(row);
    for (const KindButton& entry : kindButtons) {
        auto* const button = new QToolButton(row);
        button->setObjectName(QLatin1String(entry.name));
        button->setText(entry.caption());
        button->setCheckable(true);
        connect(button, &QToolButton::toggled, this, &LogFindBar::changed);
        kinds.insert(entry.kind, button);
        layout->addWidget(button);
    }
    layout->addStretch();
    return row;
}

void LogFindBar::showWhetherAddressesMakeSense()
{
    look::applyStyleSheet(addresses, addressRanges(addresses->text())
                                         ? QString()
                                         : QStringLiteral("QLineEdit { background-color: rgb(255,200,200); }"));
}

LogFilter LogFindBar::filter() const
{
    LogFilter result;
    result.text = text->text();
    result.addresses = addressRanges(addresses->text()).value_or(QList<AddressRange>());
    for (auto kind = kinds.cbegin(); kind != kinds.cend(); ++kind) {
        if (kind.value()->isChecked()) {
            result.kinds.insert(kind.key());
        }
    }
    result.firstDay = hasFirstDay->isChecked() ? firstDay->date() : QDate();
    result.lastDay = hasLastDay->isChecked() ? lastDay->date() : QDate();
    // Two days are a span, whichever of them was named first.
    if (result.firstDay.isValid() && result.lastDay.isValid() && result.lastDay < result.firstDay) {
        std::swap(result.firstDay, result.lastDay);
    }
    return result;
}

void LogFindBar::enterField()
{
    text->setFocus(Qt::OtherFocusReason);
    text->selectAll();
}

void LogFindBar::setTabOrderBefore(QWidget* widget)
{
    // The widget keeps its place, and the bar comes in front of it.
    QWidget* before = widget->previousInFocusChain();
    while (before->focusPolicy() == Qt::NoFocus && before != widget) {
        before = before->previousInFocusChain();
    }
    QList<QWidget*> order = {before, text, addresses, hasFirstDay, firstDay, hasLastDay, lastDay};
    for (const KindButton& entry : kindButtons) {
        order.append(kinds.value(entry.kind));
    }
    order.append({close, widget});
    for (int i = 1; i < order.size(); ++i) {
        setTabOrder(order.at(i - 1), order.at(i));
    }
}

void LogFindBar::begin(const QDate& oldest, const QDate& newest)
{
    const QSignalBlocker blocker(this);
    text->clear();
    addresses->clear();
    for (QToolButton* const button : std::as_const(kinds)) {
        button->setChecked(false);
    }
    hasFirstDay->setChecked(false);
    hasLastDay->setChecked(false);
    firstDay->setDate(oldest);
    lastDay->setDate(newest);
}
