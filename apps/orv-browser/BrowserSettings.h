#pragma once

#include <QString>

#include "OrvLibrary/host/fileString.h"

/// What the user sets in the preferences dialog for this window alone, kept in "browser.json" below the root;
/// `SharedSettings` are those of all programs. Lives on the interface thread.
struct BrowserSettings
{
    static constexpr int kMostHours = 8760; ///< a year

    bool checkAtStart = false;
    int checkAgeHours = 24;                     ///< no check at start while the last one is younger
    QString colours = QStringLiteral("system"); ///< see Appearance

    /// What the file says; the defaults where it says nothing or cannot be read.
    static BrowserSettings load(const fileString& root);
    /// @param reason filled on failure; the file is then as it was
    bool save(const fileString& root, QString& reason) const;
};
