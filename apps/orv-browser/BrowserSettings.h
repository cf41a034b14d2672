#pragma once

#include <QString>

#include "OrvLibrary/host/fileString.h"

/// What the user sets in the preferences dialog, kept in "browser.json" below the root. Lives on the
/// interface thread.
struct BrowserSettings
{
    QString serviceUrl;
    QString product = QStringLiteral("Orv");
    QString productVersion = QStringLiteral("1.0");
    QString manufacturerDataUrl;
    QString manufacturerLogoUrl;
    QString proxy; ///< empty for what the environment says
    bool checkAtStart = false;
    QString colours = QStringLiteral("system"); ///< see Appearance

    /// What the file says; the defaults where it says nothing or cannot be read.
    static BrowserSettings load(const fileString& root);
    /// @param reason filled on failure; the file is then as it was
    bool save(const fileString& root, QString& reason) const;
};
