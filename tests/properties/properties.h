#pragma once

#include <QByteArray>
#include <QString>

#include <ostream>
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

/// Fails the case for a fault that has words.
inline void demandNone(const QString& fault)
{
    if (!fault.isEmpty()) {
        RC_FAIL(fault.toStdString());
    }
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
