#include "apps/orv-library/Session.h"

Session::Session(const GlobalOptions& options) : mOptions(options), mConsole(options.json) {}

Session::~Session() = default;

AppHost& Session::host()
{
    if (!mHost) {
        AppHost::Settings settings;
        settings.root = fileString(mOptions.root);
        mHost = std::make_unique<AppHost>(settings);
    }
    return *mHost;
}
