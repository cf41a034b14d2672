#pragma once

#include "OrvLibrary/host/fileString.h"

/// The bin of the desktop, laid out as freedesktop.org describes it: the folder "files" holds the files, the
/// folder "info" a note for each, with its former place and the time. So the user can take a file back
/// without us. Functions may be called from any thread.
namespace DesktopBin {

/// Moves a file to the bin of its disk: to the one in the user's data folder, or from another disk to the one
/// at the top of that disk. Nothing is copied, and no file in the bin is replaced.
/// @return where the file is now; empty if the bin does not take it, which leaves it in its place
fileString take(const fileString& path);

/// Removes the note for a file that is no longer in the bin.
void removeNote(const fileString& inBin);

} // namespace DesktopBin
