#include "simulator/FaultPlan.h"

#include <algorithm>
#include <array>

namespace
{
constexpr int defaultGap = 20;
constexpr int defaultNoise = 8;
constexpr int defaultOutage = 300;
constexpr int bitsOfByte = 8;

int orDefault(int value, int standard)
{
    return value < 0 ? standard : value;
}

/// Without the bytes that begin or mark something in a frame: noise that a parser can pass over.
QByteArray noise(const UnitFault& fault, QRandomGenerator& random)
{
    if (!fault.faultBytes.isEmpty()) {
        return fault.faultBytes;
    }
    constexpr int harmless = 0xC0;
    QByteArray bytes;
    for (int count = orDefault(fault.faultAmount, defaultNoise); count > 0; --count) {
        bytes.append(char(random.bounded(harmless)));
    }
    return bytes;
}

using Apply = void (*)(FaultEffects&, const UnitFault&, QRandomGenerator&);

/// In the order of UnitFault::Kind.
constexpr std::array<Apply, UnitFault::KindCount> effects{
    [](FaultEffects& all, const UnitFault& /*fault*/, QRandomGenerator& /*random*/) { all.requestLost = true; },
    [](FaultEffects& all, const UnitFault& /*fault*/, QRandomGenerator& /*random*/) { all.answerLost = true; },
    [](FaultEffects& all, const UnitFault& fault, QRandomGenerator& /*random*/) {
        all.delay += orDefault(fault.faultValue, 0);
    },
    [](FaultEffects& all, const UnitFault& fault, QRandomGenerator& /*random*/) {
        all.pieces = orDefault(fault.faultAmount, 2);
        all.gap = orDefault(fault.faultValue, defaultGap);
    },
    [](FaultEffects& all, const UnitFault& fault, QRandomGenerator& random) {
        all.noiseBefore += noise(fault, random);
    },
    [](FaultEffects& all, const UnitFault& fault, QRandomGenerator& random) { all.noiseAfter += noise(fault, random); },
    [](FaultEffects& all, const UnitFault& fault, QRandomGenerator& random) {
        all.noiseLater += noise(fault, random);
        all.noiseLaterAfter = orDefault(fault.faultValue, defaultGap);
    },
    [](FaultEffects& all, const UnitFault& /*fault*/, QRandomGenerator& /*random*/) { all.badChecksum = true; },
    [](FaultEffects& all, const UnitFault& fault, QRandomGenerator& /*random*/) {
        all.damaged = true;
        all.damagedByte = fault.faultAmount;
        all.damagedBit = fault.faultValue;
    },
    [](FaultEffects& all, const UnitFault& fault, QRandomGenerator& /*random*/) {
        all.refused = true;
        all.refusal = quint8(orDefault(fault.faultValue, 1));
    },
    [](FaultEffects& all, const UnitFault& /*fault*/, QRandomGenerator& /*random*/) { all.changed = true; },
    [](FaultEffects& all, const UnitFault& fault, QRandomGenerator& /*random*/) {
        all.replaced = true;
        all.replacement = fault.faultBytes;
    },
    [](FaultEffects& all, const UnitFault& fault, QRandomGenerator& /*random*/) {
        all.unplugs = true;
        all.unplugAfter = fault.faultAmount;
        all.unplugTime = orDefault(fault.faultValue, 0);
    },
    [](FaultEffects& all, const UnitFault& fault, QRandomGenerator& /*random*/) {
        all.losesPower = true;
        all.powerOutage = orDefault(fault.faultValue, defaultOutage);
    },
    [](FaultEffects& all, const UnitFault& fault, QRandomGenerator& /*random*/) {
        all.breaksOff = true;
        all.breakAfter = orDefault(fault.faultAmount, 1);
        all.restAfter = fault.faultValue;
    },
    [](FaultEffects& all, const UnitFault& fault, QRandomGenerator& /*random*/) {
        all.copies = orDefault(fault.faultAmount, 2);
    },
    [](FaultEffects& all, const UnitFault& fault, QRandomGenerator& /*random*/) {
        all.formerInstead = fault.faultValue == 1;
        all.formerBefore = !all.formerInstead;
    }};

bool concerns(const UnitFault& fault, int requestType, int bootType)
{
    const bool any = fault.requestType == 0 && fault.bootType == 0;
    return any || (fault.requestType != 0 && fault.requestType == requestType) ||
           (fault.bootType != 0 && fault.bootType == bootType);
}

} // namespace

bool FaultEffects::spoilsAnswer() const
{
    const bool isCut = breaksOff && (restAfter < 0 || restAfter >= patience);
    return answerLost || unplugs || losesPower || badChecksum || damaged || formerInstead || isCut ||
           delay >= patience || (pieces > 1 && gap >= patience);
}

QByteArray FaultEffects::alteredData(const QByteArray& data) const
{
    if (data.isEmpty()) {
        return data;
    }
    QRandomGenerator random(dice);
    QByteArray altered = data;
    const int place = random.bounded(data.size());
    altered[place] = char(altered.at(place) ^ char(random.bounded(1, 0x100)));
    return altered;
}

QByteArray FaultEffects::damagedFrame(const QByteArray& frame) const
{
    QRandomGenerator random(dice);
    QByteArray damagedBytes = frame;
    const int anyPlace = random.bounded(frame.size());
    const int anyBit = random.bounded(bitsOfByte);
    const int place = qMin(orDefault(damagedByte, anyPlace), frame.size() - 1);
    damagedBytes[place] = char(damagedBytes.at(place) ^ char(1 << orDefault(damagedBit, anyBit) % bitsOfByte));
    return damagedBytes;
}

QByteArray FaultEffects::takeRest(QByteArray& frame) const
{
    if (!breaksOff) {
        return {};
    }
    const QByteArray rest = frame.mid(breakAfter);
    frame.truncate(breakAfter);
    return restAfter < 0 ? QByteArray() : rest;
}

QVector<QByteArray> FaultEffects::cut(const QByteArray& frame) const
{
    QRandomGenerator random(dice);
    QVector<int> places;
    while (places.size() < qMin(pieces, frame.size()) - 1) {
        const int place = random.bounded(1, frame.size());
        if (!places.contains(place)) {
            places.append(place);
        }
    }
    std::sort(places.begin(), places.end());
    places.append(frame.size());

    QVector<QByteArray> parts;
    int begin = 0;
    for (const int end : std::as_const(places)) {
        parts.append(frame.mid(begin, end - begin));
        begin = end;
    }
    return parts;
}

FaultPlan::FaultPlan(const QVector<UnitFault>& faults, quint32 seed)
{
    rules.reserve(faults.size());
    for (const UnitFault& fault : faults) {
        const std::array<quint32, 2> seeds{seed, quint32(rules.size())};
        rules.append({fault, QRandomGenerator(seeds.data(), qsizetype(seeds.size())), 0});
    }
}

FaultEffects FaultPlan::effectsOn(int requestType, int bootType)
{
    FaultEffects all;
    for (Rule& rule : rules) {
        const UnitFault& fault = rule.fault;
        if (!concerns(fault, requestType, bootType)) {
            continue;
        }
        ++rule.matched;
        const bool inRange =
            rule.matched >= fault.first && (fault.count < 0 || rule.matched < fault.first + fault.count);
        if (inRange && rule.random.generateDouble() < fault.chance) {
            all.dice = rule.random.generate();
            effects.at(size_t(fault.kind))(all, fault, rule.random);
        }
    }
    return all;
}
