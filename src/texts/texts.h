#pragma once

#include <QString>
#include <QStringList>

/// The text catalogue: the constants from which all user texts are taken.
///
/// Each entry of texts.inc is a function here that returns its text, say texts::buttonStop(). So is each of
/// furtherTexts.inc, whose texts aren't part of the ordered catalogue. The data are compiled in and immutable: they
/// exist before main() and may be read from any thread; a call costs no allocation.
namespace texts
{

#define TEXT(name, text) QString name();
#include "texts/furtherTexts.inc"
#include "texts/texts.inc"
#undef TEXT

/// All texts in catalogue order, 383 of them.
QStringList catalogue();

} // namespace texts
