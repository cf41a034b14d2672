#pragma once

#include <memory>
#include <string>

#include "OrvHost/AppHost.h"
#include "apps/orv-library/Console.h"
#include "apps/orv-library/GlobalOptions.h"

/// What a command works with: the global options, the output and, once it is asked for, the host with its
/// folders. A command that needs no root never makes one. Used by the main thread.
class Session
{
public:
    explicit Session(const GlobalOptions& options);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    const GlobalOptions& options() const { return mOptions; }
    Console& console() { return mConsole; }

    /// The host on the chosen root; made at the first call, with the folders that are missing.
    /// @throws std::runtime_error when a folder cannot be made
    OrvHost::AppHost& host();

private:
    GlobalOptions mOptions;
    Console mConsole;
    std::unique_ptr<OrvHost::AppHost> mHost;
};
