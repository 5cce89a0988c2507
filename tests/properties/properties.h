#pragma once

#include <QByteArray>
#include <QString>

#include <iostream>
#include <string>
#include <vector>

#include <rapidcheck.h>

namespace properties
{

/// How many cases of which size a program tries, and from which seed, unless RC_PARAMS says otherwise. Always the same
/// ones: a run must not fail by chance. To be called before the first property.
inline void setDefaults(int cases, int size)
{
    if (!qEnvironmentVariableIsSet("RC_PARAMS")) {
        qputenv("RC_PARAMS",
                "seed=1 max_success=" + QByteArray::number(cases) + " max_size=" + QByteArray::number(size));
    }
}

/// Fails the case for a fault that has words. They are told at once as well: rapidcheck runs a case that fails once
/// more, and knows nothing of a fault that doesn't come again.
inline void demandNone(const QString& fault)
{
    if (!fault.isEmpty()) {
        std::cerr << "fault: " << fault.toStdString() << '\n';
        RC_FAIL(fault.toStdString());
    }
}

inline void demand(bool isWell, const char* otherwise)
{
    demandNone(isWell ? QString() : QString::fromLatin1(otherwise));
}

/// Any bytes, no more than a number of them.
inline rc::Gen<QByteArray> bytes(int most)
{
    return rc::gen::map(rc::gen::arbitrary<std::vector<char>>(), [most](const std::vector<char>& drawn) {
        return QByteArray(drawn.data(), int(drawn.size())).left(most);
    });
}

} // namespace properties

/// As rapidcheck tells it of a case that fails.
inline void showValue(const QByteArray& bytes, std::ostream& stream)
{
    stream << '"' << bytes.toHex(' ').constData() << '"';
}

inline void showValue(const QString& text, std::ostream& stream)
{
    stream << '"' << text.toStdString() << '"';
}
