#pragma once

#include "model/RelayInfo.h"

#include <QList>
#include <QString>

inline QString s(const char* text)
{
    return QString::fromUtf8(text);
}

/// The signed addresses of the groups, in their order.
inline QList<int> addresses(const RelayInfo& model)
{
    QList<int> list;
    const QList<GroupRelayPtr> groups = model.groups();
    for (const GroupRelayPtr& group : groups) {
        list.append(qint16(group->address));
    }
    return list;
}
