#pragma once

#include <atomic>
#include <string>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/fileString.h"

/// The host's application object, which answers the library's questions about the host. The host installs it
/// before it uses the library and removes it after the last call. The operations may be called from any
/// thread.
class ORVLIBRARY_EXPORT Application
{
public:
    Application();
    virtual ~Application();
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    /// The name of the application. The names of the download folders contain it.
    virtual std::string name() const = 0;
    /// The name of the file that lists the core content, of the form "Product_Core_Content_Index.txt".
    virtual fileString contentIndexName() const = 0;

    /// Makes `gApp` point to `application`; null for none. The caller keeps ownership.
    /// @return the former one
    static Application* install(Application* application);
};

/// The installed application object; null if there is none.
extern ORVLIBRARY_EXPORT std::atomic<Application*> gApp;
