#include "campaign/FaultCase.h"

#include <QMap>
#include <QPair>
#include <QRandomGenerator>
#include <QStringList>

#include <algorithm>

namespace
{

enum RequestType
{
    SetTime = 1,
    ReadTime = 2,
    LogBlock = 3,
    CheckCoordinator = 9,
    BroadcastSearch = 10
};

constexpr int late = 130;        ///< ms; an answer is waited for 120
constexpr int outage = 300;      ///< ms; less than the four sends of a step take
constexpr int longOutage = 1500; ///< ms; several steps
constexpr int sends = 4;         ///< of a step, before it has failed
constexpr int frameWithData = 9; ///< bytes at least

struct NamedFault
{
    QString name;
    UnitFault fault;
};

QByteArray drawNoise(QRandomGenerator& random)
{
    constexpr int length = 8;
    QByteArray noise;
    for (int i = 0; i < length; ++i) {
        noise.append(char(random.bounded(256)));
    }
    return noise;
}

/// Those that hit an answer as a whole, or keep it from coming.
QVector<NamedFault> faultsOfAnswer(const Step& step, QRandomGenerator& random)
{
    const auto noise = [&random](UnitFault::Kind kind) { return UnitFault(kind).bytes(drawNoise(random)); };
    const int within = random.bounded(1, qMax(2, step.answerLength));
    return {
        {QStringLiteral("request lost"), UnitFault(UnitFault::LoseRequest)},
        {QStringLiteral("answer lost"), UnitFault(UnitFault::LoseAnswer)},
        {QStringLiteral("late by 130 ms"), UnitFault(UnitFault::DelayAnswer).value(late)},
        {QStringLiteral("doubled"), UnitFault(UnitFault::RepeatAnswer)},
        {QStringLiteral("the answer before it comes again"), UnitFault(UnitFault::FormerAnswer)},
        {QStringLiteral("noise before"), noise(UnitFault::NoiseBefore)},
        {QStringLiteral("noise after"), noise(UnitFault::NoiseAfter)},
        {QStringLiteral("wrong checksum"), UnitFault(UnitFault::BadChecksum)},
        {QStringLiteral("refusal"), UnitFault(UnitFault::Refuse)},
        {QStringLiteral("power lost"), UnitFault(UnitFault::LosePower).value(outage)},
        {QStringLiteral("power lost for long"), UnitFault(UnitFault::LosePower).value(longOutage)},
        {QStringLiteral("port gone and back"), UnitFault(UnitFault::Unplug).value(outage)},
        {QStringLiteral("port gone within the answer"), UnitFault(UnitFault::Unplug).value(outage).amount(within)},
    };
}

/// Those that a step doesn't survive.
QVector<NamedFault> faultsForGood()
{
    return {
        {QStringLiteral("request lost for good"), UnitFault(UnitFault::LoseRequest)},
        {QStringLiteral("answer lost for good"), UnitFault(UnitFault::LoseAnswer)},
        {QStringLiteral("late by 130 ms each time"), UnitFault(UnitFault::DelayAnswer).value(late)},
        {QStringLiteral("wrong checksum each time"), UnitFault(UnitFault::BadChecksum)},
        {QStringLiteral("refused for good"), UnitFault(UnitFault::Refuse)},
    };
}

/// What is missing of a cut answer never comes, or comes in time, or too late.
QVector<NamedFault> faultsOfBytes(const Step& step, QRandomGenerator& random)
{
    constexpr int never = -1;
    constexpr int soon = 20;
    const QVector<int> rests{never, soon, late};
    QVector<NamedFault> faults;
    for (int byte = 1; byte < step.answerLength; ++byte) {
        const int rest = rests.at(random.bounded(rests.size()));
        const QString when = rest < 0 ? QStringLiteral("never") : QStringLiteral("%1 ms later").arg(rest);
        faults.append({QStringLiteral("cut before byte %1, the rest %2").arg(byte).arg(when),
                       UnitFault(UnitFault::BreakOff).amount(byte).value(rest)});
    }
    for (int byte = 0; byte < step.answerLength; ++byte) {
        const int bit = random.bounded(8);
        faults.append({QStringLiteral("bit %1 of byte %2 flipped").arg(bit).arg(byte),
                       UnitFault(UnitFault::DamageAnswer).amount(byte).value(bit)});
    }
    return faults;
}

UnitFault at(const Step& step, UnitFault fault, int times)
{
    if (step.bootType != 0) {
        fault.onBoot(step.bootType);
    } else {
        fault.onRequest(step.requestType);
    }
    return fault.from(step.nth).times(times);
}

QVector<FaultCase> casesOf(const Step& step, QRandomGenerator& random)
{
    QVector<FaultCase> cases;
    const auto add = [&](const NamedFault& named, int times, FaultCase::Promise promise = FaultCase::Kept) {
        cases.append({step, step.name() + QStringLiteral(": ") + named.name, at(step, named.fault, times), promise,
                      random.generate()});
    };
    const QVector<NamedFault> ofAnswer = faultsOfAnswer(step, random);
    for (const NamedFault& named : ofAnswer) {
        add(named, 1);
    }
    const QVector<NamedFault> ofBytes = faultsOfBytes(step, random);
    for (const NamedFault& named : ofBytes) {
        add(named, 1);
    }
    const QVector<NamedFault> forGood = faultsForGood();
    for (const NamedFault& named : forGood) {
        add(named, sends);
    }
    add({QStringLiteral("the answer before it instead"), UnitFault(UnitFault::FormerAnswer).value(1)}, 1,
        FaultCase::PastAnswer);
    if (step.bootType == 0 && step.answerLength >= frameWithData) {
        add({QStringLiteral("altered, the checksum right"), UnitFault(UnitFault::ChangeAnswer)}, 1,
            FaultCase::PastChecksum);
    }
    return cases;
}

} // namespace

bool Step::isOfSearch() const
{
    return requestType == CheckCoordinator || requestType == BroadcastSearch;
}

QString Step::name() const
{
    const QString kind = bootType != 0 ? QStringLiteral("boot %1").arg(bootType) : QString::number(requestType);
    return QStringLiteral("request %1, number %2").arg(kind).arg(nth);
}

bool Step::operator==(const Step& other) const
{
    return requestType == other.requestType && bootType == other.bootType && nth == other.nth &&
           answerLength == other.answerLength;
}

QVector<Step> stepsOf(const QVector<UnitRequest>& requests)
{
    QMap<QPair<int, int>, QVector<Step>> byType;
    int before = 0;
    for (const UnitRequest& request : requests) {
        const int type = request.requestType;
        // On the wire the watch looks like the question of a search.
        const bool isOfWatch = type == CheckCoordinator && before != BroadcastSearch;
        if (type == SetTime || type == ReadTime || isOfWatch) {
            continue;
        }
        before = type;
        QVector<Step>& ofType = byType[{type, request.bootType}];
        ofType.append({type, request.bootType, ofType.size() + 1, request.answer.size()});
    }
    QVector<Step> steps;
    for (const QVector<Step>& ofType : std::as_const(byType)) {
        steps += ofType;
    }
    return steps;
}

bool FaultCase::repeatsLostLogBlock() const
{
    const bool isLate =
        (fault.kind == UnitFault::DelayAnswer || fault.kind == UnitFault::BreakOff) && fault.faultValue == late;
    return promise != PastSkipping && !(step.requestType == LogBlock && isLate);
}

bool FaultCase::isMet(const QVector<UnitRequest>& requests) const
{
    const auto isOfStep = [this](const UnitRequest& request) {
        return request.requestType == step.requestType && request.bootType == step.bootType;
    };
    return std::count_if(requests.cbegin(), requests.cend(), isOfStep) >= step.nth;
}

QString FaultCase::promiseName(Promise promise)
{
    static const QStringList names{QStringLiteral("kept"), QStringLiteral("checksum"), QStringLiteral("answer"),
                                   QStringLiteral("skipping")};
    return names.at(promise);
}

QVector<FaultCase> faultCases(const QVector<Step>& steps, quint32 seed, bool alsoSkipping)
{
    QRandomGenerator random(seed);
    QVector<FaultCase> cases;
    for (const Step& step : steps) {
        cases += casesOf(step, random);
    }
    if (alsoSkipping) {
        const QVector<FaultCase> ofOtherUnits = cases;
        for (FaultCase again : ofOtherUnits) {
            if (again.step.requestType == LogBlock && again.promise == FaultCase::Kept) {
                again.name += QStringLiteral(", of a unit that skips");
                again.promise = FaultCase::PastSkipping;
                cases.append(again);
            }
        }
    }
    return cases;
}
