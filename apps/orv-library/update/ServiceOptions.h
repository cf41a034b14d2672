#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "OrvHost/Settings.h"
#include "OrvHost/update/CatalogUpdateRun.h"
#include "apps/orv-library/CommandSyntax.h"

/// The options of `update`, which every command takes that asks the catalog web service: the address, what
/// the service is told, which catalogs, and the way to it. What is not given comes from the settings.
class ServiceOptions
{
public:
    void declare(CommandSyntax& syntax);

    /// Fills in what was not given.
    /// @throws UsageError when a value cannot be
    void complete(const OrvHost::Settings& settings);
    /// @throws UsageError when there is no address, neither here nor in the settings
    void requireAddress() const;

    /// Gives the download service its proxy, certificates and bounds.
    /// @throws std::runtime_error when the certificates cannot be read
    void apply() const;
    OrvHost::CatalogUpdateRun::Request request() const;
    /// Of the content index.
    const std::string& index() const { return mIndex; }
    const OrvHost::Settings::Values& values() const { return mValues; }

private:
    void checkGiven() const;
    OrvHost::ServiceAccess access() const;

    static constexpr std::int64_t kNotGiven = std::numeric_limits<std::int64_t>::min();

    // As they were given; empty, or `kNotGiven`, for what was not.
    std::string mUrl;
    std::string mProduct;
    std::string mProductVersion;
    std::string mIndex;
    std::string mCertificates;
    std::string mProxy;
    std::vector<std::string> mBonus;
    std::vector<std::string> mManufacturer;
    std::int64_t mRetries = kNotGiven;
    std::int64_t mLimitRate = kNotGiven;
    bool mCoreOnly = false;
    bool mNoDatabaseCheck = false;
    OrvHost::Settings::Values mValues; ///< what holds; filled by `complete`
};
