#pragma once

#include <QString>

/// The built-in catalogue of models, as the text of the files that are written when they are missing.
namespace catalogue
{

QString english(); ///< "Devices_EN.csv", the file that is read
QString russian(); ///< "Devices_RU.csv", the same models for colleagues who read Russian

} // namespace catalogue
