#pragma once

#include <string>

/// Web addresses as texts. The transfer library's own address parser is not used: it drops a lone trailing
/// "?", and catalog addresses are built by appending "&library=..." to such a query.
namespace HttpAddress {

/// Whether the text is an http or https address with a host, whatever the letter case of the scheme.
bool isWebAddress(const std::string& url);
/// The scheme in lower case without its colon; empty when the text has none.
std::string scheme(const std::string& url);
/// "host:port" in lower case, with the scheme's default port where none is given; empty for anything but a
/// web address. User names and passwords are not part of it.
std::string hostAndPort(const std::string& url);

/// The text as HTTP can carry it: bytes up to 0x20, 0x7F and bytes from 0x80 up are percent-encoded, and so
/// is a "%" that two hexadecimal digits do not follow. Nothing else is touched.
std::string wireText(const std::string& url);
/// A header line without the bytes 0x00-0x1F and 0x7F.
std::string wireHeaderLine(const std::string& line);

/// The address that `reference`, the text of a `Location`, means when it comes from `base`. Its query stays
/// as it was sent, even an empty query.
std::string resolve(const std::string& base, const std::string& reference);

/// The text up to its fragment ("#" and what follows).
std::string withoutFragment(const std::string& url);

/// Whether a redirect may be followed: to the web only, and never from a protected to an open connection.
bool mayLead(const std::string& from, const std::string& to);

} // namespace HttpAddress
