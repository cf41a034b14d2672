#pragma once

#include <memory>
#include <string>

#include "apps/catalog-service/ServiceAnswer.h"

/// The HTTP side of the service. Each connection has its own thread and stays open as long as the client
/// wants. Belongs to one thread.
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
