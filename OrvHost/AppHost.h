#pragma once

#include <memory>
#include <string>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// The host of our programs. It provides the folders below a root, the preferences in "preferences.json"
/// there, the application's name and content index, messages on standard error, and the texts in the user's
/// language. It installs these services when it is constructed and restores the former ones when it is
/// destroyed. Only one object may exist at a time, on the main thread.
class ORVHOST_EXPORT AppHost
{
public:
    /// The name of the application. All our programs use the same name, because it is a part of the names of
    /// the download folders: each program thus finds what another one has left.
    static constexpr const char* kName = "orv-library";
    static constexpr const char* kDefaultContentIndex = "Orv_Core_Content_Index.txt";

    /// The arguments for the constructor.
    struct Settings
    {
        fileString root; ///< made absolute; if empty, the default root
        std::string contentIndexName = kDefaultContentIndex;
        /// Whether to create missing folders. If not, the services still return their paths.
        bool createsFolders = true;
        /// The folder for temporary files; if empty, "temp/" below the root.
        fileString temporaryFolder{};
    };

    /// The root that results from `chosen`: absolute, with its separator at the end.
    static fileString rootOf(const fileString& chosen);

    /// Creates the missing folders and installs the services.
    /// @throws std::runtime_error if a folder cannot be created, with the folder and the system's message
    explicit AppHost(const Settings& settings);
    ~AppHost();
    AppHost(const AppHost&) = delete;
    AppHost& operator=(const AppHost&) = delete;

    /// Absolute, with its separator at the end.
    const fileString& root() const;
    /// "preferences.json" below the root.
    fileString preferencesFile() const;
    void setContentIndexName(const std::string& name);

private:
    class Services;
    std::unique_ptr<Services> mServices;
};

} // namespace OrvHost
