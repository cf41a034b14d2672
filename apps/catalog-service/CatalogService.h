#pragma once

#include <memory>
#include <string>

/// The catalog web service for a content folder. DIR/content has the catalogs, DIR/manufacturers has the
/// manufacturer data and the logos. The service runs on its own threads from `start` until `stop` or its
/// destruction.
///
///     GET /redirect                  302 to "/content?", to which clients append their query
///     GET /content?&library=NAME     a file of DIR/content
///     GET /manufacturers?            DIR/manufacturers/manufacturer_data.json, or &library=NAME from there
///     GET /logos?&logo-path=NAME     a file of DIR/manufacturers
///
/// Files are sent with their length and a strong tag, the SHA-1 of their content. Conditional requests and
/// byte ranges are supported. Belongs to one thread.
class CatalogService
{
public:
    explicit CatalogService(const std::string& folder);
    ~CatalogService();
    CatalogService(const CatalogService&) = delete;
    CatalogService& operator=(const CatalogService&) = delete;

    /// Starts the service.
    /// @param port 0 for any free port
    /// @param reason one line, set if it cannot start
    bool start(const std::string& address, int port, std::string& reason);
    /// Closes every connection.
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
