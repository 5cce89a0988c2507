#pragma once

#include <QColor>
#include <QList>
#include <QSharedPointer>
#include <QString>
#include <QStringList>

#include "domain/terminals.h"
#include "texts/texts.h"

/// One known kind of terminal, and also what the type filter of a script asks for.
///
/// The four numbers are the terminal's identity and are compared together. In a filter a version, a characteristic, or
/// a half of the type of 0 means any.
struct TerminalType
{
    QString label = texts::placeholderOtherType(); ///< text in the list of types
    quint8 terminalClass = AnyClass;
    quint8 version = 0; ///< 0 to 15
    quint8 type = 0;    ///< low half: four feature flags
    quint8 characteristic = 0;
    QString name = QStringLiteral("F0 00 00"); ///< model name
    QStringList outputs;                       ///< default names of the outputs
    QColor background = QColor(240, 240, 240);
    QColor foreground = QColor(Qt::black);
};

/// One terminal that the head unit reported. The fields are those of TerminalType.
struct ConnectedTerminal
{
    QString label = QStringLiteral("F0 00 00");
    quint8 terminalClass = AnyClass;
    quint8 version = 0;
    quint8 type = 0;
    quint8 characteristic = 0;
    quint8 address = 0;
    QStringList outputs;
};

/// True if two records of either kind name the same model: all four numbers are equal.
template <typename A, typename B>
bool sameModel(const A& a, const B& b)
{
    return a.terminalClass == b.terminalClass && a.version == b.version && a.type == b.type &&
           a.characteristic == b.characteristic;
}

using TerminalTypePtr = QSharedPointer<TerminalType>;
using TerminalTypes = QList<TerminalTypePtr>;
using ConnectedTerminalPtr = QSharedPointer<ConnectedTerminal>;
