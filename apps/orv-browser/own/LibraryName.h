#pragma once

#include <QString>
#include <QStringList>

#include "OrvLibrary/host/fileString.h"

/// Names of the user's own libraries, which are names of files as well, and of what lies in them. Any thread.
namespace LibraryName {

/// A name as it is kept: without blanks around it, and each letter with an accent as one.
QString cleaned(const QString& typed);
/// Why a name cannot be that of a library, for people; empty when it can.
/// @param taken names of other libraries; those that differ only in the case of letters count as the same
QString problemOf(const QString& name, const QStringList& taken);
/// The same for an item or a folder, whose names may be anything that can be read.
QString problemOfEntry(const QString& name);

/// The names of the libraries in the user's folder.
QStringList installed();
/// The database of a library of that name.
fileString databaseOf(const QString& name);
/// The name of a database's library.
QString nameOf(const fileString& database);

} // namespace LibraryName
