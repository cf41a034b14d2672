#pragma once

#include <string>

/// The part after the method in a request line: a path and a query, as sent.
class RequestTarget
{
public:
    explicit RequestTarget(const std::string& target);

    const std::string& path() const { return mPath; }
    /// Whether the query has the parameter; `value` is then its text as sent, of several the first one's.
    bool parameter(const std::string& name, std::string& value) const;

private:
    std::string mPath;
    std::string mQuery;
};

/// Undoes percent-encoding. An incomplete "%XX" stays as it is, and so does "+": names hold plus signs.
std::string percentDecoded(const std::string& text);
