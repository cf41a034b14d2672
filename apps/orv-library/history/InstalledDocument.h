#pragma once

#include <string>

#include <QJsonObject>

#include "OrvHost/history/InstalledCatalogs.h"

/// How `list` and `info` tell of an installed catalog.
namespace InstalledDocument {

QJsonObject object(const OrvHost::InstalledCatalog& catalog);
/// The same of one that is not there.
QJsonObject unknown(const std::string& name);
/// One line, ended.
std::string line(const OrvHost::InstalledCatalog& catalog);
/// Every field with its name, a line each.
std::string fields(const OrvHost::InstalledCatalog& catalog);

} // namespace InstalledDocument
