#pragma once

#include <QString>
#include <QStringList>

#include "OrvLibrary/host/fileString.h"

/// What the user sets in the preferences dialog, kept in "browser.json" below the root. Lives on the
/// interface thread.
struct BrowserSettings
{
    QString serviceUrl;
    QString product = QStringLiteral("Orv");
    QString productVersion = QStringLiteral("1.0");
    /// Names of catalogs to fetch beside those that are there; the core ones are known to the service.
    QStringList bonusCatalogs;
    QStringList manufacturerCatalogs;
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

/// What the command line says of the service; it goes before the preferences, for one run. Empty for nothing.
struct ServiceOverrides
{
    QString serviceUrl;
    QString product;
    QString productVersion;
    QStringList bonusCatalogs;
    QStringList manufacturerCatalogs;

    BrowserSettings over(BrowserSettings settings) const;
};
