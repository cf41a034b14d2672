#include "apps/orv-library/update/ServiceOptions.h"

#include "OrvHost/AppHost.h"
#include "OrvLibrary/host/Curl.h"
#include "apps/orv-library/Command.h"

using OrvHost::Settings;

namespace {

/// Requires names that can be requested and that are files directly in the folder.
void requireCatalogNames(const std::vector<std::string>& names)
{
    for (const std::string& name : names) {
        if (name.find('/') != std::string::npos || fileString(name).extension() != fileString(".orvlib"))
            throw UsageError("'" + name + "' is not a file name that ends in .orvlib");
    }
}

/// Checks a value of the command line by the rule of its setting.
void require(const std::string& option, const char* key, const std::string& value)
try {
    Settings().set(key, {value});
} catch (const Settings::Refusal& refusal) {
    const std::string text = refusal.what();
    throw UsageError(option + text.substr(text.find(':')));
}

void replace(std::string& value, const std::string& given)
{
    if (!given.empty())
        value = given;
}

void add(std::vector<std::string>& names, const std::vector<std::string>& given)
{
    names.insert(names.end(), given.begin(), given.end());
}

} // namespace

void ServiceOptions::declare(CommandSyntax& syntax)
{
    syntax.option("--url", mUrl, "REDIRECT", "Address that redirects to the web service");
    syntax.option("--product", mProduct, "P", "Product name sent to the service");
    syntax.option("--product-version", mProductVersion, "V", "Product version sent to the service");
    syntax.option("--retries", mRetries, "N", "How often a failed request is repeated (default: 3)");
    syntax.flag("--no-database-check", mNoDatabaseCheck, "Accept catalogs that are not databases");
    syntax.option("--cacert", mCertificates, "FILE", "Trust these certificate authorities (PEM)");
    syntax.option("--proxy", mProxy, "URL", "Proxy (default: that of the environment)");
    syntax.option("--limit-rate", mLimitRate, "BYTES", "Receive at most this many bytes per second");
    syntax.option("--metered", mMetered, "fetch|postpone",
                  "On a metered connection: fetch, or only check (default)");
    syntax.flag("--core-only", mCoreOnly, "Update only core catalogs");
    syntax.option("--index", mIndex, "NAME",
                  std::string("Core content index (default: ") + OrvHost::AppHost::kDefaultContentIndex +
                      ")");
    syntax.list("--bonus", mBonus, "NAME", "One more bonus catalog, NAME.orvlib; may be repeated");
    syntax.list("--manufacturer", mManufacturer, "NAME",
                "One more manufacturer catalog, NAME.orvlib; may be repeated");
}

void ServiceOptions::checkGiven() const
{
    requireCatalogNames(mBonus);
    requireCatalogNames(mManufacturer);
    if (mRetries != kNotGiven)
        require("--retries", "retries", std::to_string(mRetries));
    if (mLimitRate != kNotGiven)
        require("--limit-rate", "limitRate", std::to_string(mLimitRate));
    if (!mMetered.empty())
        require("--metered", "metered", mMetered);
}

void ServiceOptions::complete(const Settings& settings)
{
    checkGiven();
    mValues = settings.valuesHere();
    replace(mValues.url, mUrl);
    replace(mValues.product, mProduct);
    replace(mValues.productVersion, mProductVersion);
    replace(mValues.certificates, mCertificates);
    replace(mValues.proxy, mProxy);
    add(mValues.bonus, mBonus);
    add(mValues.manufacturer, mManufacturer);
    if (mRetries != kNotGiven)
        mValues.retries = static_cast<int>(mRetries);
    if (mLimitRate != kNotGiven)
        mValues.limitRate = mLimitRate;
    if (!mMetered.empty())
        mValues.postponesOnMetered = mMetered == Settings::kPostpone;
}

void ServiceOptions::requireAddress() const
{
    if (mValues.url.empty())
        throw UsageError(
            "no address: give --url, or set it once with 'orv-library settings set url ADDRESS'");
}

OrvHost::ServiceAccess ServiceOptions::access() const
{
    OrvHost::ServiceAccess access;
    access.certificates = mValues.certificates;
    access.proxy = mValues.proxy;
    access.limitRate = mValues.limitRate;
    return access;
}

void ServiceOptions::apply() const
{
    access().apply();
    Curl::setConnectionLimit(mValues.connections);
}

OrvHost::CatalogUpdateRun::Request ServiceOptions::request() const
{
    OrvHost::CatalogUpdateRun::Request request;
    request.url = mValues.url;
    request.product = mValues.product;
    request.productVersion = mValues.productVersion;
    request.coreOnly = mCoreOnly;
    request.bonus = mValues.bonus;
    request.manufacturer = mValues.manufacturer;
    request.checksDatabases = !mNoDatabaseCheck;
    request.retries = mValues.retries;
    request.access = access();
    request.postponesOnMetered = mValues.postponesOnMetered;
    request.diskReserve = mValues.diskReserve;
    request.history.versions = mValues.historyVersions;
    request.history.bytes = mValues.historyBytes;
    return request;
}
