#pragma once

#include <QString>

#include <optional>

/// The rules of the one line that reports every operation.
///
/// Given a message and the text on show, returns what the line shows next, or nothing if it stays as it is. Loading the
/// default settings speaks as one operation, though the writing in it reports by itself; and the automatic chain leaves
/// the outcome of the scripts in view, so that the end of its log reading clears chainRunning and shows nothing.
std::optional<QString> nextResult(const QString& message, const QString& shown, bool& chainRunning);
