#include "link/DeviceOperation.h"

#include "domain/terminals.h"
#include "link/message.h"
#include "texts/texts.h"

void DeviceOperation::setCoordinator(quint8 address)
{
    coordinatorAddress = address;
}

bool DeviceOperation::endsStep(const message& /*answer*/) const
{
    return true;
}

bool DeviceOperation::hasPort() const
{
    return coordinatorAddress.has_value();
}

quint8 DeviceOperation::coordinator() const
{
    return coordinatorAddress.value_or(noCoordinator);
}

QString DeviceOperation::outcome(const QString& success, const QString& failure, int errors)
{
    return errors == 0 ? success : failure + texts::resultErrorCount() + QString::number(errors) + QLatin1Char(')');
}
