#pragma once

#include <string>

#include <QJsonObject>

#include "OrvHost/update/UpdateOutcome.h"

/// The outcome of an update as text and as the command's document.
namespace UpdateDocument {

/// The document of `update`, without "error".
QJsonObject document(const OrvHost::UpdateOutcome& outcome);
/// The members of "failed".
QJsonArray failures(const OrvHost::UpdateOutcome& outcome);
/// For people, complete lines.
std::string text(const OrvHost::UpdateOutcome& outcome);
/// The failure in one line; empty after success.
/// @param url the address that the update used
std::string complaint(const OrvHost::UpdateOutcome& outcome, const std::string& url);

} // namespace UpdateDocument
