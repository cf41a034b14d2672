#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "OrvHost/Settings.h"
#include "OrvHost/update/CatalogUpdateRun.h"
#include "apps/orv-library/CommandSyntax.h"

/// The options of `update` and of all other commands that use the catalog web service: its address, the
/// product, the catalogs and the network. Values that are not given come from the settings.
class ServiceOptions
{
public:
    void declare(CommandSyntax& syntax);

    /// Fills in the values that were not given.
    /// @throws UsageError if a value is not valid
    void complete(const OrvHost::Settings& settings);
    /// @throws UsageError if neither the options nor the settings have an address
    void requireAddress() const;

    /// Sets up the download service: proxy, certificates and limits.
    /// @throws std::runtime_error if the certificates cannot be read
    void apply() const;
    OrvHost::CatalogUpdateRun::Request request() const;
    /// The name of the content index.
    const std::string& index() const { return mIndex; }
    const OrvHost::Settings::Values& values() const { return mValues; }

private:
    void checkGiven() const;
    OrvHost::ServiceAccess access() const;

    static constexpr std::int64_t kNotGiven = std::numeric_limits<std::int64_t>::min();

    // As given; empty or `kNotGiven` for those not given.
    std::string mUrl;
    std::string mProduct;
    std::string mProductVersion;
    std::string mIndex;
    std::string mCertificates;
    std::string mProxy;
    std::string mMetered;
    std::vector<std::string> mBonus;
    std::vector<std::string> mManufacturer;
    std::int64_t mRetries = kNotGiven;
    std::int64_t mLimitRate = kNotGiven;
    bool mCoreOnly = false;
    bool mNoDatabaseCheck = false;
    OrvHost::Settings::Values mValues; ///< the values in force; set by `complete`
};
