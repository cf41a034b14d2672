#pragma once

#include <string>

#include <QUrl>

/// Makes the first steps of a connection one by one, so that a failure can be traced to its step. The
/// functions wait at most 10 seconds for the network, but as long as the system wants for looking up a name.
/// They may be called from any thread.
namespace OrvHost::NetworkProbe {

/// The proxy for an address: the chosen one or, without it, that of the environment. Empty if there is none.
std::string proxyFor(const QUrl& address, const std::string& chosen);
/// The text of a proxy as an address. A missing scheme or port is added.
QUrl proxyUrl(const std::string& proxy);
/// @param address set to the host's address in digits
/// @return why the name cannot be found; empty if it can
std::string lookUp(const std::string& host, std::string& address);
/// @return why there is no connection; empty if there is one
std::string connectTo(const QUrl& address);

} // namespace OrvHost::NetworkProbe
