#pragma once

#include <string>
#include <utility>
#include <vector>

#include <QString>
#include <QStringList>

#include "OrvHost/Settings.h"
#include "OrvLibrary/host/fileString.h"

/// The service as the command line gives it, for one run. It takes precedence over the settings. A member is
/// empty if the command line does not give it.
struct ServiceOverrides
{
    QString serviceUrl;
    QString product;
    QString productVersion;
    QStringList bonusCatalogs;
    QStringList manufacturerCatalogs;

    /// Holds no more for this setting.
    void drop(const std::string& key);
    OrvHost::Settings::Values over(OrvHost::Settings::Values values) const;
};

/// The settings that all programs on a root share, as this window uses them. Another program may change them
/// at any time, so they are read anew before they are used. Lives on the interface thread.
class SharedSettings
{
public:
    /// By key, the texts to set it to; none to go back to its default.
    using Changes = std::vector<std::pair<std::string, std::vector<std::string>>>;

    explicit SharedSettings(fileString root) : mRoot(std::move(root)) {}

    /// From now on, these values take precedence over the file.
    void overrideService(const ServiceOverrides& overrides) { mOverrides = overrides; }
    const ServiceOverrides& overrides() const { return mOverrides; }
    /// Reads the file.
    /// @return why that cannot be, for people, and nothing is set then; empty when it can
    QString reload();
    const OrvHost::Settings& file() const { return mFile; }
    /// The settings in force: the command line goes before the environment, and that before the file.
    OrvHost::Settings::Values values() const { return mOverrides.over(mFile.valuesHere()); }
    /// Makes the download service work as the settings say.
    /// @return why that cannot be, for people; empty when it can
    QString apply() const;
    /// Changes the file, whatever it holds by now. A value that the user changes here takes precedence over
    /// the command line.
    /// @param reason filled on failure; the file is then as it was
    bool change(const Changes& changes, QString& reason);

    /// The file name of a catalog that a user named with or without the extension.
    static std::string catalogName(const QString& entered);

private:
    fileString mRoot;
    OrvHost::Settings mFile;
    ServiceOverrides mOverrides;
};
