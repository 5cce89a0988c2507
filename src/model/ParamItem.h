#pragma once

#include <QColor>
#include <QList>
#include <QSharedPointer>
#include <QString>

/// One row of a lookup table: a value that a script or an output can take, as the device and as the user know it.
///
/// The rows are shared: a script points at the very row of the table, and rows are told apart by that pointer. A row
/// that stands in a table is never changed. A script with a value that no table has owns a private row.
struct ParamItem
{
    /// The code of a channel state that triggers nothing.
    static constexpr quint8 notActiveCode = 255;

    quint8 code = notActiveCode; ///< the value that goes to the device
    QString name;                ///< text in lists
    QString icon;                ///< resource path of the icon; empty for none
    QColor background = QColor(240, 240, 240);
    QColor foreground = QColor(Qt::black);
    QSharedPointer<ParamItem> linked; ///< the state of a family that a channel state stands for

    /// The code that goes to the device for a channel state: that of the linked row where there is one.
    quint8 effectiveCode() const
    {
        return linked ? linked->code : code;
    }
};

using ParamItemPtr = QSharedPointer<ParamItem>;
using ParamItems = QList<ParamItemPtr>;
