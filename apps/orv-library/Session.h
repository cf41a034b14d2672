#pragma once

#include <memory>
#include <string>

#include <QTemporaryDir>

#include "OrvHost/AppHost.h"
#include "apps/orv-library/GlobalOptions.h"
#include "apps/orv-library/console/Console.h"

/// The surroundings of a command: the global options, the output and, once it is asked for, the host with its
/// folders. The first request decides which kind of host the session has. Used by the main thread.
class Session
{
public:
    explicit Session(const GlobalOptions& options);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    const GlobalOptions& options() const { return mOptions; }
    Console& console() { return mConsole; }

    /// The host on the chosen root, which is made when it is missing. For the few commands that begin a
    /// library: "update", "import", "settings set" and "paths --create".
    /// @throws std::runtime_error when a folder cannot be made
    OrvHost::AppHost& host();
    /// The host on a root that is there already; folders in it that are missing are made. For every other
    /// command that works on a root.
    /// @throws CommandFailure when there is no such root; nothing is created then
    OrvHost::AppHost& existingHost();
    /// The same demand alone.
    void requireRoot() const;
    /// A host for a command that needs no root: it makes none. Temporary files lie in that of a root that is
    /// there, else in a folder of the system's temporary one, which goes with the session.
    OrvHost::AppHost& rootlessHost();

    /// The chosen root, absolute, with its final separator; whether it is there or not.
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
