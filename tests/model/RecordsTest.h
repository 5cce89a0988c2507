#pragma once

#include "model/RelayInfo.h"
#include "model/modelShorthand.h"

#include <QTest>

#include <initializer_list>
#include <memory>
#include <utility>

inline QByteArray hex(const char* text)
{
    return QByteArray::fromHex(text);
}

/// A script record of zeros with some bytes set: {{byte, value}, ...}.
inline QByteArray scriptRecord(std::initializer_list<std::pair<int, int>> bytes)
{
    QByteArray record(22, '\0');
    for (const auto& [index, value] : bytes) {
        record[index] = char(value);
    }
    return record;
}

inline ScriptInfoPtr readScript(RelayInfo& model, const QByteArray& record)
{
    model.readScriptRecords({record});
    return model.scripts().at(record.at(0) & 31);
}

inline QByteArray writeScript(const RelayInfo& model, int number)
{
    return model.makeScriptRecords().at(number);
}

inline QStringList outputNames(const GroupRelayPtr& group)
{
    QStringList names;
    for (const RelayInformationPtr& output : std::as_const(group->outputs)) {
        names.append(output->name);
    }
    return names;
}

/// The records of the device, byte for byte, in both directions: those of one topic in each test.
class RecordsTest : public QObject
{
protected:
    std::unique_ptr<RelayInfo> model;

    /// A model in its reset state.
    void begin()
    {
        model = std::make_unique<RelayInfo>();
    }
};
