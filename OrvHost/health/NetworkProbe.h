#pragma once

#include <string>

#include <QUrl>

/// The first steps of a connection, one by one, so that each can be blamed. The functions wait for the
/// network at most 10 seconds, but for the system's own lookup of names, and may be called from any thread.
namespace OrvHost::NetworkProbe {

/// The proxy that is used for an address: the chosen one, else what the environment says; empty for none.
std::string proxyFor(const QUrl& address, const std::string& chosen);
/// A proxy's text as an address; a scheme and a port that are not written are filled in.
QUrl proxyUrl(const std::string& proxy);
/// @param address of the host, as digits
/// @return why the name cannot be found; empty when it can
std::string lookUp(const std::string& host, std::string& address);
/// @return why no connection comes about; empty when one does
std::string connectTo(const QUrl& address);

} // namespace OrvHost::NetworkProbe
