#pragma once

#include <algorithm>
#include <string>

/// Letter case of ASCII letters only, in every locale: for names in protocols and addresses.
namespace Ascii {

inline char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline std::string lowered(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), lower);
    return text;
}

/// Whether the texts are equal, without regard to letter case.
inline bool equal(const std::string& left, const std::string& right)
{
    return lowered(left) == lowered(right);
}

} // namespace Ascii
