#include "campaign/campaignUnit.h"

#include "model/RelayInfo.h"
#include "simulator/LogGenerator.h"
#include "support/ModelOfUnit.h"
#include "support/RandomUnit.h"

#include <QDateTime>
#include <QFile>
#include <QRandomGenerator>

namespace
{

UnitState draw(quint32 seed)
{
    constexpr int executive = 2;
    constexpr int terminalClasses = 5;
    constexpr quint8 firstOfOthers = 40; // behind those that have outputs
    constexpr int events = 10;
    UnitState state = RandomUnit(seed, RandomUnit::OfFiles).draw();
    for (int channelClass = 0; channelClass < terminalClasses; ++channelClass) {
        if (channelClass != executive) {
            state.terminals.append(UnitTerminal::make(quint8(firstOfOthers + channelClass), channelClass, 1, 2, 3));
        }
    }
    state.log.append(LogGenerator(seed, LogGenerator::Plausible, state.terminals)
                         .history(events, QDateTime(QDate(2026, 3, 9), QTime(12, 0))));
    return state;
}

} // namespace

UnitState campaignUnit()
{
    static const UnitState state = draw(11);
    return state;
}

UnitState blankCampaignUnit()
{
    UnitState state = campaignUnit();
    state.outputs = UnitState::emptyOutputs();
    state.scripts = UnitState::emptyScripts();
    return state;
}

UnitState otherUnit()
{
    static const UnitState state = draw(12);
    return state;
}

QByteArray campaignImage()
{
    constexpr int size = 2 + 3 * 128 + 77;
    QRandomGenerator random(1);
    QByteArray image(size, '\0');
    for (char& byte : image) {
        byte = char(random.bounded(256));
    }
    return image;
}

void saveConfiguration(const UnitState& state, const QString& path)
{
    RelayInfo model;
    fill(model, state);
    model.saveToFile(path);
}

bool fileHolds(const QString& path, const UnitState& state)
{
    RelayInfo model;
    if (model.loadFromFile(path) != RelayInfo::FileOk || model.errorCount() != 0) {
        return false;
    }
    auto outputs = UnitState::emptyOutputs();
    const QByteArrayList outputRecords = model.makeOutputRecords();
    for (const QByteArray& record : outputRecords) {
        const auto address = quint8(record.at(0));
        const auto number = quint8(record.at(1));
        if (address < UnitState::addressCount && number < UnitState::outputsPerAddress) {
            outputs.at(address).at(number) = record.mid(2);
        }
    }
    auto scripts = UnitState::emptyScripts();
    const QByteArrayList scriptRecords = model.makeScriptRecords();
    for (const QByteArray& record : scriptRecords) {
        scripts.at(quint8(record.at(0)) % UnitState::scriptCount) = record.mid(1);
    }
    return outputs == state.outputs && scripts == state.scripts;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
