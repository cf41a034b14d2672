#include "apps/orv-library/Session.h"

Session::Session(const GlobalOptions& options) : mOptions(options), mConsole(options.json) {}

Session::~Session() = default;

OrvHost::AppHost& Session::host()
{
    if (!mHost) {
        OrvHost::AppHost::Settings settings;
        settings.root = fileString(mOptions.root);
        mHost = std::make_unique<OrvHost::AppHost>(settings);
    }
    return *mHost;
}
