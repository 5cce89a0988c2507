#include "campaign/Operation.h"

#include "campaign/ToolOperations.h"
#include "campaign/WindowOperations.h"

#include <QMap>
#include <QStringList>

QString Outcome::verdictName(Verdict verdict)
{
    static const QStringList names{QStringLiteral("right"), QStringLiteral("leftOut"), QStringLiteral("counted"),
                                   QStringLiteral("wrong"), QStringLiteral("stuck"),   QStringLiteral("unmet")};
    return names.at(verdict);
}

Outcome ofMetFault(const Outcome& outcome, const FaultCase& faultCase, const QVector<UnitRequest>& requests)
{
    const bool isDefect = outcome.verdict == Outcome::Wrong || outcome.verdict == Outcome::Stuck;
    return isDefect || faultCase.isMet(requests)
               ? outcome
               : Outcome{Outcome::Unmet, QStringLiteral("the step with the fault never came: ") + outcome.what};
}

std::unique_ptr<Operation> Operation::make(const QString& name)
{
    using Maker = std::unique_ptr<Operation> (*)();
    static const QMap<QString, Maker> makers{
        {QStringLiteral("window-chain"), [] { return std::unique_ptr<Operation>(new WindowChain); }},
        {QStringLiteral("window-write"), [] { return std::unique_ptr<Operation>(new WindowWrite); }},
        {QStringLiteral("window-log"), [] { return std::unique_ptr<Operation>(new WindowLog); }},
        {QStringLiteral("window-firmware"), [] { return std::unique_ptr<Operation>(new WindowFirmware); }},
        {QStringLiteral("tool-read"), [] { return std::unique_ptr<Operation>(new ToolRead); }},
        {QStringLiteral("tool-write"), [] { return std::unique_ptr<Operation>(new ToolWrite); }},
        {QStringLiteral("tool-log"), [] { return std::unique_ptr<Operation>(new ToolLog); }},
        {QStringLiteral("tool-firmware"), [] { return std::unique_ptr<Operation>(new ToolFirmware); }},
    };
    const Maker maker = makers.value(name, nullptr);
    return maker != nullptr ? maker() : nullptr;
}
