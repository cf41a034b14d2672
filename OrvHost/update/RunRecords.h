#pragma once

#include <cstdint>

#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

/// The last 50 updates and checks of a root, stored in "runs.json" there; docs/formats/runs.md describes the
/// file. Runs are numbered from 1, without gaps. If the file was removed, the numbers continue after those of
/// the news. May be used from any thread and by several programs at once.
namespace OrvHost::RunRecords {

/// Adds a record for a run that begins. Runs whose process has died are marked as "killed".
/// @param kind "update" or "check"
/// @return the number of the run
/// @throws std::runtime_error if the file cannot be read or written
ORVHOST_EXPORT std::int64_t begin(const fileString& root, const QString& kind, const QDateTime& start);

/// Completes the record of a run.
/// @param result "outcome", "asked", "fetched", "bytes", "failed" and "catalogs"
/// @throws std::runtime_error if the file cannot be read or written
ORVHOST_EXPORT void end(const fileString& root, std::int64_t number, const QDateTime& end,
                        const QJsonObject& result);

/// All completed runs, newest first, without "catalogs". Empty if the file is missing or not valid.
/// @throws std::runtime_error if the file cannot be read
ORVHOST_EXPORT QJsonArray list(const fileString& root);

/// One completed run, with "catalogs".
/// @throws std::runtime_error with a text for people if there is no such run, or the file cannot be read
ORVHOST_EXPORT QJsonObject show(const fileString& root, std::int64_t number);

/// "2026-11-21T21:16:35Z".
ORVHOST_EXPORT QString timeText(const QDateTime& time);

} // namespace OrvHost::RunRecords
