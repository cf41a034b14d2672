#pragma once

#include <string>

/// Functions on web addresses. The transfer library's own parser is not used because it drops a "?" at the
/// end of an address. Catalog addresses need it: "&library=..." is appended to such an empty query.
namespace HttpAddress {

/// Whether the text is an http or https address with a host. The scheme may be in capitals.
bool isWebAddress(const std::string& url);
/// The scheme in lower case, without its colon. Empty if there is none.
std::string scheme(const std::string& url);
/// "host:port" in lower case, without user name and password. If no port is given, it is the scheme's default
/// port. Empty if the text is not a web address.
std::string hostAndPort(const std::string& url);

/// The address in a form that HTTP can carry. Blanks, control characters and all bytes from 0x7F up are
/// percent-encoded, and so is a "%" that is not followed by two hexadecimal digits. Nothing else changes.
std::string wireText(const std::string& url);

/// The address that a `Location` header means when an answer from `base` carries it. The query stays as it
/// was sent, even if it is empty.
std::string resolve(const std::string& base, const std::string& reference);

/// The address without its fragment ("#" and the rest).
std::string withoutFragment(const std::string& url);

/// Whether a redirect may be followed: only to a web address, and never from https to http.
bool mayLead(const std::string& from, const std::string& to);

} // namespace HttpAddress
