#include "simulator/UnitFault.h"

#include <QHash>

#include <functional>

namespace
{
using Setter = std::function<bool(UnitFault&, const QString&)>;

/// What the parts of a rule's text do; false if the value makes no sense.
const QHash<QString, Setter>& setters()
{
    const auto number = [](UnitFault& (UnitFault::*set)(int), int lowest) {
        return [set, lowest](UnitFault& fault, const QString& text) {
            bool ok = false;
            const int value = text.toInt(&ok);
            (fault.*set)(value);
            return ok && value >= lowest;
        };
    };
    const auto chance = [](UnitFault& fault, const QString& text) {
        bool ok = false;
        fault.withChance(text.toDouble(&ok));
        return ok && fault.chance >= 0 && fault.chance <= 1;
    };
    const auto bytes = [](UnitFault& fault, const QString& text) {
        fault.bytes(QByteArray::fromHex(text.toLatin1()));
        return fault.faultBytes.toHex() == text.toLower().toLatin1();
    };
    static const QHash<QString, Setter> table{
        {QStringLiteral("request"), number(&UnitFault::onRequest, 1)},
        {QStringLiteral("boot"), number(&UnitFault::onBoot, 1)},
        {QStringLiteral("from"), number(&UnitFault::from, 1)},
        {QStringLiteral("times"), number(&UnitFault::times, 1)},
        {QStringLiteral("chance"), chance},
        {QStringLiteral("value"), number(&UnitFault::value, 0)},
        {QStringLiteral("amount"), number(&UnitFault::amount, 0)},
        {QStringLiteral("bytes"), bytes},
    };
    return table;
}

std::optional<UnitFault> refused(const QString& reason, QString* error)
{
    if (error != nullptr) {
        *error = reason;
    }
    return std::nullopt;
}

} // namespace

UnitFault& UnitFault::onRequest(int type)
{
    requestType = type;
    return *this;
}

UnitFault& UnitFault::onBoot(int type)
{
    bootType = type;
    return *this;
}

UnitFault& UnitFault::from(int nth)
{
    first = nth;
    return *this;
}

UnitFault& UnitFault::times(int number)
{
    count = number;
    return *this;
}

UnitFault& UnitFault::withChance(double probability)
{
    chance = probability;
    return *this;
}

UnitFault& UnitFault::value(int number)
{
    faultValue = number;
    return *this;
}

UnitFault& UnitFault::amount(int number)
{
    faultAmount = number;
    return *this;
}

UnitFault& UnitFault::bytes(const QByteArray& content)
{
    faultBytes = content;
    return *this;
}

QStringList UnitFault::kindNames()
{
    return {QStringLiteral("lose-request"),  QStringLiteral("lose-answer"),   QStringLiteral("delay-answer"),
            QStringLiteral("split-answer"),  QStringLiteral("noise-before"),  QStringLiteral("noise-after"),
            QStringLiteral("noise-later"),   QStringLiteral("bad-checksum"),  QStringLiteral("damage-answer"),
            QStringLiteral("refuse"),        QStringLiteral("change-answer"), QStringLiteral("replace-answer"),
            QStringLiteral("unplug"),        QStringLiteral("lose-power"),    QStringLiteral("break-off"),
            QStringLiteral("repeat-answer"), QStringLiteral("former-answer")};
}

std::optional<UnitFault> UnitFault::fromText(const QString& text, QString* error)
{
    const int colon = text.indexOf(QLatin1Char(':'));
    const QString name = text.left(colon).trimmed();
    const int kind = kindNames().indexOf(name);
    if (kind < 0) {
        return refused(QStringLiteral("there is no fault \"%1\"").arg(name), error);
    }
    UnitFault fault(static_cast<Kind>(kind));
    const QStringList parts =
        colon < 0 ? QStringList() : text.mid(colon + 1).split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString& part : parts) {
        const QString key = part.section(QLatin1Char('='), 0, 0).trimmed();
        const QString value = part.section(QLatin1Char('='), 1).trimmed();
        const auto setter = setters().constFind(key);
        if (setter == setters().constEnd()) {
            return refused(QStringLiteral("a fault has no \"%1\"").arg(key), error);
        }
        if (!(*setter)(fault, value)) {
            return refused(QStringLiteral("\"%1\" is no value for \"%2\"").arg(value, key), error);
        }
    }
    return fault;
}
