#pragma once

#include <QString>
#include <QStringList>

/// Where the manual is.
namespace manual
{

/// Where it may be, the better place first: that of an installed program, then that of a source tree.
/// binaryDirectory: that of the running program.
QStringList places(const QString& binaryDirectory);

/// The first of the files that is there; empty if none is.
QString firstOf(const QStringList& files);

} // namespace manual
