#pragma once

#include <memory>
#include <string>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// The one host implementation of our programs: the well-known folders below a root, the preferences in
/// "preferences.json" there, the application's name and content index, messages on standard error, the
/// texts in the user's language. The services are installed for the life of the object, and the former ones
/// put back at its end; one object lives at a time, on the main thread.
class ORVHOST_EXPORT AppHost
{
public:
    /// The application's own name: the same for all our programs, because it is part of the names of the
    /// download folders, and what one program left there another one finds.
    static constexpr const char* kName = "orv-library";
    static constexpr const char* kDefaultContentIndex = "Orv_Core_Content_Index.txt";

    /// The arguments of the constructor.
    struct Settings
    {
        fileString root; ///< made absolute; the default root when empty
        std::string contentIndexName = kDefaultContentIndex;
        /// Whether folders that are missing are made; without them the services only name the paths.
        bool createsFolders = true;
        /// Where temporary files lie; "temp/" below the root when it is empty.
        fileString temporaryFolder{};
    };

    /// The root that `settings` means: absolute, with its final separator.
    static fileString rootOf(const fileString& chosen);

    /// Creates the folders that are missing and installs the services.
    /// @throws std::runtime_error when a folder cannot be created, with the folder and the system's text
    explicit AppHost(const Settings& settings);
    ~AppHost();
    AppHost(const AppHost&) = delete;
    AppHost& operator=(const AppHost&) = delete;

    /// Absolute, with its final separator.
    const fileString& root() const;
    /// "preferences.json" below the root.
    fileString preferencesFile() const;
    void setContentIndexName(const std::string& name);

private:
    class Services;
    std::unique_ptr<Services> mServices;
};

} // namespace OrvHost
