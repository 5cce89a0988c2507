// Any bytes as a configuration file: the reader survives, the model stays sound, and what it then writes is what it
// reads.

#include "fuzz/MemoryFile.h"
#include "fuzz/fuzz.h"
#include "model/ConfigurationWriter.h"
#include "model/RelayInfo.h"
#include "support/ModelInvariants.h"

namespace
{

QByteArray written(const RelayInfo& model)
{
    ParamTables tables;
    tables.stateChannels = model.stateChannels(); // the only table that the writer looks rows up in
    return configurationText(tables, model.groups(), model.scripts(), model.comment()).toUtf8();
}

void demandSoundLoad(RelayInfo& model, const MemoryFile& file)
{
    fuzz::demand(model.loadFromFile(file.path()) == 0, QStringLiteral("the result"));
    const QString broken = brokenInvariant(model);
    fuzz::demand(broken.isEmpty(), broken);
}

/// Scripts with changed numbers mean other scripts at each reading.
bool scriptsKeepTheirNumbers(const RelayInfo& model)
{
    for (int i = 0; i < model.scripts().size(); ++i) {
        if (model.scripts().at(i)->number != i) {
            return false;
        }
    }
    return true;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const MemoryFile file;
    static RelayInfo model;

    QByteArray text = fuzz::bytesOf(data, size);
    file.fill(text);
    demandSoundLoad(model, file);
    if (qHash(text) % 8 != 0) {
        return 0; // a whole file takes much longer than the usual input
    }
    QByteArray former;
    // What is written at first may hold what the reader takes otherwise, such as an empty name. The next is final.
    for (int round = 0; round < 2; ++round) {
        former = written(model);
        file.fill(former);
        demandSoundLoad(model, file);
    }
    text = written(model);
    fuzz::demand(text == former || !scriptsKeepTheirNumbers(model),
                 QStringLiteral("what is written is not what is read"));
    return 0;
}
