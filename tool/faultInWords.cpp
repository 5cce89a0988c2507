#include "tool/faultInWords.h"

#include "model/ConfigurationError.h"

#include <limits>

namespace
{

QString range(const ConfigurationFault& fault)
{
    const bool hasLowest = fault.lowest != std::numeric_limits<int>::min();
    return hasLowest ? QStringLiteral("from %1 to %2").arg(fault.lowest).arg(fault.highest)
                     : QStringLiteral("%1 at most").arg(fault.highest);
}

QString noNumber(const QString& value)
{
    if (value.isEmpty()) {
        return QStringLiteral("no number is given");
    }
    bool isInteger = false;
    value.toInt(&isInteger);
    if (isInteger) {
        return QStringLiteral("%1 can't be; it counts as no number").arg(value);
    }
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    if (isNumber && qAbs(number) > std::numeric_limits<int>::max()) {
        return QStringLiteral("%1 is too large").arg(value);
    }
    return QStringLiteral("\"%1\" is not a whole number").arg(value);
}

QString noSuch(const char* what, const ConfigurationFault& fault)
{
    const QString text = QStringLiteral("there is no %1[%2], ").arg(QLatin1String(what), fault.part);
    if (fault.highest < 0) {
        return text + QStringLiteral("and none at all so far");
    }
    return text + (fault.highest == 0 ? QStringLiteral("only [0] so far")
                                      : QStringLiteral("only [0] to [%1] so far").arg(fault.highest));
}

/// For faults of a list, which are told by the first of its parts.
QString andMore(const QString& text, const ConfigurationFault& fault)
{
    return fault.count <= 1 ? text : text + QStringLiteral(", and so on: %1 parts in all").arg(fault.count);
}

} // namespace

QString faultInWords(const ConfigurationFault& fault)
{
    switch (fault.kind) {
    case ConfigurationFault::NoEqualsSign:
        return QStringLiteral("there is no \"=\" in it");
    case ConfigurationFault::SectionNotAlone:
        return QStringLiteral("the name of a section has to stand alone on its line");
    case ConfigurationFault::NoKey:
        return QStringLiteral("nothing stands in front of the \"=\"");
    case ConfigurationFault::NoValue:
        return QStringLiteral("nothing stands behind the \"=\"");
    case ConfigurationFault::UnknownKey:
        return QStringLiteral("this key is not known");
    case ConfigurationFault::NoNumber:
        return noNumber(fault.part);
    case ConfigurationFault::OutOfRange:
        return QStringLiteral("%1 is out of range, %2").arg(fault.part, range(fault));
    case ConfigurationFault::NoTerminalNamed:
        return QStringLiteral("this key names no ExecutiveTerminal[...]");
    case ConfigurationFault::NoSuchTerminal:
        return noSuch("ExecutiveTerminal", fault);
    case ConfigurationFault::NoSuchOutput:
        return noSuch("Output", fault);
    case ConfigurationFault::NoSuchScript:
        return noSuch("Script", fault);
    case ConfigurationFault::TooManyTerminals:
        return QStringLiteral("%1 are too many: %2 at most").arg(fault.part).arg(fault.highest);
    case ConfigurationFault::PartNoNumber:
        return andMore(noNumber(fault.part), fault);
    case ConfigurationFault::PartOutOfRange:
        return andMore(QStringLiteral("%1 is out of range, %2").arg(fault.part, range(fault)), fault);
    case ConfigurationFault::NoScriptOfNumber:
        return andMore(QStringLiteral("no script has the number %1").arg(fault.part), fault);
    case ConfigurationFault::TooManyScripts:
        return andMore(QStringLiteral("more than %1 scripts").arg(fault.highest), fault);
    case ConfigurationFault::LinesEndedByLfOnly:
        return QStringLiteral("it ends without CR, so that it and what follows are read as one line; lines have to end "
                              "with CR LF");
    case ConfigurationFault::EndsAtNul:
        return QStringLiteral("a NUL follows; nothing behind it is read");
    }
    return {};
}
