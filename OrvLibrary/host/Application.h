#pragma once

#include <atomic>
#include <string>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/fileString.h"

/// The questions that the library asks the host's application object. The host installs it before it uses the
/// library and takes it away after the last call; the operations may be called from any thread.
class ORVLIBRARY_EXPORT Application
{
public:
    Application();
    virtual ~Application();
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    /// The application's own name. It becomes part of the names of the download folders.
    virtual std::string name() const = 0;
    /// File name of the core content index, of the form "Product_Core_Content_Index.txt".
    virtual fileString contentIndexName() const = 0;

    /// Makes `application` the one that `gApp` names; null for none. The pointer is not owned.
    /// @return the former one
    static Application* install(Application* application);
};

/// The installed application object; null when the host has none.
extern ORVLIBRARY_EXPORT std::atomic<Application*> gApp;
