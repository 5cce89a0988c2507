#pragma once

#include "domain/terminals.h"
#include "texts/texts.h"

#include <QColor>
#include <QList>
#include <QSharedPointer>
#include <QString>
#include <QStringList>

/// The four numbers that name the model of a terminal. They are compared together.
struct TerminalIdentity
{
    quint8 terminalClass = AnyClass;
    quint8 version = 0; ///< 0 to 15
    quint8 type = 0;    ///< low half: four feature flags
    quint8 characteristic = 0;
};

inline bool sameModel(const TerminalIdentity& a, const TerminalIdentity& b)
{
    return a.terminalClass == b.terminalClass && a.version == b.version && a.type == b.type &&
           a.characteristic == b.characteristic;
}

/// One known kind of terminal, and also what the type filter of a script asks for. In a filter a version, a
/// characteristic, or a half of the type of 0 means any.
struct TerminalType : TerminalIdentity
{
    QString label = texts::placeholderOtherType(); ///< text in the list of types
    QString name = QStringLiteral("F0 00 00");     ///< model name
    QStringList outputs;                           ///< default names of the outputs
    QColor background = QColor(240, 240, 240);
    QColor foreground = QColor(Qt::black);
};

/// One terminal that the head unit reported.
struct ConnectedTerminal : TerminalIdentity
{
    QString label = QStringLiteral("F0 00 00"); ///< model name, or the numbers of a model that isn't known
    quint8 address = 0;
    QStringList outputs;
};

using TerminalTypePtr = QSharedPointer<TerminalType>;
using TerminalTypes = QList<TerminalTypePtr>;
using ConnectedTerminalPtr = QSharedPointer<ConnectedTerminal>;
