#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include <QJsonObject>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// The user's choices for all programs on a root, kept in "settings.json" there: the service, the
/// catalogs to fetch beside those that are there, the way to the network, and how much history is kept. A
/// key that is not set has a default. A program's command line goes before it. A plain value that belongs to
/// one thread.
class ORVHOST_EXPORT Settings
{
public:
    /// A key that does not exist, or a value that a key cannot have; the text says which.
    class Refusal : public std::invalid_argument
    {
    public:
        using std::invalid_argument::invalid_argument;
    };

    /// The values that a host works with: the stored ones, and defaults for the rest.
    struct Values
    {
        std::string url;     ///< the content redirect address; empty for none
        std::string product; ///< what the service is told
        std::string productVersion;
        std::vector<std::string> bonus;        ///< file names that end in ".orvlib"
        std::vector<std::string> manufacturer; ///< likewise
        std::string manufacturerDataUrl;       ///< empty for none
        std::string manufacturerLogoUrl;       ///< empty for none
        std::string proxy;                     ///< empty for what the environment says
        std::string certificates;              ///< file or folder; empty for what the environment says
        int retries = 0;                       ///< of a request that failed in a way that may pass
        int connections = 0;                   ///< at once, to one host; 1 to 96
        std::int64_t limitRate = 0;            ///< bytes a second; 0 for no limit
        int historyVersions = 0;               ///< former versions kept of a catalog; at least 1
        std::int64_t historyBytes = 0;         ///< of all former versions together
    };

    /// Reads "settings.json"; nothing is set when there is none. Where only the "browser.json" of former
    /// versions is there, what it says of the service is taken over and written, once.
    /// @throws std::runtime_error when the file cannot be read, or is not what it should be: the path, line
    /// and column, and the reason
    static Settings load(const fileString& root);
    /// Nothing is set.
    Settings() = default;

    Values values() const;
    /// The stored values by key, without members of the file that are no settings.
    QJsonObject stored() const;

    /// @param texts one text, or any number of them for a list; numbers in decimal
    /// @throws Refusal
    void set(const std::string& key, const std::vector<std::string>& texts);
    /// @throws Refusal when there is no such key
    void unset(const std::string& key);

    /// Writes the file beside itself and renames it. Members that are no settings stay as they are. Hold a
    /// `HostLock::ofChange("settings")` from before the loading to after the saving.
    /// @throws std::runtime_error when it cannot be written; it is then as it was
    void save(const fileString& root) const;

    /// "settings.json" below the root.
    static fileString fileIn(const fileString& root);
    /// By key; a text, a list of texts or a number.
    static QJsonObject defaults();
    static bool isKey(const std::string& key);

private:
    void readMembers(const std::string& text, const fileString& path);
    void takeOverBrowserSettings(const fileString& root);

    QJsonObject mMembers; ///< of the file, known or not
};

} // namespace OrvHost
