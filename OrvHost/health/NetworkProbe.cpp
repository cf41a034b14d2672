#include "OrvHost/health/NetworkProbe.h"

#include <cerrno>
#include <cstring>
#include <memory>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QStringList>

namespace OrvHost {

namespace {

constexpr int kTimeoutMilliseconds = 10000;

using Addresses = std::unique_ptr<addrinfo, decltype(&freeaddrinfo)>;

Addresses resolve(const std::string& host, const std::string& port, std::string& reason)
{
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    const int error = getaddrinfo(host.c_str(), port.empty() ? nullptr : port.c_str(), &hints, &found);
    reason = error == 0 ? "" : gai_strerror(error);
    return {error == 0 ? found : nullptr, freeaddrinfo};
}

/// @return 0 for a connection; otherwise the system's error number
int tryToConnect(const addrinfo& address)
{
    const int descriptor =
        socket(address.ai_family, address.ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC, address.ai_protocol);
    if (descriptor == -1)
        return errno;
    int error = connect(descriptor, address.ai_addr, address.ai_addrlen) == 0 ? 0 : errno;
    if (error == EINPROGRESS) {
        pollfd waiting{descriptor, POLLOUT, {}};
        socklen_t size = sizeof error;
        if (poll(&waiting, 1, kTimeoutMilliseconds) <= 0)
            error = ETIMEDOUT;
        else
            getsockopt(descriptor, SOL_SOCKET, SO_ERROR, &error, &size);
    }
    close(descriptor);
    return error;
}

QString environment(const char* lower, const char* upper)
{
    const QString text = qEnvironmentVariable(lower);
    return text.isEmpty() && upper ? qEnvironmentVariable(upper) : text;
}

bool isExcepted(const QString& host)
{
    for (QString name : environment("no_proxy", "NO_PROXY").split(',', Qt::SkipEmptyParts)) {
        name = name.trimmed();
        if (name == "*" || host == name || host.endsWith(name.startsWith('.') ? name : "." + name))
            return true;
    }
    return false;
}

} // namespace

std::string NetworkProbe::proxyFor(const QUrl& address, const std::string& chosen)
{
    if (isExcepted(address.host()))
        return {};
    if (!chosen.empty())
        return chosen;
    // HTTP_PROXY in capitals is ignored, because in a server's environment it may come from a request header.
    const bool isSecure = address.scheme().toLower() == QLatin1String("https");
    const QString proxy =
        isSecure ? environment("https_proxy", "HTTPS_PROXY") : environment("http_proxy", nullptr);
    return (proxy.isEmpty() ? environment("all_proxy", "ALL_PROXY") : proxy).toStdString();
}

QUrl NetworkProbe::proxyUrl(const std::string& proxy)
{
    const QString text = QString::fromStdString(proxy);
    QUrl url(text.contains("://") ? text : "http://" + text);
    if (url.port() < 0)
        url.setPort(1080);
    return url;
}

std::string NetworkProbe::lookUp(const std::string& host, std::string& address)
{
    std::string reason;
    const Addresses found = resolve(host, {}, reason);
    char text[NI_MAXHOST] = "";
    if (found &&
        getnameinfo(found->ai_addr, found->ai_addrlen, text, sizeof text, nullptr, 0, NI_NUMERICHOST) == 0)
        address = text;
    return reason;
}

std::string NetworkProbe::connectTo(const QUrl& address)
{
    const int usual = address.scheme().toLower() == QLatin1String("https") ? 443 : 80;
    const std::string host = address.host().toStdString();
    const std::string port = std::to_string(address.port(usual));
    std::string reason;
    const Addresses found = resolve(host, port, reason);
    for (const addrinfo* each = found.get(); each; each = each->ai_next) {
        const int error = tryToConnect(*each);
        if (error == 0)
            return {};
        reason = host + " port " + port + ": " + std::strerror(error);
    }
    return reason;
}

} // namespace OrvHost
