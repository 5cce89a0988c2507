// Any bytes as records of the device: the readers survive, the model stays sound, and its own records come back.

#include "fuzz/fuzz.h"
#include "model/RelayInfo.h"
#include "support/ModelInvariants.h"
#include "support/RandomModel.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static RelayInfo model;
    static const bool typesAdded = [] {
        RandomModel::addTerminalTypes(model);
        return true;
    }();
    Q_UNUSED(typesAdded)

    const QByteArrayList records = fuzz::recordsOf(fuzz::bytesOf(data, size));
    model.readTerminalRecords(records);
    model.readOutputRecords(records);
    model.readScriptRecords(records);
    fuzz::demand(model.groups().first()->address == 0, QStringLiteral("the head unit is not in front"));
    QString broken = brokenInvariant(model);
    fuzz::demand(broken.isEmpty(), broken);

    // Terminals of 128 and above stand twice: by the byte of their record, and by the number that outputs make of it.
    model.resetGroups(true);
    model.readTerminalRecords({});
    model.readOutputRecords(records);
    const QByteArrayList outputs = model.makeOutputRecords();
    model.readOutputRecords(outputs);
    fuzz::demand(model.makeOutputRecords() == outputs, QStringLiteral("outputs don't come back"));

    // Decimals out of range lose a digit at each reading, so scripts settle after a few.
    QByteArrayList scripts;
    for (int round = 0; round < 4; ++round) {
        scripts = model.makeScriptRecords();
        model.readScriptRecords(scripts);
    }
    fuzz::demand(model.makeScriptRecords() == scripts, QStringLiteral("scripts don't come back"));
    broken = brokenInvariant(model);
    fuzz::demand(broken.isEmpty(), broken);
    return 0;
}
