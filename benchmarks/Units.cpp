#include "benchmarks/Units.h"

#include "eventlog/LogEvents.h"
#include "model/Device.h"
#include "model/RelayInfo.h"
#include "simulator/LogGenerator.h"

#include <QRandomGenerator>

namespace units
{

UnitState installation(int logRecords)
{
    UnitState unit;
    for (int i = 0; i < 10; ++i) {
        const int terminalClass = i % 5;
        unit.terminals.append(
            UnitTerminal::make(quint8(i + 1), terminalClass, 1, 0x41, 0x20, terminalClass == 2 ? 8 : 7));
    }
    unit.log = LogRing(LogRing::maximumCapacity);
    unit.log.append(units::logRecords(logRecords));
    return unit;
}

QByteArrayList logRecords(int count)
{
    return LogGenerator(1, LogGenerator::Everything).history(count, QDateTime(QDate(2026, 6, 1), QTime(12, 0)));
}

QList<QList<EventOfTable>> logBatches()
{
    constexpr int batch = 2000;
    const Device device([](const QString&, const QString&) {});
    LogEvents events;
    events.setDevices(&device);
    events.decodeEvents(logRecords(wholeLog));
    events.numberEvents();
    const QList<EventOfTable> rows = events.takeEvents(wholeLog);
    QList<QList<EventOfTable>> batches;
    for (int first = 0; first < rows.size(); first += batch) {
        batches.append(rows.mid(first, batch));
    }
    return batches;
}

QByteArrayList terminalRecords(int count)
{
    constexpr int executive = 2;
    constexpr int lengthForTwoOutputs = 8;
    QByteArrayList records;
    for (int address = 1; address <= count; ++address) {
        records.append(UnitTerminal::make(quint8(address), executive, 1, 0x41, 0x20, lengthForTwoOutputs).infoRecord);
    }
    return records;
}

QSharedPointer<RelayInfo> fullModel(int outputsOfTerminal)
{
    const auto model = QSharedPointer<RelayInfo>::create();
    QRandomGenerator random(1);
    for (quint16 address = 1; address < 32; ++address) {
        const GroupRelayPtr group = model->addGroup(QStringLiteral("Terminal %1").arg(address), address);
        for (int i = 0; i < outputsOfTerminal; ++i) {
            model->addOutput(group, QStringLiteral("Output of the hall"));
        }
    }
    const auto scripts = model->scripts();
    const auto groups = model->groups();
    for (const GroupRelayPtr& group : groups) {
        for (const RelayInformationPtr& output : std::as_const(group->outputs)) {
            for (int i = 0; i < 4; ++i) {
                output->activatedScripts.append(scripts.at(random.bounded(scripts.size())));
            }
        }
    }
    for (const ScriptInfoPtr& script : scripts) {
        script->name = QStringLiteral("Script of the hall");
        script->stateChannel = model->stateChannels().value(random.bounded(model->stateChannels().size()));
        script->mode = model->modes().value(random.bounded(model->modes().size()));
        script->stateTerminal = model->terminalStates();
        for (QList<bool>* const flags : {&script->addressFilter, &script->activateFilter, &script->daysOfWeek}) {
            for (bool& flag : *flags) {
                flag = random.bounded(2) == 1;
            }
        }
        script->notActive = false;
    }
    return model;
}

} // namespace units
