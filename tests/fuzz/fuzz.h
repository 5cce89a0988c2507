#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>

/// What a fuzzer has to offer: it is called with one input after the other.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz
{

/// Ends the run with a complaint, so that the input is kept.
inline void demand(bool condition, const QString& complaint)
{
    if (!condition) {
        std::cerr << "broken: " << complaint.toStdString() << '\n';
        std::abort();
    }
}

/// Debug lines are no findings, and at this pace a nuisance.
inline bool silenceDebugLines()
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    return true;
}

inline QByteArray bytesOf(const std::uint8_t* data, std::size_t size)
{
    return QByteArray(reinterpret_cast<const char*>(data), int(size));
}

/// Cuts an input into records: a byte with the length of a record, below a limit, then the record.
inline QByteArrayList recordsOf(const QByteArray& bytes, int limit = 48)
{
    QByteArrayList records;
    for (int i = 0; i < bytes.size();) {
        const int length = quint8(bytes.at(i)) % limit;
        records.append(bytes.mid(i + 1, length));
        i += 1 + length;
    }
    return records;
}

} // namespace fuzz
