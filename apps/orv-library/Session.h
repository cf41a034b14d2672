#pragma once

#include <memory>
#include <string>

#include <QTemporaryDir>

#include "OrvHost/AppHost.h"
#include "apps/orv-library/GlobalOptions.h"
#include "apps/orv-library/console/Console.h"

/// Everything around a command: the global options, the output and, when first needed, the host with its
/// folders. The first call decides which kind of host the session has. Used by the main thread.
class Session
{
public:
    explicit Session(const GlobalOptions& options);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    const GlobalOptions& options() const { return mOptions; }
    Console& console() { return mConsole; }

    /// The host on the chosen root, which is created if it is missing. Only for commands that start a
    /// library: "update", "import", "settings set" and "paths --create".
    /// @throws std::runtime_error if a folder cannot be created
    OrvHost::AppHost& host();
    /// The host on an existing root; missing folders in it are created. For all other commands that use a
    /// root.
    /// @throws CommandFailure if the root does not exist; nothing is created then
    OrvHost::AppHost& existingHost();
    /// Only checks that the root exists.
    void requireRoot() const;
    /// A host for commands that need no root; creates none. Temporary files go to an existing root or,
    /// without one, to a folder in the system's temporary folder, which is removed with the session.
    OrvHost::AppHost& rootlessHost();

    /// The chosen root, absolute, with a separator at the end. It may be missing.
    fileString root() const { return OrvHost::AppHost::rootOf(fileString(mOptions.root)); }

private:
    bool rootExists() const;
    fileString makeTemporaryFolder();
    OrvHost::AppHost& make(OrvHost::AppHost::Settings settings);

    GlobalOptions mOptions;
    Console mConsole;
    std::unique_ptr<QTemporaryDir> mTemporaryFolder;
    std::unique_ptr<OrvHost::AppHost> mHost;
};
