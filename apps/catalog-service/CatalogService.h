#pragma once

#include <memory>
#include <string>

/// The catalog web service over a content folder: DIR/content with the catalogs, DIR/manufacturers with the
/// manufacturer data and the logos. It serves on threads of its own from `start` until `stop` or its end.
///
///     GET /redirect                  302 to "/content?", to which clients append their query
///     GET /content?&library=NAME     a file of DIR/content
///     GET /manufacturers?            DIR/manufacturers/manufacturer_data.json, or &library=NAME from there
///     GET /logos?&logo-path=NAME     a file of DIR/manufacturers
///
/// Files carry a strong tag, the SHA-1 of their contents, and their length; conditional requests and byte
/// ranges are understood. Belongs to one thread.
class CatalogService
{
public:
    explicit CatalogService(const std::string& folder);
    ~CatalogService();
    CatalogService(const CatalogService&) = delete;
    CatalogService& operator=(const CatalogService&) = delete;

    /// Begins to serve.
    /// @param port 0 for a free one
    /// @param reason one line that says why it cannot
    bool start(const std::string& address, int port, std::string& reason);
    /// Ends every connection.
    void stop();

    int port() const;
    /// "http://ADDRESS:PORT" followed by `target`.
    std::string url(const std::string& target) const;
    std::string redirectUrl() const { return url("/redirect"); }
    std::string manufacturersUrl() const { return url("/manufacturers?"); }
    std::string logosUrl() const { return url("/logos?"); }

private:
    class Private;
    std::unique_ptr<Private> mPrivate;
};
