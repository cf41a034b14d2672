#pragma once

#include "OrvHost/AppHost.h"
#include "OrvHost/update/CatalogUpdateRun.h"
#include "OrvLibrary/OrvLibraryVersion.h"
#include "apps/orv-library/Command.h"

/// `update`: one catalog update, on a worker thread, with the event loop in the main thread.
class UpdateCommand : public Command
{
public:
    std::string name() const override { return "update"; }
    std::string summary() const override { return "Bring the catalogs up to date from the web service"; }
    void declare(CommandSyntax& syntax) override;

private:
    ExitStatus run(Session& session);
    void checkValues() const;
    OrvHost::CatalogUpdateRun::Request request() const;
    ExitStatus report(Session& session, const OrvHost::UpdateOutcome& outcome,
                      std::size_t formerLogEntries) const;

    std::string mUrl;
    std::string mProduct = OrvHost::AppHost::kName;
    std::string mProductVersion = ORVLIBRARY_VERSION_STRING;
    std::string mIndex;
    std::vector<std::string> mBonus;
    std::vector<std::string> mManufacturer;
    OrvHost::ServiceAccess mAccess;
    std::int64_t mRetries = 3;
    bool mCoreOnly = false;
    bool mNoDatabaseCheck = false;
};
