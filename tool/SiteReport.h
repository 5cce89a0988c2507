#pragma once

#include "link/CoordinatorSearch.h"
#include "tool/ReportContent.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <optional>

class RelayInfo;

/// The unit that a report is about, where it was read from one.
struct ReportedUnit
{
    QString port;
    CoordinatorInfo coordinator;
};

/// What a report is made of. The model is the caller's.
struct ReportSource
{
    const RelayInfo& model;
    QString file;     ///< its name without the folders; empty for a unit
    QDateTime moment; ///< when the unit was read or the file was changed last; no other time gets into a report
    std::optional<ReportedUnit> unit = std::nullopt; ///< with it the model knows which terminals are connected
};

/// The document that an engineer leaves on the site: unit, terminals, outputs, and each active script as a sentence.
///
/// The same source gives the same bytes on one machine. No text of the user is ever taken for markup.
namespace siteReport
{

/// What the report says, for whoever prints it in a way of his own.
ReportContent content(const ReportSource& source);

/// A page that needs nothing beside it; printed, it fills A4.
QString html(const ReportSource& source);

/// A4. Needs a QGuiApplication for its fonts.
QByteArray pdf(const ReportSource& source);

} // namespace siteReport
