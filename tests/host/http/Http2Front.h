#pragma once

#include <string>

#include <QProcess>

#include "tests/host/http/TlsCertificate.h"
#include "tests/support/TempFolder.h"

namespace test {

/// A real server that speaks HTTP/2 over TLS and passes every request on to another server on this machine:
/// its header "X-Connection" names the connection that it came on, and "X-Protocol" the protocol. What the
/// other one sends is passed on as it comes.
class Http2Front
{
public:
    /// @param port where the other server listens
    /// @param requestsOfAConnection how many requests a connection carries before it is ended
    explicit Http2Front(int port, int requestsOfAConnection = 1'000);
    ~Http2Front();
    Http2Front(const Http2Front&) = delete;
    Http2Front& operator=(const Http2Front&) = delete;

    /// Whether such a server is installed.
    static bool isAvailable();

    const std::string& certificate() const { return mTls.certificate; }
    /// "https://127.0.0.1:PORT" followed by `target`.
    std::string url(const std::string& target) const;
    /// Ends it, and with it all connections.
    void stop();

private:
    TempFolder mFolder;
    TlsCertificate mTls;
    int mListener = -1;
    int mPort = 0;
    QProcess mProcess;
};

} // namespace test
