#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "OrvHost/update/HostLock.h"
#include "OrvLibrary/host/fileString.h"

/// The user's own libraries as files: the database, the ".bak" file that an import leaves beside it, and the
/// archive of its textures, which all carry the library's name. A process that is killed in the middle leaves
/// the library whole under one name, at most with a second name for its textures. Functions run for a while,
/// on any thread; the caller holds the lock. They throw std::runtime_error with a reason for people; nothing
/// has changed then, unless the reason says so.
namespace OwnFiles {

/// Keeps imports and other windows on the root from changing the own libraries meanwhile. It waits up to a
/// minute.
/// @param isCancelled asked while it waits; when it says yes, the wait ends with "cancelled"
OrvHost::HostLock lock(const fileString& root, const std::function<bool()>& isCancelled);

/// A library that was moved to the bin: where each file was and where it is now.
using Binned = std::vector<std::pair<fileString, fileString>>;

/// Moves a library with all that belongs to it to the bin of the desktop, from where the user can take it
/// back without us.
Binned moveToBin(const fileString& database);
/// Takes a library back from the bin.
void takeBack(const Binned& files);
void rename(const fileString& from, const fileString& to);

} // namespace OwnFiles
