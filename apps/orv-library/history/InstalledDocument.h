#pragma once

#include <string>

#include <QJsonObject>

#include "OrvHost/history/InstalledCatalogs.h"

/// How `list` and `info` show an installed catalog.
namespace InstalledDocument {

QJsonObject object(const OrvHost::InstalledCatalog& catalog);
/// The same for a catalog that is not installed.
QJsonObject unknown(const std::string& name);
/// One line, with its line break.
std::string line(const OrvHost::InstalledCatalog& catalog);
/// All fields with their names, one per line.
std::string fields(const OrvHost::InstalledCatalog& catalog);

} // namespace InstalledDocument
