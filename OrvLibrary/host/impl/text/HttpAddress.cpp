#include "OrvLibrary/host/impl/text/HttpAddress_p.h"

#include <algorithm>
#include <cctype>

#include "OrvLibrary/host/impl/text/Ascii_p.h"

namespace {

bool isHexDigit(char c)
{
    return std::isxdigit(static_cast<unsigned char>(c)) != 0;
}

bool isSchemeCharacter(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '+' || c == '-' || c == '.';
}

/// An address in parts. Each part keeps its separators, so that the parts, joined, give the address again.
struct Parts
{
    std::string scheme;    // "http:"
    std::string authority; // "//host:port"
    std::string path;
    std::string query;    // "?" and the query, which may be empty
    std::string fragment; // "#" and the fragment
};

std::string takeUntil(std::string& rest, const char* ends, std::size_t from = 0)
{
    const std::size_t end = std::min(rest.find_first_of(ends, from), rest.size());
    std::string part = rest.substr(0, end);
    rest.erase(0, end);
    return part;
}

Parts split(std::string rest)
{
    Parts parts;
    const std::string name = HttpAddress::scheme(rest);
    if (!name.empty()) {
        parts.scheme = rest.substr(0, name.size() + 1);
        rest.erase(0, parts.scheme.size());
    }
    if (rest.compare(0, 2, "//") == 0)
        parts.authority = takeUntil(rest, "/?#", 2);
    parts.path = takeUntil(rest, "?#");
    parts.query = takeUntil(rest, "#");
    parts.fragment = rest;
    return parts;
}

/// Removes "." and ".." segments from a path that starts with "/".
std::string withoutDotSegments(const std::string& path)
{
    std::string result;
    std::size_t at = 0;
    while (at < path.size()) {
        const std::size_t next = std::min(path.find('/', at + 1), path.size());
        const std::string segment = path.substr(at, next - at);
        const bool isParent = segment == "/..";
        const bool isDots = isParent || segment == "/.";
        if (isParent)
            result.erase(std::min(result.rfind('/'), result.size()));
        if (!isDots)
            result += segment;
        else if (next == path.size())
            result += '/';
        at = next;
    }
    return result;
}

/// A relative path replaces everything after the last "/" of the base path.
std::string mergedPath(const Parts& base, const std::string& path)
{
    const std::size_t slash = base.path.rfind('/');
    return withoutDotSegments((slash == std::string::npos ? "/" : base.path.substr(0, slash + 1)) + path);
}

/// "host:port" without "//" and user name.
std::string hostText(const std::string& authority)
{
    const std::size_t at = authority.rfind('@');
    return authority.substr(at == std::string::npos ? std::min<std::size_t>(2, authority.size()) : at + 1);
}

} // namespace

namespace HttpAddress {

std::string scheme(const std::string& url)
{
    const auto end = std::find_if_not(url.begin(), url.end(), isSchemeCharacter);
    const bool startsWell = !url.empty() && std::isalpha(static_cast<unsigned char>(url.front())) != 0;
    return startsWell && end != url.end() && *end == ':' ? Ascii::lowered({url.begin(), end}) : std::string();
}

bool isWebAddress(const std::string& url)
{
    return !hostAndPort(url).empty();
}

std::string hostAndPort(const std::string& url)
{
    const std::string name = scheme(url);
    if (name != "http" && name != "https")
        return {};
    const std::string text = Ascii::lowered(hostText(split(url).authority));
    // The colons inside the brackets of an IPv6 host are not the port's.
    const std::size_t bracket = text.rfind(']');
    const std::size_t colon = text.find(':', bracket == std::string::npos ? 0 : bracket);
    const std::string host = text.substr(0, colon);
    if (host.empty())
        return {};
    const std::string port = colon == std::string::npos ? std::string() : text.substr(colon + 1);
    return host + ":" + (port.empty() ? (name == "https" ? "443" : "80") : port);
}

std::string wireText(const std::string& url)
{
    static const char digits[] = "0123456789ABCDEF";
    std::string result;
    result.reserve(url.size());
    for (std::size_t i = 0; i < url.size(); ++i) {
        const auto byte = static_cast<unsigned char>(url[i]);
        const bool isBarePercent =
            byte == '%' && !(i + 2 < url.size() && isHexDigit(url[i + 1]) && isHexDigit(url[i + 2]));
        if (byte > 0x20 && byte < 0x7F && !isBarePercent) {
            result += url[i];
            continue;
        }
        result += '%';
        result += digits[byte >> 4];
        result += digits[byte & 15];
    }
    return result;
}

std::string resolve(const std::string& base, const std::string& reference)
{
    const Parts from = split(base);
    const Parts to = split(reference);
    if (!to.scheme.empty())
        return reference;
    if (!to.authority.empty())
        return from.scheme + reference;
    const std::string place = from.scheme + from.authority;
    if (to.path.empty())
        return place + from.path + (to.query.empty() ? from.query : to.query) + to.fragment;
    const std::string path = to.path.front() == '/' ? withoutDotSegments(to.path) : mergedPath(from, to.path);
    return place + path + to.query + to.fragment;
}

std::string withoutFragment(const std::string& url)
{
    return url.substr(0, url.find('#'));
}

bool mayLead(const std::string& from, const std::string& to)
{
    return isWebAddress(to) && (scheme(from) != "https" || scheme(to) == "https");
}

} // namespace HttpAddress
