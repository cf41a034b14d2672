#pragma once

#include <string>

/// The address in a request line: path and query, as sent.
class RequestTarget
{
public:
    explicit RequestTarget(const std::string& target);

    const std::string& path() const { return mPath; }
    /// Whether the query has the parameter. Sets `value` to its text as sent; if it occurs several times, to
    /// the first one.
    bool parameter(const std::string& name, std::string& value) const;

private:
    std::string mPath;
    std::string mQuery;
};

/// Decodes percent-encoding. An incomplete "%XX" stays unchanged, and so does "+", because names contain plus
/// signs.
std::string percentDecoded(const std::string& text);
