#pragma once

#include <string>

#include <QJsonObject>

#include "OrvLibrary/host/fileString.h"

/// What `status` says of a library: its last check, what is wrong with it, and the catalogs that are held.
struct StatusReport
{
    std::string text; ///< for people
    QJsonObject document;
    bool isSound = true; ///< nothing needs attention

    /// The document of a library that was not looked at.
    static QJsonObject nothingYet();
    /// Reads a root, whose folders the installed path service names, and compares its core catalogs with
    /// their tags.
    static StatusReport of(const fileString& root);
};
