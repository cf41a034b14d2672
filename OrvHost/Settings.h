#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include <QJsonObject>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// The user's settings for all programs that use a root, stored in "settings.json" there: the service,
/// additional catalogs to fetch, the network, and how much history to keep. A key that is not set has its
/// default. Options on a command line take precedence. A plain value; one object belongs to one thread.
class ORVHOST_EXPORT Settings
{
public:
    /// Thrown for an unknown key or a value that the key cannot have. The text says which.
    class Refusal : public std::invalid_argument
    {
    public:
        using std::invalid_argument::invalid_argument;
    };

    /// The complete values for a host: settings, and defaults for all others.
    struct Values
    {
        std::string url;     ///< the address that redirects to the service; empty for none
        std::string product; ///< the product name that is sent to the service
        std::string productVersion;
        std::vector<std::string> bonus;        ///< file names with the ending ".orvlib"
        std::vector<std::string> manufacturer; ///< the same
        std::string manufacturerDataUrl;       ///< empty for none
        std::string manufacturerLogoUrl;       ///< empty for none
        std::string proxy;                     ///< empty: the environment decides
        std::string certificates;              ///< file or folder; empty: the environment decides
        int retries = 0;                 ///< how often a request is repeated after a failure that may pass
        int connections = 0;             ///< to one host at once; 1 to 96
        std::int64_t limitRate = 0;      ///< bytes per second; 0 for no limit
        bool postponesOnMetered = false; ///< whether nothing is fetched while the connection is metered
        std::int64_t diskReserve = 0;    ///< bytes that downloads leave free on the disk, at least
        int historyVersions = 0;         ///< former versions to keep of each catalog; at least 1
        std::int64_t historyBytes = 0;   ///< size of all former versions together
    };

    /// The values of "metered": what an update does while the connection is metered.
    static constexpr const char* kFetch = "fetch";
    static constexpr const char* kPostpone = "postpone";

    /// Reads "settings.json". If it does not exist, nothing is set. If there is only a "browser.json" of an
    /// earlier version, its settings for the service are taken over and saved, once.
    /// @throws std::runtime_error if the file cannot be read or is not valid, with path, line, column and
    /// reason
    static Settings load(const fileString& root);
    /// Nothing is set.
    Settings() = default;

    Values values() const;
    /// `values()` as they hold for this process: empty is what the environment decides.
    Values valuesHere() const;
    /// Whether the environment goes before a setting, because it says what holds where the program runs:
    /// before "proxy" if it names a proxy, before "certificates" if `SSL_CERT_FILE` or `SSL_CERT_DIR` is set.
    static bool isFromEnvironment(const std::string& key);
    /// The values that are set, by key. Unknown members of the file are left out.
    QJsonObject stored() const;

    /// @param texts one text or, for a list, any number; numbers in decimal
    /// @throws Refusal
    void set(const std::string& key, const std::vector<std::string>& texts);
    /// @throws Refusal if there is no such key
    void unset(const std::string& key);

    /// Replaces the file and keeps its unknown members. Hold a `HostLock::ofChange("settings")` from before
    /// `load` until after `save`.
    /// @throws std::runtime_error if the file cannot be written; it is then unchanged
    void save(const fileString& root) const;

    /// "settings.json" below the root.
    static fileString fileIn(const fileString& root);
    /// By key: a text, a list of texts or a number.
    static QJsonObject defaults();
    static bool isKey(const std::string& key);

private:
    void readMembers(const std::string& text, const fileString& path);
    void takeOverBrowserSettings(const fileString& root);

    QJsonObject mMembers; ///< all members of the file, known or not
};

} // namespace OrvHost
