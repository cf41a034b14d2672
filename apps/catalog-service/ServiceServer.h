#pragma once

#include <memory>
#include <string>

#include "apps/catalog-service/ServiceAnswer.h"

/// The HTTP side of the service: connections, each on a thread of its own and kept open for as long as the
/// client likes, and the wire form of requests and answers. Belongs to one thread.
class ServiceServer
{
public:
    explicit ServiceServer(ServiceHandler handler);
    /// Stops.
    ~ServiceServer();
    ServiceServer(const ServiceServer&) = delete;
    ServiceServer& operator=(const ServiceServer&) = delete;

    /// @param port 0 for a free one
    bool start(const std::string& address, int port);
    void stop();
    int port() const;

private:
    class Private;
    std::unique_ptr<Private> mPrivate;
};
