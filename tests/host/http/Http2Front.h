#pragma once

#include <string>

#include <QProcess>

#include "tests/host/http/TlsCertificate.h"
#include "tests/support/TempFolder.h"

namespace test {

/// An nginx that speaks HTTP/2 over TLS and forwards every request to another server on this machine. It adds
/// the headers "X-Connection" (which connection the client used) and "X-Protocol". It forwards the
/// response without buffering.
class Http2Front
{
public:
    /// @param port the port of the other server
    /// @param requestsOfAConnection a connection is closed after this many requests
    explicit Http2Front(int port, int requestsOfAConnection = 1'000);
    ~Http2Front();
    Http2Front(const Http2Front&) = delete;
    Http2Front& operator=(const Http2Front&) = delete;

    /// Whether nginx is installed.
    static bool isAvailable();

    const std::string& certificate() const { return mTls.certificate; }
    /// "https://127.0.0.1:PORT" followed by `target`.
    std::string url(const std::string& target) const;
    /// Ends the server and with it all connections.
    void stop();

private:
    TempFolder mFolder;
    TlsCertificate mTls;
    int mListener = -1;
    int mPort = 0;
    QProcess mProcess;
};

} // namespace test
