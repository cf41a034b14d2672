#pragma once

#include <cstdint>

#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

/// The last 50 updates and checks on a root, in "runs.json" there; docs/formats/runs.md describes the file.
/// Runs are numbered without gaps, from 1 on. May be used from any thread, and by several programs at once.
namespace OrvHost::RunRecords {

/// Makes a record for a run that begins. Runs that were begun by a process that is there no more become
/// "killed".
/// @param kind "update" or "check"
/// @return the number of the run
/// @throws std::runtime_error when the file cannot be written
ORVHOST_EXPORT std::int64_t begin(const fileString& root, const QString& kind, const QDateTime& start);

/// Completes the record of a run that ended.
/// @param result "outcome", "asked", "fetched", "bytes", "failed" and "catalogs"
/// @throws std::runtime_error when the file cannot be written
ORVHOST_EXPORT void end(const fileString& root, std::int64_t number, const QDateTime& end,
                        const QJsonObject& result);

/// The runs that ended, newest first, without "catalogs". A file that is missing or not understood holds
/// none.
ORVHOST_EXPORT QJsonArray list(const fileString& root);

/// One run that ended, with "catalogs".
/// @throws std::runtime_error with a text for people when there is no such run
ORVHOST_EXPORT QJsonObject show(const fileString& root, std::int64_t number);

/// "2026-11-21T21:16:35Z".
ORVHOST_EXPORT QString timeText(const QDateTime& time);

} // namespace OrvHost::RunRecords
