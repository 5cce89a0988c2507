#include "link/DeviceOperation.h"

#include "link/message.h"
#include "texts/texts.h"

bool DeviceOperation::endsStep(const message& /*answer*/) const
{
    return true;
}

QString DeviceOperation::outcome(const QString& success, const QString& failure, int errors)
{
    return errors == 0 ? success : failure + texts::resultErrorCount() + QString::number(errors) + QLatin1Char(')');
}
