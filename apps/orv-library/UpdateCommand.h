#pragma once

#include "OrvHost/update/CatalogUpdateRun.h"
#include "apps/orv-library/Command.h"

class UpdateHost;

/// `update`: one catalog update, on a worker thread, with the event loop in the main thread.
class UpdateCommand : public Command
{
public:
    std::string name() const override { return "update"; }
    std::string summary() const override { return "Bring the catalogs up to date from the web service"; }
    void declare(CommandSyntax& syntax) override;

private:
    ExitStatus run(Session& session);
    void checkNames() const;
    OrvHost::CatalogUpdateRun::Request request() const;
    ExitStatus report(Session& session, const UpdateHost& host, const OrvHost::CatalogSwapper& swapper,
                      std::size_t formerLogEntries) const;
    std::string failureReason(const UpdateHost& host, const OrvHost::CatalogSwapper& swapper,
                              std::size_t formerLogEntries) const;

    std::string mUrl;
    std::string mProduct;
    std::string mProductVersion;
    std::string mIndex;
    std::vector<std::string> mBonus;
    std::vector<std::string> mManufacturer;
    bool mCoreOnly = false;
    bool mNoDatabaseCheck = false;
};
