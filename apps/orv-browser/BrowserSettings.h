#pragma once

#include <optional>
#include <string>

#include <QString>

#include "OrvLibrary/host/fileString.h"

/// The preferences of this window alone, kept in "browser.json" below the root;
/// `SharedSettings` are those of all programs. Lives on the interface thread.
struct BrowserSettings
{
    static constexpr int kMostHours = 8760; ///< a year

    bool checkAtStart = false;
    int checkAgeHours = 24;                     ///< no check at start while the last one is younger
    QString colours = QStringLiteral("system"); ///< see Appearance

    /// The settings of the file, with defaults for those that it lacks.
    /// @throws std::runtime_error if there is a file that cannot be read
    static BrowserSettings load(const fileString& root);
    /// @param reason filled on failure; the file is then as it was
    bool save(const fileString& root, QString& reason) const;

    /// The whole file; none if there is no file.
    /// @throws std::runtime_error if there is one that cannot be read
    static std::optional<std::string> textIn(const fileString& root);
    /// Makes the file what it was, as far as it can be written.
    static void putBack(const fileString& root, const std::optional<std::string>& text);
};
