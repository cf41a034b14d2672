#pragma once

#include <QString>

#include "OrvLibrary/host/fileString.h"

/// Tells one content of a file from the next without reading it. May be used on any thread.
namespace FileStamp {

/// Changes whenever the file is replaced or written; empty when there is none.
QString of(const fileString& file);

} // namespace FileStamp
